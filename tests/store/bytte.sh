#!/usr/bin/env bash
# An import killed at each system call that puts its files in place (flushes, renames, removals):
# the next start finds Data.mdb and Kolonner.txt from the same raw-data file, the old pair or the
# new one, says which when there was anything to finish or remove, and leaves nothing behind.
# Data.mdb passes SQLite's integrity check. Exit 77 (skipped) without strace or where it cannot trace.
set -euo pipefail
BATCH="$1" DIST="$2" GAMMEL="$3" NY="$4"
strace -o /dev/null true 2>/dev/null || { echo "strace mangler eller kan ikke spore her: hoppes over"; exit 77; }
command -v sqlcipher >/dev/null || { echo "sqlcipher-skallet mangler: hoppes over"; exit 77; }
arbeid=$(mktemp -d)
trap 'rm -rf "$arbeid"' EXIT
kall=rename,renameat,renameat2,unlink,unlinkat,fsync,fdatasync
# The leak check of a sanitized build cannot run under strace.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"

ny_mappe() { rm -rf "$arbeid/m"; mkdir "$arbeid/m"; cp "$DIST/Template.mdb" "$arbeid/m/"; }
# The caption and the chooser: which file the folder's pair comes from.
tilstand() { "$BATCH" --folder "$arbeid/m" status | grep -E '^(Tolvik - |[* ] )'; }

ny_mappe; "$BATCH" --folder "$arbeid/m" import "$NY" >/dev/null; tilstand >"$arbeid/ny"
ny_mappe; "$BATCH" --folder "$arbeid/m" import "$GAMMEL" >/dev/null; tilstand >"$arbeid/gammel"
cp "$arbeid/m/Data.mdb" "$arbeid/m/Kolonner.txt" "$arbeid"/
strace -o "$arbeid/spor" -e trace=$kall "$BATCH" --folder "$arbeid/m" import "$NY" >/dev/null
# One run killed at call n (call k of its own kind, navn), in a folder of its own: what the next
# start finds, told in one line; status 1 and the reason when it is wrong.
prov() {
  local n=$1 k=$2 navn=$3 m="$arbeid/m$1" status=0 fra usann
  mkdir "$m" && cp "$DIST/Template.mdb" "$arbeid/Data.mdb" "$arbeid/Kolonner.txt" "$m/"
  { strace -o /dev/null -e trace=$kall -e inject=$navn:signal=KILL:when=$k \
    "$BATCH" --folder "$m" import "$NY" >/dev/null 2>&1; } 2>/dev/null || status=$?
  [ "$status" -eq 137 ] || { echo "kall $n: ventet drept (137), fikk $status"; return 1; }
  "$BATCH" --folder "$m" status >"$m.ut" 2>&1 || { echo "kall $n: status feilet:"; cat "$m.ut"; return 1; }
  grep -E '^(Tolvik - |[* ] )' "$m.ut" >"$m.naa" || true
  # A notice, if any, tells the outcome as it is.
  if cmp -s "$m.naa" "$arbeid/ny"; then fra=ny usann="er som før"
  elif cmp -s "$m.naa" "$arbeid/gammel"; then fra=gammel usann="fullført nå"
  else echo "kall $n: Data.mdb og Kolonner.txt er blandet:"; cat "$m.ut"; return 1
  fi
  ! grep -q "$usann" "$m.ut" || { echo "kall $n: $fra, men meldingen sier «$usann»:"; cat "$m.ut"; return 1; }
  rester=$(ls -A "$m" | grep -E '\.import|\.bytt|\.tmp[0-9]|-journal|\.lock' || true)
  [ -z "$rester" ] || { echo "kall $n: igjen etter neste start: $rester"; return 1; }
  sjekk=$(printf "PRAGMA key = 'tesko4NR'; PRAGMA cipher_page_size = 4096; PRAGMA integrity_check;\n" |
    sqlcipher "$m/Data.mdb" 2>&1)
  [ "$sjekk" = ok ] || { echo "kall $n: integrity_check: $sjekk"; return 1; }
  echo "kall $n ($navn nr. $k): $fra"
}

# strace counts the calls of each system call apart: call n of the run is call k of its own kind.
mapfile -t navn < <(grep -oE '^[a-z0-9]+' "$arbeid/spor")
declare -A antall
# The swap begins with the flush of the finished new database. The runs are independent, three
# at a time (most of their time is strace's stopping at each system call).
forste=$(grep -n '^fsync(' "$arbeid/spor" | head -1 | cut -d: -f1)
for ((n = 1; n <= ${#navn[@]}; n++)); do
  k=$(( ${antall[${navn[n-1]}]:-0} + 1 )); antall[${navn[n-1]}]=$k
  [ "$n" -ge "$forste" ] || continue
  while [ "$(jobs -rp | wc -l)" -ge 3 ]; do wait -n || true; done
  { prov "$n" "$k" "${navn[n-1]}" >"$arbeid/rapport$n" 2>&1 || touch "$arbeid/feil$n"; } &
done
wait
feil=0
for ((n = forste; n <= ${#navn[@]}; n++)); do
  cat "$arbeid/rapport$n"
  [ ! -e "$arbeid/feil$n" ] || feil=1
done
exit $feil
