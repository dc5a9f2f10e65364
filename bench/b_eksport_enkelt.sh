#!/usr/bin/env bash
# "9.  Lag enkeltgraf" on 30 cycles of 4 000 rows, against two peers writing the same cells
# in the same run: libxlsxwriter (constant memory, from scratch: bench_xlsxwriter_peer, the
# workbook layer's own peer, which writes O1 and A, C..K of 4 000 rows alike) and openpyxl
# (filling the template with the very rows of the export).
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp "$BUILD/dist/Template.mdb" "$BUILD/dist/Mal_Sykluser.xlsx" "$work/"
"$BUILD/bench/bench_enkeltgraf_data" "$work" 30 4000
mkdir -p "$work/c" "$work/py"

naa() { date +%s.%N; }
t0=$(naa)
"$BUILD/dist/tolvik-batch" --folder "$work" export-single --prefix Bench >/dev/null
t1=$(naa)
"$BUILD/bench/bench_xlsxwriter_peer" "$work/c" 30 4000 >/dev/null
t2=$(naa)
/usr/bin/python3 "$here/enkeltgraf_openpyxl.py" "$work/Mal_Sykluser.xlsx" "$work/rader.csv" "$work/py"
t3=$(naa)

antall=$(ls "$work/Data_Bearbeidet" | wc -l)
[ "$antall" -eq 30 ] || { echo "FEIL: $antall arbeidsbøker, ventet 30"; exit 1; }
awk -v a="$t0" -v b="$t1" -v c="$t2" -v d="$t3" 'BEGIN {
  tolvik = b - a; xw = c - b; py = d - c
  printf "tolvik export-single  %6.2f s  (30 x 4000 rader)\n", tolvik
  printf "libxlsxwriter (konst) %6.2f s  forhold %.2f (krav <= 1.2)\n", xw, tolvik / xw
  printf "openpyxl (mal)        %6.2f s  forhold %.2f (krav <= 0.2)\n", py, tolvik / py
  if (tolvik > 1.2 * xw || tolvik > 0.2 * py) { print "FOR TREG"; exit 1 }
}'
