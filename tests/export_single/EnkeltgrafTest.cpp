// "9.  Lag enkeltgraf" on a real program folder: which cycles become workbooks, what the
// workbooks hold as openpyxl reads them, and how refusals and failures end the command.
#include "Eksportmappe.h"

#include "export/Eksport.h"
#include "files/Tekstfil.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QPushButton>

using ui::Boks;
using ui::SkriptDialogs;

namespace {

constexpr int Minutt = 60;
// Turning points whose windows start 58.5, 230.5 and 231.5 minutes into the data.
const QList<int> Snupunkter = {60 * Minutt, 232 * Minutt, 233 * Minutt};

class Enkeltgraf : public Eksportmappe {
protected:
    // Rows every 30 s for five hours, three turning points, windows from 2 minutes before
    // to 3 minutes after each of them.
    void fyll()
    {
        rader(0, 300 * Minutt, 30);
        snupunkter(Snupunkter);
        sett(Boks::Text1, QStringLiteral("2"));
        sett(Boks::Text2, QStringLiteral("3"));
    }
    Utfall eksporter(const QString& prefiks)
    {
        dialogs.svar(ui::Svar::Ja);
        dialogs.svar(prefiks);
        return form().Command3_Click();
    }
    QStringList utfiler() const
    {
        return QDir(mappe.sti(QStringLiteral("Data_Bearbeidet"))).entryList(QDir::Files, QDir::Name);
    }

    // The workbook of the cycle with turning point T: rows T−1:30 … T+3:00 (the row at T−2:00
    // is outside), O1 and both axes; every other cell as the template has it.
    void sjekkSyklus(const QString& fil, int T, double o1, double akse)
    {
        SCOPED_TRACE(fil.toStdString());
        const QJsonObject bok = lesArbeidsbok(ut(fil));
        const QJsonObject mal = lesArbeidsbok(mappe.sti(eksport::MalSykluser));
        EXPECT_EQ(bok[QStringLiteral("ark")], mal[QStringLiteral("ark")]);

        QJsonObject celler = bok[QStringLiteral("celler")].toObject();
        QJsonObject malceller = mal[QStringLiteral("celler")].toObject();
        auto ta = [&](const QString& adresse) {
            malceller.remove(adresse);
            return celler.take(adresse);
        };
        EXPECT_DOUBLE_EQ(ta(QStringLiteral("O1")).toDouble(), o1);
        for (int r = 0; r < 10; ++r) {
            const int s = T - 90 + 30 * r;
            const QString rad = QString::number(2 + r);
            EXPECT_EQ(ta(QStringLiteral("A") + rad).toString(), tidTekst(tid(s))) << rad.toStdString();
            EXPECT_DOUBLE_EQ(ta(QStringLiteral("C") + rad).toDouble(), s);
            EXPECT_DOUBLE_EQ(ta(QStringLiteral("D") + rad).toDouble(), s * 1e-10);
            for (int kol = 5; kol <= 10; ++kol)
                EXPECT_DOUBLE_EQ(ta(QChar('A' + kol - 1) + rad).toDouble(), s + kol);
            EXPECT_TRUE(ta(QStringLiteral("K") + rad).isUndefined()) << "K" << rad.toStdString();
        }
        EXPECT_EQ(celler, malceller) << "celler utenfor vinduet skal være som i malen";

        const QJsonArray grafer = bok[QStringLiteral("diagrammer")].toArray()[1].toArray();
        ASSERT_GE(grafer.size(), 2);
        EXPECT_DOUBLE_EQ(grafer[0][QStringLiteral("xmin")].toDouble(), akse);
        EXPECT_DOUBLE_EQ(grafer[1][QStringLiteral("xmin")].toDouble(), akse);
    }
};

TEST_F(Enkeltgraf, ValgteSykluserBlirArbeidsbokerMedVinduForskyvningOgAkse)
{
    fyll();
    sett(Boks::Text4, QStringLiteral("2"));
    sett(Boks::Text6, QStringLiteral("3"));
    EXPECT_EQ(eksporter(QStringLiteral("Forsok")), Utfall::Ferdig);

    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(d[0].tekst, QStringLiteral("Vil du lage excel-filer for 2 run?"));
    EXPECT_EQ(d[0].knapper, ui::Knapper::JaNei);
    EXPECT_EQ(d[0].ikon, ui::Ikon::Sporsmal);
    EXPECT_EQ(d[1].type, SkriptDialogs::Type::Inndata);
    EXPECT_EQ(d[1].tekst, QStringLiteral("Angi filnavn"));
    EXPECT_EQ(d[1].tittel, QStringLiteral("Filnavn"));
    EXPECT_EQ(d[1].forslag, vb::dagensDatoTekst() + QLatin1Char('_'));
    EXPECT_EQ(d[2].tekst, QStringLiteral("Eksporten er ferdig!"));
    EXPECT_EQ(d[2].ikon, ui::Ikon::Informasjon);

    EXPECT_EQ(utfiler(), QStringList({"Forsok_2.xlsx", "Forsok_3.xlsx"}));
    sjekkSyklus(QStringLiteral("Forsok_2.xlsx"), Snupunkter[1], 230.5, 230);
    sjekkSyklus(QStringLiteral("Forsok_3.xlsx"), Snupunkter[2], 231.5, 232);
    EXPECT_EQ(label4(), vb::antallTekst(12) + QStringLiteral(" (Run 3)"));
}

TEST_F(Enkeltgraf, ForeslattPrefiksGirDobbeltUnderstrekOgEksisterendeFilErstattes)
{
    fyll();
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("1"));
    QDir().mkdir(mappe.sti(QStringLiteral("Data_Bearbeidet")));
    const QString navn = vb::dagensDatoTekst() + QStringLiteral("__1.xlsx");
    filer::SkrivTilFil(ut(navn), QStringLiteral("gammel fil"));

    dialogs.svar(ui::Svar::Ja);
    dialogs.svar(SkriptDialogs::Forslag{});
    EXPECT_EQ(form().Command3_Click(), Utfall::Ferdig);
    EXPECT_EQ(utfiler(), QStringList({navn}));
    sjekkSyklus(navn, Snupunkter[0], 58.5, 58);
}

TEST_F(Enkeltgraf, AvslagAvbruddOgTomTabell)
{
    // No turning points yet: refused before anything else, no output folder. (The button itself.)
    form().findChild<QPushButton*>(QStringLiteral("Command3"))->click();
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Du må først finne antall sykluser"}));
    const QDir utmappe(mappe.sti(QStringLiteral("Data_Bearbeidet")));
    EXPECT_FALSE(utmappe.exists());

    // Nothing imported: the chooser is empty.
    snupunkter(Snupunkter);
    const QStringList kolonner = form().kolonner();
    form().settKolonner({});
    EXPECT_EQ(form().Command3_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Ingen data importert"));
    EXPECT_FALSE(utmappe.exists());
    form().settKolonner(kolonner);

    // No to the question, then an empty prefix: silent ends, the folder is made all the same.
    dialogs.svar(ui::Svar::Nei);
    EXPECT_EQ(form().Command3_Click(), Utfall::Ferdig);
    EXPECT_EQ(eksporter(QString()), Utfall::Ferdig);
    EXPECT_EQ(dialogs.dialoger().size(), 5u);  // two refusals; question; question and prefix box
    EXPECT_TRUE(utmappe.exists());

    // An empty table has no data start time.
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_TRUE(utfiler().isEmpty());
    EXPECT_FALSE(dialogs.ubrukteSvar());
}

TEST_F(Enkeltgraf, TommeUtvalgOgVinduerGirIngenFil)
{
    fyll();
    // First cycle after the last: the question counts zero runs, nothing is written.
    sett(Boks::Text4, QStringLiteral("4"));
    sett(Boks::Text6, QStringLiteral("3"));
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Vil du lage excel-filer for 0 run?", "Eksporten er ferdig!"}));
    EXPECT_TRUE(utfiler().isEmpty());

    // A turning point where no rows were logged: no file and no message for it.
    snupunkter({60 * Minutt, 400 * Minutt});
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("2"));
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Eksporten er ferdig!"));
    EXPECT_EQ(utfiler(), QStringList({"P_1.xlsx"}));
}

TEST_F(Enkeltgraf, ManglendeMalMeldesForHverSyklusMedRader)
{
    fyll();
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("3"));
    ASSERT_TRUE(QFile::remove(mappe.sti(eksport::MalSykluser)));
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Vil du lage excel-filer for 3 run?", "Du mangler malfila",
                                                "Du mangler malfila", "Du mangler malfila", "Eksporten er ferdig!"}));
    EXPECT_TRUE(utfiler().isEmpty());
}

TEST_F(Enkeltgraf, FeilStopperKommandoenMedFellesMelding)
{
    fyll();
    const QString feil = eksport::FeilMelding;
    // More cycles asked for than found: the ones that exist are written, then the error.
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("5"));
    EXPECT_EQ(eksporter(QStringLiteral("A")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), feil);
    EXPECT_FALSE(dialogs.meldinger().contains(QStringLiteral("Eksporten er ferdig!")));
    EXPECT_EQ(utfiler(), QStringList({"A_1.xlsx", "A_2.xlsx", "A_3.xlsx"}));

    // Settings that are no numbers: already in the question, or when the first window is computed.
    sett(Boks::Text6, QStringLiteral("3"));
    sett(Boks::Text4, QStringLiteral("x"));
    EXPECT_EQ(form().Command3_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), feil);
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text2, QStringLiteral("tre"));
    EXPECT_EQ(eksporter(QStringLiteral("B")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), feil);
    sett(Boks::Text2, QStringLiteral("3"));

    // A prefix that no file name can hold.
    EXPECT_EQ(eksporter(QStringLiteral("a/b")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), feil);
    EXPECT_EQ(eksporter(QStringLiteral("a:b")), Utfall::Avvist);

    // A turning point that is no date-time.
    filer::SkrivTilFil(mappe.sti(QStringLiteral("SnuPunkter.txt")), QStringLiteral("i går"));
    EXPECT_EQ(eksporter(QStringLiteral("C")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), feil);

    EXPECT_EQ(utfiler(), QStringList({"A_1.xlsx", "A_2.xlsx", "A_3.xlsx"}));
    EXPECT_FALSE(dialogs.ubrukteSvar());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Enkeltgraf, OdelagtMalEllerSperretUtfilGirFeilOgOdeleggerIngenting)
{
    fyll();
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("1"));
    mappe.skriv(eksport::MalSykluser, "ikke en arbeidsbok");
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_EQ(mappe.les(eksport::MalSykluser), QByteArray("ikke en arbeidsbok"));
    EXPECT_TRUE(QDir(mappe.sti(QStringLiteral("Data_Bearbeidet"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());

    // A workbook with a single chart on its second sheet fails at the second axis.
    QFile::remove(mappe.sti(eksport::MalSykluser));
    QFile::copy(mappe.sti(eksport::MalAdsorpsjon), mappe.sti(eksport::MalSykluser));
    const QByteArray enGraf = mappe.les(eksport::MalSykluser);
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_EQ(mappe.les(eksport::MalSykluser), enGraf);
    EXPECT_TRUE(utfiler().isEmpty());

    // A write-protected output file is not replaced.
    QFile::remove(mappe.sti(eksport::MalSykluser));
    QFile::copy(QStringLiteral(TOLVIK_DIST "/Mal_Sykluser.xlsx"), mappe.sti(eksport::MalSykluser));
    const QString fil = ut(QStringLiteral("P_1.xlsx"));
    filer::SkrivTilFil(fil, QStringLiteral("beskyttet"));
    QFile::setPermissions(fil, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_EQ(eksporter(QStringLiteral("P")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_EQ(innhold(fil), QByteArray("beskyttet\r\n"));

    // A folder in the file's place cannot be replaced either.
    QDir().mkdir(ut(QStringLiteral("Q_1.xlsx")));
    EXPECT_EQ(eksporter(QStringLiteral("Q")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_EQ(utfiler(), QStringList({"P_1.xlsx"}));
}

TEST_F(Enkeltgraf, RadtellerenTalerIkkeMerEnn32767)
{
    // 32 765 rows in one second fill the sheet's rows 2 to 32 766 and leave the counter at
    // 32 767; one more row would move it past.
    form();
    {
        db::Transaksjon tr(form().kontekst().tilkobling);
        for (int i = 0; i < 32765; ++i) rad(tid(Minutt), i);
        tr.fullfor();
    }
    snupunkter({Minutt, Minutt});
    sett(Boks::Text1, QStringLiteral("1"));
    sett(Boks::Text2, QStringLiteral("1"));
    sett(Boks::Text4, QStringLiteral("1"));
    sett(Boks::Text6, QStringLiteral("1"));
    EXPECT_EQ(eksporter(QStringLiteral("Full")), Utfall::Ferdig);
    EXPECT_EQ(utfiler(), QStringList({"Full_1.xlsx"}));
    EXPECT_EQ(label4(), vb::antallTekst(32767) + QStringLiteral(" (Run 1)"));

    rad(tid(Minutt), -1);
    sett(Boks::Text4, QStringLiteral("2"));
    sett(Boks::Text6, QStringLiteral("2"));
    EXPECT_EQ(eksporter(QStringLiteral("Full")), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), eksport::FeilMelding);
    EXPECT_EQ(utfiler(), QStringList({"Full_1.xlsx"}));
}

} // namespace
