// "9.  Lag enkeltgraf" on a real program folder: which cycles become workbooks, what the
// workbooks hold as openpyxl reads them, and how refusals and failures end the command;
// and the refusals every cycle export makes before it begins.
#include "felles/Eksportmappe.h"

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
        sett(Boks::Text1, QStringLiteral("2"));
        sett(Boks::Text2, QStringLiteral("3"));
    }
    Utfall eksporter(const QString& prefiks)
    {
        svar({Svar::Ja, prefiks});
        return form().Command3_Click();
    }
    // The workbook of the cycle with turning point T: rows T−1:30 … T+3:00 (the row at T−2:00
    // is outside), O1 and both charts' axis; every other cell as the template has it.
    void sjekkSyklus(const QString& fil, int T, double o1, double akse)
    {
        SCOPED_TRACE(fil.toStdString());
        const Bok bok = lesArbeidsbok(ut(fil)), mal = lesArbeidsbok(mappe.sti(exports::MalSykluser));
        QJsonObject celler = bok.celler, malceller = mal.celler;
        auto ta = [&](const QString& adresse) { return malceller.remove(adresse), celler.take(adresse); };
        EXPECT_DOUBLE_EQ(ta(QStringLiteral("O1")).toDouble(), o1);
        for (int r = 2; r <= 11; ++r) {
            const int s = T - 90 + 30 * (r - 2);
            EXPECT_EQ(ta(QStringLiteral("A%1").arg(r)).toString(), tidTekst(s)) << r;
            const Verdier v = verdier(s);
            for (int i = 0; i < v.size(); ++i) {
                const QJsonValue c = ta(QStringLiteral("%1%2").arg(QChar('C' + i)).arg(r));
                if (v[i])
                    EXPECT_DOUBLE_EQ(c.toDouble(), *v[i]) << i << " " << r;
                else
                    EXPECT_TRUE(c.isUndefined()) << r;
            }
        }
        EXPECT_EQ(celler, malceller);
        EXPECT_EQ(bok.json[QStringLiteral("ark")], mal.json[QStringLiteral("ark")]);
        EXPECT_EQ(bok.diagrammer(2, "xmin"), QVariantList({akse, akse}));
    }
};

TEST_F(Enkeltgraf, ValgteSykluserBlirArbeidsbokerMedVinduForskyvningOgAkse)
{
    fyll();
    // The proposed prefix gives a double underscore; a file of that name is replaced.
    sykluser("1", "1");
    QDir().mkdir(mappe.sti(QStringLiteral("Data_Bearbeidet")));
    const QString foreslatt = vb::dagensDatoTekst() + QStringLiteral("__1.xlsx");
    files::SkrivTilFil(ut(foreslatt), QStringLiteral("gammel fil"));
    svar({Svar::Ja, Forslag{}});
    EXPECT_EQ(form().Command3_Click(), Utfall::Ferdig);
    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(QStringList({d[0].tekst, d[1].tekst, d[1].tittel, d[1].forslag, d[2].tekst}),
              QStringList({"Vil du lage excel-filer for 1 run?", "Angi filnavn", "Filnavn",
                           vb::dagensDatoTekst() + QLatin1Char('_'), "Eksporten er ferdig!"}));
    EXPECT_TRUE(d[0].knapper == dialogs::Knapper::JaNei && d[2].ikon == dialogs::Ikon::Informasjon);
    sjekkSyklus(foreslatt, Snupunkter[0], 58.5, 58);

    // Cycles 2 and 3 only; the axis starts at the window start rounded half to even.
    sykluser("2", "3");
    EXPECT_EQ(eksporter(QStringLiteral("Forsok")), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger().mid(2), QStringList({"Vil du lage excel-filer for 2 run?", "Eksporten er ferdig!"}));
    EXPECT_EQ(utfiler(), QStringList({foreslatt, "Forsok_2.xlsx", "Forsok_3.xlsx"}));
    sjekkSyklus(QStringLiteral("Forsok_2.xlsx"), Snupunkter[1], 230.5, 230);
    sjekkSyklus(QStringLiteral("Forsok_3.xlsx"), Snupunkter[2], 231.5, 232);
    EXPECT_EQ(label4(), vb::antallTekst(12) + QStringLiteral(" (Run 3)"));
}

TEST_F(Enkeltgraf, SyklusUtenRaderEllerUtenMalGirIngenFil)
{
    fyll();
    // First cycle after the last: zero runs, nothing written.
    sykluser("4", "3");
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Ferdig);
    // Without the template each cycle with rows says so; cycle 2 has no rows and says nothing.
    snupunkter({60 * Minutt, 400 * Minutt, 232 * Minutt});
    ASSERT_TRUE(QFile::remove(mappe.sti(exports::MalSykluser)));
    sykluser("1", "3");
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Vil du lage excel-filer for 0 run?", "Eksporten er ferdig!",
                                                "Vil du lage excel-filer for 3 run?", "Du mangler malfila",
                                                "Du mangler malfila", "Eksporten er ferdig!"}));
    EXPECT_TRUE(utfiler().isEmpty());
}

TEST_F(Enkeltgraf, FeilStopperKommandoenMedFellesMeldingOgOdeleggerIngenting)
{
    fyll();
    auto feiler = [&](std::initializer_list<dialogs::SkriptDialogs::Svaret> s) {
        svar(s);
        EXPECT_EQ(form().Command3_Click(), Utfall::Avvist);
        EXPECT_EQ(dialogs.meldinger().last(), exports::FeilMelding);
    };
    // More cycles asked for than found: the ones that exist are written, then the error.
    sykluser("1", "5");
    feiler({Svar::Ja, QStringLiteral("A")});
    EXPECT_FALSE(dialogs.meldinger().contains(QStringLiteral("Eksporten er ferdig!")));
    const QStringList skrevet = {"A_1.xlsx", "A_2.xlsx", "A_3.xlsx"};
    EXPECT_EQ(utfiler(), skrevet);

    // Settings that are no numbers: already in the question, or when the first window is computed.
    sykluser("x", "1");
    feiler({});
    sykluser("1", "1");
    sett(Boks::Text2, QStringLiteral("tre"));
    feiler({Svar::Ja, QStringLiteral("B")});
    sett(Boks::Text2, QStringLiteral("3"));
    // A prefix that no file name may hold, though this file system would take it.
    feiler({Svar::Ja, QStringLiteral("a:b")});

    // A template with a single chart on its second sheet fails at the second axis: left as it
    // was, nothing written.
    QFile::remove(mappe.sti(exports::MalSykluser));
    QFile::copy(mappe.sti(exports::MalAdsorpsjon), mappe.sti(exports::MalSykluser));
    const QByteArray enGraf = mappe.les(exports::MalSykluser);
    feiler({Svar::Ja, QStringLiteral("R")});
    EXPECT_EQ(mappe.les(exports::MalSykluser), enGraf);

    // A turning point that is no date-time.
    files::SkrivTilFil(mappe.sti(files::SnuPunktFil), QStringLiteral("i går"));
    feiler({Svar::Ja, QStringLiteral("C")});
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
    for (Boks b : {Boks::Text1, Boks::Text2, Boks::Text4, Boks::Text6}) sett(b, QStringLiteral("1"));
    EXPECT_EQ(eksporter(QStringLiteral("Full")), Utfall::Ferdig);
    EXPECT_EQ(label4(), vb::antallTekst(32767) + QStringLiteral(" (Run 1)"));

    rad(Minutt, {-1});
    sykluser("2", "2");
    EXPECT_EQ(eksporter(QStringLiteral("Full")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), exports::FeilMelding);
    EXPECT_EQ(utfiler(), QStringList({"Full_1.xlsx"}));
}

class Eksporter : public Eksportmappe {};

TEST_F(Eksporter, AvviserUtenSnupunkterDataEllerSvar)
{
    const QString utmappe = mappe.sti(QStringLiteral("Data_Bearbeidet"));
    const struct {
        const char* knapp;
        Utfall (app::Form1::*klikk)();
        QString tomTabell;
    } kommandoer[] = {{"Command3", &app::Form1::Command3_Click, exports::FeilMelding},
                      {"Command5", &app::Form1::Command5_Click, QStringLiteral("Finnes det data i tabellen?")},
                      {"Command12", &app::Form1::Command12_Click, exports::FeilMelding}};
    for (const auto& k : kommandoer) {
        SCOPED_TRACE(k.knapp);
        QFile::remove(mappe.sti(files::SnuPunktFil));
        QDir(utmappe).removeRecursively();
        // The button itself, before any cycle search.
        form().findChild<QPushButton*>(QLatin1String(k.knapp))->click();
        EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Du må først finne antall sykluser"));

        // Nothing imported: the chooser is empty. Neither refusal makes the output folder.
        snupunkter({Minutt});
        const QStringList kolonner = form().kolonner();
        form().settKolonner({});
        EXPECT_EQ((form().*k.klikk)(), Utfall::Avvist);
        EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Ingen data importert"));
        EXPECT_FALSE(QDir(utmappe).exists());
        form().settKolonner(kolonner);

        // No to the question, then an empty prefix: silent ends; the folder is made all the same.
        const size_t vist = dialogs.dialoger().size();
        svar({Svar::Nei, Svar::Ja, QString()});
        EXPECT_EQ((form().*k.klikk)(), Utfall::Ferdig);
        EXPECT_EQ((form().*k.klikk)(), Utfall::Ferdig);
        EXPECT_EQ(dialogs.dialoger().size(), vist + 3);
        EXPECT_TRUE(QDir(utmappe).exists());

        // An empty table.
        svar({Svar::Ja, QStringLiteral("P")});
        EXPECT_EQ((form().*k.klikk)(), Utfall::Avvist);
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(k.tomTabell)) << dialogs.meldinger().last().toStdString();
        EXPECT_TRUE(utfiler().isEmpty());
    }
}

}  // namespace
