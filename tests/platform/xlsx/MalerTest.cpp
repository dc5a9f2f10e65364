#include "Hjelpere.h"

#include "felles/Eksportmappe.h"
#include "platform/xlsx/Omrade.h"

#include <QTemporaryDir>

using namespace xlsx;

namespace {

QString mal(const char* navn) { return QStringLiteral(TOLVIK_DIST "/") + QLatin1String(navn); }

// The raw date-time text of a row at 12:00 plus these seconds.
QString tid(int sekunder) { return test::tidTekst(12 * 3600 + sekunder); }

}  // namespace

// The templates as the export commands fill them, their charts' titles and axes among it, are the export
// tests'; here the cached values of the cycle template's formulas as another reader sees them.
TEST(Maler, SyklusmalenRegnerMinutter)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Sykluser.xlsx"));
    Arbeidsark& data = bok->ark(1);
    data.settCelle(1, 1, u"Time&Date"_s);
    data.settCelle(1, 15, 230.5);
    const int sek[] = {0, 30, 45, 3600};
    for (int i = 0; i < 4; ++i) {
        data.settCelle(2 + i, 1, tid(sek[i]));
        for (int k = 3; k <= 11; ++k) data.settCelle(2 + i, k, 1e-10 * k + i * 1e-12);
    }
    const QString ut = dir.filePath(u"Forsok_1.xlsx"_s);
    bok->lagreSom(ut);
    // Minutes from the zero point; a row without time gives #N/A, left out of the charts. B3 is read
    // through the shared formula the column became.
    const test::Bok b = test::lesArbeidsbok(ut, true);
    EXPECT_TRUE(b.formler[u"B3"_s].toString().startsWith(u"=IF(A3=\"\",NA(),$O$1+"_s)) << b.formler[u"B3"_s].toString();
    QJsonArray lest;
    for (const char* adresse : {"A1", "B1", "O1", "A2", "B2", "B4", "B5", "C4", "K5", "B6"})
        lest << b[QLatin1String(adresse)];
    EXPECT_EQ(lest, (QJsonArray{"Time&Date", "Minutter fra datastart", 230.5, tid(0), 230.5, 231.25, 290.5,
                                1e-10 * 3 + 2 * 1e-12, 1e-10 * 11 + 3 * 1e-12, "#N/A"}));
    EXPECT_FALSE(b.celler.contains(u"L2"_s));
}

// Rows past the template's prepared ones: the formula columns and the chart follow the data, new cells take
// the column's format, the chart draws from the cells, and the print area ends at the last written row.
TEST(Maler, FyllerMalenNedTilSkrevneRader)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Integrering_desorpsjon_Enkel.xlsx"));
    Arbeidsark& ark = bok->ark(1);
    constexpr int Siste = 3602;
    for (int r = 3; r <= Siste; ++r) {
        ark.settCelle(r, 1, tid(r));
        ark.settCelle(r, 3, 1e-9 + (r == 1000 ? 1e-9 : 0.0));
    }
    EXPECT_EQ(ark.fyllNed(), Siste);
    ark.settFormel(u"L17"_s, u"= sum(G3:G3602)"_s);
    EXPECT_NEAR(std::get<double>(ark.celle(17, 12)), 1e-9 / 60, 1e-17);  // the one-second bump at row 1000
    EXPECT_NEAR(std::get<double>(ark.celle(Siste, 2)), (Siste - 3) / 60.0, 1e-9);
    const QString ut = dir.filePath(u"ut.xlsx"_s);
    bok->lagreSom(ut);
    const auto deler = test::lesZip(ut);
    const std::string& xml = deler.at("xl/worksheets/sheet1.xml").innhold;
    EXPECT_TRUE(test::har(xml, "<c r=\"C3602\" s=\"4\"><v>1e-09</v>"));           // the column's number format
    EXPECT_TRUE(test::har(xml, "<c r=\"G3602\" s=\"4\"><f t=\"shared\" si=\""));  // the area element
    const std::string& diagram = deler.at("xl/charts/chart1.xml").innhold;
    EXPECT_TRUE(test::har(diagram, "<c:f>Integrering!$C$3:$C$3602</c:f>"));
    EXPECT_EQ(diagram.find("Cache"), std::string::npos);
    EXPECT_TRUE(test::har(deler.at("xl/workbook.xml").innhold, ">Integrering!$A$1:$L$3602</definedName>"));
}

TEST(Maler, OmradeSomIkkeKanStrekkes)
{
    int dekket = 3600;
    EXPECT_EQ(strekkOmrade("'Mitt ark'!$B$2:$B$2000", "Mitt ark", 3600, dekket), "'Mitt ark'!$B$2:$B$3600");
    EXPECT_EQ(strekkOmrade("Data!$C$1", "Data", 3600, dekket), "");        // a series name stays
    EXPECT_EQ(strekkOmrade("Annet!$B$2:$B$9", "Data", 3600, dekket), "");  // another sheet
    EXPECT_EQ(strekkOmrade("(Data!$B$2:$B$900,Data!$B$1000:$B$1500)", "Data", 3600, dekket), "");
    EXPECT_EQ(dekket, 1500);  // a union is not stretched: rows 1501-3600 are not drawn
}
