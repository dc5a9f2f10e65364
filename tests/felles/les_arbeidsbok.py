# Prints as JSON what the export tests read of a workbook: sheet names, sheet 1's cells (a formula's cached value
# with --bufret, else its text) and formulas, per sheet the charts' title and x axis minimum, and the package type.
import json
import sys
import zipfile

import openpyxl


def tittel(d):
    if d.title is None or d.title.tx is None or d.title.tx.rich is None:
        return None
    # openpyxl reads an empty run <a:t></a:t> as the text "None".
    return "".join(r.t for p in d.title.tx.rich.p for r in (p.r or []) if r.t not in (None, "None"))


formler = openpyxl.load_workbook(sys.argv[1])
verdier = openpyxl.load_workbook(sys.argv[1], data_only=True) if "--bufret" in sys.argv else formler
json.dump({
    "ark": verdier.sheetnames,
    "celler": {c.coordinate: c.value for rad in verdier.worksheets[0].iter_rows() for c in rad if c.value is not None},
    "formler": {c.coordinate: c.value for rad in formler.worksheets[0].iter_rows() for c in rad
                if isinstance(c.value, str) and c.value.startswith("=")},
    "diagrammer": [[{"tittel": tittel(d), "xmin": d.x_axis.scaling.min} for d in a._charts] for a in verdier.worksheets],
    "makro": "macroEnabled" in zipfile.ZipFile(sys.argv[1]).read("[Content_Types].xml").decode(),
}, sys.stdout, default=str)
