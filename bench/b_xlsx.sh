#!/usr/bin/env bash
# Filling the single-cycle template (30 workbooks of 4000 rows x 10 cells) with our
# workbook layer, against libxlsxwriter's constant-memory mode writing the same cells.
set -euo pipefail
ut="$(mktemp -d)"
trap 'rm -rf "$ut"' EXIT
sykluser=30
rader=4000
read -r vi_vegg vi_cpu < <("$BUILD/bench/bench_xlsx_skriv" "$BUILD/dist/Mal_Sykluser.xlsx" "$ut" $sykluser $rader)
read -r peer_vegg peer_cpu < <("$BUILD/bench/bench_xlsxwriter_peer" "$ut" $sykluser $rader)
echo "arbeidsbok-lag (mal, $sykluser x $rader rader): ${vi_vegg} s (cpu ${vi_cpu} s)"
echo "libxlsxwriter constant_memory:            ${peer_vegg} s (cpu ${peer_cpu} s)"
awk -v a="$vi_vegg" -v b="$peer_vegg" -v c="$vi_cpu" -v d="$peer_cpu" \
  'BEGIN { printf "forhold: %.2f (cpu %.2f)\n", a / b, c / d }'
