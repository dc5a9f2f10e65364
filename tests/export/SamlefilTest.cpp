// "7.  Lag samlegraf" on the real window: zero points, columns per cycle, clearing,
// the messages, and the workbook as openpyxl reads it.
#include "felles/Eksportmappe.h"

#include <QTimer>

using namespace test;

namespace {

constexpr int T1 = 10 * 60, T2 = 14 * 60, T3 = 18 * 60;

// Column C (and I): a low, varying level, a maximum 5 minutes before each turning point
// and a lower one 100 minutes after it.
double c(int m)
{
    for (int t : {T1, T2, T3}) {
        if (m == t - 5) return 9.0;
        if (m == t + 100) return 8.0;
    }
    return 1.0 + (m % 60) / 100.0 + 0.1;
}

class Samlefil : public Eksportmappe {
protected:
    void SetUp() override
    {
        rader(9 * 3600, 21 * 3600, 60, [](int s) { return Verdier{c(s / 60), {}, {}, {}, {}, {}, c(s / 60)}; });
        snupunkter({T1 * 60, T2 * 60, T3 * 60});
    }
    void innstillinger(const char* fra, const char* til, bool adsorpsjon, int kolonne = 0)
    {
        sykluser(fra, til);
        sett(dialogs::Boks::Text2, u"20"_s);
        form().velgKolonne(kolonne);
        form().velgAdsorpsjon(adsorpsjon);
    }
};

TEST_F(Samlefil, SyklusneLeggesISineKolonnerFraNullpunktet)
{
    // Fill the template's first columns so that what the export leaves and clears shows.
    {
        auto mal = xlsx::apne(mappe.sti(exports::MalAdsorpsjon));
        for (int r = 2; r <= 2002; ++r)
            for (int k = 1; k <= 5; ++k) mal->ark(1).settCelle(r, k, 7.0);
        mal->lagre();
    }
    // Adsorpsjon, cycles 1 to 3: each window runs from the maximum (T - 5) less 10 minutes to
    // T + 20, both ends included: 36 rows from row 2, so the next free row is 38. The values as
    // stored, in single precision; below them each column is cleared up to row 2000.
    innstillinger("1", "3", true);
    svar(Svar::Ja, u"Forsok"_s);
    EXPECT_EQ(form().Command5_Click(), Utfall::Ferdig);
    EXPECT_EQ(label4(), exports::fremdrift(38, 3));

    // From cycle 2 by column I: its maxima place the windows, but its values are read as 0;
    // column A and cycle 1's column stay as the template has them.
    innstillinger("2", "3", true, 6);
    svar(Svar::Ja, Forslag{});
    EXPECT_EQ(form().Command5_Click(), Utfall::Ferdig);

    // The chooser and the boxes stay editable: at cycle 1's first row the user picks column I and
    // raises the last cycle to 2, so the rest is read from I (0) and the workbook is saved after cycle 2.
    innstillinger("1", "1", true);
    QTimer::singleShot(0, [&] { form().velgKolonne(6), sett(dialogs::Boks::Text6, u"2"_s); });
    svar(Svar::Ja, u"Endret"_s);
    EXPECT_EQ(form().Command5_Click(), Utfall::Ferdig);

    // Desorpsjon: M1 = T - 5, M2 = the maximum between M1 + 60 and M1 + 140 (the proposed
    // period), that is T + 100; the zero point is M2 - 10 and the window ends 20 minutes later.
    innstillinger("1", "2", false);
    svar(Svar::Ja, u"D"_s, Forslag{});
    EXPECT_EQ(form().Command5_Click(), Utfall::Ferdig);

    const QList<Bok> b =
        lesArbeidsboker({mappe.sti(exports::MalAdsorpsjon), ut(u"Forsok_Samlefil.xlsm"_s),
                         ut(vb::dagensDatoTekst() + u"__Samlefil.xlsm"_s), ut(u"Endret_Samlefil.xlsm"_s),
                         mappe.sti(exports::MalDesorpsjon), ut(u"D_Samlefil.xlsm"_s)});
    EXPECT_TRUE(b[1].json[u"makro"_s].toBool());
    sjekkGull(u"export/gull/Samlefil.txt"_s, forlop(dialogs) + u"== Forsok\n"_s + endringer(b[0], b[1]) +
                                                 u"== fra 2 ved I\n"_s + endringer(b[0], b[2]) + u"== Endret\n"_s +
                                                 endringer(b[0], b[3]) + u"== D\n"_s + endringer(b[4], b[5]));
}

// The boxes shown are in the known-good transcript.
TEST_F(Samlefil, FeilOgAvvisningerLagerIngenFil)
{
    innstillinger("1", "2", false);
    // A period of 60 minutes or less leaves the second interval without rows, also when tolvik-batch
    // gives it; a cancelled period box; more cycles than turning points (the error comes at cycle 4,
    // before any save).
    for (const QString& periode : {u"60"_s, QString()}) {
        svar(Svar::Ja, u"P"_s, periode);
        EXPECT_EQ(form().Command5_Click(), Utfall::Avvist);
    }
    const auto kort = batch({"--column", "C", "--set", "Text6=2", "--set", "Text2=20", "export-combined", "--prefix",
                             "P", "--period", "50"});
    EXPECT_TRUE(kort.status == 1 && kort.ut.contains(exports::FeilMelding)) << kort.ut;
    sett(dialogs::Boks::Text6, u"4"_s);
    svar(Svar::Ja, u"P"_s, Forslag{});
    EXPECT_EQ(form().Command5_Click(), Utfall::Avvist);
    // A missing template stops before the prefix is asked for.
    QFile::remove(mappe.sti(exports::MalDesorpsjon));
    svar(Svar::Ja);
    EXPECT_EQ(form().Command5_Click(), Utfall::Avvist);
    sjekkGull(u"export/gull/Samlefil.Feil.txt"_s, forlop(dialogs));
    EXPECT_FALSE(QFile::exists(ut(u"P_Samlefil.xlsm"_s)));
}

}  // namespace
