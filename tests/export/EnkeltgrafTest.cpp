// "9.  Lag enkeltgraf" on a real program folder: which cycles become workbooks, what the
// workbooks hold as openpyxl reads them, and how refusals and failures end the command;
// and the refusals every cycle export makes before it begins.
#include "felles/Eksportmappe.h"

#include "export/Integrering.h"
#include "export/Samlefil.h"
#include "files/Tekstfil.h"
#include "platform/xlsx/Hjelpere.h"

using namespace test;
using dialogs::Boks;

namespace {

constexpr int Minutt = 60;
// Turning points whose windows start 58.5, 230.5 and 231.5 minutes into the data.
const QList<int> Snupunkter = {60 * Minutt, 232 * Minutt, 233 * Minutt};

// C = s, D = s · 1e-10, E..J = s + the column's number, K empty.
Verdier verdier(int s)
{
    Verdier v{s, s * 1e-10};
    for (int kolonne = 5; kolonne <= 10; ++kolonne) v << s + kolonne;
    return v << std::nullopt;
}

class Enkeltgraf : public Eksportmappe {
protected:
    // Rows every 30 s for five hours, windows from 2 minutes before to 3 minutes after.
    void fyll()
    {
        rader(0, 300 * Minutt, 30, verdier);
        snupunkter(Snupunkter);
        sett(Boks::Text1, u"2"_s);
        sett(Boks::Text2, u"3"_s);
    }
    Utfall eksporter(const QString& prefiks)
    {
        svar(Svar::Ja, prefiks);
        return form().Command3_Click();
    }
};

TEST_F(Enkeltgraf, ValgteSykluserBlirArbeidsbokerMedVinduForskyvningOgAkse)
{
    fyll();
    // The proposed prefix gives a double underscore; a file of that name is replaced.
    sykluser("1", "1");
    QDir().mkdir(ut(QString()));
    const QString foreslatt = vb::dagensDatoTekst() + u"__1.xlsx"_s;
    files::SkrivTilFil(ut(foreslatt), u"gammel fil"_s);
    svar(Svar::Ja, Forslag{});
    EXPECT_EQ(form().Command3_Click(), Utfall::Ferdig);
    // Cycles 2 and 3 only; a prefix may hold blanks and letters beyond ASCII.
    sykluser("2", "3");
    EXPECT_EQ(eksporter(u"Forsøk 4"_s), Utfall::Ferdig);
    EXPECT_EQ(utfiler(), QStringList({foreslatt, "Forsøk 4_2.xlsx", "Forsøk 4_3.xlsx"}));
    EXPECT_EQ(label4(), vb::antallTekst(12) + u" (Run 3)"_s);

    // The dialogs, then what each workbook has otherwise than the template: in O1 the window start
    // in minutes after the data start, the rows T−1:30 … T+3:00 (the row at T−2:00 is outside) with
    // the values of C to J, and both charts' axis from the window start rounded half to even.
    const QList<Bok> b = lesArbeidsboker(
        {mappe.sti(exports::MalSykluser), ut(foreslatt), ut(u"Forsøk 4_2.xlsx"_s), ut(u"Forsøk 4_3.xlsx"_s)});
    QString logg = forlop(dialogs);
    for (int i = 1; i < b.size(); ++i) logg += u"== syklus %1\n"_s.arg(i) + endringer(b[0], b[i]);
    sjekkGull(u"export/gull/Enkeltgraf.txt"_s, logg);
}

// The boxes shown are in the known-good transcript.
TEST_F(Enkeltgraf, IngenRaderMalEllerSyklusGirIngenFil)
{
    fyll();
    // First cycle after the last: zero runs, nothing written.
    sykluser("4", "3");
    EXPECT_EQ(eksporter(u"P"_s), Utfall::Ferdig);

    // More cycles asked for than found: the ones that exist are written, then the error.
    sykluser("1", "5");
    EXPECT_EQ(eksporter(u"A"_s), Utfall::Avvist);
    const QStringList skrevet = {"A_1.xlsx", "A_2.xlsx", "A_3.xlsx", "U_1.xlsx"};
    EXPECT_EQ(utfiler(), skrevet.mid(0, 3));

    // A first chart that draws its times from two blocks of rows, 2-4 and 6-8, cannot follow the
    // rows written: those past it are named in one box after the export.
    test::Deler deler;
    for (const auto& [navn, del] : test::lesZip(mappe.sti(exports::MalSykluser)))
        deler.emplace_back(navn, QString::fromStdString(del.innhold)
                                     .replace(u"Data!$B$2:$B$8001"_s, u"(Data!$B$2:$B$4,Data!$B$6:$B$8)"_s)
                                     .toStdString());
    test::skrivZip(mappe.sti(exports::MalSykluser), deler);
    sykluser("1", "1");
    EXPECT_EQ(eksporter(u"U"_s), Utfall::Ferdig);

    // A template with a single chart on its second sheet fails at the second axis: left as it
    // was, nothing written.
    QFile::remove(mappe.sti(exports::MalSykluser));
    QFile::copy(mappe.sti(exports::MalAdsorpsjon), mappe.sti(exports::MalSykluser));
    const QByteArray enGraf = mappe.les(exports::MalSykluser);
    EXPECT_EQ(eksporter(u"R"_s), Utfall::Avvist);
    EXPECT_EQ(mappe.les(exports::MalSykluser), enGraf);

    // Without the template each cycle with rows says so; cycle 2 has no rows and says nothing.
    snupunkter({60 * Minutt, 400 * Minutt, 232 * Minutt});
    ASSERT_TRUE(QFile::remove(mappe.sti(exports::MalSykluser)));
    sykluser("1", "3");
    EXPECT_EQ(eksporter(u"P"_s), Utfall::Ferdig);
    EXPECT_EQ(utfiler(), skrevet);
    sjekkGull(u"export/gull/Enkeltgraf.Ingen.txt"_s, forlop(dialogs));
}

class Eksporter : public Eksportmappe {};

using Klikk = Utfall (app::Form1::*)();

// One export on a window of its own with these settings, answered as tolvik-batch answers it: yes,
// the prefix, and the proposals for whatever else it asks. Gives its outcome, the boxes shown and
// the causes given.
QString alene(const Programmappe& mappe, Klikk klikk, const QList<std::pair<Boks, QString>>& valg,
              const QString& prefiks)
{
    dialogs::SkriptDialogs d;
    app::Form1 vindu(mappe.mappe(), d);
    vindu.velgKolonne(0);
    vindu.velgAdsorpsjon(true);
    for (const auto& [boks, tekst] : valg) vindu.settTekst(boks, tekst);
    for (const auto& s : {exports::SporEnkeltfiler, exports::SporSamlefil}) d.svar(s, Svar::Ja);
    d.svar(exports::SporPrefiks, prefiks);
    for (const auto& s : {exports::SporPeriode, exports::SporMinutterFor, exports::SporMinutterEtter})
        d.svar(s, Forslag{});
    const QString utfall = (vindu.*klikk)() == Utfall::Ferdig ? u"ferdig\n"_s : u"avvist\n"_s;
    return utfall + forlop(d) + (d.grunner().isEmpty() ? QString() : u"grunn: "_s + d.grunner().join('|') + '\n');
}

// Settings and files a user or another program spoiled, and prefixes that cannot begin a file
// name: each export ends with its message and writes nothing, neither workbook nor template (the
// files written are listed after each case). Text1 and Text2 are no part of the integration; with
// one cycle and a good prefix each export writes its workbooks (the last case).
TEST_F(Eksporter, OdelagteInnstillingerFilerOgPrefiksGirMeldingOgIngenFil)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s, {}, {}, s}; });
    const QByteArray ett = "23.11.2012 00:10:00";
    // The settings, the turning points and the prefix.
    const std::tuple<QList<std::pair<Boks, QString>>, QByteArray, QString> tilfeller[] = {
        {{{Boks::Text6, u"abc"_s}}, ett, u"X"_s},
        // An empty range is no error: nothing to write.
        {{{Boks::Text6, u"-5"_s}, {Boks::Text4, u"-7"_s}}, ett, u"X"_s},
        {{{Boks::Text6, u"99999"_s}}, ett, u"X"_s},
        {{{Boks::Text6, u"1E300"_s}}, ett, u"X"_s},
        {{{Boks::Text6, u"1"_s}, {Boks::Text1, u"1E300"_s}}, ett, u"X"_s},
        // Settings that are no numbers: already in the question, or when the first window is computed.
        {{{Boks::Text4, u"x"_s}, {Boks::Text6, u"1"_s}}, ett, u"X"_s},
        {{{Boks::Text6, u"1"_s}, {Boks::Text2, u"tre"_s}}, ett, u"X"_s},
        {{{Boks::Text6, u"1"_s}}, "", u"X"_s},
        {{{Boks::Text6, u"1"_s}}, "\x01\xff!!", u"X"_s},
        {{{Boks::Text6, u"1"_s}}, "i går", u"X"_s},
        {{{Boks::Text6, u"1"_s}}, "31.02.2012 00:10:00", u"X"_s},
        // A prefix that no file name may hold, though this file system would take it; a control
        // character; one too long for the names made from it.
        {{{Boks::Text6, u"1"_s}}, ett, u"a:b"_s},
        {{{Boks::Text6, u"1"_s}}, ett, u"x\ty"_s},
        {{{Boks::Text6, u"1"_s}}, ett, QString(240, QLatin1Char('p'))},
        {{{Boks::Text6, u"1"_s}}, ett, u"X"_s},
    };
    const char* bokser[] = {"Text4", "Text6", "Text5", "Text3", "Text1", "Text2"};
    const QString samleMal = u"Mal_desorpsjon_areal_alle.xlsx"_s;
    const QByteArray samleFor = mappe.les(samleMal);
    QString logg;
    for (const auto& [valg, snu, prefiks] : tilfeller) {
        logg += u"\n=="_s;
        for (const auto& [boks, tekst] : valg) logg += u" %1=%2"_s.arg(bokser[static_cast<int>(boks)], tekst);
        logg += u" | %1 | %2\n"_s.arg(QString::fromUtf8(snu.left(20)), prefiks.left(20));
        mappe.skriv(files::SnuPunktFil, snu);
        QDir(ut(QString())).removeRecursively();
        for (Klikk klikk : {&app::Form1::Command3_Click, &app::Form1::Command5_Click, &app::Form1::Command12_Click})
            logg += alene(mappe, klikk, valg, prefiks);
        logg += u"filer: "_s + utfiler().join(' ') + (mappe.les(samleMal) == samleFor ? u""_s : u", malen endret"_s);
    }
    sjekkGull(u"export/gull/Eksporter.Odelagte.txt"_s, logg);

    // An output folder that is a file is left as it is.
    QDir(ut(QString())).removeRecursively();
    mappe.skriv(u"Data_Bearbeidet"_s, "fil");
    EXPECT_TRUE(alene(mappe, &app::Form1::Command3_Click, {}, u"X"_s).startsWith(u"avvist"_s));
    EXPECT_EQ(mappe.les(u"Data_Bearbeidet"_s), "fil");
}

// The boxes shown are in the known-good transcript: the messages of each refusal, and no more after
// No or an empty prefix.
TEST_F(Eksporter, AvviserUtenSnupunkterDataEllerSvar)
{
    const std::pair<const char*, Klikk> kommandoer[] = {{"Command3", &app::Form1::Command3_Click},
                                                        {"Command5", &app::Form1::Command5_Click},
                                                        {"Command12", &app::Form1::Command12_Click}};
    for (const auto& [knapp, klikk] : kommandoer) {
        SCOPED_TRACE(knapp);
        QFile::remove(mappe.sti(files::SnuPunktFil));
        QDir(ut(QString())).removeRecursively();
        // The button itself, before any cycle search.
        form().findChild<QPushButton*>(QLatin1String(knapp))->click();

        // Nothing imported: the chooser is empty. Neither refusal makes the output folder.
        snupunkter({Minutt});
        const QStringList kolonner = form().kolonner();
        form().settKolonner({});
        EXPECT_EQ((form().*klikk)(), Utfall::Avvist);
        EXPECT_FALSE(QDir(ut(QString())).exists());
        form().settKolonner(kolonner);

        // No to the question, then an empty prefix: silent ends; the folder is made all the same.
        svar(Svar::Nei, Svar::Ja, QString());
        EXPECT_EQ((form().*klikk)(), Utfall::Ferdig);
        EXPECT_EQ((form().*klikk)(), Utfall::Ferdig);
        EXPECT_TRUE(QDir(ut(QString())).exists());

        // An empty table.
        svar(Svar::Ja, u"P"_s);
        EXPECT_EQ((form().*klikk)(), Utfall::Avvist);
        EXPECT_TRUE(utfiler().isEmpty());
    }
    sjekkGull(u"export/gull/Eksporter.Avviser.txt"_s, forlop(dialogs));
}

}  // namespace
