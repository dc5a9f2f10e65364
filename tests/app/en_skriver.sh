#!/usr/bin/env bash
# One writer per program folder, with real processes: a second window or tolvik-batch beside a
# running window, and a second tolvik-batch import beside a running one. The second says that
# Tolvik already runs there and ends with status 1 (a second window brings the first to the front
# instead); the first goes on unharmed; a lock whose process is gone is taken over.
set -euo pipefail
DIST="$1" LAG_RADATA="$2"
arbeid=$(mktemp -d) forste=""
trap '[ -z "$forste" ] || kill -KILL "$forste" 2>/dev/null; rm -rf "$arbeid"' EXIT
m="$arbeid/program"
mkdir "$m"
cp "$DIST/tolvik" "$DIST/tolvik-batch" "$DIST/Template.mdb" "$m/"
cp "$DIST/Template.mdb" "$m/Data.mdb"
feil=0
sjekk() {  # sjekk BESKRIVELSE VENTET FAKTISK
  [ "$2" = "$3" ] || { echo "FEIL: $1: ventet $2, fikk $3"; cat "$arbeid/ut" 2>/dev/null; feil=1; }
}
vent_paa_laas() {  # until the first process holds the folder (or has ended)
  for _ in $(seq 1000); do [ -e "$m/Tolvik.lock" ] && return 0; kill -0 "$forste" 2>/dev/null || return 1; sleep 0.01; done
  return 1
}
batch() { s=0; "$m/tolvik-batch" "$@" >"$arbeid/ut" 2>&1 || s=$?; echo $s; }

# A window holds the folder for its whole run.
"$m/tolvik" & forste=$!
vent_paa_laas || { echo "FEIL: vinduet låste ikke mappen"; exit 1; }
sjekk "tolvik-batch ved siden av vinduet" 1 "$(batch status)"
grep -q "Tolvik kjører allerede fra mappen" "$arbeid/ut" || { echo "FEIL: ingen melding:"; cat "$arbeid/ut"; feil=1; }
s=0; timeout 20 "$m/tolvik" >"$arbeid/ut" 2>&1 || s=$?
sjekk "et andre vindu henter det første fram og avslutter" 0 "$s"
kill -0 "$forste" || { echo "FEIL: det første vinduet ble avsluttet"; feil=1; }
kill -KILL "$forste"; wait "$forste" 2>/dev/null || true; forste=""
sjekk "låsen til et drept vindu tas over" 0 "$(batch status)"

# tolvik-batch holds it for its command: a second import waits for nothing and removes nothing.
"$LAG_RADATA" --lines 200000 --channels 6 "$arbeid/stor.csv" >/dev/null
"$m/tolvik-batch" import "$arbeid/stor.csv" >"$arbeid/forste" 2>&1 & forste=$!
vent_paa_laas || { echo "FEIL: importen låste ikke mappen"; cat "$arbeid/forste"; exit 1; }
kill -STOP "$forste"
sjekk "en andre import mens den første går" 1 "$(batch import "$LAG_RADATA")"
grep -q "Tolvik kjører allerede fra mappen" "$arbeid/ut" || { echo "FEIL: ingen melding:"; cat "$arbeid/ut"; feil=1; }
kill -CONT "$forste"
s=0; wait "$forste" || s=$?; forste=""
sjekk "den første importen" 0 "$s"
"$m/tolvik-batch" status | grep -q "^Tolvik -  200 000 poster" || { echo "FEIL: radene mangler"; "$m/tolvik-batch" status; feil=1; }
exit $feil
