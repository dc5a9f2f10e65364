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
# strace counts the calls of each system call apart: call n of the run is call k of its own kind.
mapfile -t navn < <(grep -oE '^[a-z0-9]+' "$arbeid/spor")
declare -A antall
feil=0
# The swap begins with the flush of the finished new database.
forste=$(grep -n '^fsync(' "$arbeid/spor" | head -1 | cut -d: -f1)
for ((n = 1; n <= ${#navn[@]}; n++)); do
  k=$(( ${antall[${navn[n-1]}]:-0} + 1 )); antall[${navn[n-1]}]=$k
  [ "$n" -ge "$forste" ] || continue
  cp "$arbeid/Data.mdb" "$arbeid/Kolonner.txt" "$arbeid/m/"
  status=0
  { strace -o /dev/null -e trace=$kall -e inject=${navn[n-1]}:signal=KILL:when=$k \
    "$BATCH" --folder "$arbeid/m" import "$NY" >/dev/null 2>&1; } 2>/dev/null || status=$?
  [ "$status" -eq 137 ] || { echo "kall $n: ventet drept (137), fikk $status"; feil=1; continue; }
  "$BATCH" --folder "$arbeid/m" status >"$arbeid/ut" 2>&1 || { echo "kall $n: status feilet:"; cat "$arbeid/ut"; feil=1; }
  grep -E '^(Tolvik - |[* ] )' "$arbeid/ut" >"$arbeid/naa" || true
  # A notice, if any, tells the outcome as it is.
  if cmp -s "$arbeid/naa" "$arbeid/ny"; then fra=ny usann="er som før"
  elif cmp -s "$arbeid/naa" "$arbeid/gammel"; then fra=gammel usann="fullført nå"
  else echo "kall $n: Data.mdb og Kolonner.txt er blandet:"; cat "$arbeid/ut"; feil=1; continue
  fi
  ! grep -q "$usann" "$arbeid/ut" || { echo "kall $n: $fra, men meldingen sier «$usann»:"; cat "$arbeid/ut"; feil=1; }
  rester=$(ls -A "$arbeid/m" | grep -E '\.import|\.bytt|\.tmp[0-9]|-journal|\.lock' || true)
  [ -z "$rester" ] || { echo "kall $n: igjen etter neste start: $rester"; feil=1; }
  sjekk=$(printf "PRAGMA key = 'tesko4NR'; PRAGMA cipher_page_size = 4096; PRAGMA integrity_check;\n" |
    sqlcipher "$arbeid/m/Data.mdb" 2>&1)
  [ "$sjekk" = ok ] || { echo "kall $n: integrity_check: $sjekk"; feil=1; }
  echo "kall $n (${navn[n-1]} nr. $k): $fra"
done
exit $feil
