#!/usr/bin/env bash
# "9.  Lag enkeltgraf" on 30 cycles of 4 000 rows, against two peers writing the same cells
# in the same run: libxlsxwriter (constant memory, from scratch: bench_xlsxwriter_peer, the
# workbook layer's own peer, which writes O1 and A, C..K of 4 000 rows alike) and openpyxl
# (filling the template with the very rows of the export). Wall time decides; the processor
# time (user + system) is shown beside it, as it varies less on a busy machine.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp "$BUILD/dist/Template.mdb" "$BUILD/dist/Mal_Sykluser.xlsx" "$work/"
"$BUILD/bench/bench_enkeltgraf_data" "$work" 30 4000
mkdir -p "$work/c" "$work/py"

TIMEFORMAT="%R %U %S"
maal() { { time "$@" >/dev/null 2>&1; } 2>&1; }
tolvik=$(maal "$BUILD/dist/tolvik-batch" --folder "$work" export-single --prefix Bench)
xw=$(maal "$BUILD/bench/bench_xlsxwriter_peer" "$work/c" 30 4000)
py=$(maal /usr/bin/python3 "$here/enkeltgraf_openpyxl.py" "$work/Mal_Sykluser.xlsx" "$work/rader.csv" "$work/py")

antall=$(ls "$work/Data_Bearbeidet" | wc -l)
[ "$antall" -eq 30 ] || { echo "FEIL: $antall arbeidsbøker, ventet 30"; exit 1; }
echo "$tolvik $xw $py" | awk '{
  t = $1; x = $4; p = $7; tc = $2 + $3; xc = $5 + $6; pc = $8 + $9
  printf "tolvik export-single   %6.2f s (cpu %5.2f s)  30 x 4000 rader\n", t, tc
  printf "libxlsxwriter (konst)  %6.2f s (cpu %5.2f s)  forhold %.2f (cpu %.2f), krav <= 1.2\n", x, xc, t / x, tc / xc
  printf "openpyxl (mal)         %6.2f s (cpu %5.2f s)  forhold %.2f (cpu %.2f), krav <= 0.2\n", p, pc, t / p, tc / pc
  if (t > 1.2 * x || t > 0.2 * p) { print "FOR TREG"; exit 1 }
}'
