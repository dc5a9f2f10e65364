// "7.  Finn sykluser" and the automatic search on the real window: the groups below or above the
// threshold, the turning points written, the settings proposed, and the refusals; and both through
// tolvik-batch. The boxes and messages are compared with known-good transcripts in gull/.
#include "analysis/AutomatiskSoking.h"
#include "analysis/Sykluser.h"
#include "felles/Eksportmappe.h"

#include <QImage>

namespace {

const QString SnuPunkter = u"SnuPunkter.txt"_s, SokStart = u"SokStart.txt"_s;

// Data start 14:00:00. With a search start one minute later and the threshold 1:
// group A 14:01:10-14:01:40 in 10-second steps (the value 1 at 14:01:45 is no hit),
// group B the lone row 14:02:05, group C 14:03:00-14:03:05, then 11 seconds on the last group 14:03:16.
// The row at exactly 14:01:00 holds the smallest value but lies on the search start.
const std::vector<test::Rad> Sykluser = {{0, 5},      {60, 0.01},  {70, 0.3},  {80, 0.2},  {90, 0.1},
                                         {100, 0.05}, {105, 1.0},  {110, 4},   {125, 0.4}, {150, 4},
                                         {180, 0.2},  {185, 0.15}, {196, 0.1}, {200, 4}};

using Syklusfinning = test::MedVindu;
using dialogs::Svar;

TEST_F(Syklusfinning, GrupperGirSnuPunkterOgJaSetterValgene)
{
    fyll(Sykluser);
    vindu();
    const std::tuple<bool, QString, Svar> tilfeller[] = {
        // Adsorpsjon, the threshold, the answer
        // A: minimum of its span without its last row (0,05 at 14:01:40 lies outside); B: empty span, day zero;
        // C ends at 14:03:05 because 11 seconds follow it; the last group gets nothing. The minimum
        // proposed is 0,05, not the 0,01 on the search start second.
        {true, u"1"_s, Svar::Ja},
        // Desorpsjon takes the largest value; No leaves the settings.
        {false, u"1,0"_s, Svar::Nei},
        // Hits 14:01:40 alone: one group, nothing closed, an empty line in the file.
        {true, u"0.07"_s, Svar::Ja},
        // Hits 14:01:30, 14:01:40 and 14:03:16: two groups, one turning point, the interval runs
        // from the first group's last row to the second group's first (14:01 to 14:03).
        {true, u"0.12"_s, Svar::Ja},
    };
    // Each search's boxes, SnuPunkter.txt, SokStart.txt and the settings; the same whether or not the
    // store may read ID order from the time index.
    db::Database& k = f->kontekst().tilkobling;
    QString logg[2];
    for (const bool tidFolgerId : {false, true}) {
        k.settRadorden(tidFolgerId, false);
        for (const auto& [ads, terskel, svaret] : tilfeller)
            logg[tidFolgerId] += sok(&app::Form1::Command7_Click, ads, terskel, svaret);
    }
    test::sjekkGull(u"analysis/gull/Syklusfinning.Grupper.txt"_s, logg[0]);
    EXPECT_EQ(logg[1], logg[0]);

    // The command built the column's time index, which its statements read (Setninger.TidsnokkelBrukerIndeks).
    // (That a search goes on when the index cannot be written is the full-disk test's part, tests/app/disk.sh.)
    EXPECT_EQ(k.spor(u"Select count(*) from sqlite_master where name = 'DataLinjer_Tid_C'"_s).tall(0), 1);
}

TEST_F(Syklusfinning, TomeDataAvbruddOgUgyldigeSvar)
{
    dialogs.svar(u"50"_s);
    EXPECT_EQ(vindu().Command7_Click(), Utfall::Avvist);  // an empty table ends silently
    QString logg = test::forlop(dialogs);
    fyll(Sykluser);
    // Every refusal says so with an information box. A SnuPunkter.txt from an earlier run, under
    // any case of its name (planted when given), is gone when the search has begun.
    auto avvist = [&](int kolonne, std::vector<dialogs::SkriptDialogs::Svaret> svar, const char* hva,
                      const QString& tidligere = {}) {
        if (!tidligere.isEmpty()) mappe.skriv(tidligere, "01.01.2012\r\n"), mappe.skriv(SokStart, "01.01.2012!1\r\n");
        const size_t fra = dialogs.dialoger().size();
        f->velgKolonne(kolonne);
        for (const auto& s : svar) dialogs.svar(s);
        EXPECT_EQ(f->Command7_Click(), Utfall::Avvist) << hva;
        logg += u"\n== "_s + QLatin1String(hva) + '\n' + test::forlop(dialogs, fra);
        EXPECT_FALSE(!tidligere.isEmpty() &&
                     (QFile::exists(mappe.sti(tidligere)) || QFile::exists(mappe.sti(SokStart))))
            << hva;
    };
    avvist(0, {u"1"_s, u"0.02"_s}, "no hit: 0,01 lies on the search start", u"Snupunkter.txt"_s);
    avvist(0, {u"1"_s, QString()}, "Cancel at the threshold", SnuPunkter);
    avvist(0, {QString()}, "Cancel at the start minutes");
    avvist(0, {u"en time"_s}, "start minutes no number");
    avvist(0, {u"1"_s, u"lav"_s}, "threshold no number");
    avvist(2, {u"1"_s}, "a letter the table does not have");
    avvist(3, {u"1"_s}, "an entry without a letter");
    // Without a row after the search start the prompt shows no number and proposes nothing.
    avvist(0, {u"100000"_s, dialogs::SkriptDialogs::Forslag{}}, "no row after the search start");

    // That a write-protected file of an earlier search is neither removed nor replaced is SlettFiler's
    // check (Tekstfiler.SkrivLatin1MedCrLfGjennomTmpFil).

    QFile::remove(mappe.sti(u"Kolonner.txt"_s));
    const size_t fra = dialogs.dialoger().size();
    EXPECT_EQ(vindu({}).Command7_Click(), Utfall::Avvist);
    test::sjekkGull(u"analysis/gull/Syklusfinning.Avvist.txt"_s,
                    logg + u"\n== nothing imported\n"_s + test::forlop(dialogs, fra));
}

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
