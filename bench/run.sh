#!/usr/bin/env bash
# Runs every benchmark script bench/b_*.sh against the build folder given (default build).
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
BUILD="$(cd "${1:-build}" && pwd)"
export BUILD
shopt -s nullglob
skript=("$here"/b_*.sh)
if [ ${#skript[@]} -eq 0 ]; then echo "Ingen benchmarks ennå."; exit 0; fi
for s in "${skript[@]}"; do
  echo "== $(basename "$s" .sh)"
  bash "$s"
done
