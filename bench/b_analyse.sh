#!/usr/bin/env bash
# Cycle finding and the graph's data loading on a 1 000 000-line file of about 30 cycles,
# against one full read of the column in the same run.
set -euo pipefail
mappe="$BUILD/bench-data/analyse"
mkdir -p "$mappe"
if [ -x "$BUILD/tools/lag_radata" ]; then
  # The real road: a generated raw-data file imported by tolvik-batch.
  cp -f "$BUILD/dist/Template.mdb" "$mappe/Template.mdb"
  cp -f "$BUILD/dist/Template.mdb" "$mappe/Data.mdb"
  "$BUILD/tools/lag_radata" --lines 1000000 --channels 6 --seed 7 "$mappe/radata.csv"
  "$BUILD/dist/tolvik-batch" --folder "$mappe" import "$mappe/radata.csv" >/dev/null
else
  "$BUILD/bench/bench_analyse" fyll "$mappe" 1000000
fi
"$BUILD/bench/bench_analyse" mal "$mappe" 2>/dev/null
