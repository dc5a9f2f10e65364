# Peer of the single-cycle export bench: fills the cycle template with openpyxl, one
# workbook per cycle, with the same cells (O1, then A and C..K per row).
#   enkeltgraf_openpyxl.py Mal_Sykluser.xlsx rader.csv OUTFOLDER
import sys

import openpyxl

mal, rader, ut = sys.argv[1:4]
sykluser = {}
with open(rader, encoding="latin-1") as f:
    for linje in f:
        felt = linje.rstrip("\n").split(";")
        sykluser.setdefault(int(felt[0]), []).append(felt[1:])
for syklus, rows in sykluser.items():
    bok = openpyxl.load_workbook(mal)
    ark = bok.worksheets[0]
    ark.cell(1, 15, syklus * 150.0)
    for i, r in enumerate(rows):
        ark.cell(i + 2, 1, r[0])
        for c in range(9):
            ark.cell(i + 2, 3 + c, float(r[1 + c]))
    bok.save(f"{ut}/Peer_{syklus}.xlsx")
