#!/usr/bin/env bash
# Combined workbook (30 cycles x 4 000 rows) and CO2 integration (30 workbooks + summary)
# through tolvik-batch, each against libxlsxwriter writing the same cells from scratch.
set -euo pipefail
BUILD="${BUILD:-build}"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
cp "$BUILD/dist/Template.mdb" "$tmp/Template.mdb"
cp "$BUILD/dist/Template.mdb" "$tmp/Data.mdb"
cp "$BUILD"/dist/Mal_*.xls* "$tmp/"
"$BUILD/bench/bench_eksport_data" data "$tmp"
cp "$tmp/Mal_desorpsjon_areal_alle.xlsx" "$tmp/samlemal.xlsx"

batch=("$BUILD/dist/tolvik-batch" --folder "$tmp" --set Text4=1 --set Text6=30)
# Wall and CPU time (user + system) of a command, in ms: "wall cpu".
tid() {
  /usr/bin/time -f "%e %U %S" -o "$tmp/tid" "$@" >/dev/null
  awk '{printf "%.0f %.0f", $1 * 1000, ($2 + $3) * 1000}' "$tmp/tid"
}

# Single runs vary by about 30 % on a shared machine, so each command alternates with its peer,
# PAR pairs (default 5), and the median of the pairs' ratios is the figure. The start-up of
# tolvik-batch on the same folder (status) is timed in every pair too, to be read apart.
PAR="${PAR:-5}"
: >"$tmp/par"
for ((p = 1; p <= PAR; p++)); do
  oppstart=$(tid "${batch[@]}" status)
  samle=$(tid "${batch[@]}" --adsorption --column C export-combined --prefix bench)
  samlePeer=$(tid "$BUILD/bench/bench_eksport_data" samle "$tmp/peer.xlsx")
  cp "$tmp/samlemal.xlsx" "$tmp/Mal_desorpsjon_areal_alle.xlsx"  # each run starts from the same summary
  integ=$(tid "${batch[@]}" integrate --prefix bench)
  rm -rf "$tmp/peer" && mkdir "$tmp/peer"
  integPeer=$(tid "$BUILD/bench/bench_eksport_data" integrering "$tmp/peer")
  echo "$samle $samlePeer $integ $integPeer $oppstart" >>"$tmp/par"
done

# Target: each within 1.7 times libxlsxwriter's wall time (2 on a machine 20 % less favourable
# fails the run), and under the absolute limits.
python3 - "$tmp/par" <<'PY'
import statistics, sys
par = [list(map(float, l.split())) for l in open(sys.argv[1])]
med = statistics.median
for s, sc, sp, spc, i, ic, ip, ipc, o, oc in par:
    print(f"  par: samlefil {s:.0f} / {sp:.0f} ms = {s / sp:.2f} (CPU {sc:.0f} / {spc:.0f})   "
          f"integrering {i:.0f} / {ip:.0f} ms = {i / ip:.2f} (CPU {ic:.0f} / {ipc:.0f})   oppstart {o:.0f} ms (CPU {oc:.0f})")
def linje(navn, peer, k):
    forhold = med(p[k] / p[k + 2] for p in par)
    print(f"{navn}: median {med(p[k] for p in par):.0f} ms (CPU {med(p[k + 1] for p in par):.0f} ms), "
          f"{peer}: {med(p[k + 2] for p in par):.0f} ms (CPU {med(p[k + 3] for p in par):.0f} ms), "
          f"forhold {forhold:.2f} (CPU {med(p[k + 1] / p[k + 3] for p in par):.2f}), median av {len(par)} par")
    return forhold
samle = linje("samlefil 30 sykluser x 4 000 rader", "libxlsxwriter samme celler", 0)
integ = linje("integrering 30 arbeidsbøker + samlefil", "libxlsxwriter 31 bøker", 4)
print(f"oppstart av tolvik-batch (status, 120 000 rader): median {med(p[8] for p in par):.0f} ms "
      f"(CPU {med(p[9] for p in par):.0f} ms), med i tallene over")
if max(p[0] for p in par) >= 2000 or max(p[4] for p in par) >= 3000 or samle > 1.7 or integ > 1.7:
    print("FOR TREG: krav forhold <= 1,7")
    sys.exit(1)
PY
