#!/usr/bin/env bash
# A full disk and then a read-only one, made as a small tmpfs in a private mount namespace: the
# import, the turning points, the settings and an export each end with a message, and nothing
# already on the disk is lost or left half-written. Exit 77 (skipped) where the namespace cannot
# be made.
set -euo pipefail
BATCH="$1" DIST="$2" CSV="$3"
if [ "${4:-}" != --inne ]; then
  unshare -rm true 2>/dev/null || { echo "ingen private monteringer her: hoppes over"; exit 77; }
  exec unshare -rm bash "$0" "$@" --inne
fi

disk=$(mktemp -d) utenfor=$(mktemp -d)
trap 'umount "$disk" 2>/dev/null; rm -rf "$disk" "$utenfor"' EXIT
mount -t tmpfs -o size=6m tmpfs "$disk"
cp "$DIST"/Template.mdb "$DIST"/Data.mdb "$DIST"/Mal_Sykluser.xlsx "$disk"/
kjor() { "$BATCH" --folder "$disk" "$@" >"$utenfor/ut" 2>&1 && return 0 || return $?; }
feil=0
forvent() {  # forvent STATUS TEKST: the last run's exit status and a text of its output
  local status="$1" tekst="$2"
  if [ "$siste" != "$status" ] || ! grep -qF -- "$tekst" "$utenfor/ut"; then
    echo "FEIL: ventet status $status og «$tekst», fikk $siste:"; cat "$utenfor/ut"; feil=1
  fi
}
uendret() {  # uendret FIL...: the files are as they were before the disk filled
  for f in "$@"; do cmp -s "$disk/$f" "$utenfor/$f" || { echo "FEIL: $f er endret"; feil=1; }; done
  if ls "$disk" | grep -qE '\.tmp[0-9]|\.import'; then echo "FEIL: halvskrevne filer igjen:"; ls "$disk"; feil=1; fi
}
fyll() {  # fyll KB: leaves about that many kilobytes free
  local ledig; ledig=$(df -k --output=avail "$disk" | tail -1)
  head -c $(( (ledig - $1) * 1024 )) /dev/zero >"$disk/fyll$1" 2>/dev/null || true
}

siste=0; kjor import "$CSV" || siste=$?; forvent 0 "Antall linjer importert"
siste=0; kjor --save-settings --set Text4=1 --set Text6=2 status || siste=$?; forvent 0 "Text4=1"
siste=0; kjor --adsorption find-cycles --start 50 --apply || siste=$?; forvent 0 "sykluser"
for f in Data.mdb Kolonner.txt Oppsett.txt SnuPunkter.txt Mal_Sykluser.xlsx; do cp "$disk/$f" "$utenfor/$f"; done

# A search on a column without a time index: on a full disk the index cannot be built, and the
# search answers as on a roomy disk.
cp "$disk/Data.mdb" "$utenfor/uten-indeks.mdb"
siste=0; kjor --column C --adsorption find-cycles --start 50 || siste=$?; forvent 0 "sykluser"
cp "$disk/SnuPunkter.txt" "$utenfor/snu-C"
for kb in 8 64 384; do
  cp "$utenfor/uten-indeks.mdb" "$disk/Data.mdb"; fyll $kb
  siste=0; kjor --column C --adsorption find-cycles --start 50 || siste=$?; forvent 0 "sykluser"
  cmp -s "$disk/SnuPunkter.txt" "$utenfor/snu-C" || { echo "FEIL: andre snupunkter med $kb KB ledig"; feil=1; }
  rm -f "$disk"/fyll*
done
cp "$utenfor/Data.mdb" "$utenfor/SnuPunkter.txt" "$disk"/

# The new database outgrows the disk while the template is copied, or half-way through the
# file: the old one stays.
fyll 8
siste=0; kjor import "$CSV" || siste=$?; forvent 1 "disken er full"
uendret Data.mdb Kolonner.txt
rm -f "$disk"/fyll*
fyll 300
siste=0; kjor import "$CSV" || siste=$?; forvent 1 "disken er full"
forvent 1 "Ingenting er importert, og databasen er uendret."
uendret Data.mdb Kolonner.txt

fyll 0
siste=0; kjor --save-settings --set Text4=2 status || siste=$?; forvent 1 "Innstillingene ble ikke lagret"
uendret Oppsett.txt
siste=0; kjor export-single --prefix Full || siste=$?; forvent 1 "No space left on device"
[ -z "$(ls -A "$disk/Data_Bearbeidet" 2>/dev/null)" ] || { echo "FEIL: halvskrevet arbeidsbok"; ls "$disk/Data_Bearbeidet"; feil=1; }
siste=0; kjor --adsorption auto-search --start 50 --apply || siste=$?; forvent 1 "Kan ikke skrive fila"
uendret Data.mdb Kolonner.txt Oppsett.txt SnuPunkter.txt Mal_Sykluser.xlsx
rm -f "$disk"/fyll*
siste=0; kjor status || siste=$?; forvent 0 "Text4=1"

# A program folder that cannot be written: every command that writes says so; nothing changes.
mount -o remount,ro "$disk"
siste=0; kjor import "$CSV" || siste=$?; forvent 1 "Ingenting er importert, og databasen er uendret."
siste=0; kjor --save-settings --set Text4=2 status || siste=$?; forvent 1 "Innstillingene ble ikke lagret"
siste=0; kjor export-single --prefix Les || siste=$?; forvent 1 "Det har oppstått en feil"
siste=0; kjor --adsorption find-cycles --start 50 --apply || siste=$?; forvent 1 "Det oppstod en feil i denne rutinen"
uendret Data.mdb Kolonner.txt Oppsett.txt SnuPunkter.txt Mal_Sykluser.xlsx
exit $feil
