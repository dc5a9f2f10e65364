// tolvik-batch export-single, edit-title and test: answers from the arguments, the messages
// printed, the exit status.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class BatchEksport : public Eksportmappe {};

TEST_F(BatchEksport, TittelenFolgerMedTilSenereEksport)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s}; });
    snupunkter({10 * 60, 20 * 60});
    auto r = batch({"edit-title", "--single", "--title", "Forsøk 7"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();

    r = batch({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "Lab"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    EXPECT_EQ(r.ut, QStringLiteral("Vil du lage excel-filer for 1 run?\n\nEksporten er ferdig!\n\n"));
    const Bok bok = lesArbeidsbok(ut(QStringLiteral("Lab_2.xlsx")));
    EXPECT_EQ(bok.diagrammer(2, "tittel"), QVariantList({"Forsøk 7", "Forsøk 7"}));
    EXPECT_EQ(bok.diagrammer(2, "xmin").value(0), 11.0);  // first row 20:00 − 9 min

    // Names that differ only in case name one file: a later export overwrites the file there.
    mappe.skriv(QStringLiteral("Data_Bearbeidet/LAB_Samlefil.xlsm"), "gammel");
    for (const QString& kommando : {"export-single", "export-combined"}) {
        r = batch(
            {"--column", "C", "--adsorption", "--set", "Text4=2", "--set", "Text6=2", kommando, "--prefix", "lab"});
        EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    }
    EXPECT_EQ(utfiler(), QStringList({"LAB_Samlefil.xlsm", "Lab_2.xlsx"}));
    EXPECT_TRUE(lesArbeidsbok(ut(QStringLiteral("LAB_Samlefil.xlsm"))).json[QStringLiteral("makro")].toBool());

    // A failure shows the export's one message; the cause goes to stderr for diagnosis.
    r = batch({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "a/b"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.ut, QStringLiteral("Vil du lage excel-filer for 1 run?\n\n") + exports::FeilMelding + "\n\n");
    EXPECT_EQ(r.feil, QStringLiteral("Ugyldig filnavn: a/b (tegnet «/» kan ikke stå i et filnavn)\n"));

    // A prefix that cannot begin a file name is refused before any workbook or template is written.
    const QStringList utFor = utfiler();
    const QByteArray samleMal = mappe.les(QStringLiteral("Mal_desorpsjon_areal_alle.xlsx"));
    for (const QString& kommando : {"export-single", "export-combined", "integrate"})
        for (const QString& prefiks : {QStringLiteral("a/b"), QStringLiteral("x\ty"), QString(240, QLatin1Char('p'))}) {
            r = batch({"--set", "Text4=1", "--set", "Text6=2", kommando, "--prefix", prefiks});
            EXPECT_EQ(r.status, 1) << kommando.toStdString();
            EXPECT_TRUE((r.ut + r.feil).contains(QStringLiteral("Ugyldig filnavn: "))) << r.ut.toStdString();
        }
    EXPECT_EQ(utfiler(), utFor);
    EXPECT_EQ(mappe.les(QStringLiteral("Mal_desorpsjon_areal_alle.xlsx")), samleMal);

    EXPECT_EQ(batch({"export-single", "--prefix", "Nei", "--no"}).status, 0);
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("Nei_1.xlsx"))));
}

// Settings and files a user or another program spoiled: each export ends with its message and
// writes nothing.
TEST_F(BatchEksport, OdelagteInnstillingerOgFilerGirMeldingOgIngenFil)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s}; });
    const QStringList mange(40000, QStringLiteral("23.11.2012 00:10:00"));
    const struct {
        QStringList valg;
        QByteArray snupunkter;
        int status = 1;  // an empty range of cycles is no error: nothing to write
    } tilfeller[] = {
        {{"--set", "Text6=abc"}, "23.11.2012 00:10:00"},
        {{"--set", "Text6=-5", "--set", "Text4=-7"}, "23.11.2012 00:10:00", 0},
        {{"--set", "Text6=99999"}, "23.11.2012 00:10:00"},
        {{"--set", "Text6=1E300"}, "23.11.2012 00:10:00"},
        {{"--set", "Text1=1E300"}, "23.11.2012 00:10:00"},
        {{"--set", "Text6=2"}, ""},
        {{"--set", "Text6=2"}, "\x01\xff!!"},
        {{"--set", "Text6=2"}, "31.02.2012 00:10:00"},
        {{"--set", "Text6=40000"}, mange.join(QLatin1Char('!')).toLatin1()},
    };
    for (const auto& t : tilfeller) {
        mappe.skriv(QStringLiteral("SnuPunkter.txt"), t.snupunkter);
        for (const QString& kommando : {"export-single", "export-combined", "integrate"}) {
            const auto r = batch(t.valg + QStringList{kommando, "--prefix", "X"});
            EXPECT_EQ(r.status, t.status) << t.valg.join(' ').toStdString() << ' ' << kommando.toStdString();
        }
    }
    EXPECT_EQ(utfiler(), QStringList());
    // An output folder that is a file is left as it is.
    QDir(ut(QString())).removeRecursively();
    mappe.skriv(QStringLiteral("Data_Bearbeidet"), "fil");
    mappe.skriv(QStringLiteral("SnuPunkter.txt"), "23.11.2012 00:10:00");
    EXPECT_EQ(batch({"export-single", "--prefix", "X"}).status, 1);
    EXPECT_EQ(mappe.les(QStringLiteral("Data_Bearbeidet")), "fil");
}

TEST_F(BatchEksport, UtfallOgBruksfeil)
{
    auto r = batch({"export-single", "--prefix", "P"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.ut, QStringLiteral("Du må først finne antall sykluser\n\n"));

    const QByteArray ads = mappe.les(exports::MalAdsorpsjon);
    r = batch({"--desorption", "edit-title", "--combined", "--title", "Des"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    EXPECT_EQ(mappe.les(exports::MalAdsorpsjon), ads);

    EXPECT_EQ(batch({"test"}).status, 0);
    QFile::remove(mappe.sti(exports::MalSykluser));
    EXPECT_EQ(batch({"test"}).status, 1);
    EXPECT_EQ(batch({"edit-title", "--single", "--title", "X"}).status, 1);

    for (const QStringList& galt :
         {QStringList{"edit-title", "--title", "X"},
          QStringList{"edit-title", "--single", "--combined", "--title", "X"}, QStringList{"edit-title", "--single"},
          QStringList{"export-single"}, QStringList{"test", "--ekstra"}})
        EXPECT_EQ(batch(galt).status, 2) << galt.join(' ').toStdString();
}

}  // namespace
