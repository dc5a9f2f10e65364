#!/usr/bin/env bash
# The Debian package of this build, unpacked into a temporary root (dpkg -x) and run from there:
# its files and dependencies, tolvik-batch --version, status, an import and a title edit that
# land in the user's own folder while the installed tree stays as it was, the window starting,
# and the same executable run as a portable folder. Exit 77 (skipped) without dpkg.
set -euo pipefail
CPACK="$1" BUILD="$2" CSV="$3"
command -v dpkg-deb >/dev/null && command -v dpkg-shlibdeps >/dev/null || { echo "ingen dpkg her: hoppes over"; exit 77; }

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
feil=0
sjekk() {  # sjekk BESKRIVELSE KOMMANDO...: the command must succeed
  local hva="$1"; shift
  "$@" || { echo "FEIL: $hva"; feil=1; }
}

(cd "$BUILD" && "$CPACK" -G DEB -B "$tmp/pakke" >"$tmp/cpack.log" 2>&1) || { cat "$tmp/cpack.log"; exit 1; }
deb=$(ls "$tmp"/pakke/tolvik_*.deb)
dpkg-deb -c "$deb" | awk '{print $6}' >"$tmp/innhold"
for f in ./usr/bin/tolvik ./usr/bin/tolvik-batch ./usr/share/tolvik/Template.mdb ./usr/share/tolvik/Mal_Sykluser.xlsx \
         ./usr/share/tolvik/Mal_Alle_Adsorpsjon.xlsm ./usr/share/tolvik/Mal_Alle_Desorpsjon.xlsm \
         ./usr/share/tolvik/Mal_Integrering_desorpsjon_Enkel.xlsx ./usr/share/tolvik/Mal_desorpsjon_areal_alle.xlsx \
         ./usr/share/applications/tolvik.desktop ./usr/share/icons/hicolor/scalable/apps/tolvik.svg; do
  sjekk "$f mangler i pakken" grep -qxF "$f" "$tmp/innhold"
done
sjekk "Data.mdb hører ikke hjemme i pakken" bash -c "! grep -q 'Data.mdb' '$tmp/innhold'"
avhengigheter=$(dpkg-deb -f "$deb" Depends)
for p in libqt6charts6 libqt6widgets6 libsqlcipher0 libzip4 libpugixml1v5; do
  sjekk "$p mangler i Depends: $avhengigheter" grep -q "$p" <<<"$avhengigheter"
done

rot="$tmp/rot"
dpkg -x "$deb" "$rot"
touch "$tmp/for"
export HOME="$tmp/hjem" XDG_DATA_HOME="$tmp/hjem/data"
bruker="$XDG_DATA_HOME/Tolvik"
batch="$rot/usr/bin/tolvik-batch"

sjekk "--version" grep -qx "tolvik-batch 1.6 (06.01.2013)" <("$batch" --version)
"$batch" status >"$tmp/ut" 2>&1 || { echo "FEIL: status"; cat "$tmp/ut"; feil=1; }
sjekk "status på første start: $(cat "$tmp/ut")" grep -q "^Tolvik -    poster i databasen" "$tmp/ut"
for f in Data.mdb Template.mdb Mal_Sykluser.xlsx Mal_desorpsjon_areal_alle.xlsx; do
  sjekk "$f er ikke laget i brukermappa" test -f "$bruker/$f"
done
"$batch" import "$CSV" >"$tmp/ut" 2>&1 || { echo "FEIL: import"; cat "$tmp/ut"; feil=1; }
sjekk "import: $(cat "$tmp/ut")" grep -q "Antall linjer importert:  9 601" "$tmp/ut"
sjekk "antallet etter import" grep -q "^Tolvik -  9 600 poster" <("$batch" status)
"$batch" edit-title --single --title "Prøve 7" >"$tmp/ut" 2>&1 || { echo "FEIL: edit-title"; cat "$tmp/ut"; feil=1; }
sjekk "malen i brukermappa er ikke endret" bash -c "! cmp -s '$bruker/Mal_Sykluser.xlsx' '$rot/usr/share/tolvik/Mal_Sykluser.xlsx'"
sjekk "noe er skrevet i den installerte mappa: $(find "$rot" -newer "$tmp/for")" test -z "$(find "$rot" -newer "$tmp/for")"

# The window starts from the installed tree: once started it holds the user's folder, until stopped.
"$rot/usr/bin/tolvik" >"$tmp/ut" 2>&1 & vindu=$!
for _ in $(seq 2000); do { [ -e "$bruker/Tolvik.lock" ] || ! kill -0 "$vindu" 2>/dev/null; } && break; sleep 0.01; done
sjekk "tolvik startet ikke: $(cat "$tmp/ut")" test -e "$bruker/Tolvik.lock"
kill "$vindu" 2>/dev/null; wait "$vindu" 2>/dev/null || true

# The same executable in a folder with Template.mdb of its own keeps its files there.
portabel="$tmp/portabel"
mkdir "$portabel"
cp "$batch" "$rot"/usr/share/tolvik/* "$portabel"/
( cd "$bruker" && ls -l --time-style=full-iso ) >"$tmp/bruker_for"
"$portabel/tolvik-batch" import "$CSV" >"$tmp/ut" 2>&1 || { echo "FEIL: portabel import"; cat "$tmp/ut"; feil=1; }
sjekk "portabel import: $(cat "$tmp/ut")" grep -q "Antall linjer importert:  9 601" "$tmp/ut"
sjekk "portabel: Kolonner.txt mangler" test -f "$portabel/Kolonner.txt"
sjekk "portabel kjøring endret brukermappa" cmp -s "$tmp/bruker_for" <(cd "$bruker" && ls -l --time-style=full-iso)

# A write-protected copy of a portable folder (a read-only mount in a private namespace, where
# one can be made): the user's folder is set up from the copy's own templates.
if unshare -rm true 2>/dev/null; then
  rm "$portabel"/Data.mdb "$portabel"/Kolonner.txt
  XDG_DATA_HOME="$tmp/hjem2" unshare -rm bash -c 'mount --bind "$1" "$1" && mount -o remount,ro,bind "$1" "$1" &&
    "$1/tolvik-batch" status' _ "$portabel" >"$tmp/ut" 2>&1 || { echo "FEIL: skrivebeskyttet"; cat "$tmp/ut"; feil=1; }
  sjekk "skrivebeskyttet: $(cat "$tmp/ut")" grep -q "^Tolvik -    poster" "$tmp/ut"
  sjekk "skrivebeskyttet: malene er ikke kopiert" cmp -s "$portabel/Mal_Sykluser.xlsx" "$tmp/hjem2/Tolvik/Mal_Sykluser.xlsx"
fi
exit $feil
