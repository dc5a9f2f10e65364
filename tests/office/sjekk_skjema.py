#!/usr/bin/python3
"""Checks every part of the given workbooks against the Office Open XML schemas that Excel enforces:
RELAX NG (jing) for the SpreadsheetML and DrawingML parts, XSD (xmllint) for the package parts,
and the root element of each part against its name.
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

# The part's name in the package -> the XSD (xmllint) of a package part, or for a SpreadsheetML,
# DrawingML or document-properties part the RELAX NG pattern (jing) of its root element, which is
# named after the pattern's prefix.
SKJEMA = [
    (r'\[Content_Types\]\.xml', 'opc/opc-contentTypes.xsd'),
    (r'(.*/)?_rels/[^/]*\.rels', 'opc/opc-relationships.xsd'),
    (r'docProps/app\.xml', 'shdDcEP_Properties'),
    (r'docProps/custom\.xml', 'shdCstm_Properties'),
    (r'xl/workbook\.xml', 'sml_workbook'),
    (r'xl/worksheets/sheet\d+\.xml', 'sml_worksheet'),
    (r'xl/styles\.xml', 'sml_styleSheet'),
    (r'xl/sharedStrings\.xml', 'sml_sst'),
    (r'xl/calcChain\.xml', 'sml_calcChain'),
    (r'xl/theme/theme\d+\.xml', 'a_theme'),
    (r'xl/charts/chart\d+\.xml', 'dchrt_chartSpace'),
    (r'xl/drawings/drawing\d+\.xml', 'xdr_wsDr'),
]
# One grammar over the schemas' modules whose start is any of those patterns: jing starts and
# compiles the schemas once for every part, not once per kind of part.
ALLE = """include "{0}/SpreadsheetML_Workbook.rnc" {{ start = {1} }}
include "{0}/shared-documentPropertiesExtended.rnc"
include "{0}/shared-documentPropertiesCustom.rnc"
include "{0}/shared-documentPropertiesVariantTypes.rnc"
"""
ROT = re.compile(rb'<(?![?!])(?:[\w.-]+:)?([\w.-]+)')
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
    grupper = {}  # schema (an XSD, or 'rnc') -> extracted files
    navn = {}     # extracted file -> "workbook:part"
    deler = 0
    with tempfile.TemporaryDirectory() as tmp:
        for n, bok in enumerate(boker):
            with zipfile.ZipFile(bok) as z:
                for del_ in z.namelist():
                    if UTEN_SKJEMA.fullmatch(del_):
                        continue
                    skjema = next((s for m, s in SKJEMA if re.fullmatch(m, del_)), None)
                    if skjema is None:
                        feil.append(f'{bok}:{del_}: ingen skjema for denne delen')
                        continue
                    data, xsd, ventet = z.read(del_), skjema.endswith('.xsd'), skjema.partition('_')[2]
                    rot = ROT.search(data)
                    if not xsd and (rot is None or rot.group(1).decode() != ventet):
                        feil.append(f'{bok}:{del_}: rotelementet er ikke {ventet}')
                    fil = os.path.join(tmp, str(n), del_)
                    os.makedirs(os.path.dirname(fil), exist_ok=True)
                    with open(fil, 'wb') as ut:
                        ut.write(data)
                    grupper.setdefault(skjema if xsd else 'rnc', []).append(fil)
                    navn[fil] = f'{os.path.basename(bok)}:{del_}'
                    deler += 1
        alle = os.path.join(tmp, 'alle.rnc')
        with open(alle, 'w') as ut:
            ut.write(ALLE.format(os.path.abspath(os.path.join(skjemamappe, 'rnc')),
                                 ' | '.join(s for _, s in SKJEMA if not s.endswith('.xsd'))))
        kontroll = {s: (lambda f, s=s: xmllint(os.path.join(skjemamappe, s), f)) for s in grupper}
        kontroll['rnc'] = lambda f: jing(alle, f)
        with ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
            svar = pool.map(lambda g: kontroll[g[0]](g[1]), grupper.items())
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
