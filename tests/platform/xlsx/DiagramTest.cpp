#include "Hjelpere.h"

#include "platform/xlsx/Diagramdel.h"

using namespace xlsx;

// A chart without title and without the drawing namespace, which the title needs. The charts of a workbook
// are changed and written in ArbeidsbokTest.
TEST(Diagram, NyTittelOgMinimumSomXml)
{
    Diagramdel d("xl/charts/chart9.xml", test::data("inn/diagram_uten_tittel.xml"));
    EXPECT_EQ(d.tittel(), QString());
    d.settTittel(QStringLiteral("CO₂ & N₂\nSyklus 3"));
    d.settKategoriMinimum(230.25);
    EXPECT_EQ(d.tittel(), QStringLiteral("CO₂ & N₂\nSyklus 3"));
    EXPECT_EQ(d.skriv(), test::data("gull/nytt_diagram.xml"));
}
