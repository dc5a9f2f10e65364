// The parts of a workbook on their own: a sheet, a chart part, and the XML helpers under them.
#include "Hjelpere.h"

#include "platform/xlsx/Ark.h"
#include "platform/xlsx/Diagramdel.h"
#include "platform/xlsx/Xml.h"

using namespace Qt::StringLiterals;

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

}  // namespace

// The sheet written after a change is compared whole with gull/: what is untouched stays as read.
TEST(Ark, CellerAvHverArtSomXml)
{
    EttArk bok;
    bok.xml = test::data("inn/celler.xml");  // row 5: plain cells and cells with a style or other attributes
    Ark a(bok, "xl/worksheets/sheet1.xml");
    a.settCelle(1, 1, 230.5);
    a.settCelle(1, 2, u" <CO₂ & \"ø\">"_s);
    a.settCelle(1, 3, u"B"_s);
    a.settCelle(2, 1, 1.0);
    a.settCelle(3, 1, 2.0);
    a.settCelle(4, 3, u"bort"_s);
    a.settCelle(4, 3, QString());  // empty text empties the cell
    // A column of formulas that differ only by their row: one shared formula.
    a.settFormel(u"B2"_s, u"=A2*2"_s);
    a.settFormel(u"B3"_s, u"= a3 * 2"_s);
    a.beregn();  // computed ahead of the save; the save computes the changes after it again
    a.settFormel(u"B4"_s, u"=A4*2"_s);
    a.settFormel(u"C2"_s, u"=A1&\"<\""_s);
    a.settFormel(u"D2"_s, u"=1/0"_s);
    a.settFormel(u"E2"_s, u"=E3+1"_s);  // a circle: never a cached value
    a.settFormel(u"E3"_s, u"=E2+1"_s);
    a.settFormel(u"F2"_s, u"=A2>0"_s);
    a.tomRad(5);  // the cells with a style (even 0) or other attributes stay, empty
    EXPECT_EQ(a.skriv(), test::data("gull/celler.xml"));
}

TEST(Ark, LesteCellerSkrivesSomDeStod)
{
    // A prefixed sheet as another program writes it; removing the first cell of a shared
    // formula gives the next cell the formula as it reads there. Row 1 is written as read, but
    // for spans, which the application computes anew.
    EttArk bok;
    bok.delte = {"Navn", "Ark"};
    bok.xml = test::data("inn/leste.xml");
    Ark a(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ(
        (V{a.celle(1, 1), a.celle(1, 2), a.celle(1, 3), a.celle(1, 4), a.celle(2, 1), a.celle(2, 2), a.celle(3, 2)}),
        (V{u"Ark"_s, 1.0, u"#N/A"_s, u"Rik tekst"_s, 3.5, u"Ark!"_s, u"3.5!"_s}));
    a.tomCelle(2, 2);
    a.settFormel(u"E2"_s, u"=B1"_s);  // a logical cell's value is a certain one
    EXPECT_EQ(a.skriv(), test::data("gull/leste.xml"));
    // The same XML read again comes from the copy kept at the first reading: as it stood, not
    // as changed above; the changed sheet's own XML reads as changed.
    Ark b(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ((V{b.celle(2, 2), b.celle(3, 2)}), (V{u"Ark!"_s, u"3.5!"_s}));
    bok.xml = a.skriv();
    Ark c(bok, "xl/worksheets/sheet1.xml");
    EXPECT_EQ((V{c.celle(2, 2), c.celle(3, 2)}), (V{Verdi{}, u"3.5!"_s}));
}

TEST(Ark, EndringBeregnerPaNyttDetSomLesteDen)
{
    // Computed values are kept while the changes lie below every cell they read.
    EttArk bok;
    bok.xml = test::data("inn/tomt_ark.xml");
    Ark a(bok, "xl/worksheets/sheet1.xml");
    a.settCelle(1, 1, 1.0);
    a.settCelle(2, 1, 2.0);
    a.settFormel(u"B1"_s, u"=SUM(A1:A2)"_s);
    a.settFormel(u"C1"_s, u"=A1*10"_s);
    a.settFormel(u"D1"_s, u"=SUM(A1:A10)"_s);
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
    bok.xml = test::data("inn/tomt_ark.xml");  // without cells, but a drawing after them
    Ark a(bok, "xl/worksheets/sheet2.xml");
    a.settCelle(2, 3, 1e-13);
    EXPECT_EQ(a.skriv(), test::data("gull/tomt_ark.xml"));
    for (const char* xml : {"<worksheet><sheetData><row></sheetData></worksheet>", "<worksheet><cols/></worksheet>"}) {
        bok.xml = xml;
        EXPECT_THROW(Ark(bok, "xl/worksheets/sheet3.xml").celle(1, 1), XlsxFeil) << xml;
    }
}

// A chart without title and without the drawing namespace, which the title needs. The charts of a workbook
// are changed and written in ArbeidsbokTest.
TEST(Diagram, NyTittelOgMinimumSomXml)
{
    Diagramdel d("xl/charts/chart9.xml", test::data("inn/diagram_uten_tittel.xml"));
    EXPECT_EQ(d.tittel(), QString());
    d.settTittel(u"CO₂ & N₂\nSyklus 3"_s);
    d.settKategoriMinimum(230.25);
    EXPECT_EQ(d.tittel(), u"CO₂ & N₂\nSyklus 3"_s);
    EXPECT_EQ(d.skriv(), test::data("gull/nytt_diagram.xml"));
}

TEST(Xml, TekstOgAttributtverdier)
{
    // Tab, line feed and carriage return stay; other control characters are not allowed in XML 1.0.
    const std::string tekst = "a<b> & \"c\"\x01\x1f\t\n\r ø";
    std::string innhold, attributt;
    leggTilTekst(innhold, tekst);
    leggTilAttributt(attributt, tekst);
    EXPECT_EQ(innhold, "a&lt;b&gt; &amp; \"c\"\t\n\r ø");
    EXPECT_EQ(attributt, "a&lt;b&gt; &amp; &quot;c&quot;\t\n\r ø");
}

// Written parts are checked whole above and in ArbeidsbokTest; here the layer's error, with the
// parser's reason when asked for.
TEST(Xml, OdelagtDokument)
{
    auto feil = [](bool grunn) {
        try {
            pugi::xml_document d;
            lesXml(d, "<a><b></a>", pugi::parse_default, "a.xml", "Ødelagt del: a.xml", grunn);
        } catch (const XlsxFeil& f) {
            return std::string(f.what());
        }
        return std::string("ingen feil");
    };
    EXPECT_EQ(feil(false), "Ødelagt del: a.xml");
    EXPECT_EQ(feil(true), "Ødelagt del: a.xml (Start-end tags mismatch)");
}
