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

ms() { echo $(( $(date +%s%N) / 1000000 )); }
batch() { "$BUILD/dist/tolvik-batch" --folder "$tmp" --set Text4=1 --set Text6=30 "$@" >/dev/null; }
forhold() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }'; }

t0=$(ms); batch status; t1=$(ms)
oppstart=$((t1 - t0))

t0=$(ms); batch --adsorption --column C export-combined --prefix bench; t1=$(ms)
samle=$((t1 - t0))
t0=$(ms); "$BUILD/bench/bench_eksport_data" samle "$tmp/peer.xlsx"; t1=$(ms)
samlePeer=$((t1 - t0))

t0=$(ms); batch integrate --prefix bench; t1=$(ms)
integ=$((t1 - t0))
mkdir "$tmp/peer"
t0=$(ms); "$BUILD/bench/bench_eksport_data" integrering "$tmp/peer"; t1=$(ms)
integPeer=$((t1 - t0))

echo "oppstart av tolvik-batch (120 000 rader): ${oppstart} ms"
echo "samlefil 30 sykluser x 4 000 rader: ${samle} ms (grense 2000), libxlsxwriter samme celler: ${samlePeer} ms, forhold $(forhold $samle $samlePeer)"
echo "integrering 30 arbeidsbøker + samlefil: ${integ} ms (grense 3000), libxlsxwriter 31 bøker: ${integPeer} ms, forhold $(forhold $integ $integPeer)"
# Target: each within twice libxlsxwriter's time, and under the absolute limits.
over() { awk -v a="$1" -v b="$2" 'BEGIN { exit !(a > 2 * b) }'; }
if [ "$samle" -ge 2000 ] || [ "$integ" -ge 3000 ] || over "$samle" "$samlePeer" || over "$integ" "$integPeer"; then
  echo "FOR TREG: krav forhold <= 2"
  exit 1
fi
