# Reads a workbook with openpyxl and prints what the export tests check, as JSON:
# the sheet names in order, the cells of sheet 1 that hold something, and per sheet
# the charts with their title text and the minimum of the horizontal axis.
import json
import sys

import openpyxl


def tittel(diagram):
    t = diagram.title
    if t is None or t.tx is None or t.tx.rich is None:
        return None
    # openpyxl reads an empty run <a:t></a:t> as the text "None".
    return "".join(r.t for p in t.tx.rich.p for r in (p.r or []) if r.t not in (None, "None"))


bok = openpyxl.load_workbook(sys.argv[1])
ut = {"ark": bok.sheetnames, "celler": {}, "diagrammer": []}
for rad in bok.worksheets[0].iter_rows():
    for celle in rad:
        if celle.value is not None:
            ut["celler"][celle.coordinate] = celle.value
for ark in bok.worksheets:
    ut["diagrammer"].append([{"tittel": tittel(d), "xmin": d.x_axis.scaling.min} for d in ark._charts])
json.dump(ut, sys.stdout, default=str)
