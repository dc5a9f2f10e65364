# Prints as JSON, one object per workbook named, what the export tests read of it: sheet names, sheet 1's cells (a
# formula's cached value with --bufret, else its text) and formulas, per sheet the charts' title and x axis minimum,
# and the package type. Several workbooks in one run spare the tests a Python start and an openpyxl import each.
import json
import sys
import zipfile

import openpyxl
from openpyxl.formula.translate import Translator

# openpyxl translates a shared formula's master anew into every cell of its range, some 8 000 in a cycle workbook and
# most of the time of a read. A translation is pure, and workbooks read together share their masters: each is made once.
oversett = Translator.translate_formula
oversatt = {}


def translate_formula(self, dest=None, row_delta=0, col_delta=0):
    nokkel = (self.tokenizer.formula, self.row, self.col, dest, row_delta, col_delta)
    if nokkel not in oversatt:
        oversatt[nokkel] = oversett(self, dest, row_delta, col_delta)
    return oversatt[nokkel]


Translator.translate_formula = translate_formula

def tittel(d):
    if d.title is None or d.title.tx is None or d.title.tx.rich is None:
        return None
    # openpyxl reads an empty run <a:t></a:t> as the text "None".
    return "".join(r.t for p in d.title.tx.rich.p for r in (p.r or []) if r.t not in (None, "None"))


def celler(ark):
    # The cells the sheet file holds; iter_rows() would make an empty cell at every place of the used
    # range first, some 120 000 in the cycle template.
    return [c for _, c in sorted(ark._cells.items()) if c.value is not None]


def les(fil, bufret):
    formler = openpyxl.load_workbook(fil)
    verdier = openpyxl.load_workbook(fil, data_only=True) if bufret else formler
    return {
        "ark": verdier.sheetnames,
        "celler": {c.coordinate: c.value for c in celler(verdier.worksheets[0])},
        "formler": {c.coordinate: c.value for c in celler(formler.worksheets[0])
                    if isinstance(c.value, str) and c.value.startswith("=")},
        "diagrammer": [[{"tittel": tittel(d), "xmin": d.x_axis.scaling.min} for d in a._charts]
                       for a in verdier.worksheets],
        "makro": "macroEnabled" in zipfile.ZipFile(fil).read("[Content_Types].xml").decode(),
    }


bufret = "--bufret" in sys.argv
json.dump([les(f, bufret) for f in sys.argv[1:] if f != "--bufret"], sys.stdout, default=str)
