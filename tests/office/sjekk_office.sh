#!/usr/bin/env bash
# `make check-office`: every kind of workbook the program writes, read by independent spreadsheet
# readers: LibreOffice (recalculates all, prints to PDF), openpyxl, and ExcelJS + HyperFormula; and
# every part of every one of them against the Office Open XML schemas (../shared/ooxml-schemas
# beside the source folder; jing and xmllint come with make deps), with what each exported one keeps
# of its template.
# Installs what it needs (Debian packages, npm packages from package-lock.json). Not part of CI.
#   sjekk_office.sh BUILD
set -euo pipefail
HER=$(cd "$(dirname "$0")" && pwd)
BUILD=$(realpath "$1")
UT=$BUILD/office
pakker=(libreoffice-calc-nogui python3-uno python3-openpyxl poppler-utils)
command -v npm >/dev/null || pakker+=(nodejs npm)  # a node installed otherwise is kept
mangler=()
for p in "${pakker[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || mangler+=("$p")
done
if [ ${#mangler[@]} -gt 0 ]; then
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${mangler[@]}"
fi
(cd "$HER" && npm ci --no-audit --no-fund --silent)

start=$(date +%s)
bash "$HER/lag_arbeidsboker.sh" "$BUILD" "$UT"
filer=("$UT"/*/Data_Bearbeidet/*.xls* "$UT"/*/maler/*.xls* "$UT"/titler/*.xls?)
status=0
/usr/bin/python3 "$HER/sjekk_skjema.py" --struktur "$(realpath -m "$HER/../../../shared/ooxml-schemas")" \
  "$UT"/*/Data_Bearbeidet/*.xls* "$UT"/*/maler/*.xls* "$UT"/*/Mal_*.xls? || status=1
/usr/bin/python3 "$HER/sjekk_libreoffice.py" "$UT/pdf" "${filer[@]}" || status=1
node "$HER/sjekk_hyperformula.mjs" "${filer[@]}" || status=1
for pdf in "$UT"/pdf/*.pdf; do
  pdftoppm -png -r 40 -l 1 "$pdf" "${pdf%.pdf}" || status=1
done
echo "check-office: $(( $(date +%s) - start )) s, PDF-er og bilder i $UT/pdf"
[ $status -eq 0 ] && echo "check-office: alle lesere enige" || echo "check-office: AVVIK (se over)"
exit $status
