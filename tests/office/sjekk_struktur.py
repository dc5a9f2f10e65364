"""Checks what an exported workbook must keep of its template, from the package's XML:
every written row lies inside the chart ranges over the data sheet and carries the formulas of
the template's formula columns; written cells have their column's format; no chart keeps cached
values of the data sheet.  sjekk_struktur.py FIL...
"""
import os
import re
import sys
import zipfile
import xml.etree.ElementTree as ET

S = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
R = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}"
C = "{http://schemas.openxmlformats.org/drawingml/2006/chart}"


def adresse(a):
    m = re.fullmatch(r"\$?([A-Z]+)\$?(\d+)", a)
    k = 0
    for b in m.group(1):
        k = k * 26 + ord(b) - 64
    return int(m.group(2)), k


def forste_ark(pakke):
    bok = ET.fromstring(pakke.read("xl/workbook.xml"))
    ark = bok.find(f"{S}sheets")[0]
    rel = ET.fromstring(pakke.read("xl/_rels/workbook.xml.rels"))
    mål = next(r.get("Target") for r in rel if r.get("Id") == ark.get(f"{R}id"))
    return ark.get("name"), "xl/" + mål.lstrip("/").removeprefix("xl/")


def mal_for(fil):
    """The template an output file of lag_arbeidsboker.sh was made from, in its set's maler/."""
    mappe, navn = os.path.split(fil)
    for start, mal in (("Enkel", "Mal_Sykluser.xlsx"), ("Ads", "Mal_Alle_Adsorpsjon.xlsm"),
                       ("Des", "Mal_Alle_Desorpsjon.xlsm"), ("Int_Samlefil", "Mal_desorpsjon_areal_alle.xlsx"),
                       ("Int", "Mal_Integrering_desorpsjon_Enkel.xlsx")):
        if navn.startswith(start):
            return os.path.join(os.path.dirname(mappe), "maler", mal)
    return None


def innhold(rot):
    """The cells of a sheet that hold a value, with their XML."""
    return {c.get("r"): ET.tostring(c) for c in rot.iter(f"{S}c")}


def sjekk(fil):
    feil = []
    pakke = zipfile.ZipFile(fil)
    navn, sti = forste_ark(pakke)
    rot = ET.fromstring(pakke.read(sti))
    mal = mal_for(fil)
    malceller = innhold(ET.fromstring(zipfile.ZipFile(mal).read(forste_ark(zipfile.ZipFile(mal))[1]))) if mal else {}
    stiler = []
    for col in rot.iter(f"{S}col"):
        if col.get("style"):
            stiler.append((int(col.get("min")), int(col.get("max")), col.get("style")))
    formler, skrevet, siste = {}, 0, 0
    for rad in rot.iter(f"{S}row"):
        for c in rad.iter(f"{S}c"):
            r, k = adresse(c.get("r"))
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
    for del_ in pakke.namelist():
        if not re.fullmatch(r"xl/charts/chart\d+\.xml", del_):
            continue
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


alle = [f for fil in sys.argv[1:] for f in sjekk(fil)]
for f in alle:
    print("AVVIK", f)
sys.exit(1 if alle else 0)
