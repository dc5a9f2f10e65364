#include "Hjelpere.h"

#include "platform/xlsx/Diagramdel.h"

using namespace xlsx;

// A chart without title and without the drawing namespace, which the title needs.
TEST(Diagram, NyTittelOgMinimumSomXml)
{
    Diagramdel d("xl/charts/chart9.xml", test::data("inn/diagram_uten_tittel.xml"));
    EXPECT_EQ(d.tittel(), QString());
    d.settTittel(QStringLiteral("CO₂ & N₂\nSyklus 3"));
    d.settKategoriMinimum(230.25);
    EXPECT_EQ(d.tittel(), QStringLiteral("CO₂ & N₂\nSyklus 3"));
    EXPECT_EQ(d.skriv(), test::data("gold/nytt_diagram.xml"));
}

// Titles are read through the workbook (ArbeidsbokTest); here the XML a change writes, whole.
// A rich title keeps the formatting of its first paragraph and run (chart 1); a title from a cell
// becomes text (chart 3). Each axis is found by its id; the minimum goes after orientation and max,
// before extLst, and replaces one there was.
TEST(Diagram, TittelOgAkseminimumIHandlagetDiagram)
{
    const struct {
        int nr;
        const char* tittel;
        double minimum;
    } tilfeller[] = {
        {1, "Syklus 3 & 4", 230},  // line chart: category axis
        {2, nullptr, 12.5},        // scatter: the value axis at the bottom
        {3, "Ny", 232},            // bar chart
    };
    for (const auto& t : tilfeller) {
        const std::string del = "xl/charts/chart" + std::to_string(t.nr) + ".xml";
        Diagramdel d(del, test::data("handlaget/" + del));
        if (t.tittel) d.settTittel(QString::fromUtf8(t.tittel));
        d.settKategoriMinimum(t.minimum);
        EXPECT_EQ(d.skriv(), test::data("gold/handlaget_chart" + std::to_string(t.nr) + ".xml")) << del;
    }
}
