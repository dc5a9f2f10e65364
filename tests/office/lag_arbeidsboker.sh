#!/usr/bin/env bash
# Writes every kind of workbook the program makes into UT (a fresh folder): the five templates as
# built, after the title commands, and re-saved by LibreOffice; and from each set of templates the
# single-cycle, combined (both modes, windows of 3 600 rows and more) and integration workbooks
# with the area summary. Each set lives in UT/<set>/ as a program folder of its own.
#   lag_arbeidsboker.sh BUILD UT [SET...]     (the sets original, titler, libreoffice; default all three)
# With LO_MALER=DIR the set libreoffice takes the re-saved templates found in DIR (the others as
# built) instead of running LibreOffice. Sets named in BARE_ENKEL (blank-separated) get the
# single-cycle workbooks only.
set -euo pipefail
BUILD=$(realpath "$1")
UT=$(realpath -m "$2")
SETT=("${@:3}")
[ ${#SETT[@]} -gt 0 ] || SETT=(original titler libreoffice)
rm -rf "$UT" && mkdir -p "$UT"
MALER=(Mal_Sykluser.xlsx Mal_Alle_Adsorpsjon.xlsm Mal_Alle_Desorpsjon.xlsm Mal_Integrering_desorpsjon_Enkel.xlsx
       Mal_desorpsjon_areal_alle.xlsx)

# Raw data: 2 s sampling for the cycle exports, 1 s for the integration (rows past the template's 2 999).
"$BUILD/tools/lag_radata" --hours 12 --interval 2 --seed 7 "$UT/radata_2s.csv"
"$BUILD/tools/lag_radata" --hours 12 --interval 1 --seed 8 "$UT/radata_1s.csv"

programmappe() {  # a copy of the program folder with the templates of set $1
  mkdir -p "$UT/$1"
  cp "$BUILD/dist/tolvik-batch" "$BUILD/dist/Template.mdb" "$UT/$1/"
  cp "$BUILD/dist/Template.mdb" "$UT/$1/Data.mdb"
  for m in "${MALER[@]}"; do cp "$BUILD/dist/$m" "$UT/$1/"; done
}
batch() { local mappe=$1; shift; "$UT/$mappe/tolvik-batch" --folder "$UT/$mappe" "$@" >/dev/null; }

libreoffice() {  # the templates of set libreoffice re-saved by LibreOffice
  if [ -n "${LO_MALER:-}" ]; then cp "$LO_MALER"/Mal_* "$UT/libreoffice/"; return; fi
  ( cd "$UT/libreoffice"
    for m in "${MALER[@]}"; do
      case $m in *.xlsm) filter='xlsm:Calc MS Excel 2007 VBA XML' ;; *) filter='xlsx:Calc MS Excel 2007 XML' ;; esac
      mkdir -p lo && soffice --headless --convert-to "$filter" --outdir lo "$m" >/dev/null 2>&1
      mv "lo/$m" "$m"
    done
    rmdir lo )
}

for sett in "${SETT[@]}"; do
  programmappe "$sett"
  case $sett in
    titler)
      batch titler edit-title --single --title "Syklus (tittel satt)"
      batch titler --adsorption edit-title --combined --title "Adsorpsjon (tittel satt)"
      batch titler --desorption edit-title --combined --title "Desorpsjon (tittel satt)" ;;
    libreoffice) libreoffice ;;
  esac
done

# The workbooks of one set; the sets are independent folders and are written side by side.
arbeidsboker() {
  local sett=$1 innst=(--set Text4=1 --set Text6=2)
  mkdir -p "$UT/$sett/maler" && for m in "${MALER[@]}"; do cp "$UT/$sett/$m" "$UT/$sett/maler/"; done
  batch "$sett" import "$UT/radata_2s.csv"
  batch "$sett" --adsorption find-cycles --start 50 --apply
  batch "$sett" "${innst[@]}" --adsorption export-single --prefix Enkel
  [[ " ${BARE_ENKEL:-} " != *" $sett "* ]] || return 0
  batch "$sett" "${innst[@]}" --adsorption export-combined --prefix Ads
  mv "$UT/$sett/Data_Bearbeidet/Ads_Samlefil.xlsm" "$UT/$sett/Data_Bearbeidet/Ads_Samlefil_ads.xlsm"
  batch "$sett" --desorption find-cycles --start 50 --apply
  batch "$sett" "${innst[@]}" --desorption export-combined --prefix Des --period 140
  batch "$sett" import "$UT/radata_1s.csv"
  batch "$sett" --desorption find-cycles --start 50 --apply
  batch "$sett" "${innst[@]}" integrate --prefix Int --before 40 --after 25
}
jobber=()
for sett in "${SETT[@]}"; do (arbeidsboker "$sett") & jobber+=($!); done
feil=0
for jobb in "${jobber[@]}"; do wait "$jobb" || feil=1; done
[ $feil -eq 0 ] || { echo "lag_arbeidsboker: et sett ble ikke ferdig (se over)"; exit 1; }
