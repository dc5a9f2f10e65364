# Peer of the whole-road benchmark: the lab's whole job done the way a lab member would write it
# in plain Python (csv and sqlite3 from the standard library, openpyxl for the templates):
# import the raw-data file into a database, find the cycles, write one workbook per cycle, the
# combined workbook, one integration workbook per cycle and the area summary, from the same
# templates and with the same rules as the program.
#
#   vei_python.py RADATA MAPPE [--start MIN] [--for MIN] [--etter MIN]
#                 [--int-for MIN] [--int-etter MIN]
#
# MAPPE holds copies of the templates; the database, SnuPunkter.txt and Data_Bearbeidet are
# written there (the area summary template is saved in place between cycles, as the program
# does). Prints "tid STEG SEKUNDER" per step, then "antall sykluser N" and "antall filer N".
#
# openpyxl does not read charts, so the saved workbooks lack the templates' charts and the
# single-cycle charts' axis minimum is not set; the formulas are written without cached values.
# Both leave the peer less work than the program, not more.
import argparse
import csv
import datetime
import os
import sqlite3
import time

import openpyxl
from openpyxl.formula.translate import Translator

KANALER = "CDEFGHIJKL"
CO2 = "F"
UT = "Data_Bearbeidet"
# The file-name prefixes of the three exports, as the benchmark gives them to the program.
ENKELT, SAMLE, INTEGRERT = "Enkelt", "Samle", "Integrert"


def argumenter():
    """The raw-data file, the folder and the minutes of the windows (see the top)."""
    p = argparse.ArgumentParser()
    p.add_argument("radata")
    p.add_argument("mappe")
    p.add_argument("--start", type=float, default=50)
    p.add_argument("--for", dest="foer", type=int, default=10)
    p.add_argument("--etter", type=int, default=120)
    p.add_argument("--int-for", dest="int_foer", type=int, default=25)
    p.add_argument("--int-etter", type=int, default=25)
    return p.parse_args()


def tid(tekst):
    """A date-time from its stored text "YYYY-MM-DD HH:MM:SS"."""
    return datetime.datetime.fromisoformat(tekst)


def tekst(t):
    """The stored text of a date-time, which sorts as the time does."""
    return t.isoformat(" ")


def minutter(fra, til):
    """Minutes from fra to til at whole seconds."""
    return (til - fra).total_seconds() / 60


# ---------------------------------------------------------------- import


def importer(db, radata):
    """The raw-data file into table DataLinjer: the date and time as text twice (sortable,
    and as the templates' formulas read it), the channels as numbers (the last field of a
    line is empty)."""
    db.execute("DROP TABLE IF EXISTS DataLinjer")
    db.execute(
        "CREATE TABLE DataLinjer (ID INTEGER PRIMARY KEY, DatoTid TEXT, DatoTid_Tekst TEXT, "
        + ", ".join(f"{k} REAL" for k in KANALER)
        + ")"
    )
    with open(radata, newline="", encoding="latin-1") as f:
        leser = csv.reader(f)
        next(leser)

        def rader():
            for felt in leser:
                dato, klokke = felt[0], felt[1]
                verdier = [float(v) if v.strip() else None for v in felt[2:-1]][: len(KANALER)]
                verdier += [None] * (len(KANALER) - len(verdier))
                yield (f"{dato[0:4]}-{dato[5:7]}-{dato[8:10]} {klokke}", f"{dato} ,{klokke}", *verdier)

        db.executemany(
            f"INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, {', '.join(KANALER)}) "
            f"VALUES ({', '.join('?' * (len(KANALER) + 2))})",
            rader(),
        )
    db.execute("CREATE INDEX DataLinjer_DatoTid ON DataLinjer (DatoTid)")
    db.commit()


# ---------------------------------------------------------------- cycles


def finn_sykluser(db, start_min, kolonne):
    """Turning points: the rows below 100 x the smallest value after the start, split where
    more than 10 seconds pass between them; per group the time of its smallest value before
    the group's last second. The last group is never closed and so not counted."""
    forste = tid(db.execute("SELECT DatoTid FROM DataLinjer ORDER BY ID LIMIT 1").fetchone()[0])
    sok = tekst(forste + datetime.timedelta(minutes=round(start_min)))
    minimum = db.execute(f"SELECT min({kolonne}) FROM DataLinjer WHERE DatoTid > ?", (sok,)).fetchone()[0]
    terskel = 100 * minimum
    snupunkter = []
    gruppe = []
    forrige = None
    for dato, verdi in db.execute(
        f"SELECT DatoTid, {kolonne} FROM DataLinjer WHERE {kolonne} < ? AND DatoTid > ? ORDER BY ID",
        (terskel, sok),
    ):
        t = tid(dato)
        if forrige is not None and abs((t - forrige).total_seconds()) > 10:
            spenn = [r for r in gruppe if r[0] < forrige] or [(datetime.datetime(1899, 12, 30), 0)]
            snupunkter.append(min(spenn, key=lambda r: r[1])[0])
            gruppe = []
        gruppe.append((t, verdi))
        forrige = t
    return forste, snupunkter


def skriv_snupunkter(mappe, snupunkter):
    """SnuPunkter.txt as the program writes it: one line, the turning points joined by "!"."""
    with open(os.path.join(mappe, "SnuPunkter.txt"), "w", encoding="latin-1", newline="\r\n") as f:
        f.write("!".join(t.strftime("%d.%m.%Y %H:%M:%S") for t in snupunkter) + "\n")


def vindu(db, kolonner, fra, til, med_fra):
    """Rows of the window from fra to til (til included, fra as asked), in file order."""
    tegn = ">=" if med_fra else ">"
    return db.execute(
        f"SELECT DatoTid, DatoTid_Tekst, {kolonner} FROM DataLinjer "
        f"WHERE DatoTid {tegn} ? AND DatoTid <= ? ORDER BY ID",
        (tekst(fra), tekst(til)),
    ).fetchall()


# ---------------------------------------------------------------- workbooks


def fyll_ned(ark, kolonner, mal_rad, til_rad):
    """Copies the template's formulas of the given columns from its last prepared row down
    to til_rad, so that rows written past the template's rows get them too."""
    for k in kolonner:
        formel = ark[f"{k}{mal_rad}"].value
        if not isinstance(formel, str) or not formel.startswith("="):
            continue
        for r in range(mal_rad + 1, til_rad + 1):
            ark[f"{k}{r}"] = Translator(formel, origin=f"{k}{mal_rad}").translate_formula(f"{k}{r}")


def enkeltsykluser(db, mappe, forste, snupunkter, foer, etter):
    """One workbook per cycle from Mal_Sykluser.xlsx: O1 the start offset, A the time text,
    C..K the channels of the window (foer minutes before to etter after the turning point)."""
    for nr, snu in enumerate(snupunkter, 1):
        rader = vindu(db, "C, D, E, F, G, H, I, J, K", snu - datetime.timedelta(minutes=foer),
                      snu + datetime.timedelta(minutes=etter), False)
        if not rader:
            continue
        bok = openpyxl.load_workbook(os.path.join(mappe, "Mal_Sykluser.xlsx"))
        ark = bok.worksheets[0]
        ark.cell(1, 15, minutter(forste, tid(rader[0][0])))
        for i, r in enumerate(rader, 2):
            ark.cell(i, 1, r[1])
            for c in range(9):
                ark.cell(i, 3 + c, r[2 + c])
        fyll_ned(ark, "B", 8001, len(rader) + 1)
        bok.save(os.path.join(mappe, UT, f"{ENKELT}_{nr}.xlsx"))


def samlefil(db, mappe, snupunkter, foer, etter, kolonne):
    """All cycles side by side in Mal_Alle_Adsorpsjon.xlsm: each column from the cycle's zero
    point (the largest value in the 30 minutes before the turning point, less foer minutes)
    to etter minutes after the turning point; the rest of the column down to row 2000 cleared."""
    bok = openpyxl.load_workbook(os.path.join(mappe, "Mal_Alle_Adsorpsjon.xlsm"), keep_vba=True)
    ark = bok.worksheets[0]
    lengst = 0
    for nr, snu in enumerate(snupunkter, 1):
        maks = db.execute(
            f"SELECT DatoTid FROM DataLinjer WHERE DatoTid > ? AND DatoTid < ? ORDER BY {kolonne} DESC, ID LIMIT 1",
            (tekst(snu - datetime.timedelta(minutes=30)), tekst(snu)),
        ).fetchone()[0]
        null = tid(maks) - datetime.timedelta(minutes=foer)
        rader = vindu(db, kolonne, null, snu + datetime.timedelta(minutes=etter), True)
        for i, r in enumerate(rader, 2):
            if nr == 1:
                ark.cell(i, 1, r[1])
            ark.cell(i, nr + 2, r[2] if r[2] is not None else 0.0)
        for i in range(len(rader) + 2, 2001):
            ark.cell(i, nr + 2).value = None
        lengst = max(lengst, len(rader) + 1)
    fyll_ned(ark, "B", 2000, lengst)
    bok.save(os.path.join(mappe, UT, f"{SAMLE}_Samlefil.xlsm"))


def skriv_integrering(ark, for_del, etter_del):
    """Writes the before-part and the after-part of a cycle from row 3 with the formulas of
    column F, cutting the after-part at the first CO2 value below the start level (E = 0 on
    that row); returns the rows written."""
    niva = for_del[0][2]
    rader = []
    for del_, er_etter in ((for_del, False), (etter_del, True)):
        for r in del_:
            n = len(rader) + 3
            ark.cell(n, 1, r[1])
            ark.cell(n, 3, r[2])
            ark[f"F{n}"] = f"=abs((D{n} -D{n + 1})/2)" if er_etter else f"=abs((D{n}-D{max(n - 1, 3)})/2)"
            rader.append(r)
            if er_etter and r[2] is not None and r[2] < niva:
                ark.cell(n, 5, 0)
                break
    return rader


def integrer(db, mappe, forste, snupunkter, foer, etter):
    """Per cycle the CO2 column from foer minutes before to etter after the turning point in
    Mal_Integrering_desorpsjon_Enkel.xlsx, L17 summing the area elements and the rows below
    the data cleared; the area, computed here, goes to column B of the area summary, which is
    saved in place between cycles (cycle 1 empties its column first) and under the prefix
    after the last cycle."""
    mal = os.path.join(mappe, "Mal_Integrering_desorpsjon_Enkel.xlsx")
    alle = os.path.join(mappe, "Mal_desorpsjon_areal_alle.xlsx")
    for nr, snu in enumerate(snupunkter, 1):
        for_del = vindu(db, CO2, snu - datetime.timedelta(minutes=foer), snu, True)
        if not for_del:
            continue
        etter_del = vindu(db, CO2, snu, snu + datetime.timedelta(minutes=etter), True)
        bok = openpyxl.load_workbook(mal)
        ark = bok.worksheets[0]
        sammen = openpyxl.load_workbook(alle)
        areal_ark = sammen.worksheets[0]
        if nr == 1:
            r = 2
            while areal_ark.cell(r, 2).value not in (None, ""):
                areal_ark.cell(r, 2).value = None
                r += 1

        ark["K2"] = minutter(forste, tid(for_del[0][0]))
        rader = skriv_integrering(ark, for_del, etter_del)
        siste_rad = len(rader) + 2
        fyll_ned(ark, "BDGH", 2999, siste_rad)
        ark["L17"] = f"=sum(G3:G{siste_rad})"
        areal_ark.cell(nr + 1, 2, areal(rader))
        for rad in ark.iter_rows(min_row=siste_rad + 1, max_row=2999):
            for celle in rad:
                celle.value = None

        siste = nr == len(snupunkter)
        sammen.save(os.path.join(mappe, UT, f"{INTEGRERT}_Samlefil_{nr}.xlsx") if siste else alle)
        bok.save(os.path.join(mappe, UT, f"{INTEGRERT}_{nr}.xlsx"))


def areal(rader):
    """Trapezoid area of CO2 above the first row's level against minutes (A·min)."""
    niva = rader[0][2]
    sum_ = 0.0
    for (t0, _, c0), (t1, _, c1) in zip(rader, rader[1:]):
        d0 = c0 - niva if c0 is not None else 0.0
        d1 = c1 - niva if c1 is not None else 0.0
        sum_ += (d0 + d1) / 2 * minutter(tid(t0), tid(t1))
    return sum_


def main():
    """Runs the steps in the order of the road and prints each one's time."""
    a = argumenter()
    os.makedirs(os.path.join(a.mappe, UT), exist_ok=True)
    db = sqlite3.connect(os.path.join(a.mappe, "data.sqlite"))
    funnet = {}

    def sykluser():
        funnet["start"], funnet["snu"] = finn_sykluser(db, a.start, CO2)
        skriv_snupunkter(a.mappe, funnet["snu"])

    steg = [
        ("import", lambda: importer(db, a.radata)),
        ("sykluser", sykluser),
        ("enkeltgraf", lambda: enkeltsykluser(db, a.mappe, funnet["start"], funnet["snu"], a.foer, a.etter)),
        ("samlefil", lambda: samlefil(db, a.mappe, funnet["snu"], a.foer, a.etter, CO2)),
        ("integrering", lambda: integrer(db, a.mappe, funnet["start"], funnet["snu"], a.int_foer, a.int_etter)),
    ]
    for navn, gjor in steg:
        t0 = time.perf_counter()
        gjor()
        print(f"tid {navn} {time.perf_counter() - t0:.2f}", flush=True)
    print(f"antall sykluser {len(funnet['snu'])}")
    print(f"antall filer {len(os.listdir(os.path.join(a.mappe, UT)))}")

if __name__ == "__main__":
    main()
