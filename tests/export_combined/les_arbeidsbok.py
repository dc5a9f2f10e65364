# Reads a workbook with openpyxl and prints worksheet 1 as JSON: the cached values,
# the formula texts, the sheet names and whether the package is macro-enabled.
import json
import sys
import zipfile

import openpyxl

sti = sys.argv[1]
makro = sti.endswith(".xlsm")
verdier = openpyxl.load_workbook(sti, data_only=True, keep_vba=makro)
formler = openpyxl.load_workbook(sti, data_only=False, keep_vba=makro)
ark = verdier.worksheets[0]
celler = {c.coordinate: c.value for rad in ark.iter_rows() for c in rad if c.value is not None}
tekster = {c.coordinate: c.value for rad in formler.worksheets[0].iter_rows() for c in rad
           if isinstance(c.value, str) and c.value.startswith("=")}
with zipfile.ZipFile(sti) as z:
    typer = z.read("[Content_Types].xml").decode()
    navn = z.namelist()
print(json.dumps({
    "celler": celler,
    "formler": tekster,
    "ark": verdier.sheetnames,
    "makro": "macroEnabled" in typer,
    "vba": "xl/vbaProject.bin" in navn,
}, default=str))
