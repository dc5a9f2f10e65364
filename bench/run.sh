#!/usr/bin/env bash
# Runs every benchmark script bench/b_*.sh against the build folder given (default build).
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
BUILD="$(cd "${1:-build}" && pwd)"
export BUILD
shopt -s nullglob
skript=("$here"/b_*.sh)
if [ ${#skript[@]} -eq 0 ]; then echo "Ingen benchmarks ennå."; exit 0; fi
# Every benchmark runs; one that misses its target makes the whole run fail at the end.
bom=()
for s in "${skript[@]}"; do
  echo "== $(basename "$s" .sh)"
  bash "$s" || bom+=("$(basename "$s" .sh)")
done
if [ ${#bom[@]} -gt 0 ]; then echo "Utenfor målet: ${bom[*]}"; exit 1; fi
