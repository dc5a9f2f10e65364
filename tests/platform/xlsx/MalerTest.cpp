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

// The templates as the export commands fill them are the export tests'; here the cached values of the
// cycle template's formulas as another reader sees them.
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
