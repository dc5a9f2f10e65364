#!/usr/bin/env bash
# make test: one workbook of each kind the program writes (single-cycle, combined in both modes,
# integration cycle and area summary, all from the title-edited templates; a single-cycle one from a
# template that LibreOffice re-saved) and the title-edited templates, every part checked against the
# Office Open XML schemas; then a worksheet with its elements out of order must be reported.
# Exit 77 (skipped) when the schema folder is missing.
#   skjema_test.sh BUILD SKJEMAMAPPE
set -euo pipefail
HER=$(cd "$(dirname "$0")" && pwd)
SKJEMA=$2
if [ ! -d "$SKJEMA" ]; then
  echo "skjema: mappen $SKJEMA finnes ikke; testen hoppes over"
  exit 77
fi
UT=$(mktemp -d)
trap 'rm -rf "$UT"' EXIT
LO_MALER=$HER/libreoffice-maler BARE_ENKEL=libreoffice bash "$HER/lag_arbeidsboker.sh" "$1" "$UT/bøker" titler libreoffice
T=$UT/bøker/titler

# Among them a package of the written data sheet alone, its cell data moved before the sheet's first
# element: the check must find that fault, and no other.
/usr/bin/python3 - "$T/Data_Bearbeidet/Enkel_1.xlsx" "$UT/uordnet.xlsx" <<'PY'
import re, sys, zipfile
del_ = 'xl/worksheets/sheet1.xml'
with zipfile.ZipFile(sys.argv[1]) as inn, zipfile.ZipFile(sys.argv[2], 'w', zipfile.ZIP_DEFLATED) as ut:
    xml = inn.read(del_).decode()
    celler = re.search(r'<sheetData>.*</sheetData>|<sheetData/>', xml, re.S).group(0)
    ut.writestr(del_, re.sub(r'<worksheet[^>]*>', lambda m: m.group(0) + celler, xml.replace(celler, ''), count=1))
PY
/usr/bin/python3 "$HER/sjekk_skjema.py" "$SKJEMA" \
  "$T"/Data_Bearbeidet/{Enkel_1.xlsx,Ads_Samlefil_ads.xlsm,Des_Samlefil.xlsm,Int_1.xlsx,Int_Samlefil_2.xlsx} \
  "$T"/maler/{Mal_Sykluser.xlsx,Mal_Alle_Adsorpsjon.xlsm,Mal_Alle_Desorpsjon.xlsm} \
  "$UT/bøker/libreoffice/Data_Bearbeidet/Enkel_1.xlsx" "$UT/uordnet.xlsx" >"$UT/svar.txt" || true
cat "$UT/svar.txt"
if grep -v -e '^skjema: ' -e '^uordnet.xlsx:' "$UT/svar.txt"; then
  echo "skjema: arbeidsbøkene over følger ikke skjemaene"
  exit 1
fi
grep -q '^uordnet.xlsx:xl/worksheets/sheet1.xml:[0-9]*:[0-9]*: ' "$UT/svar.txt" ||
  { echo "skjema: elementene i uordnet.xlsx står i feil rekkefølge, men kontrollen fant ingen feil"; exit 1; }
echo "skjema: uordnet.xlsx: $(grep -c '^uordnet.xlsx:' "$UT/svar.txt") feil funnet, som ventet"
