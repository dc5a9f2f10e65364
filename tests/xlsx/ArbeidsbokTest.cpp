#include "Hjelpere.h"

#include <QDir>
#include <QTemporaryDir>

using namespace xlsx;
using test::har;
using V = std::vector<Verdi>;

namespace {

// The titles of the three charts; the picture before them is no chart object.
QStringList titler(Arbeidsark& ark) { return {ark.diagram(1).tittel(), ark.diagram(2).tittel(), ark.diagram(3).tittel()}; }

class HandlagetBok : public ::testing::Test {
protected:
    void SetUp() override { test::skrivZip(kilde, test::handlagetBok()); }
    std::map<std::string, test::Oppforing> lagre(Arbeidsbok& bok) {
        bok.lagreSom(ut);
        return test::lesZip(ut);
    }
    QTemporaryDir dir;
    const QString kilde = dir.filePath(QStringLiteral("mal.xlsx"));
    const QString ut = dir.filePath(QStringLiteral("ut.xlsx"));
};

} // namespace

TEST_F(HandlagetBok, UrorteDelerKopieresByteForByte)
{
    auto bok = apne(kilde);
    bok->ark(1).settCelle(1, 2, 7.0);
    auto fra = test::lesZip(kilde), til = lagre(*bok);
    ASSERT_EQ(til.size(), fra.size());
    for (auto& [navn, o] : fra) {
        SCOPED_TRACE(navn);
        ASSERT_TRUE(til.count(navn));
        EXPECT_EQ(til[navn].nr, o.nr);
        if (navn == "xl/worksheets/sheet1.xml" || navn == "xl/workbook.xml") continue;
        EXPECT_EQ(til[navn].innhold, o.innhold); // the calculation chain among them
        EXPECT_EQ(til[navn].metode, o.metode);   // the VBA part stays stored
        EXPECT_EQ(til[navn].komprimert, o.komprimert);
    }
    // Values changed on a sheet with formulas: recalculation on load.
    EXPECT_TRUE(har(til["xl/workbook.xml"].innhold, "<calcPr calcId=\"191029\" fullCalcOnLoad=\"1\"/><extLst>"));
}

TEST_F(HandlagetBok, CellerLesesOgSkrivesMedStil)
{
    {
        auto bok = apne(kilde);
        Arbeidsark& a = bok->ark(1);
        // The phonetic hint of the rich text left out; C4 is the shared formula B3*2 on an empty cell.
        EXPECT_EQ((V{a.celle(1, 1), a.celle(3, 1), a.celle(1, 2), a.celle(2, 3), a.celle(4, 3), a.celle(9, 9)}),
                  (V{QStringLiteral("Navn"), QStringLiteral("Rik tekst"), 2.5, 30.0, 0.0, {}}));
        a.settCelle(3, 2, 4.0);
        EXPECT_EQ(a.celle(4, 3), Verdi(8.0)); // recomputed after the change
        a.settCelle(1, 2, 1e-13); // styled B1 keeps s="1"
        a.settCelle(5, 1, QStringLiteral(" <CO₂ & \"ø\"> "));
        a.settCelle(5, 3, 230.5);
        a.settCelle(5, 2, QStringLiteral("B5")); // written out of order
        a.settCelle(6, 1, QStringLiteral("bort"));
        a.settCelle(6, 1, QString()); // empty text empties the cell
        a.tomCelle(2, 1);             // value and style gone
        bok->lagreSom(ut);
    }
    auto bok = apne(ut);
    Arbeidsark& a = bok->ark(1);
    EXPECT_EQ((V{a.celle(1, 2), a.celle(5, 1), a.celle(4, 3), a.celle(6, 1), a.celle(2, 1)}),
              (V{1e-13, QStringLiteral(" <CO₂ & \"ø\"> "), 8.0, {}, {}}));
    const std::string xml = test::lesZip(ut)["xl/worksheets/sheet1.xml"].innhold;
    for (const char* bit : {"<dimension ref=\"A1:C5\"/>", "<c r=\"B1\" s=\"1\"><v>1e-13</v></c>",
                            "<row r=\"2\"><c r=\"B2\"><v>20</v></c>", "<row r=\"3\" ht=\"20\" customHeight=\"1\">",
                            "<c r=\"A5\" t=\"inlineStr\"><is><t xml:space=\"preserve\"> &lt;CO₂ &amp; \"ø\"&gt; </t></is></c>"
                            "<c r=\"B5\" t=\"inlineStr\"><is><t>B5</t></is></c><c r=\"C5\"><v>230.5</v></c>",
                            "</sheetData><pageMargins"})
        EXPECT_TRUE(har(xml, bit));
    EXPECT_FALSE(har(xml, "r=\"A6\""));
}

TEST_F(HandlagetBok, FormlerFaarVerdiOgBeregningskjedenForsvinner)
{
    auto bok = apne(kilde);
    Arbeidsark& a = bok->ark(1);
    a.settFormel(QStringLiteral("C5"), QStringLiteral("= sum(C2:C4)"));
    a.settFormel(QStringLiteral("$D$5"), QStringLiteral("= abs((C5 -C6)/2)"));
    a.settFormel(QStringLiteral("E5"), QStringLiteral("=E6+1")); // a circle: never a cached value
    a.settFormel(QStringLiteral("E6"), QStringLiteral("=E5+1"));
    EXPECT_EQ((V{a.celle(5, 3), a.celle(5, 4)}), (V{70.0, 35.0}));
    a.tomRad(3); // also removes the shared formula's first cell; B3 keeps its style
    auto til = lagre(*bok);
    EXPECT_FALSE(til.count("xl/calcChain.xml"));
    EXPECT_FALSE(har(til["xl/_rels/workbook.xml.rels"].innhold, "calcChain"));
    EXPECT_FALSE(har(til["[Content_Types].xml"].innhold, "calcChain"));
    EXPECT_TRUE(har(til["[Content_Types].xml"].innhold, "/xl/styles.xml"));
    EXPECT_TRUE(har(til["xl/workbook.xml"].innhold, "fullCalcOnLoad=\"1\""));
    const std::string& xml = til["xl/worksheets/sheet1.xml"].innhold;
    EXPECT_TRUE(har(xml, "<c r=\"C5\"><f>SUM(C2:C4)</f><v>30</v></c><c r=\"D5\"><f>ABS((C5-C6)/2)</f><v>15</v></c>"
                         "<c r=\"E5\"><f>E6+1</f></c>"));
    EXPECT_TRUE(har(xml, "<c r=\"C4\"><f>B3*2</f><v>0</v></c>")); // shared formula expanded
    EXPECT_TRUE(har(xml, "<row r=\"3\" ht=\"20\" customHeight=\"1\"><c r=\"B3\" s=\"1\"/></row>"));
}

TEST_F(HandlagetBok, DiagramtitlerRikeEnkleOgManglende)
{
    {
        auto bok = apne(kilde);
        Arbeidsark& grafer = bok->ark(2);
        EXPECT_EQ(titler(grafer), (QStringList{QStringLiteral("Første del"), QString(), QStringLiteral("Fra celle")}));
        grafer.diagram(1).settTittel(QStringLiteral("Syklus 3 & 4"));
        grafer.diagram(2).settTittel(QStringLiteral("Ny"));
        grafer.diagram(3).settTittel(grafer.diagram(1).tittel());
        bok->lagreSom(ut);
    }
    EXPECT_EQ(titler(apne(ut)->ark(2)), (QStringList{QStringLiteral("Syklus 3 & 4"), QStringLiteral("Ny"), QStringLiteral("Syklus 3 & 4")}));
    auto til = test::lesZip(ut);
    const std::string& rik = til["xl/charts/chart1.xml"].innhold;
    EXPECT_TRUE(har(rik, "<a:pPr><a:defRPr sz=\"1400\" b=\"0\"/></a:pPr><a:r><a:rPr lang=\"nb-NO\" sz=\"1400\" b=\"1\"/>"
                         "<a:t>Syklus 3 &amp; 4</a:t></a:r></a:p>"));
    EXPECT_EQ(rik.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>", 0), 0u);
    EXPECT_TRUE(har(til["xl/charts/chart2.xml"].innhold, "<c:chart><c:title><c:tx><c:rich>"));
    EXPECT_TRUE(har(til["xl/charts/chart2.xml"].innhold, "</c:title><c:autoTitleDeleted val=\"0\"/><c:plotArea>"));
    EXPECT_FALSE(har(til["xl/charts/chart3.xml"].innhold, "strRef"));
}

TEST_F(HandlagetBok, AkseminimumISkjemaetsRekkefolge)
{
    auto bok = apne(kilde);
    Arbeidsark& grafer = bok->ark(2);
    grafer.diagram(1).settKategoriMinimum(230);  // line chart: category axis
    grafer.diagram(2).settKategoriMinimum(12.5); // scatter: the value axis at the bottom
    grafer.diagram(3).settKategoriMinimum(232);  // bar chart: replaces the minimum it has
    auto til = lagre(*bok);
    // Each axis by its id: the minimum goes after orientation and max, before extLst.
    const std::pair<const char*, const char*> skalaer[] = {
        {"xl/charts/chart1.xml", "<c:axId val=\"10\"/><c:scaling><c:orientation val=\"minMax\"/><c:min val=\"230\"/></c:scaling>"},
        {"xl/charts/chart1.xml", "<c:axId val=\"20\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling>"},
        {"xl/charts/chart2.xml", "<c:axId val=\"30\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling>"},
        {"xl/charts/chart2.xml", "<c:axId val=\"40\"/><c:scaling><c:logBase val=\"10\"/><c:orientation val=\"minMax\"/>"
                                 "<c:max val=\"500\"/><c:min val=\"12.5\"/><c:extLst><c:ext uri=\"{y}\"/></c:extLst></c:scaling>"},
        {"xl/charts/chart3.xml", "<c:axId val=\"50\"/><c:scaling><c:orientation val=\"minMax\"/><c:min val=\"232\"/></c:scaling>"},
    };
    for (auto [del, skala] : skalaer) EXPECT_TRUE(har(til[del].innhold, skala));
}

TEST_F(HandlagetBok, FeilSomXlsxFeil)
{
    const QString tekst = dir.filePath(QStringLiteral("tekst.xlsx")), utenBok = dir.filePath(QStringLiteral("tom.xlsx"));
    QFile f(tekst);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && f.write("Dato,Tid,CO2\n") > 0);
    test::skrivZip(utenBok, {{"a.txt", "x"}});
    for (const QString& sti : {dir.filePath(QStringLiteral("finnes_ikke.xlsx")), tekst, utenBok})
        EXPECT_THROW(apne(sti), XlsxFeil) << sti.toStdString();
    auto bok = apne(kilde);
    EXPECT_THROW(bok->ark(3), XlsxFeil);
    EXPECT_THROW(bok->ark(0), XlsxFeil);
    EXPECT_THROW(bok->ark(2).diagram(4), XlsxFeil);
    EXPECT_THROW(bok->ark(1).diagram(1), XlsxFeil); // a sheet without drawing
    EXPECT_THROW(bok->ark(1).settFormel(QStringLiteral("1A"), QStringLiteral("=1")), XlsxFeil);
    EXPECT_THROW(bok->ark(1).settCelle(0, 1, 1.0), XlsxFeil);
    EXPECT_THROW(bok->ark(3), vb::Feil); // the run-time error every command already handles
}

TEST_F(HandlagetBok, LagringsstedOgFiltype)
{
    const QByteArray original = test::filinnhold(kilde);
    auto bok = apne(kilde);
    bok->ark(1).settCelle(1, 1, QStringLiteral("endret"));
    // A failed save leaves neither a half-written target nor a changed source.
    EXPECT_THROW(bok->lagreSom(dir.filePath(QStringLiteral("mangler/ut.xlsx"))), XlsxFeil);
    QDir(dir.path()).mkdir(QStringLiteral("opptatt.xlsx")); // a folder in the way of the name
    EXPECT_THROW(bok->lagreSom(dir.filePath(QStringLiteral("opptatt.xlsx"))), XlsxFeil);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mal.xlsx")});
    EXPECT_EQ(test::filinnhold(kilde), original);

    // .xlsm makes the package macro-enabled; from then on the workbook lives under that name.
    const QString xlsm = dir.filePath(QStringLiteral("ut.xlsm"));
    bok->lagreSom(xlsm);
    auto til = test::lesZip(xlsm);
    EXPECT_TRUE(har(til["[Content_Types].xml"].innhold,
                    "PartName=\"/xl/workbook.xml\" ContentType=\"application/vnd.ms-excel.sheet.macroEnabled.main+xml\""));
    EXPECT_EQ(til["xl/vbaProject.bin"].innhold, test::handlagetBok().back().second);
    bok->ark(1).settCelle(1, 1, QStringLiteral("igjen"));
    bok->lagre();
    EXPECT_EQ(apne(xlsm)->ark(1).celle(1, 1), Verdi(QStringLiteral("igjen")));
    EXPECT_EQ(apne(kilde)->ark(1).celle(1, 1), Verdi(QStringLiteral("Navn")));
    apne(xlsm)->lagreSom(ut);
    EXPECT_TRUE(har(test::lesZip(ut)["[Content_Types].xml"].innhold,
                    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"));
}
