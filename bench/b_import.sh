#!/usr/bin/env bash
# Import of a 1 000 000-line, 6-channel raw-data file: tolvik-batch import (dates parsed,
# values converted, encrypted, time index built) against the sqlite3 shell's plain .import of
# the same file into a table of text columns, timed in the same run. Also Tolvik's peak memory.
set -euo pipefail
: "${BUILD:?BUILD must name the build folder}"
LINJER="${LINJER:-1000000}"
data="$BUILD/bench-data"
fil="$data/radata_${LINJER}.csv"
mkdir -p "$data"
# A file kept from an earlier run is made again when the generator has changed since.
[ "$fil" -nt "$BUILD/tools/lag_radata" ] || "$BUILD/tools/lag_radata" --lines "$LINJER" --channels 6 "$fil"

arbeid="$(mktemp -d)"
trap 'rm -rf "$arbeid"' EXIT
mappe="$arbeid/program"
mkdir -p "$mappe"
cp "$BUILD/dist/Template.mdb" "$mappe/Template.mdb"
cp "$BUILD/dist/Template.mdb" "$mappe/Data.mdb"

sekunder() { python3 -c 'import sys; print(f"{float(sys.argv[1]):.2f}")' "$1"; }
cpu() { python3 -c 'import sys; print(f"{float(sys.argv[1]) + float(sys.argv[2]):.2f}")' "$1" "$2"; }

# Single runs vary by about 30 % on a shared machine, so the two commands alternate, PAR pairs
# (default 5), and the median of the pairs' ratios is the figure.
kolonner=$(head -1 "$fil" | tr -d '\r' | awk -F, '{for (i = 1; i <= NF; i++) printf "%sk%d TEXT", (i > 1 ? ", " : ""), i}')
PAR="${PAR:-5}"
: >"$arbeid/par"
for ((p = 1; p <= PAR; p++)); do
  # Tolvik: the whole command as a user runs it, start-up included, into the empty database a
  # new program folder has, as the peer's file is new every time. (Replacing a full Data.mdb
  # adds the system's freeing of the old file's 160 MB, about 60 ms.)
  cp "$BUILD/dist/Template.mdb" "$mappe/Data.mdb"
  /usr/bin/time -f "%e %U %S %M" -o "$arbeid/tolvik.tid" \
    "$BUILD/dist/tolvik-batch" --folder "$mappe" import "$fil" >"$arbeid/tolvik.ut" 2>"$arbeid/tolvik.feil" ||
    { cat "$arbeid/tolvik.ut" "$arbeid/tolvik.feil"; exit 1; }
  # The peer: the sqlite3 shell, same file, one text column per field, nothing converted.
  rm -f "$arbeid/plain.db"
  /usr/bin/time -f "%e %U %S" -o "$arbeid/sqlite.tid" \
    sqlite3 "$arbeid/plain.db" "CREATE TABLE t ($kolonner);" ".import --csv --skip 1 $fil t"
  echo "$(cat "$arbeid/tolvik.tid") $(cat "$arbeid/sqlite.tid")" >>"$arbeid/par"
done
rader=$("$BUILD/dist/tolvik-batch" --folder "$mappe" status 2>/dev/null | head -1)

echo "fil:                 $fil ($LINJER linjer, $(du -m "$fil" | cut -f1) MB)"
python3 - "$arbeid/par" "$rader" <<'PY'
import statistics, sys
par = [list(map(float, l.split())) for l in open(sys.argv[1])]
for t, u, s, rss, ts, us, ss in par:
    print(f"  par: tolvik {t:.2f} s (CPU {u + s:.2f} s, {rss / 1024:.0f} MB)  sqlite3 {ts:.2f} s (CPU {us + ss:.2f} s)  forhold {t / ts:.2f}")
forhold = statistics.median(p[0] / p[4] for p in par)
print(f"tolvik-batch import: median {statistics.median(p[0] for p in par):.2f} s, topp minne {max(p[3] for p in par) / 1024:.0f} MB ({sys.argv[2]})")
print(f"sqlite3 .import:     median {statistics.median(p[4] for p in par):.2f} s")
print(f"forhold tolvik/sqlite3 (median av {len(par)} par): {forhold:.2f}")
sys.exit(0 if forhold <= 1.0 else 1)
PY
