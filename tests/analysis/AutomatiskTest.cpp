#include "analysis/AutomatiskSoking.h"
#include "felles/Eksportmappe.h"

#include <QImage>

namespace {

// First value 10, then a row every 10 seconds from 14:01:10: three low phases of six rows
// (1,5 with one 1,2) between high phases of 9,5; each low phase is one group.
std::vector<test::Rad> treSykluser(double forste)
{
    std::vector<test::Rad> r = {{0, forste}};
    for (int k = 0; k < 42; ++k) r.push_back({70 + 10 * k, k % 12 >= 6 && k < 36 ? (k % 12 == 8 ? 1.2 : 1.5) : 9.5});
    return r;
}

using AutomatiskSok = test::MedVindu;

TEST_F(AutomatiskSok, NaermestOnsketAntallBrukesOgJaSetterValgene)
{
    fyll(treSykluser(10));
    vindu();
    const std::tuple<bool, QString, dialogs::Svar> tilfeller[] = {
        // Adsorpsjon, the cycles wanted, Yes
        // Minimum 1,2 and the first value 10 give the step 0,88; the first pass already finds the three
        // groups, which comes nearest to 30 of all passes (the highest ones take every row as one group).
        // One turning point per group, the last group included.
        {true, u"30"_s, dialogs::Svar::Ja},
        // No leaves SnuPunkter.txt and the settings; the word stays "mindre" with Desorpsjon too.
        {false, u"1"_s, dialogs::Svar::Nei},
        // Desorpsjon takes the largest value of each group.
        {false, u"3"_s, dialogs::Svar::Ja},
    };
    // Each search's boxes, its turning points, then the settings; beside the turning points the
    // search start and the chosen pass's threshold, for the graph.
    QString logg;
    for (const auto& [ads, sykluser, ja] : tilfeller) logg += sok(&app::Form1::Command11_Click, ads, sykluser, ja);
    test::sjekkGull(u"analysis/gull/AutomatiskSok.txt"_s, logg);
}

TEST_F(AutomatiskSok, EnderStilleUtenMelding)
{
    fyll(treSykluser(1.2));  // the first value equals the minimum: no step, no pass finds a row
    vindu();
    // Cancel at the number of cycles, no row after the search start, a letter the table does not have.
    for (auto [kolonne, start, sykluser] :
         {std::tuple{0, u"1"_s, u"30"_s}, {0, u"1"_s, QString()}, {0, u"100000"_s, u"30"_s}, {2, u"1"_s, u"30"_s}}) {
        f->velgKolonne(kolonne);
        svar(start, sykluser);
        EXPECT_EQ(f->Command11_Click(), Utfall::Avvist) << start << sykluser << kolonne;
    }
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
    EXPECT_FALSE(QFile::exists(mappe.sti(u"SnuPunkter.txt"_s)));
}

// tolvik-batch passes its arguments as the answers and prints the messages (after the values above 1,
// the graph's count of points); the graph's options go wrong with status 2. In the known-good transcript.
TEST_F(AutomatiskSok, BatchFinnerSykluserSokerOgTegner)
{
    fyll(treSykluser(10));
    mappe.skriv(u"Kolonner.txt"_s, test::Kolonner);
    const QString png = mappe.sti(u"graf.png"_s), pdf = mappe.sti(u"graf.pdf"_s);
    QString logg;
    for (const QStringList& args : {QStringList{"--adsorption", "find-cycles", "--start", "1", "--threshold", "2"},
                                    {"auto-search", "--start", "1", "--cycles", "30"},
                                    {"graph", "--png", png},
                                    {"graph", "--log", "--from", "2,5", "--to", "5", "--png", png},
                                    {"find-cycles"},  // --start is required
                                    {"graph", "--from", "x"},
                                    {"graph", "--from", "5", "--to", "5"},
                                    {"graph", "--png", png, "--pdf", pdf},
                                    {"graph", "--aligned"}})
        logg += mappe.utskrift(args);
    test::sjekkGull(u"analysis/gull/AutomatiskSok.Batch.txt"_s, logg);
    EXPECT_GT(QImage(png).width(), 400);
}

}  // namespace
