#!/usr/bin/python3
"""Checks every part of the given workbooks against the Office Open XML schemas that Excel enforces:
RELAX NG (jing) for the SpreadsheetML and DrawingML parts, XSD (xmllint) for the package parts,
and the root element of each part against its name; with --struktur also what each exported
workbook (one written by lag_arbeidsboker.sh, with its templates in its set's maler/) keeps of its template.
Prints each fault as workbook:part:line:column: message and a closing line with the counts.
Exit status 0 without faults, 1 with faults, 77 when the schema folder is missing.

  sjekk_skjema.py [--struktur] SKJEMAMAPPE ARBEIDSBOK...
"""
import os
import re
import subprocess
import sys
import tempfile
import zipfile
import xml.etree.ElementTree as ET
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


S = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
R = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}"
C = "{http://schemas.openxmlformats.org/drawingml/2006/chart}"


def forste_ark(pakke):
    bok = ET.fromstring(pakke.read("xl/workbook.xml"))
    ark = bok.find(f"{S}sheets")[0]
    rel = ET.fromstring(pakke.read("xl/_rels/workbook.xml.rels"))
    mål = next(r.get("Target") for r in rel if r.get("Id") == ark.get(f"{R}id"))
    return ark.get("name"), "xl/" + mål.lstrip("/").removeprefix("xl/")


# The template an output file of lag_arbeidsboker.sh was made from, in its set's maler/.
def mal_for(fil):
    mappe, navn = os.path.split(fil)
    for start, mal in (("Enkel", "Mal_Sykluser.xlsx"), ("Ads", "Mal_Alle_Adsorpsjon.xlsm"),
                       ("Des", "Mal_Alle_Desorpsjon.xlsm"), ("Int_Samlefil", "Mal_desorpsjon_areal_alle.xlsx"),
                       ("Int", "Mal_Integrering_desorpsjon_Enkel.xlsx")):
        if navn.startswith(start):
            return os.path.join(os.path.dirname(mappe), "maler", mal)
    return None


# The cells of a sheet that hold a value, with their XML.
def innhold(rot):
    return {c.get("r"): ET.tostring(c) for c in rot.iter(f"{S}c")}


# What an exported workbook must keep of its template, from the package's XML: every written row lies
# inside the chart ranges over the data sheet and carries the formulas of the template's formula columns;
# written cells have their column's format; no chart keeps cached values of the data sheet.
def struktur(pakke, fil):
    from openpyxl.utils.cell import coordinate_to_tuple  # only check-office asks for this check
    feil = []
    navn, sti = forste_ark(pakke)
    rot = ET.fromstring(pakke.read(sti))
    mal = mal_for(fil)
    malceller = innhold(ET.fromstring(zipfile.ZipFile(mal).read(forste_ark(zipfile.ZipFile(mal))[1]))) if mal else {}
    stiler = [(int(c.get("min")), int(c.get("max")), c.get("style")) for c in rot.iter(f"{S}col") if c.get("style")]
    formler, skrevet, siste = {}, 0, 0
    for rad in rot.iter(f"{S}row"):
        for c in rad.iter(f"{S}c"):
            r, k = coordinate_to_tuple(c.get("r"))
            if c.find(f"{S}f") is not None:
                formler.setdefault(k, set()).add(r)
                continue
            if c.find(f"{S}v") is None and c.find(f"{S}is") is None or malceller.get(c.get("r")) == ET.tostring(c):
                continue
            siste = max(siste, r)
            skrevet += 1
            kolstil = next((s for a, b, s in stiler if a <= k <= b), None)
            ny = c.get("r") not in malceller  # a cell the template has keeps its own format
            if ny and kolstil is not None and rad.get("customFormat") != "1" and c.get("s") != kolstil and len(feil) < 5:
                feil.append(f"{fil}: {c.get('r')} har format {c.get('s')}, kolonnen {kolstil}")
    # Formula columns of the template (long runs) reach the last written row.
    for k, rader in formler.items():
        if len(rader) >= 50 and max(rader) < siste:
            feil.append(f"{fil}: kolonne {k} har formler bare til rad {max(rader)}, data til rad {siste}")
    # Chart series over the data sheet: ranges reach the last written row, no cached values.
    for del_ in (d for d in pakke.namelist() if re.fullmatch(r"xl/charts/chart\d+\.xml", d)):
        d = ET.fromstring(pakke.read(del_))
        for ser in d.iter(f"{C}ser"):
            for ref in list(ser.iter(f"{C}numRef")) + list(ser.iter(f"{C}strRef")):
                f = ref.find(f"{C}f").text
                m = re.fullmatch(r"'?(.*?)'?!\$([A-Z]+)\$(\d+)(?::\$([A-Z]+)\$(\d+))?", f)
                if not m or m.group(1) != navn:
                    continue
                if ref.find(f"{C}numCache") is not None or ref.find(f"{C}strCache") is not None:
                    feil.append(f"{fil}: {del_} har bufrede verdier for {f}")
                if m.group(5) and int(m.group(5)) > int(m.group(3)) and int(m.group(5)) < siste:
                    feil.append(f"{fil}: {del_} tegner {f}, data til rad {siste}")
    print(f"Struktur: {fil}: {skrevet} skrevne celler til rad {siste}, {len(feil)} avvik")
    return feil


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
    argumenter = [a for a in sys.argv[1:] if a != '--struktur']
    if len(argumenter) < 2:
        sys.exit(__doc__)
    skjemamappe, boker = argumenter[0], argumenter[1:]
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
                if '--struktur' in sys.argv and mal_for(bok):
                    feil += struktur(z, bok)
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
