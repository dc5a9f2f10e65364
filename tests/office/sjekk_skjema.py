#!/usr/bin/python3
"""Checks every part of the given workbooks against the Office Open XML schemas that Excel enforces:
RELAX NG (jing) for the SpreadsheetML and DrawingML parts, XSD (xmllint) for the package parts.
Prints each fault as workbook:part:line:column: message and a closing line with the counts.
Exit status 0 without faults, 1 with faults, 77 when the schema folder is missing.

  sjekk_skjema.py SKJEMAMAPPE ARBEIDSBOK...
"""
import os
import re
import subprocess
import sys
import tempfile
import zipfile
from concurrent.futures import ThreadPoolExecutor

# The part's name in the package -> (tool, schema file under SKJEMAMAPPE).
SKJEMA = [
    (r'\[Content_Types\]\.xml', 'xsd', 'opc/opc-contentTypes.xsd'),
    (r'(.*/)?_rels/[^/]*\.rels', 'xsd', 'opc/opc-relationships.xsd'),
    (r'docProps/app\.xml', 'rnc', 'rnc/Shared_Extended_File_Properties.rnc'),
    (r'docProps/custom\.xml', 'rnc', 'rnc/Shared_Custom_File_Properties.rnc'),
    (r'xl/workbook\.xml', 'rnc', 'rnc/SpreadsheetML_Workbook.rnc'),
    (r'xl/worksheets/sheet\d+\.xml', 'rnc', 'rnc/SpreadsheetML_Worksheet.rnc'),
    (r'xl/styles\.xml', 'rnc', 'rnc/SpreadsheetML_Styles.rnc'),
    (r'xl/sharedStrings\.xml', 'rnc', 'rnc/SpreadsheetML_Shared_String_Table.rnc'),
    (r'xl/calcChain\.xml', 'rnc', 'rnc/SpreadsheetML_Calculation_Chain.rnc'),
    (r'xl/theme/theme\d+\.xml', 'rnc', 'rnc/DrawingML_Theme.rnc'),
    (r'xl/charts/chart\d+\.xml', 'rnc', 'rnc/DrawingML_Chart.rnc'),
    (r'xl/drawings/drawing\d+\.xml', 'rnc', 'rnc/SpreadsheetML_Drawing.rnc'),
]
# Parts that are no XML, and the core properties, whose schema imports the Dublin Core schemas
# from the net (not there offline); the program copies that part unread.
UTEN_SKJEMA = re.compile(r'.*\.bin|docProps/core\.xml|docProps/thumbnail\.\w+|.*/$')
# Excel and LibreOffice write xml:space="preserve" on text elements that the schemas give no
# attributes; every reader accepts it.
GODTATT = re.compile(r'found attribute "xml:space"')
FEILLINJE = re.compile(r'^(.*?):(\d+)(?::(\d+))?: (?:error: |element .*?: Schemas validity error : )?(.*)$')


def jing(skjema, filer):
    p = subprocess.run(['jing', '-c', skjema] + filer, capture_output=True, text=True)
    linjer = [l for l in (p.stdout + p.stderr).splitlines() if l and not l.startswith('[warning]')]
    if p.returncode != 0 and not linjer:
        linjer = [f'{filer[0]}:0:0: jing endte med status {p.returncode}']
    return linjer


def xmllint(skjema, filer):
    p = subprocess.run(['xmllint', '--noout', '--nonet', '--schema', skjema] + filer, capture_output=True, text=True)
    return [l for l in (p.stdout + p.stderr).splitlines()
            if l and not l.endswith(' validates') and not l.endswith(' fails to validate')]


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    skjemamappe, boker = sys.argv[1], sys.argv[2:]
    if not os.path.isdir(skjemamappe):
        print(f'skjema: mappen {skjemamappe} finnes ikke; ingen kontroll')
        return 77
    feil = []
    grupper = {}  # (tool, schema) -> extracted files
    navn = {}     # extracted file -> "workbook:part"
    deler = 0
    with tempfile.TemporaryDirectory() as tmp:
        for n, bok in enumerate(boker):
            with zipfile.ZipFile(bok) as z:
                for del_ in z.namelist():
                    if UTEN_SKJEMA.fullmatch(del_):
                        continue
                    treff = next(((v, s) for m, v, s in SKJEMA if re.fullmatch(m, del_)), None)
                    if treff is None:
                        feil.append(f'{bok}:{del_}: ingen skjema for denne delen')
                        continue
                    fil = os.path.join(tmp, str(n), del_)
                    os.makedirs(os.path.dirname(fil), exist_ok=True)
                    with open(fil, 'wb') as ut:
                        ut.write(z.read(del_))
                    grupper.setdefault(treff, []).append(fil)
                    navn[fil] = f'{os.path.basename(bok)}:{del_}'
                    deler += 1
        verktoy = {'rnc': jing, 'xsd': xmllint}
        with ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
            svar = pool.map(lambda g: verktoy[g[0][0]](os.path.join(skjemamappe, g[0][1]), g[1]), grupper.items())
            for linjer in svar:
                for linje in linjer:
                    if GODTATT.search(linje):
                        continue
                    m = FEILLINJE.match(linje)
                    if m and m.group(1) in navn:
                        feil.append(f'{navn[m.group(1)]}:{m.group(2)}:{m.group(3) or 0}: {m.group(4)}')
                    else:
                        feil.append(linje)
    for f in feil:
        print(f)
    print(f'skjema: {deler} deler i {len(boker)} arbeidsbøker kontrollert, {len(feil)} feil')
    return 1 if feil else 0


if __name__ == '__main__':
    sys.exit(main())
