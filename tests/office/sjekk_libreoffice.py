# Opens every workbook in LibreOffice (through its UNO bridge), recalculates everything and
# checks that each formula cell's cached value, as openpyxl reads it, is what LibreOffice computes;
# then prints the sheets to PDF. Run with Debian's /usr/bin/python3.
# sjekk_libreoffice.py PDFMAPPE FIL...

import os
import subprocess
import sys
import time

import openpyxl
import uno
from com.sun.star.beans import PropertyValue

def egenskap(navn, verdi):
    p = PropertyValue()
    p.Name, p.Value = navn, verdi
    return p


def koble_til():
    port = 2002 + os.getpid() % 1000
    prosess = subprocess.Popen(["soffice", "--headless", "--invisible", "--norestore", "--nologo",
                                f"-env:UserInstallation=file:///tmp/lo-sjekk-{os.getpid()}",
                                f"--accept=socket,host=127.0.0.1,port={port};urp;"],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    lokal = uno.getComponentContext()
    løser = lokal.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", lokal)
    for _ in range(120):
        try:
            ktx = løser.resolve(f"uno:socket,host=127.0.0.1,port={port};urp;StarOffice.ComponentContext")
            return prosess, ktx.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", ktx)
        except Exception:
            time.sleep(0.5)
    raise SystemExit("LibreOffice svarer ikke")


def lik(a, b):
    if isinstance(a, (int, float)) and isinstance(b, (int, float)):
        return a == b or abs(a - b) <= 1e-9 * max(abs(a), abs(b))
    return a == b


def sjekk(skrivebord, fil, pdfmappe):
    bufret = openpyxl.load_workbook(fil, data_only=True)
    formler = openpyxl.load_workbook(fil)
    dok = skrivebord.loadComponentFromURL(uno.systemPathToFileUrl(os.path.abspath(fil)), "_blank", 0,
                                          (egenskap("Hidden", True),))
    if dok is None:
        return [f"{fil}: LibreOffice kan ikke åpne fila"], 0
    dok.calculateAll()
    feil, antall = [], 0
    for nr, ark in enumerate(formler.worksheets):
        lo_ark = dok.Sheets.getByIndex(nr)
        bufret_ark = bufret.worksheets[nr]
        if ark.max_row < 1:
            continue
        # The whole sheet's results in one call; the cells giving an error in a second.
        verdier = lo_ark.getCellRangeByPosition(0, 0, ark.max_column - 1, ark.max_row - 1).getDataArray()
        feilceller = set()
        for blokk in lo_ark.queryFormulaCells(4).getRangeAddresses():  # FormulaResult.ERROR
            for r in range(blokk.StartRow, blokk.EndRow + 1):
                for k in range(blokk.StartColumn, blokk.EndColumn + 1):
                    feilceller.add((r, k))
        for rad in ark.iter_rows():
            for c in rad:
                lagret = bufret_ark.cell(c.row, c.column).value
                if not (isinstance(c.value, str) and c.value.startswith("=")) or lagret is None:
                    continue  # no formula, or no cached value: the reader computes it
                antall += 1
                r, k = c.row - 1, c.column - 1
                # An error stands against an error (its code is HyperFormula's part), a value against the value.
                beregnet = lagret if str(lagret).startswith("#") and (r, k) in feilceller else verdier[r][k]
                if not lik(lagret, beregnet) and len(feil) < 20:
                    feil.append(f"{fil} {ark.title}!{c.coordinate}: lagret {lagret!r}, LibreOffice {beregnet!r}")
    pdf = os.path.join(pdfmappe, os.path.basename(os.path.dirname(os.path.dirname(fil))) + "_" +
                       os.path.splitext(os.path.basename(fil))[0] + ".pdf")
    dok.storeToURL(uno.systemPathToFileUrl(os.path.abspath(pdf)), (egenskap("FilterName", "calc_pdf_Export"),))
    dok.close(True)
    if not os.path.getsize(pdf):
        feil.append(f"{fil}: tom PDF")
    return feil, antall


def main():
    pdfmappe, filer = sys.argv[1], sys.argv[2:]
    os.makedirs(pdfmappe, exist_ok=True)
    prosess, skrivebord = koble_til()
    alle, totalt = [], 0
    try:
        for fil in filer:
            feil, antall = sjekk(skrivebord, fil, pdfmappe)
            print(f"LibreOffice: {fil}: {antall} formelverdier, {len(feil)} avvik")
            alle += feil
            totalt += antall
    finally:
        try:
            skrivebord.terminate()
        except Exception:
            pass
        prosess.wait(timeout=30)
    print(f"LibreOffice: {totalt} formelverdier sammenlignet i {len(filer)} filer")
    for f in alle:
        print("AVVIK", f)
    sys.exit(1 if alle else 0)


if __name__ == "__main__":
    main()
