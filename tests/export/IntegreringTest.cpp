// "10. Redigert CO2 kolonne" on the real window: the two parts around the turning point,
// the cut, the formulas, the clearing, the area summary kept in its template between
// cycles, and the area itself against a trapezoid computed here from the same rows.
#include "felles/Eksportmappe.h"

#include <QRegularExpression>

using namespace test;

namespace {

constexpr int T1 = 10 * 60, T2 = 14 * 60, T3 = 18 * 60, T4 = 19 * 60 + 30;
const QString MalAlle = QStringLiteral("Mal_desorpsjon_areal_alle.xlsx");

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

// The highest row holding anything on worksheet 1.
int sisteRad(const Bok& bok)
{
    int siste = 0;
    static const QRegularExpression tall(QStringLiteral("\\d+$"));
    for (const QString& a : bok.celler.keys()) siste = std::max(siste, tall.match(a).captured().toInt());
    return siste;
}

class Integrering : public Eksportmappe {
protected:
    void SetUp() override
    {
        rader(9 * 3600, 20 * 3600, 60, [](int s) { return Verdier{{}, {}, {}, co2(s / 60)}; });
        snupunkter({T1 * 60, T2 * 60, T3 * 60, T4 * 60});
    }
    Utfall kjor(const char* fra, const char* til, const QString& prefiks = QStringLiteral("P"))
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
    EXPECT_EQ(kjor("1", "3"), Utfall::Ferdig);
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Vil du lage excel-filer for 3 run?", "Eksporten er ferdig"}));
    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 5u);
    EXPECT_EQ(
        QStringList({d[2].tekst, d[2].tittel, d[2].forslag, d[3].tekst, d[3].tittel, d[3].forslag}),
        QStringList({"Angi antall minutter før", "Minutter", "25", "Angi antall minutter etter", "Minutter", "25"}));
    // Cycle 3: 26 rows before (3 to 28), then from the turning point again, cut at 12 minutes.
    EXPECT_EQ(label4(), exports::fremdrift(42, 3));

    // A later run from cycle 3 keeps rows 2 and 3 and saves cycle 3 into the template; cycle 4
    // has no start level and stops the command, its file unwritten. The template as the first run
    // left it is kept aside to be read with the rest.
    QFile::copy(mappe.sti(MalAlle), mappe.sti(u"forste.xlsx"_s));
    EXPECT_EQ(kjor("3", "4", u"R"_s), Utfall::Avvist);
    EXPECT_TRUE(dialogs.meldinger().last().startsWith(exports::FeilMelding));
    EXPECT_TRUE(dialogs.meldinger().last().contains(u"startnivået"_s));
    EXPECT_EQ(utfiler().filter(u"R_"_s), QStringList({"R_3.xlsx"}));

    const QList<Bok> b = lesArbeidsboker({ut(u"P_1.xlsx"_s), ut(u"P_2.xlsx"_s), ut(u"P_3.xlsx"_s),
                                          ut(u"P_Samlefil_3.xlsx"_s), mappe.sti(u"forste.xlsx"_s), mappe.sti(MalAlle)},
                                         true);
    const Bok &en = b[0], &to = b[1], &tre = b[2], &samle = b[3];
    // Cycle 1: rows 3..28 from T - 25 to T, row 29 the turning point again, cut at T + 10
    // (row 39); rows 40 to 2999 cleared.
    EXPECT_EQ(en.tekster(
                  {"K2", "A3", "A28", "A29", "A39", "C30", "C39", "E39", "=F3", "=F4", "=F28", "=F29", "=F39", "=L17"}),
              QStringList({"35", tidTekst(35 * 60 + 9 * 3600), tidTekst(T1 * 60), tidTekst(T1 * 60),
                           tidTekst((T1 + 10) * 60), "6", "0.05", "0", "=ABS((D3-D3)/2)", "=ABS((D4-D3)/2)",
                           "=ABS((D28-D27)/2)", "=ABS((D29-D30)/2)", "=ABS((D39-D40)/2)", "=SUM(G3:G39)"}));
    EXPECT_EQ(sisteRad(en), 39);

    // Cycle 2 comes back to its start level but not below: the after-part runs to T + 25.
    EXPECT_EQ(to.tekster({"=L17", "A54"}), QStringList({"=SUM(G3:G54)", tidTekst((T2 + 25) * 60)}));
    EXPECT_EQ(sisteRad(to), 54);
    for (const QString& a : to.celler.keys())
        EXPECT_FALSE(a.startsWith(QLatin1Char('E')) && a.mid(1).toInt() > 2) << a;

    // Cycle 3: the empty value is written as an empty cell and does not cut.
    EXPECT_EQ(tre.tekster({"C32", "E41", "=L17"}), QStringList({"", "0", "=SUM(G3:G41)"}));

    // The cached areas against the trapezoid, and in the summary's column B, which cycle 1
    // cleared down to the first empty cell.
    const double forventet[] = {trapes(T1, T1 + 10), trapes(T2, T2 + 25), trapes(T3, T3 + 12)};
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(b[k][u"L17"_s].toDouble(), forventet[k], 1e-9) << k;
        EXPECT_EQ(samle[u"B%1"_s.arg(k + 2)], b[k][u"L17"_s]) << k;
    }
    EXPECT_EQ(samle[u"B6"_s].toDouble(), 99.0);

    // The template carries cycles 1 and 2 after the first run (the last cycle went to the combined
    // file only), and all three after the second.
    const QStringList arealer = samle.tekster({"B2", "B3", "B4"});
    EXPECT_EQ(b[4].tekster({"B2", "B3", "B4"}), arealer.mid(0, 2) << QString());
    EXPECT_EQ(b[5].tekster({"B2", "B3", "B4"}), arealer);
}

TEST_F(Integrering, ManglendeMalerOgFeilStopperMedEnMelding)
{
    // Without the single-cycle template every cycle says so and the export still ends normally.
    const QString enkel = mappe.sti(QStringLiteral("Mal_Integrering_desorpsjon_Enkel.xlsx"));
    QFile::rename(enkel, mappe.sti(QStringLiteral("x.xlsx")));
    EXPECT_EQ(kjor("2", "3"), Utfall::Ferdig);
    const QString mangler = QStringLiteral("Du mangler malfila for enkeltsyklusene");
    EXPECT_EQ(dialogs.meldinger().mid(1), QStringList({mangler, mangler, "Eksporten er ferdig"}));
    QFile::rename(mappe.sti(QStringLiteral("x.xlsx")), enkel);

    // Without the summary template cycle 1 is passed over; cycle 2 cannot open it and stops there.
    QFile::remove(mappe.sti(MalAlle));
    EXPECT_EQ(kjor("1", "2"), Utfall::Avvist);
    const QStringList m = dialogs.meldinger();
    EXPECT_EQ(m[m.size() - 2], QStringLiteral("Du mangler malfila for alle"));
    EXPECT_TRUE(m.last().startsWith(exports::FeilMelding));
    EXPECT_TRUE(utfiler().isEmpty());

    // A cycle's workbook that cannot be saved (a folder holds its name): the summary template
    // never learns that cycle's area.
    QFile::copy(QStringLiteral(TOLVIK_DIST "/") + MalAlle, mappe.sti(MalAlle));
    const QByteArray mal = mappe.les(MalAlle);
    QDir().mkpath(ut(QStringLiteral("P_1.xlsx")));
    EXPECT_EQ(kjor("1", "2"), Utfall::Avvist);
    EXPECT_EQ(mappe.les(MalAlle), mal);
}

TEST_F(Integrering, BatchSvarerMedMinutterForOgEtter)
{
    const auto r = batch({"--set", "Text6=1", "integrate", "--prefix", "B", "--before", "5", "--after", "3"});
    EXPECT_TRUE(r.status == 0 && r.ut.contains(QStringLiteral("Eksporten er ferdig"))) << r.feil.toStdString();
    // 6 rows before (3..8), 4 after (9..12): L17 sums to row 12, then row 17 itself is cleared.
    const Bok bok = lesArbeidsbok(ut(QStringLiteral("B_1.xlsx")));
    EXPECT_EQ(bok.tekster({"A8", "A12", "L17"}), QStringList({tidTekst(T1 * 60), tidTekst((T1 + 3) * 60), ""}));
    EXPECT_TRUE(QFile::exists(ut(QStringLiteral("B_Samlefil_1.xlsx"))));
}

}  // namespace
