// tolvik-batch export-single, export-combined, edit-title and test: answers from the arguments,
// the messages printed, the exit status.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class BatchEksport : public Eksportmappe {};

// What the road test leaves out: the messages on stdout and the cause on stderr, names that differ
// only in case, and No.
TEST_F(BatchEksport, MeldingerFilnavnOgNei)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s}; });
    snupunkter({10 * 60, 20 * 60});
    auto r = batch({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "Lab"});
    EXPECT_EQ(r.status, 0) << r.feil;
    EXPECT_EQ(r.ut, u"Vil du lage excel-filer for 1 run?\n\nEksporten er ferdig!\n\n"_s);

    // Names that differ only in case name one file: a later export overwrites the file there.
    mappe.skriv(u"Data_Bearbeidet/LAB_Samlefil.xlsm"_s, "gammel");
    for (const QString& kommando : {"export-single", "export-combined"}) {
        r = batch(
            {"--column", "C", "--adsorption", "--set", "Text4=2", "--set", "Text6=2", kommando, "--prefix", "lab"});
        EXPECT_EQ(r.status, 0) << r.feil;
    }
    EXPECT_EQ(utfiler(), QStringList({"LAB_Samlefil.xlsm", "Lab_2.xlsx"}));
    EXPECT_TRUE(mappe.les(u"Data_Bearbeidet/LAB_Samlefil.xlsm"_s).startsWith("PK"));

    // A failure shows the export's one message; the cause goes to stderr for diagnosis.
    r = batch({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "a/b"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.ut, u"Vil du lage excel-filer for 1 run?\n\n"_s + exports::FeilMelding + "\n\n");
    EXPECT_EQ(r.feil, u"Ugyldig filnavn: a/b (tegnet «/» kan ikke stå i et filnavn)\n"_s);

    EXPECT_EQ(batch({"export-single", "--prefix", "Nei", "--no"}).status, 0);
    EXPECT_FALSE(QFile::exists(ut(u"Nei_1.xlsx"_s)));
}

TEST_F(BatchEksport, UtfallOgBruksfeil)
{
    EXPECT_EQ(batch({"test"}).status, 0);
    QFile::remove(mappe.sti(exports::MalSykluser));
    EXPECT_EQ(batch({"test"}).status, 1);

    for (const QStringList& galt : {QStringList{"edit-title", "--title", "X"},
                                    QStringList{"edit-title", "--single", "--combined", "--title", "X"},
                                    QStringList{"edit-title", "--single"}, QStringList{"export-single"}})
        EXPECT_EQ(batch(galt).status, 2) << galt.join(' ');
}

}  // namespace
