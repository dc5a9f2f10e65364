// "10. Redigert CO2 kolonne" on the real window: the two parts around the turning point,
// the cut, the formulas, the clearing, the area summary kept in its template between
// cycles, and the area itself against a trapezoid computed here from the same rows.
#include "export/Eksport.h"
#include "export_combined/EksportFelles.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

using ui::Svar;
using Forslag = ui::SkriptDialogs::Forslag;

namespace {

constexpr int T1 = 10 * 60, T2 = 14 * 60, T3 = 18 * 60;
const QString MalAlle = QStringLiteral("Mal_desorpsjon_areal_alle.xlsx");

// CO2 (column F): level 1 with a peak after each turning point. Cycle 1 falls to 0.5
// ten minutes after its turning point (the cut), cycle 2 comes back to exactly its start
// level (no cut), cycle 3 has an empty value 3 minutes after and falls to 0.9 at 12.
std::optional<double> co2(int m)
{
    for (int t : {T1, T2, T3}) {
        const int etter = m - t;
        if (t == T1 && etter == 10) return 0.5;
        if (t == T3 && etter == 3) return std::nullopt;
        if (t == T3 && etter == 12) return 0.9;
        if (etter >= 1 && etter <= 9) return 2.0 + (9 - etter) * 0.5;
    }
    return 1.0;
}

// The area of the CO2 peak above the start level over the written rows, by the trapezoid
// rule in minutes: the before-part from T - 25 to T, then T again and on to the cut.
double trapes(int t, int siste)
{
    std::vector<int> minutter;
    for (int m = t - 25; m <= t; ++m) minutter.push_back(m);
    for (int m = t; m <= siste; ++m) minutter.push_back(m);
    const double start = *co2(minutter.front());
    auto over = [&](int m) { return co2(m) ? *co2(m) - start : 0.0; };
    double areal = 0;
    for (size_t i = 1; i < minutter.size(); ++i)
        areal += (over(minutter[i - 1]) + over(minutter[i])) / 2.0 * (minutter[i] - minutter[i - 1]);
    return areal;
}

QString adr(const char* kol, int rad) { return QLatin1String(kol) + QString::number(rad); }

// A formula as the reader gives it, compared without regard to case or blanks.
QString formel(const test::Lest& bok, const QString& adresse)
{
    return bok.formler.value(adresse).toString().toUpper().remove(QLatin1Char(' '));
}

// The highest row holding anything on worksheet 1.
int sisteRad(const test::Lest& bok)
{
    int siste = 0;
    static const QRegularExpression tall(QStringLiteral("\\d+$"));
    for (const QString& a : bok.celler.keys()) siste = std::max(siste, tall.match(a).captured().toInt());
    return siste;
}

class Integrering : public test::EksportTest {
protected:
    void SetUp() override
    {
        EksportTest::SetUp();
        for (int m = 9 * 60; m <= 20 * 60; ++m) rad(m, 1.0, co2(m));
        snupunkter({T1, T2, T3});
    }
    Utfall kjor(const char* fra, const char* til, const QString& prefiks = QStringLiteral("P"))
    {
        vindu().settTekst(ui::Boks::Text4, QLatin1String(fra));
        vindu().settTekst(ui::Boks::Text6, QLatin1String(til));
        dialogs.svar(Svar::Ja);
        dialogs.svar(prefiks);
        dialogs.svar(Forslag{});
        dialogs.svar(Forslag{});
        return vindu().Command12_Click();
    }
};

TEST_F(Integrering, DelerFoerOgEtterSnupunktetKuttesVedForsteVerdiUnderStartnivaet)
{
    EXPECT_EQ(kjor("1", "3"), Utfall::Ferdig);
    EXPECT_EQ(meldinger(), QStringList({QStringLiteral("Vil du lage excel-filer for 3 run?"),
                                        QStringLiteral("Eksporten er ferdig")}));
    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 5u);
    EXPECT_EQ(d[2].tekst, QStringLiteral("Angi antall minutter før"));
    EXPECT_EQ(d[3].tekst, QStringLiteral("Angi antall minutter etter"));
    for (int i : {2, 3}) {
        EXPECT_EQ(d[i].tittel, QStringLiteral("Minutter"));
        EXPECT_EQ(d[i].forslag, QStringLiteral("25"));
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    // Cycle 3: 26 rows before (3 to 28), then from the turning point again, cut at 12 minutes.
    EXPECT_EQ(label4(), eksport::fremdrift(42, 3));

    // Cycle 1: rows 3..28 from T - 25 to T, row 29 the turning point again, cut at T + 10 (row 39).
    const test::Lest en = test::lesMedOpenpyxl(ut(QStringLiteral("P_1.xlsx")));
    EXPECT_DOUBLE_EQ(en[QStringLiteral("K2")].toDouble(), 35.0);
    EXPECT_EQ(en[QStringLiteral("A3")].toString(), QStringLiteral("2012/11/23 ,09:35:00,1."));
    EXPECT_EQ(en[QStringLiteral("A28")].toString(), QStringLiteral("2012/11/23 ,10:00:00,1."));
    EXPECT_EQ(en[QStringLiteral("A29")].toString(), QStringLiteral("2012/11/23 ,10:00:00,1."));
    EXPECT_EQ(en[QStringLiteral("A39")].toString(), QStringLiteral("2012/11/23 ,10:10:00,1."));
    EXPECT_DOUBLE_EQ(en[QStringLiteral("C30")].toDouble(), 6.0);
    EXPECT_DOUBLE_EQ(en[QStringLiteral("C39")].toDouble(), 0.5);
    EXPECT_DOUBLE_EQ(en[QStringLiteral("E39")].toDouble(-1), 0.0);
    EXPECT_EQ(formel(en, QStringLiteral("F3")), QStringLiteral("=ABS((D3-D3)/2)"));
    EXPECT_EQ(formel(en, QStringLiteral("F4")), QStringLiteral("=ABS((D4-D3)/2)"));
    EXPECT_EQ(formel(en, QStringLiteral("F28")), QStringLiteral("=ABS((D28-D27)/2)"));
    EXPECT_EQ(formel(en, QStringLiteral("F29")), QStringLiteral("=ABS((D29-D30)/2)"));
    EXPECT_EQ(formel(en, QStringLiteral("F39")), QStringLiteral("=ABS((D39-D40)/2)"));
    EXPECT_EQ(formel(en, QStringLiteral("L17")), QStringLiteral("=SUM(G3:G39)"));
    EXPECT_EQ(sisteRad(en), 39);  // rows 40 to 2999 cleared

    // Cycle 2 comes back to its start level but not below: the after-part runs to T + 25.
    const test::Lest to = test::lesMedOpenpyxl(ut(QStringLiteral("P_2.xlsx")));
    EXPECT_EQ(formel(to, QStringLiteral("L17")), QStringLiteral("=SUM(G3:G54)"));
    EXPECT_EQ(to[QStringLiteral("A54")].toString(), QStringLiteral("2012/11/23 ,14:25:00,1."));
    EXPECT_EQ(sisteRad(to), 54);
    for (const QString& a : to.celler.keys()) EXPECT_FALSE(a.startsWith(QLatin1Char('E')) && a.mid(1).toInt() > 2) << a.toStdString();

    // Cycle 3: the empty value is written as an empty cell and does not cut.
    const test::Lest tre = test::lesMedOpenpyxl(ut(QStringLiteral("P_3.xlsx")));
    EXPECT_TRUE(tre[QStringLiteral("C32")].isUndefined());
    EXPECT_DOUBLE_EQ(tre[QStringLiteral("E41")].toDouble(-1), 0.0);
    EXPECT_EQ(formel(tre, QStringLiteral("L17")), QStringLiteral("=SUM(G3:G41)"));
}

TEST_F(Integrering, ArealeneSamlesOgMalenBarerDemMellomSyklusene)
{
    // An earlier run left areas in the summary's column B, with a gap at row 5.
    {
        auto mal = xlsx::apne(mappe.sti(MalAlle));
        for (int r : {2, 3, 4, 6}) mal->ark(1).settCelle(r, 2, 99.0);
        mal->lagre();
    }
    EXPECT_EQ(kjor("1", "3"), Utfall::Ferdig);

    const test::Lest samle = test::lesMedOpenpyxl(ut(QStringLiteral("P_Samlefil_3.xlsx")));
    const double forventet[] = {trapes(T1, T1 + 10), trapes(T2, T2 + 25), trapes(T3, T3 + 12)};
    for (int k = 1; k <= 3; ++k) {
        const test::Lest syklus = test::lesMedOpenpyxl(ut(QStringLiteral("P_%1.xlsx").arg(k)));
        const double l17 = syklus[QStringLiteral("L17")].toDouble();
        EXPECT_NEAR(l17, forventet[k - 1], 1e-9) << k;
        EXPECT_DOUBLE_EQ(samle[adr("B", k + 1)].toDouble(), l17) << k;
    }
    EXPECT_DOUBLE_EQ(samle[QStringLiteral("B6")].toDouble(), 99.0);  // below the first empty cell: untouched

    // The template carries cycles 1 and 2; the last cycle went to the combined file only.
    const test::Lest mal = test::lesMedOpenpyxl(mappe.sti(MalAlle));
    EXPECT_DOUBLE_EQ(mal[QStringLiteral("B2")].toDouble(), samle[QStringLiteral("B2")].toDouble());
    EXPECT_DOUBLE_EQ(mal[QStringLiteral("B3")].toDouble(), samle[QStringLiteral("B3")].toDouble());
    EXPECT_TRUE(mal[QStringLiteral("B4")].isUndefined());

    // A later run from cycle 3 keeps rows 2 and 3 as the template holds them.
    EXPECT_EQ(kjor("3", "3", QStringLiteral("Q")), Utfall::Ferdig);
    const test::Lest senere = test::lesMedOpenpyxl(ut(QStringLiteral("Q_Samlefil_3.xlsx")));
    EXPECT_DOUBLE_EQ(senere[QStringLiteral("B2")].toDouble(), samle[QStringLiteral("B2")].toDouble());
    EXPECT_DOUBLE_EQ(senere[QStringLiteral("B4")].toDouble(), samle[QStringLiteral("B4")].toDouble());
}

TEST_F(Integrering, ManglendeMalerOgFeilStopperMedEnMelding)
{
    // Without the single-cycle template every cycle says so and the export still ends normally.
    QFile::rename(mappe.sti(QStringLiteral("Mal_Integrering_desorpsjon_Enkel.xlsx")), mappe.sti(QStringLiteral("x.xlsx")));
    EXPECT_EQ(kjor("2", "3"), Utfall::Ferdig);
    EXPECT_EQ(meldinger().mid(1), QStringList({QStringLiteral("Du mangler malfila for enkeltsyklusene"),
                                               QStringLiteral("Du mangler malfila for enkeltsyklusene"),
                                               QStringLiteral("Eksporten er ferdig")}));
    QFile::rename(mappe.sti(QStringLiteral("x.xlsx")), mappe.sti(QStringLiteral("Mal_Integrering_desorpsjon_Enkel.xlsx")));

    // Without the summary template cycle 1 is passed over; cycle 2 cannot open it and stops there.
    QFile::remove(mappe.sti(MalAlle));
    EXPECT_EQ(kjor("1", "2"), Utfall::Avvist);
    const QStringList m = meldinger();
    EXPECT_EQ(m[m.size() - 2], QStringLiteral("Du mangler malfila for alle"));
    EXPECT_TRUE(m.last().startsWith(eksport::FeilMelding));
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("P_1.xlsx"))));
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("P_2.xlsx"))));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    // A minute answer that is no number.
    vindu().settTekst(ui::Boks::Text4, QStringLiteral("1"));
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    dialogs.svar(QStringLiteral("mange"));
    EXPECT_EQ(vindu().Command12_Click(), Utfall::Avvist);
    EXPECT_TRUE(meldinger().last().startsWith(eksport::FeilMelding));
    EXPECT_FALSE(dialogs.ubrukteSvar());
    EXPECT_TRUE(QDir(mappe.sti(QStringLiteral("Data_Bearbeidet"))).entryList(QDir::Files).isEmpty());
}

class TomtStartniva : public test::EksportTest {};

TEST_F(TomtStartniva, StopperMedMeldingOgLarTidligereSyklusLigge)
{
    for (int m = 9 * 60; m <= 12 * 60; ++m) rad(m, 1.0, m == 11 * 60 - 25 ? std::nullopt : std::optional<double>(1.0));
    snupunkter({10 * 60, 11 * 60});
    vindu().settTekst(ui::Boks::Text6, QStringLiteral("2"));
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    dialogs.svar(Forslag{});
    dialogs.svar(Forslag{});
    EXPECT_EQ(vindu().Command12_Click(), Utfall::Avvist);
    EXPECT_TRUE(meldinger().last().startsWith(eksport::FeilMelding));
    EXPECT_TRUE(meldinger().last().contains(QStringLiteral("startnivået")));
    EXPECT_TRUE(QFile::exists(ut(QStringLiteral("P_1.xlsx"))));
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("P_2.xlsx"))));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    // The summary template keeps what cycle 1 saved into it.
    EXPECT_FALSE(test::lesMedOpenpyxl(mappe.sti(MalAlle))[QStringLiteral("B2")].isUndefined());
}

TEST_F(Integrering, BatchSvarerMedMinutterForOgEtter)
{
    lagreRader();
    const QString m = mappe.mappe();
    const auto r = test::batch({QStringLiteral("--folder"), m, QStringLiteral("--set"), QStringLiteral("Text6=1"),
                                QStringLiteral("integrate"), QStringLiteral("--prefix"), QStringLiteral("B"),
                                QStringLiteral("--before"), QStringLiteral("5"), QStringLiteral("--after"),
                                QStringLiteral("3")});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    EXPECT_TRUE(r.ut.contains(QStringLiteral("Eksporten er ferdig")));
    // 6 rows before (3..8), 4 after (9..12): L17 sums to row 12, then row 17 itself is cleared.
    const test::Lest bok = test::lesMedOpenpyxl(ut(QStringLiteral("B_1.xlsx")));
    EXPECT_EQ(bok[QStringLiteral("A8")].toString(), QStringLiteral("2012/11/23 ,10:00:00,1."));
    EXPECT_EQ(bok[QStringLiteral("A12")].toString(), QStringLiteral("2012/11/23 ,10:03:00,1."));
    EXPECT_TRUE(bok[QStringLiteral("L17")].isUndefined());
    EXPECT_TRUE(QFile::exists(ut(QStringLiteral("B_Samlefil_1.xlsx"))));

    EXPECT_EQ(test::batch({QStringLiteral("--folder"), m, QStringLiteral("integrate"), QStringLiteral("--no")}).status, 0);
    const auto feil = test::batch({QStringLiteral("--folder"), m, QStringLiteral("--set"), QStringLiteral("Text6=1"),
                                   QStringLiteral("integrate"), QStringLiteral("--prefix"), QStringLiteral("C"),
                                   QStringLiteral("--before"), QStringLiteral("x")});
    EXPECT_EQ(feil.status, 1);
}

} // namespace
