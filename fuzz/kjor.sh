#!/usr/bin/env bash
# Runs the fuzz targets one after another, each for a bounded time, seeded from the example
# files and the templates. Inputs that crash, hang or run out of memory are kept beside the
# tests that run them again (tests/<layer>/fuzz-funn/<target>/).
# Usage: fuzz/kjor.sh BUILD-FOLDER SECONDS-EACH [TARGET...]
set -euo pipefail
rot=$(cd "$(dirname "$0")/.." && pwd)
bygg=$(cd "$1" && pwd)
sek=$2
shift 2
maal=("$@")
[ ${#maal[@]} -gt 0 ] || maal=(radata jetdialekt formel arbeidsbok bokdel)
dist=$bygg/dist

funnmappe() {
  case $1 in
  radata) echo "$rot/tests/store/fuzz-funn/$1" ;;
  jetdialekt) echo "$rot/tests/platform/db/fuzz-funn/$1" ;;
  *) echo "$rot/tests/platform/xlsx/fuzz-funn/$1" ;;
  esac
}

# The seeds of a target, written into the folder $2.
fro() {
  local mappe=$2 n=0
  mkdir -p "$mappe"
  case $1 in
  radata)
    for f in "$rot"/examples/*.csv "$rot"/tests/store/*.csv; do head -c 4000 "$f" >"$mappe/$(basename "$f")"; done ;;
  jetdialekt)
    while IFS= read -r s; do printf '%s' "$s" >"$mappe/s$((n++))"; done <<'SETNINGER'
Select DatoTid, C as Verdi from Datalinjer where C < 1e-11 and format(DatoTid, 'YYYYMMDDHHNNSS') > '20120101000000' order by ID
Select min(C) as Minimum from DataLinjer where format(DatoTid, 'YYYYMMDDHHNNSS') >= '20121123235930' and format(DatoTid, 'YYYYMMDDHHNNSS') < '20121124010000'
Select * from Datalinjer where format(DatoTid, 'YYYYMMDDHHNNSS') > '20121123235930' and format(DatoTid, 'YYYYMMDDHHNNSS') <= '20121124020000' order by ID
Insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D) values ('23/11/2012 23:59:30', '2012.11.23 ,23:59:30', 1.5E-10, 2)
Select count(*) as Antall from dataLinjer
SETNINGER
    ;;
  formel)
    for m in "$dist"/Mal_*; do unzip -p "$m" 'xl/worksheets/*.xml'; done | grep -o '<f[^>]*>[^<]*</f>' |
      sed 's/<[^>]*>//g' | sort -u | while IFS= read -r f; do printf '%s' "$f" >"$mappe/f$((n++))"; done
    printf '%s' '= sum(G3:G57)' >"$mappe/program1"
    printf '%s' '=IF(ABS(B2-$B$1)<=0.5,MID(H2,1,10)&"x",-(-1)^2%)' >"$mappe/program2" ;;
  arbeidsbok)
    cp "$dist"/Mal_* "$mappe/" ;;
  bokdel)
    /usr/bin/python3 - "$dist/Mal_desorpsjon_areal_alle.xlsx" "$mappe" <<'DELER'
import sys, zipfile
z = zipfile.ZipFile(sys.argv[1])
for n, del_ in enumerate(z.namelist()):
    open(f"{sys.argv[2]}/del{n}", "wb").write(del_.encode() + b"\n" + z.read(del_))
DELER
    ;;
  esac
}

for m in "${maal[@]}"; do
  funn=$(funnmappe "$m")
  korpus=$bygg/korpus/$m
  mkdir -p "$funn" "$korpus"
  rm -rf "$bygg/frø/$m"
  fro "$m" "$bygg/frø/$m"
  logg=$bygg/fuzz-$m.log
  echo "fuzz_$m: $sek s (logg: $logg)"
  status=0
  (cd "$bygg" && exec "./fuzz/fuzz_$m" -max_total_time="$sek" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$funn/" "$korpus" "$bygg/frø/$m") >"$logg" 2>&1 &
  pid=$!
  wait $pid || status=$?
  rm -f /dev/shm/tolvik-fuzz-$pid-*  # the workbook files the target wrote (fuzz/Fil.h)
  grep -E '^#[0-9]+[[:space:]]+DONE' "$logg" | tail -1 || true
  [ $status -eq 0 ] || echo "fuzz_$m fant en feil (status $status): se $logg og $funn"
done
