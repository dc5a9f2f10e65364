#include "Hjelpere.h"

#include <QTemporaryDir>

using namespace xlsx;
using test::openpyxl;

namespace {

QString mal(const char* navn) { return QStringLiteral(TOLVIK_DIST "/") + QLatin1String(navn); }

QString tid(int sekunder)
{
    return QStringLiteral("2012/11/23 ,%1:%2:%3,1.")
        .arg(12 + sekunder / 3600, 2, 10, QLatin1Char('0'))
        .arg(sekunder / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(sekunder % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace

TEST(Maler, SyklusmalenRegnerMinutterOgFlytterAksene)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Sykluser.xlsx"));
    Arbeidsark& data = bok->ark(1);
    data.settCelle(1, 1, QStringLiteral("Time&Date"));
    data.settCelle(1, 15, 230.5);
    const int sek[] = {0, 30, 45, 3600};
    for (int i = 0; i < 4; ++i) {
        data.settCelle(2 + i, 1, tid(sek[i]));
        for (int k = 3; k <= 11; ++k) data.settCelle(2 + i, k, 1e-10 * k + i * 1e-12);
    }
    Arbeidsark& grafer = bok->ark(2);
    EXPECT_THROW(grafer.diagram(3), XlsxFeil);
    for (int nr : {1, 2}) {
        EXPECT_FALSE(grafer.diagram(nr).tittel().isEmpty()) << nr;
        grafer.diagram(nr).settKategoriMinimum(230);
    }
    grafer.diagram(1).settTittel(QStringLiteral("Forsøk 7"));
    grafer.diagram(2).settTittel(grafer.diagram(1).tittel());
    const QString ut = dir.filePath(QStringLiteral("Forsok_1.xlsx"));
    bok->lagreSom(ut);
    EXPECT_EQ(apne(ut)->ark(2).diagram(2).tittel(), QStringLiteral("Forsøk 7"));
    EXPECT_TRUE(test::har(test::lesZip(ut)["xl/charts/chart2.xml"].innhold, "<c:min val=\"230\"/>"));
    // Minutes from the zero point; a row without time gives #N/A, left out of the charts.
    EXPECT_EQ(openpyxl(ut, {"A1", "B1", "O1", "A2", "B2", "B4", "B5", "C4", "K5", "B6", "L2"}),
              (QJsonArray{"Time&Date", "Minutter fra datastart", 230.5, tid(0), 230.5, 231.25, 290.5,
                          1e-10 * 3 + 2 * 1e-12, 1e-10 * 11 + 3 * 1e-12, "#N/A", QJsonValue()}));
    EXPECT_TRUE(openpyxl(ut, {"B3"}, true)[0].toString().startsWith(QStringLiteral("=IF(A3=\"\",NA(),$O$1+")));
}

TEST(Maler, IntegreringsmalenGirTrapesarealet)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Integrering_desorpsjon_Enkel.xlsx"));
    Arbeidsark& a = bok->ark(1);
    // Twenty rows 30 s apart: a peak on a level of 1e-10, written as the integration export does.
    std::vector<double> co2 = {1e-10, 1e-10, 3e-10, 7e-10, 9e-10, 6e-10, 4e-10, 2e-10, 1.5e-10, 1.2e-10};
    for (int i = 0; i < 10; ++i) co2.push_back(1.1e-10 - i * 1e-12);
    a.settCelle(2, 11, 100.5);
    for (int i = 0; i < 20; ++i) {
        int n = 3 + i;
        a.settCelle(n, 1, tid(30 * i));
        a.settCelle(n, 3, co2[i]);
        a.settFormel(QStringLiteral("F%1").arg(n), QStringLiteral("= abs((D%1-D%2)/2)").arg(n).arg(n == 3 ? 3 : n - 1));
    }
    a.settCelle(22, 5, 0.0);
    a.settFormel(QStringLiteral("L17"), QStringLiteral("= sum(G3:G22)"));
    for (int r = 23; r <= 2999; ++r) a.tomRad(r);
    const QString ut = dir.filePath(QStringLiteral("Forsok_1.xlsx"));
    bok->lagreSom(ut);
    // The trapezoid area above the level of the first row, in ion current x minutes.
    double areal = 0;
    for (int i = 1; i < 20; ++i) areal += ((co2[i] - co2[0]) + (co2[i - 1] - co2[0])) / 2 * 0.5;
    QJsonArray v = openpyxl(ut, {"L17", "B12", "F5", "D22", "G23", "K2"});
    ASSERT_EQ(v.size(), 6);
    EXPECT_NEAR(v[0].toDouble(), areal, 1e-22);
    EXPECT_DOUBLE_EQ(v[1].toDouble(), 100.5 + 4.5);
    EXPECT_DOUBLE_EQ(v[2].toDouble(), 1e-10);  // |D5-D4|/2
    EXPECT_DOUBLE_EQ(v[3].toDouble(), co2[19] - co2[0]);
    EXPECT_EQ(v[4], QJsonValue());  // emptied row
    EXPECT_EQ(v[5].toDouble(), 100.5);
    // F4..F22 share one formula text in the file; a reader sees each row's own.
    EXPECT_EQ(openpyxl(ut, {"L17", "F4", "F10", "G22"}, true),
              (QJsonArray{"=SUM(G3:G22)", "=ABS((D4-D3)/2)", "=ABS((D10-D9)/2)", "=(D21+D22)/2*(B22-B21)"}));
}

TEST(Maler, SamlemalerErMakroaktiverte)
{
    QTemporaryDir dir;
    for (const char* navn : {"Mal_Alle_Adsorpsjon.xlsm", "Mal_Alle_Desorpsjon.xlsm"}) {
        SCOPED_TRACE(navn);
        EXPECT_TRUE(test::har(test::lesZip(mal(navn))["[Content_Types].xml"].innhold,
                              "application/vnd.ms-excel.sheet.macroEnabled.main+xml"));
        auto bok = apne(mal(navn));
        EXPECT_TRUE(bok->ark(2).diagram(1).tittel().endsWith(QStringLiteral("alle sykluser")));
        bok->ark(1).settCelle(2, 1, tid(0));
        bok->ark(1).settCelle(3, 1, tid(90));
        bok->ark(1).tomCelle(3, 4);
        const QString ut = dir.filePath(QStringLiteral("x_Samlefil.xlsm"));
        bok->lagreSom(ut);
        // Minutes from the zero point.
        EXPECT_EQ(openpyxl(ut, {"C1", "AZ1", "B3"}), (QJsonArray{"Cycle nr.1", "Cycle nr.50", 1.5}));
    }
}

TEST(Maler, ArealmalenLagresPaStedet)
{
    QTemporaryDir dir;
    const QString kopi = dir.filePath(QStringLiteral("Mal_desorpsjon_areal_alle.xlsx"));
    ASSERT_TRUE(QFile::copy(mal("Mal_desorpsjon_areal_alle.xlsx"), kopi));
    auto bok = apne(kopi);
    EXPECT_EQ(bok->ark(1).diagram(1).tittel(), QStringLiteral("CO2-areal per syklus"));
    bok->ark(1).settCelle(2, 2, 4.5e-9);
    bok->ark(1).settCelle(3, 2, 5e-9);
    bok->lagre();
    EXPECT_EQ(openpyxl(kopi, {"A2", "A31", "B2", "B3", "B4"}), (QJsonArray{1, 30, 4.5e-9, 5e-9, QJsonValue()}));
}
