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
[ -f "$fil" ] || "$BUILD/tools/lag_radata" --lines "$LINJER" --channels 6 "$fil"

arbeid="$(mktemp -d)"
trap 'rm -rf "$arbeid"' EXIT
mappe="$arbeid/program"
mkdir -p "$mappe"
cp "$BUILD/dist/Template.mdb" "$mappe/Template.mdb"
cp "$BUILD/dist/Template.mdb" "$mappe/Data.mdb"

sekunder() { python3 -c 'import sys; print(f"{float(sys.argv[1]):.2f}")' "$1"; }
cpu() { python3 -c 'import sys; print(f"{float(sys.argv[1]) + float(sys.argv[2]):.2f}")' "$1" "$2"; }

# Tolvik: the whole command as a user runs it, start-up included.
/usr/bin/time -f "%e %U %S %M" -o "$arbeid/tolvik.tid" \
  "$BUILD/dist/tolvik-batch" --folder "$mappe" import "$fil" >"$arbeid/tolvik.ut" 2>"$arbeid/tolvik.feil" ||
  { cat "$arbeid/tolvik.ut" "$arbeid/tolvik.feil"; exit 1; }
read -r t_tolvik u_tolvik s_tolvik rss_kb <"$arbeid/tolvik.tid"
rader=$("$BUILD/dist/tolvik-batch" --folder "$mappe" status 2>/dev/null | head -1)

# The peer: the sqlite3 shell, same file, one text column per field, nothing converted.
kolonner=$(head -1 "$fil" | tr -d '\r' | awk -F, '{for (i = 1; i <= NF; i++) printf "%sk%d TEXT", (i > 1 ? ", " : ""), i}')
/usr/bin/time -f "%e %U %S" -o "$arbeid/sqlite.tid" \
  sqlite3 "$arbeid/plain.db" "CREATE TABLE t ($kolonner);" ".import --csv --skip 1 $fil t"
read -r t_sqlite u_sqlite s_sqlite <"$arbeid/sqlite.tid"

echo "fil:                 $fil ($LINJER linjer, $(du -m "$fil" | cut -f1) MB)"
echo "tolvik-batch import: $(sekunder "$t_tolvik") s (CPU $(cpu "$u_tolvik" "$s_tolvik") s), topp minne $((rss_kb / 1024)) MB ($rader)"
echo "sqlite3 .import:     $(sekunder "$t_sqlite") s (CPU $(cpu "$u_sqlite" "$s_sqlite") s)"
python3 -c 'import sys; a = [float(x) for x in sys.argv[1:]]; print(f"forhold tolvik/sqlite3: {a[0] / a[1]:.2f} (CPU-tid: {(a[2] + a[3]) / (a[4] + a[5]):.2f})")' \
  "$t_tolvik" "$t_sqlite" "$u_tolvik" "$s_tolvik" "$u_sqlite" "$s_sqlite"
