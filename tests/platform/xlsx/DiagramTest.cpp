#include "Hjelpere.h"

#include "platform/xlsx/Diagramdel.h"

using namespace xlsx;
using test::har;

namespace {

Diagramdel handlaget(int nr)
{
    const std::string del = "xl/charts/chart" + std::to_string(nr) + ".xml";
    return Diagramdel(del, test::handlagetDel(del));
}

const std::string chartNs = "xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\"";

}  // namespace

TEST(Diagram, NyTittelOgMinimumSomXml)
{
    // A chart without title and without the drawing namespace, which the title needs.
    const std::string akser = "<c:lineChart><c:axId val=\"1\"/><c:axId val=\"2\"/></c:lineChart>"
                              "<c:valAx><c:axId val=\"2\"/><c:axPos val=\"l\"/></c:valAx><c:catAx><c:axId val=\"1\"/>";
    Diagramdel d("xl/charts/chart9.xml", "<c:chartSpace " + chartNs + "><c:chart><c:plotArea>" + akser +
                                             "<c:axPos val=\"b\"/></c:catAx></c:plotArea></c:chart></c:chartSpace>");
    EXPECT_EQ(d.tittel(), QString());
    d.settTittel(QStringLiteral("CO₂ & N₂\nSyklus 3"));
    d.settKategoriMinimum(230.25);
    EXPECT_EQ(d.tittel(), QStringLiteral("CO₂ & N₂\nSyklus 3"));
    const std::string avsnitt = "<a:p><a:pPr><a:defRPr/></a:pPr><a:r><a:rPr lang=\"nb-NO\"/><a:t>";
    EXPECT_EQ(d.skriv(),
              "<?xml version=\"1.0\"?><c:chartSpace " + chartNs +
                  " xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><c:chart><c:title><c:tx>"
                  "<c:rich><a:bodyPr/><a:lstStyle/>" +
                  avsnitt + "CO₂ &amp; N₂</a:t></a:r></a:p>" + avsnitt +
                  "Syklus 3</a:t></a:r></a:p></c:rich></c:tx><c:overlay val=\"0\"/></c:title>"
                  "<c:autoTitleDeleted val=\"0\"/><c:plotArea>" +
                  akser +
                  "<c:scaling><c:min val=\"230.25\"/></c:scaling><c:axPos val=\"b\"/></c:catAx></c:plotArea>"
                  "</c:chart></c:chartSpace>");
}

// Titles are read through the workbook (ArbeidsbokTest); here the XML a change writes.
TEST(Diagram, TittelOgAkseminimumIHandlagetDiagram)
{
    Diagramdel linje = handlaget(1), xy = handlaget(2), soyle = handlaget(3);
    linje.settTittel(QStringLiteral("Syklus 3 & 4"));
    soyle.settTittel(QStringLiteral("Ny"));
    linje.settKategoriMinimum(230);  // line chart: category axis
    xy.settKategoriMinimum(12.5);    // scatter: the value axis at the bottom
    soyle.settKategoriMinimum(232);  // bar chart: replaces the minimum it has
    // A rich title keeps the formatting of its first paragraph and run; a title from a cell becomes text.
    const std::pair<const Diagramdel*, std::string> biter[] = {
        {&linje, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"},
        {&linje, "<c:chart><c:title><c:tx><c:rich><a:bodyPr rot=\"0\"/><a:lstStyle/><a:p><a:pPr>"
                 "<a:defRPr sz=\"1400\" b=\"0\"/></a:pPr><a:r><a:rPr lang=\"nb-NO\" sz=\"1400\" b=\"1\"/>"
                 "<a:t>Syklus 3 &amp; 4</a:t></a:r></a:p></c:rich></c:tx><c:overlay val=\"0\"/></c:title>"
                 "<c:autoTitleDeleted val=\"0\"/><c:plotArea>"},
        {&soyle, "<c:chart><c:title><c:tx><c:rich><a:bodyPr/><a:lstStyle/><a:p><a:pPr><a:defRPr/></a:pPr><a:r>"
                 "<a:rPr lang=\"nb-NO\"/><a:t>Ny</a:t></a:r></a:p></c:rich></c:tx><c:overlay val=\"0\"/></c:title>"
                 "<c:autoTitleDeleted val=\"0\"/><c:plotArea>"},
        // Each axis by its id: the minimum goes after orientation and max, before extLst.
        {&linje, "<c:axId val=\"10\"/><c:scaling><c:orientation val=\"minMax\"/><c:min val=\"230\"/></c:scaling>"},
        {&linje, "<c:axId val=\"20\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling>"},
        {&xy, "<c:axId val=\"40\"/><c:scaling><c:logBase val=\"10\"/><c:orientation val=\"minMax\"/>"
              "<c:max val=\"500\"/><c:min val=\"12.5\"/><c:extLst><c:ext uri=\"{y}\"/></c:extLst></c:scaling>"},
        {&soyle, "<c:axId val=\"50\"/><c:scaling><c:orientation val=\"minMax\"/><c:min val=\"232\"/></c:scaling>"},
    };
    for (auto& [diagram, bit] : biter) EXPECT_TRUE(har(diagram->skriv(), bit));
}
