#include "Hjelpere.h"

#include "platform/xlsx/Ark.h"

using namespace xlsx;
using V = std::vector<Verdi>;

namespace {

// The workbook around one sheet: the sheet's XML and the shared strings.
struct EttArk : Bokdeler {
    std::string xml;
    std::vector<std::string> delte;
    std::string lesDel(const std::string&) override { return xml; }
    std::string lagretForm(const std::string&) override { return xml; }
    const std::string& deltTekst(long i) override { return delte.at(static_cast<size_t>(i)); }
    Diagram& diagram(const std::string&, int) override { throw XlsxFeil("ingen tegning"); }
    int strekkOmrader(const std::string&, int sisteRad) override { return sisteRad; }
};

const std::string ns = "xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"";

}  // namespace

TEST(Ark, CellerAvHverArtSomXml)
{
    EttArk bok;
    bok.xml = "<worksheet " + ns +
              "><dimension ref=\"A5:B5\"/><sheetData>"
              "<row r=\"5\" spans=\"1:2\" ht=\"20\" customHeight=\"1\"><c r=\"A5\" s=\"3\"><v>1</v></c><c "
              "r=\"B5\"><v>2</v></c></row>"
              "</sheetData><pageMargins left=\"0.7\"/></worksheet>";
    Ark a(bok, "xl/worksheets/sheet1.xml");
    a.settCelle(1, 1, 230.5);
    a.settCelle(1, 2, QStringLiteral(" <CO₂ & \"ø\">"));
    a.settCelle(1, 3, QStringLiteral("B"));
    a.settCelle(2, 1, 1.0);
    a.settCelle(3, 1, 2.0);
    a.settCelle(4, 3, QStringLiteral("bort"));
    a.settCelle(4, 3, QString());  // empty text empties the cell
    // A column of formulas that differ only by their row: one shared formula.
    a.settFormel(QStringLiteral("B2"), QStringLiteral("=A2*2"));
    a.settFormel(QStringLiteral("B3"), QStringLiteral("= a3 * 2"));
    a.settFormel(QStringLiteral("B4"), QStringLiteral("=A4*2"));
    a.settFormel(QStringLiteral("C2"), QStringLiteral("=A1&\"<\""));
    a.settFormel(QStringLiteral("D2"), QStringLiteral("=1/0"));
    a.settFormel(QStringLiteral("E2"), QStringLiteral("=E3+1"));  // a circle: never a cached value
    a.settFormel(QStringLiteral("E3"), QStringLiteral("=E2+1"));
    a.settFormel(QStringLiteral("F2"), QStringLiteral("=A2>0"));
    a.tomRad(5);  // the styled cell stays, empty
    EXPECT_EQ(a.skriv(),
              "<worksheet " + ns +
                  "><dimension ref=\"A1:F5\"/><sheetData>"
                  "<row r=\"1\"><c r=\"A1\"><v>230.5</v></c>"
                  "<c r=\"B1\" t=\"inlineStr\"><is><t xml:space=\"preserve\"> &lt;CO₂ &amp; \"ø\"&gt;</t></is></c>"
                  "<c r=\"C1\" t=\"inlineStr\"><is><t>B</t></is></c></row>"
                  "<row r=\"2\"><c r=\"A2\"><v>1</v></c><c r=\"B2\"><f t=\"shared\" ref=\"B2:B4\" "
                  "si=\"0\">A2*2</f><v>2</v></c>"
                  "<c r=\"C2\" t=\"str\"><f>A1&amp;\"&lt;\"</f><v>230.5&lt;</v></c>"
                  "<c r=\"D2\" t=\"e\"><f>1/0</f><v>#DIV/0!</v></c><c r=\"E2\"><f>E3+1</f></c>"
                  "<c r=\"F2\" t=\"b\"><f>A2&gt;0</f><v>1</v></c></row>"
                  "<row r=\"3\"><c r=\"A3\"><v>2</v></c><c r=\"B3\"><f t=\"shared\" si=\"0\"/><v>4</v></c><c "
                  "r=\"E3\"><f>E2+1</f></c></row>"
                  "<row r=\"4\"><c r=\"B4\"><f t=\"shared\" si=\"0\"/><v>0</v></c></row>"
                  "<row r=\"5\" ht=\"20\" customHeight=\"1\"><c r=\"A5\" s=\"3\"/></row>"
                  "</sheetData><pageMargins left=\"0.7\"/></worksheet>");
}

TEST(Ark, LesteCellerSkrivesSomDeStod)
{
    // A prefixed sheet as another program writes it; removing the first cell of a shared
    // formula gives the next cell the formula as it reads there.
    EttArk bok;
    bok.delte = {"Navn", "Ark"};
    const std::string hode = "<x:worksheet xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
    // Row 1 is written as read, but for spans, which the application computes anew.
    auto rad1 = [](const std::string& spans) {
        return "<x:row r=\"1\"" + spans +
               " x14ac:dyDescent=\"0.25\"><x:c r=\"A1\" t=\"s\"><x:v>1</x:v></x:c>"
               "<x:c r=\"B1\" t=\"b\"><x:v>1</x:v></x:c><x:c r=\"C1\" t=\"e\"><x:v>#N/A</x:v></x:c>"
               "<x:c r=\"D1\" t=\"inlineStr\"><x:is><x:r><x:t>Rik</x:t></x:r><x:r><x:t xml:space=\"preserve\"> "
               "tekst</x:t></x:r>"
               "<x:rPh sb=\"0\" eb=\"1\"><x:t>y</x:t></x:rPh></x:is></x:c></x:row>";
    };
    bok.xml = hode + "<x:dimension ref=\"A1:D3\"/><x:sheetData>" + rad1(" spans=\"1:4\"") +
              "<x:row r=\"2\"><x:c r=\"A2\" s=\"1\" cm=\"1\"><x:f>A3+1</x:f><x:v>9</x:v></x:c>"
              "<x:c r=\"B2\"><x:f t=\"shared\" ref=\"B2:B3\" si=\"0\">A1&amp;\"!\"</x:f><x:v>x</x:v></x:c></x:row>"
              "<x:row r=\"3\"><x:c r=\"A3\"><x:v>2.5</x:v></x:c><x:c r=\"B3\"><x:f t=\"shared\" "
              "si=\"0\"/><x:v>y</x:v></x:c></x:row>"
              "</x:sheetData></x:worksheet>";
    Ark a(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ(
        (V{a.celle(1, 1), a.celle(1, 2), a.celle(1, 3), a.celle(1, 4), a.celle(2, 1), a.celle(2, 2), a.celle(3, 2)}),
        (V{QStringLiteral("Ark"), 1.0, QStringLiteral("#N/A"), QStringLiteral("Rik tekst"), 3.5, QStringLiteral("Ark!"),
           QStringLiteral("3.5!")}));
    a.tomCelle(2, 2);
    EXPECT_EQ(a.skriv(), hode + "<x:dimension ref=\"A1:D3\"/><x:sheetData>" + rad1("") +
                             "<x:row r=\"2\"><x:c r=\"A2\" s=\"1\" cm=\"1\"><x:f>A3+1</x:f><x:v>3.5</x:v></x:c></x:row>"
                             "<x:row r=\"3\"><x:c r=\"A3\"><x:v>2.5</x:v></x:c>"
                             "<x:c r=\"B3\" t=\"str\"><x:f>A2&amp;\"!\"</x:f><x:v>3.5!</x:v></x:c></x:row>"
                             "</x:sheetData></x:worksheet>");
    // The same XML read again comes from the copy kept at the first reading: as it stood, not
    // as changed above; the changed sheet's own XML reads as changed.
    Ark b(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ((V{b.celle(2, 2), b.celle(3, 2)}), (V{QStringLiteral("Ark!"), QStringLiteral("3.5!")}));
    bok.xml = a.skriv();
    Ark c(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ((V{c.celle(2, 2), c.celle(3, 2)}), (V{Verdi{}, QStringLiteral("3.5!")}));
}

TEST(Ark, EndringBeregnerPaNyttDetSomLesteDen)
{
    // Computed values are kept while the changes lie below every cell they read.
    EttArk bok;
    bok.xml = "<worksheet " + ns + "><sheetData/></worksheet>";
    Ark a(bok, "xl/worksheets/sheet1.xml");
    a.settCelle(1, 1, 1.0);
    a.settCelle(2, 1, 2.0);
    a.settFormel(QStringLiteral("B1"), QStringLiteral("=SUM(A1:A2)"));
    a.settFormel(QStringLiteral("C1"), QStringLiteral("=A1*10"));
    a.settFormel(QStringLiteral("D1"), QStringLiteral("=SUM(A1:A10)"));
    EXPECT_EQ(a.celle(1, 2), Verdi(3.0));
    a.settCelle(3, 1, 100.0);  // below B1's range
    EXPECT_EQ(a.celle(1, 2), Verdi(3.0));
    a.settCelle(2, 1, 5.0);
    EXPECT_EQ(a.celle(1, 3), Verdi(10.0));  // reads row 1 only
    a.settCelle(2, 1, 7.0);                 // B1, not computed since, sees it too
    EXPECT_EQ((V{a.celle(1, 2), a.celle(1, 4)}), (V{8.0, 108.0}));
    a.tomRad(9);
    a.settCelle(10, 1, 1.0);  // inside D1's range
    EXPECT_EQ((V{a.celle(1, 2), a.celle(1, 4)}), (V{8.0, 109.0}));
}

TEST(Ark, TomCelledataOgOdelagtArk)
{
    EttArk bok;
    bok.xml = "<worksheet " + ns + "><dimension ref=\"A1\"/><sheetData/><drawing r:id=\"rId1\"/></worksheet>";
    Ark a(bok, "xl/worksheets/sheet2.xml");
    a.settCelle(2, 3, 1e-13);
    EXPECT_EQ(a.skriv(), "<worksheet " + ns +
                             "><dimension ref=\"C2\"/><sheetData><row r=\"2\"><c r=\"C2\"><v>1e-13</v></c>"
                             "</row></sheetData><drawing r:id=\"rId1\"/></worksheet>");
    for (const char* xml : {"<worksheet><sheetData><row></sheetData></worksheet>", "<worksheet><cols/></worksheet>"}) {
        bok.xml = xml;
        EXPECT_THROW(Ark(bok, "xl/worksheets/sheet3.xml").celle(1, 1), XlsxFeil) << xml;
    }
}
