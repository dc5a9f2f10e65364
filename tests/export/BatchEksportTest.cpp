// tolvik-batch export-single, export-combined, edit-title and test: answers from the arguments,
// the messages printed, the exit status.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class BatchEksport : public Eksportmappe {};

// What the road test leaves out: the messages on stdout and the cause on stderr, names that differ
// only in case (a later export overwrites the file there), and No; in the known-good transcript.
TEST_F(BatchEksport, MeldingerFilnavnOgNei)
{
    rader(0, 30 * 60, 60, [](int s) { return Verdier{s}; });
    snupunkter({10 * 60, 20 * 60});
    QString logg = mappe.utskrift({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "Lab"});
    mappe.skriv(u"Data_Bearbeidet/LAB_Samlefil.xlsm"_s, "gammel");
    for (const QString& kommando : {"export-single", "export-combined"})
        logg += mappe.utskrift(
            {"--column", "C", "--adsorption", "--set", "Text4=2", "--set", "Text6=2", kommando, "--prefix", "lab"});
    EXPECT_EQ(utfiler(), QStringList({"LAB_Samlefil.xlsm", "Lab_2.xlsx"}));
    EXPECT_TRUE(mappe.les(u"Data_Bearbeidet/LAB_Samlefil.xlsm"_s).startsWith("PK"));
    logg += mappe.utskrift({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "a/b"});
    logg += mappe.utskrift({"export-single", "--prefix", "Nei", "--no"});
    EXPECT_FALSE(QFile::exists(ut(u"Nei_1.xlsx"_s)));
    sjekkGull(u"export/gull/BatchEksport.Meldinger.txt"_s, logg);
}

// The template probe with and without its template, and usage errors of the title command and the exports.
TEST_F(BatchEksport, UtfallOgBruksfeil)
{
    QString logg = mappe.utskrift({"test"});
    QFile::remove(mappe.sti(exports::MalSykluser));
    logg += mappe.utskrift({"test"});
    for (const QStringList& galt : {QStringList{"edit-title", "--title", "X"},
                                    QStringList{"edit-title", "--single", "--combined", "--title", "X"},
                                    QStringList{"edit-title", "--single"}, QStringList{"export-single"}})
        logg += mappe.utskrift(galt);
    sjekkGull(u"export/gull/BatchEksport.Utfall.txt"_s, logg);
}

}  // namespace
