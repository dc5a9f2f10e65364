#!/usr/bin/env bash
# Filling the single-cycle template (30 workbooks of 4000 rows x 10 cells) with our
# workbook layer, against libxlsxwriter's constant-memory mode writing the same cells.
set -euo pipefail
ut="$(mktemp -d)"
trap 'rm -rf "$ut"' EXIT
sykluser=30
rader=4000
vi=$("$BUILD/bench/bench_xlsx_skriv" "$BUILD/dist/Mal_Sykluser.xlsx" "$ut" $sykluser $rader)
peer=$("$BUILD/bench/bench_xlsxwriter_peer" "$ut" $sykluser $rader)
echo "arbeidsbok-lag (mal, $sykluser x $rader rader): ${vi} s"
echo "libxlsxwriter constant_memory:            ${peer} s"
awk -v a="$vi" -v b="$peer" 'BEGIN { printf "forhold: %.2f\n", a / b }'
