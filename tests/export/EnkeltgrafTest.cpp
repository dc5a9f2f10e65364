// "9.  Lag enkeltgraf" on a real program folder: which cycles become workbooks, what the
// workbooks hold as openpyxl reads them, and how refusals and failures end the command;
// and the refusals every cycle export makes before it begins.
#include "felles/Eksportmappe.h"

#include "export/Integrering.h"
#include "export/Samlefil.h"
#include "files/Tekstfil.h"

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

// The workbook of the cycle with turning point T: rows T−1:30 … T+3:00 (the row at T−2:00
// is outside), O1 and both charts' axis; every other cell as the template has it.
void sjekkSyklus(const Bok& bok, const Bok& mal, int T, double o1, double akse)
{
    SCOPED_TRACE(T);
    QJsonObject celler = bok.celler, malceller = mal.celler;
    auto ta = [&](const QString& adresse) { return malceller.remove(adresse), celler.take(adresse); };
    EXPECT_DOUBLE_EQ(ta(u"O1"_s).toDouble(), o1);
    for (int r = 2; r <= 11; ++r) {
        const int s = T - 90 + 30 * (r - 2);
        EXPECT_EQ(ta(u"A%1"_s.arg(r)).toString(), tidTekst(s)) << r;
        const Verdier v = verdier(s);
        for (int i = 0; i < v.size(); ++i) {
            const QJsonValue c = ta(u"%1%2"_s.arg(QChar('C' + i)).arg(r));
            if (v[i])
                EXPECT_DOUBLE_EQ(c.toDouble(), *v[i]) << i << " " << r;
            else
                EXPECT_TRUE(c.isUndefined()) << r;
        }
    }
    EXPECT_EQ(celler, malceller);
    EXPECT_EQ(bok.json[u"ark"_s], mal.json[u"ark"_s]);
    EXPECT_EQ(bok.diagrammer(2, "xmin"), QVariantList({akse, akse}));
}

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
    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(QStringList({d[0].tekst, d[1].tekst, d[1].tittel, d[1].forslag, d[2].tekst}),
              QStringList({"Vil du lage excel-filer for 1 run?", "Angi filnavn", "Filnavn",
                           vb::dagensDatoTekst() + QLatin1Char('_'), "Eksporten er ferdig!"}));
    EXPECT_TRUE(d[0].knapper == dialogs::Knapper::JaNei && d[2].ikon == dialogs::Ikon::Informasjon);

    // Cycles 2 and 3 only; the axis starts at the window start rounded half to even.
    sykluser("2", "3");
    EXPECT_EQ(eksporter(u"Forsok"_s), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger().mid(2), QStringList({"Vil du lage excel-filer for 2 run?", "Eksporten er ferdig!"}));
    EXPECT_EQ(utfiler(), QStringList({foreslatt, "Forsok_2.xlsx", "Forsok_3.xlsx"}));
    EXPECT_EQ(label4(), vb::antallTekst(12) + u" (Run 3)"_s);

    const QList<Bok> b = lesArbeidsboker(
        {mappe.sti(exports::MalSykluser), ut(foreslatt), ut(u"Forsok_2.xlsx"_s), ut(u"Forsok_3.xlsx"_s)});
    sjekkSyklus(b[1], b[0], Snupunkter[0], 58.5, 58);
    sjekkSyklus(b[2], b[0], Snupunkter[1], 230.5, 230);
    sjekkSyklus(b[3], b[0], Snupunkter[2], 231.5, 232);
}

TEST_F(Enkeltgraf, SyklusUtenRaderEllerUtenMalGirIngenFil)
{
    fyll();
    // First cycle after the last: zero runs, nothing written.
    sykluser("4", "3");
    EXPECT_EQ(eksporter(u"P"_s), Utfall::Ferdig);
    // Without the template each cycle with rows says so; cycle 2 has no rows and says nothing.
    snupunkter({60 * Minutt, 400 * Minutt, 232 * Minutt});
    ASSERT_TRUE(QFile::remove(mappe.sti(exports::MalSykluser)));
    sykluser("1", "3");
    EXPECT_EQ(eksporter(u"P"_s), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Vil du lage excel-filer for 0 run?", "Eksporten er ferdig!",
                                                "Vil du lage excel-filer for 3 run?", "Du mangler malfila",
                                                "Du mangler malfila", "Eksporten er ferdig!"}));
    EXPECT_TRUE(utfiler().isEmpty());
}

TEST_F(Enkeltgraf, FeilStopperKommandoenMedFellesMeldingOgOdeleggerIngenting)
{
    fyll();
    auto feiler = [&](const QString& prefiks) {
        if (!prefiks.isNull()) svar(Svar::Ja, prefiks);
        EXPECT_EQ(form().Command3_Click(), Utfall::Avvist) << prefiks;
        EXPECT_EQ(dialogs.meldinger().last(), exports::FeilMelding) << prefiks;
    };
    // More cycles asked for than found: the ones that exist are written, then the error.
    sykluser("1", "5");
    feiler(u"A"_s);
    EXPECT_FALSE(dialogs.meldinger().contains(u"Eksporten er ferdig!"_s));
    const QStringList skrevet = {"A_1.xlsx", "A_2.xlsx", "A_3.xlsx"};
    EXPECT_EQ(utfiler(), skrevet);

    // Settings that are no numbers: already in the question, or when the first window is computed.
    sykluser("x", "1");
    feiler(QString());
    sykluser("1", "1");
    sett(Boks::Text2, u"tre"_s);
    feiler(u"B"_s);
    sett(Boks::Text2, u"3"_s);
    // A prefix that no file name may hold, though this file system would take it.
    feiler(u"a:b"_s);

    // A template with a single chart on its second sheet fails at the second axis: left as it
    // was, nothing written.
    QFile::remove(mappe.sti(exports::MalSykluser));
    QFile::copy(mappe.sti(exports::MalAdsorpsjon), mappe.sti(exports::MalSykluser));
    const QByteArray enGraf = mappe.les(exports::MalSykluser);
    feiler(u"R"_s);
    EXPECT_EQ(mappe.les(exports::MalSykluser), enGraf);

    // A turning point that is no date-time.
    files::SkrivTilFil(mappe.sti(files::SnuPunktFil), u"i går"_s);
    feiler(u"C"_s);
    EXPECT_EQ(utfiler(), skrevet);
}

TEST_F(Enkeltgraf, RadtellerenTalerIkkeMerEnn32767)
{
    // 32 765 rows in one second fill the sheet's rows 2 to 32 766 and leave the counter at
    // 32 767; one more row would move it past.
    {
        db::Transaksjon tr(form().kontekst().tilkobling);
        for (int i = 0; i < 32765; ++i) rad(Minutt, {i});
        tr.fullfor();
    }
    snupunkter({Minutt, Minutt});
    for (Boks b : {Boks::Text1, Boks::Text2, Boks::Text4, Boks::Text6}) sett(b, u"1"_s);
    EXPECT_EQ(eksporter(u"Full"_s), Utfall::Ferdig);
    EXPECT_EQ(label4(), vb::antallTekst(32767) + u" (Run 1)"_s);

    rad(Minutt, {-1});
    sykluser("2", "2");
    EXPECT_EQ(eksporter(u"Full"_s), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), exports::FeilMelding);
    EXPECT_EQ(utfiler(), QStringList({"Full_1.xlsx"}));
}

class Eksporter : public Eksportmappe {};

using Klikk = Utfall (app::Form1::*)();
const Klikk Eksportene[] = {&app::Form1::Command3_Click, &app::Form1::Command5_Click, &app::Form1::Command12_Click};

// One export on a window of its own with these settings, answered as tolvik-batch answers it: yes,
// the prefix, and the proposals for whatever else it asks. Gives the outcome, then the messages
// and causes shown.
std::pair<Utfall, QString> alene(const Programmappe& mappe, Klikk klikk, const QList<std::pair<Boks, QString>>& valg,
                                 const QString& prefiks)
{
    dialogs::SkriptDialogs d;
    app::Form1 vindu(mappe.mappe(), d);
    for (const auto& [boks, tekst] : valg) vindu.settTekst(boks, tekst);
    for (const auto& s : {exports::SporEnkeltfiler, exports::SporSamlefil}) d.svar(s, Svar::Ja);
    d.svar(exports::SporPrefiks, prefiks);
    for (const auto& s : {exports::SporPeriode, exports::SporMinutterFor, exports::SporMinutterEtter})
        d.svar(s, Forslag{});
    const Utfall utfall = (vindu.*klikk)();
    return {utfall, (d.meldinger() + d.grunner()).join('|')};
}

// Settings and files a user or another program spoiled, and prefixes that cannot begin a file
// name: each export ends with its message and writes nothing, neither workbook nor template.
TEST_F(Eksporter, OdelagteInnstillingerFilerOgPrefiksGirMeldingOgIngenFil)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s}; });
    const QByteArray ett = "23.11.2012 00:10:00";
    const QByteArray mange = QList<QByteArray>(40000, ett).join('!');
    const QString ugyldig = u"Ugyldig filnavn: "_s;
    const struct {
        QList<std::pair<Boks, QString>> valg;
        QByteArray snupunkter;
        QString prefiks = u"X"_s, melding = exports::FeilMelding;
        Utfall utfall = Utfall::Avvist;
    } tilfeller[] = {
        {{{Boks::Text6, u"abc"_s}}, ett},
        // An empty range of cycles is no error: nothing to write.
        {{{Boks::Text6, u"-5"_s}, {Boks::Text4, u"-7"_s}}, ett, u"X"_s, u"Eksporten er ferdig"_s, Utfall::Ferdig},
        {{{Boks::Text6, u"99999"_s}}, ett},
        {{{Boks::Text6, u"1E300"_s}}, ett},
        {{{Boks::Text1, u"1E300"_s}}, ett},
        {{{Boks::Text6, u"2"_s}}, ""},
        {{{Boks::Text6, u"2"_s}}, "\x01\xff!!"},
        {{{Boks::Text6, u"2"_s}}, "31.02.2012 00:10:00"},
        {{{Boks::Text6, u"40000"_s}}, mange},
        {{{Boks::Text6, u"2"_s}}, ett, u"a/b"_s, ugyldig},
        {{{Boks::Text6, u"2"_s}}, ett, u"x\ty"_s, ugyldig},
        {{{Boks::Text6, u"2"_s}}, ett, QString(240, QLatin1Char('p')), ugyldig},
    };
    const QByteArray samleMal = mappe.les(u"Mal_desorpsjon_areal_alle.xlsx"_s);
    for (const auto& t : tilfeller) {
        SCOPED_TRACE((t.valg.value(0).second + u" "_s + t.snupunkter.left(20) + u" "_s + t.prefiks).toStdString());
        mappe.skriv(files::SnuPunktFil, t.snupunkter);
        for (Klikk klikk : Eksportene) {
            const auto [utfall, meldinger] = alene(mappe, klikk, t.valg, t.prefiks);
            EXPECT_EQ(utfall, t.utfall) << meldinger;
            EXPECT_TRUE(meldinger.contains(t.melding)) << meldinger;
        }
    }
    EXPECT_EQ(utfiler(), QStringList());
    EXPECT_EQ(mappe.les(u"Mal_desorpsjon_areal_alle.xlsx"_s), samleMal);

    // An output folder that is a file is left as it is.
    QDir(ut(QString())).removeRecursively();
    mappe.skriv(u"Data_Bearbeidet"_s, "fil");
    mappe.skriv(files::SnuPunktFil, ett);
    EXPECT_EQ(alene(mappe, &app::Form1::Command3_Click, {}, u"X"_s).first, Utfall::Avvist);
    EXPECT_EQ(mappe.les(u"Data_Bearbeidet"_s), "fil");
}

TEST_F(Eksporter, AvviserUtenSnupunkterDataEllerSvar)
{
    const struct {
        const char* knapp;
        Utfall (app::Form1::*klikk)();
        QString tomTabell;
    } kommandoer[] = {{"Command3", &app::Form1::Command3_Click, exports::FeilMelding},
                      {"Command5", &app::Form1::Command5_Click, u"Finnes det data i tabellen?"_s},
                      {"Command12", &app::Form1::Command12_Click, exports::FeilMelding}};
    for (const auto& k : kommandoer) {
        SCOPED_TRACE(k.knapp);
        QFile::remove(mappe.sti(files::SnuPunktFil));
        QDir(ut(QString())).removeRecursively();
        // The button itself, before any cycle search.
        form().findChild<QPushButton*>(QLatin1String(k.knapp))->click();
        EXPECT_EQ(dialogs.meldinger().last(), u"Du må først finne antall sykluser"_s);

        // Nothing imported: the chooser is empty. Neither refusal makes the output folder.
        snupunkter({Minutt});
        const QStringList kolonner = form().kolonner();
        form().settKolonner({});
        EXPECT_EQ((form().*k.klikk)(), Utfall::Avvist);
        EXPECT_EQ(dialogs.meldinger().last(), u"Ingen data importert"_s);
        EXPECT_FALSE(QDir(ut(QString())).exists());
        form().settKolonner(kolonner);

        // No to the question, then an empty prefix: silent ends; the folder is made all the same.
        const size_t vist = dialogs.dialoger().size();
        svar(Svar::Nei, Svar::Ja, QString());
        EXPECT_EQ((form().*k.klikk)(), Utfall::Ferdig);
        EXPECT_EQ((form().*k.klikk)(), Utfall::Ferdig);
        EXPECT_EQ(dialogs.dialoger().size(), vist + 3);
        EXPECT_TRUE(QDir(ut(QString())).exists());

        // An empty table.
        svar(Svar::Ja, u"P"_s);
        EXPECT_EQ((form().*k.klikk)(), Utfall::Avvist);
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(k.tomTabell)) << dialogs.meldinger().last();
        EXPECT_TRUE(utfiler().isEmpty());
    }
}

}  // namespace
