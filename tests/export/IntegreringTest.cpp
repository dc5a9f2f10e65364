// "10. Redigert CO2 kolonne" on the real window: the two parts around the turning point,
// the cut, the formulas, the clearing, the area summary kept in its template between
// cycles, and the area itself against a trapezoid computed here from the same rows.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

constexpr int T1 = 10 * 60, T2 = 14 * 60, T3 = 18 * 60, T4 = 19 * 60 + 30;
const QString MalAlle = u"Mal_desorpsjon_areal_alle.xlsx"_s;

// CO2 (column F): level 0.1 with a peak after each turning point. Cycle 1 falls to 0.05
// ten minutes after its turning point (the cut), cycle 2 comes back to exactly its start
// level (no cut: 0.1 is not exact in single precision, and the start level is kept in it),
// cycle 3 has an empty value 3 minutes after and falls to 0.09 at 12; cycle 4 has no start level.
std::optional<double> co2(int m)
{
    if (m == T4 - 25) return std::nullopt;
    for (int t : {T1, T2, T3}) {
        const int etter = m - t;
        if (t == T1 && etter == 10) return 0.05;
        if (t == T3 && etter == 3) return std::nullopt;
        if (t == T3 && etter == 12) return 0.09;
        if (etter >= 1 && etter <= 9) return 2.0 + (9 - etter) * 0.5;
    }
    return 0.1;
}

// The area of the CO2 peak above the start level over the written rows, by the trapezoid
// rule in minutes: from T - 25 to the cut (the turning point written twice adds no width).
double trapes(int t, int siste)
{
    auto over = [&](int m) { return co2(m) ? *co2(m) - *co2(t - 25) : 0.0; };
    double areal = 0;
    for (int m = t - 25; m < siste; ++m) areal += (over(m) + over(m + 1)) / 2.0;
    return areal;
}

class Integrering : public Eksportmappe {
protected:
    void SetUp() override
    {
        rader(9 * 3600, 20 * 3600, 60, [](int s) { return Verdier{{}, {}, {}, co2(s / 60)}; });
        snupunkter({T1 * 60, T2 * 60, T3 * 60, T4 * 60});
    }
    Utfall kjor(const char* fra, const char* til, const QString& prefiks = u"P"_s)
    {
        sykluser(fra, til);
        svar(Svar::Ja, prefiks, Forslag{}, Forslag{});
        return form().Command12_Click();
    }
};

TEST_F(Integrering, DelerRundtSnupunktetKuttOgArealer)
{
    // An earlier run left areas in the summary's column B, with a gap at row 5.
    {
        auto mal = xlsx::apne(mappe.sti(MalAlle));
        for (int r : {2, 3, 4, 6}) mal->ark(1).settCelle(r, 2, 99.0);
        mal->lagre();
    }
    QFile::copy(mappe.sti(MalAlle), mappe.sti(u"for.xlsx"_s));
    EXPECT_EQ(kjor("1", "3"), Utfall::Ferdig);
    // Cycle 3: 26 rows before (3 to 28), then from the turning point again, cut at 12 minutes.
    EXPECT_EQ(label4(), exports::fremdrift(42, 3));

    // A later run from cycle 3 keeps rows 2 and 3 and saves cycle 3 into the template; cycle 4
    // has no start level and stops the command, its file unwritten.
    QFile::copy(mappe.sti(MalAlle), mappe.sti(u"forste.xlsx"_s));
    EXPECT_EQ(kjor("3", "4", u"R"_s), Utfall::Avvist);
    EXPECT_EQ(utfiler().filter(u"R_"_s), QStringList({"R_3.xlsx"}));
    // tolvik-batch answers the minutes: 6 rows before (3..8), 4 after (9..12).
    const auto r = batch({"--set", "Text6=1", "integrate", "--prefix", "B", "--before", "5", "--after", "3"});
    EXPECT_EQ(r.status, 0) << r.feil;

    QStringList filer = {mappe.sti(u"Mal_Integrering_desorpsjon_Enkel.xlsx"_s), mappe.sti(u"for.xlsx"_s)};
    for (const char* navn : {"P_1", "P_2", "P_3", "B_1", "P_Samlefil_3", "B_Samlefil_1"})
        filer << ut(QLatin1String(navn) + u".xlsx"_s);
    filer << mappe.sti(u"forste.xlsx"_s) << mappe.sti(MalAlle);
    const QList<Bok> b = lesArbeidsboker(filer, true);
    // The cached areas against the trapezoid, and in the combined file's column B.
    const double forventet[] = {trapes(T1, T1 + 10), trapes(T2, T2 + 25), trapes(T3, T3 + 12)};
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(b[k + 2][u"L17"_s].toDouble(), forventet[k], 1e-9) << k;
        EXPECT_EQ(b[6][u"B%1"_s.arg(k + 2)], b[k + 2][u"L17"_s]) << k;
    }
    // Cycle 1: rows 3..28 from T - 25 to T, row 29 the turning point again, cut at T + 10 (row 39),
    // the rows below cleared. Cycle 2 comes back to its start level but not below: the after-part
    // runs to T + 25. Cycle 3: the empty value is written as an empty cell and does not cut. The
    // summary's column B, which cycle 1 cleared down to the first empty cell, in the combined file;
    // the template carries cycles 1 and 2 after the first run and all three after the second.
    QString logg = forlop(dialogs);
    for (int i = 2; i < filer.size(); ++i)
        logg += u"== %1\n"_s.arg(QFileInfo(filer[i]).fileName()) + endringer(b[i < 6 ? 0 : 1], b[i]);
    sjekkGull(u"export/gull/Integrering.txt"_s, logg);
}

// Without a template, and with a cycle's workbook that cannot be saved; the boxes shown are in the
// known-good transcript.
TEST_F(Integrering, ManglendeMalerOgFeilStopperMedEnMelding)
{
    // Without the single-cycle template every cycle says so and the export still ends normally.
    const QString enkel = mappe.sti(u"Mal_Integrering_desorpsjon_Enkel.xlsx"_s);
    QFile::rename(enkel, mappe.sti(u"x.xlsx"_s));
    EXPECT_EQ(kjor("2", "3"), Utfall::Ferdig);
    QFile::rename(mappe.sti(u"x.xlsx"_s), enkel);

    // Without the summary template cycle 1 is passed over; cycle 2 cannot open it and stops there.
    QFile::remove(mappe.sti(MalAlle));
    EXPECT_EQ(kjor("1", "2"), Utfall::Avvist);
    EXPECT_TRUE(utfiler().isEmpty());

    // A cycle's workbook that cannot be saved (a folder holds its name): the summary template
    // never learns that cycle's area.
    QFile::copy(u"" TOLVIK_DIST "/"_s + MalAlle, mappe.sti(MalAlle));
    const QByteArray mal = mappe.les(MalAlle);
    QDir().mkpath(ut(u"P_1.xlsx"_s));
    EXPECT_EQ(kjor("1", "2"), Utfall::Avvist);
    EXPECT_EQ(mappe.les(MalAlle), mal);
    sjekkGull(u"export/gull/Integrering.Mangler.txt"_s, forlop(dialogs).replace(mappe.sti({}), u"<mappe>/"_s));
}

}  // namespace
