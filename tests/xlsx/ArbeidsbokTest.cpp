#include "Zipfiler.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cmath>

using namespace xlsx;

namespace {

std::string s(const QString& q) { return q.toStdString(); }

QString tekstAv(const Verdi& v) { return std::holds_alternative<QString>(v) ? std::get<QString>(v) : QString(); }
double tallAv(const Verdi& v) { return std::holds_alternative<double>(v) ? std::get<double>(v) : NAN; }

// The children of the c:scaling element of the axis with this id, by name.
std::vector<std::string> skala(const std::string& xml, const char* aksId) {
    pugi::xml_document d;
    d.load_string(xml.c_str());
    std::vector<std::string> ut;
    auto akse = d.select_node((std::string("//*[substring(name(), string-length(name()) - 1) = 'Ax']"
                                           "[*[local-name() = 'axId']/@val = '") + aksId + "']").c_str());
    for (auto b : akse.node().child("c:scaling").children())
        ut.push_back(std::string(b.name()) + (b.attribute("val") ? std::string("=") + b.attribute("val").value() : ""));
    return ut;
}

class HandlagetBok : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        kilde = dir.filePath(QStringLiteral("mal.xlsx"));
        ut = dir.filePath(QStringLiteral("ut.xlsx"));
        test::skrivZip(s(kilde), test::handlagetBok(), {"xl/vbaProject.bin"});
    }
    std::map<std::string, test::Oppforing> lagreOgLes(Arbeidsbok& bok) {
        bok.lagreSom(ut);
        return test::lesZip(s(ut));
    }
    QTemporaryDir dir;
    QString kilde, ut;
};

} // namespace

TEST_F(HandlagetBok, UrortDelerKopieresByteForByte)
{
    auto bok = apne(kilde);
    bok->ark(1).settCelle(1, 2, 7.0);
    auto fra = test::lesZip(s(kilde));
    auto til = lagreOgLes(*bok);
    EXPECT_EQ(test::navnIZip(s(ut)), test::navnIZip(s(kilde))); // same entries, same order
    for (auto& [navn, o] : fra) {
        if (navn == "xl/worksheets/sheet1.xml" || navn == "xl/workbook.xml") continue;
        ASSERT_TRUE(til.count(navn)) << navn;
        EXPECT_EQ(til[navn].innhold, o.innhold) << navn;
        EXPECT_EQ(til[navn].metode, o.metode) << navn; // the VBA part stays stored
        EXPECT_EQ(til[navn].komprimert, o.komprimert) << navn;
    }
    // Values changed on a sheet with formulas: recalculation on load, the chain kept.
    const std::string& wb = til["xl/workbook.xml"].innhold;
    EXPECT_NE(wb.find("<calcPr calcId=\"191029\" fullCalcOnLoad=\"1\"/><extLst>"), std::string::npos) << wb;
    EXPECT_TRUE(til.count("xl/calcChain.xml"));
}

TEST_F(HandlagetBok, CellerLesesOgSkrivesMedStil)
{
    {
        auto bok = apne(kilde);
        Arbeidsark& a = bok->ark(1);
        EXPECT_EQ(tekstAv(a.celle(1, 1)), QStringLiteral("Navn"));
        EXPECT_EQ(tekstAv(a.celle(3, 1)), QStringLiteral("Rik tekst")); // phonetic hint left out
        EXPECT_EQ(tallAv(a.celle(1, 2)), 2.5);
        EXPECT_EQ(tallAv(a.celle(2, 3)), 30);
        EXPECT_EQ(tallAv(a.celle(4, 3)), 0); // shared formula B3*2 on an empty cell
        a.settCelle(3, 2, 4.0);
        EXPECT_EQ(tallAv(a.celle(4, 3)), 8); // recomputed after the change
        EXPECT_TRUE(std::holds_alternative<std::monostate>(a.celle(9, 9)));

        a.settCelle(1, 2, 1e-13);                                      // styled B1 keeps s="1"
        a.settCelle(5, 1, QStringLiteral(" <CO₂ & \"ø\"> "));
        a.settCelle(5, 3, 230.5);
        a.settCelle(5, 2, QStringLiteral("B5"));                      // written out of order
        a.settCelle(6, 1, QStringLiteral("bort"));
        a.settCelle(6, 1, QString());                                  // empty text empties the cell
        a.tomCelle(2, 1);                                              // value and style gone
        bok->lagreSom(ut);
    }
    auto bok = apne(ut);
    Arbeidsark& a = bok->ark(1);
    EXPECT_EQ(tallAv(a.celle(1, 2)), 1e-13);
    EXPECT_EQ(tekstAv(a.celle(5, 1)), QStringLiteral(" <CO₂ & \"ø\"> "));
    EXPECT_EQ(tallAv(a.celle(4, 3)), 8);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(a.celle(6, 1)));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(a.celle(2, 1)));

    const std::string xml = test::lesZip(s(ut))["xl/worksheets/sheet1.xml"].innhold;
    EXPECT_NE(xml.find("<c r=\"B1\" s=\"1\"><v>1e-13</v></c>"), std::string::npos);
    EXPECT_NE(xml.find("<row r=\"2\"><c r=\"B2\"><v>20</v></c>"), std::string::npos);
    EXPECT_NE(xml.find("<row r=\"3\" ht=\"20\" customHeight=\"1\">"), std::string::npos);
    EXPECT_NE(xml.find("<c r=\"A5\" t=\"inlineStr\"><is><t xml:space=\"preserve\"> &lt;CO₂ &amp; \"ø\"&gt; </t></is></c>"
                       "<c r=\"B5\" t=\"inlineStr\"><is><t>B5</t></is></c><c r=\"C5\"><v>230.5</v></c>"),
              std::string::npos);
    EXPECT_EQ(xml.find("r=\"A6\""), std::string::npos);
    EXPECT_NE(xml.find("<dimension ref=\"A1:C5\"/>"), std::string::npos);
    EXPECT_NE(xml.find("</sheetData><pageMargins"), std::string::npos);
}

TEST_F(HandlagetBok, FormlerFaarVerdiOgBeregningskjedenForsvinner)
{
    auto bok = apne(kilde);
    Arbeidsark& a = bok->ark(1);
    a.settFormel(QStringLiteral("C5"), QStringLiteral("= sum(C2:C4)"));
    a.settFormel(QStringLiteral("$D$5"), QStringLiteral("= abs((C5 -C6)/2)"));
    EXPECT_EQ(tallAv(a.celle(5, 3)), 70);
    EXPECT_EQ(tallAv(a.celle(5, 4)), 35);
    a.tomRad(3); // also removes the shared formula's first cell; B3 keeps its style
    auto til = lagreOgLes(*bok);

    EXPECT_FALSE(til.count("xl/calcChain.xml"));
    EXPECT_EQ(til["xl/_rels/workbook.xml.rels"].innhold.find("calcChain"), std::string::npos);
    EXPECT_EQ(til["[Content_Types].xml"].innhold.find("calcChain"), std::string::npos);
    EXPECT_NE(til["[Content_Types].xml"].innhold.find("/xl/styles.xml"), std::string::npos);
    EXPECT_NE(til["xl/workbook.xml"].innhold.find("fullCalcOnLoad=\"1\""), std::string::npos);
    const std::string& xml = til["xl/worksheets/sheet1.xml"].innhold;
    EXPECT_NE(xml.find("<c r=\"C5\"><f>SUM(C2:C4)</f><v>30</v></c><c r=\"D5\"><f>ABS((C5-C6)/2)</f><v>15</v></c>"),
              std::string::npos) << xml;
    EXPECT_NE(xml.find("<c r=\"C4\"><f>B3*2</f><v>0</v></c>"), std::string::npos); // shared formula expanded
    EXPECT_NE(xml.find("<row r=\"3\" ht=\"20\" customHeight=\"1\"><c r=\"B3\" s=\"1\"/></row>"), std::string::npos);
}

TEST_F(HandlagetBok, DiagramtitlerRikeEnkleOgManglende)
{
    {
        auto bok = apne(kilde);
        Arbeidsark& grafer = bok->ark(2);
        EXPECT_EQ(grafer.diagram(1).tittel(), QStringLiteral("Første del")); // the picture is no chart object
        EXPECT_EQ(grafer.diagram(2).tittel(), QString());
        EXPECT_EQ(grafer.diagram(3).tittel(), QStringLiteral("Fra celle"));
        grafer.diagram(1).settTittel(QStringLiteral("Syklus 3 & 4"));
        grafer.diagram(2).settTittel(QStringLiteral("Ny"));
        grafer.diagram(3).settTittel(grafer.diagram(1).tittel());
        bok->lagreSom(ut);
    }
    auto bok = apne(ut);
    EXPECT_EQ(bok->ark(2).diagram(1).tittel(), QStringLiteral("Syklus 3 & 4"));
    EXPECT_EQ(bok->ark(2).diagram(2).tittel(), QStringLiteral("Ny"));
    EXPECT_EQ(bok->ark(2).diagram(3).tittel(), QStringLiteral("Syklus 3 & 4"));

    auto til = test::lesZip(s(ut));
    const std::string& rik = til["xl/charts/chart1.xml"].innhold;
    EXPECT_NE(rik.find("<a:pPr><a:defRPr sz=\"1400\" b=\"0\"/></a:pPr><a:r><a:rPr lang=\"nb-NO\" sz=\"1400\" b=\"1\"/>"
                       "<a:t>Syklus 3 &amp; 4</a:t></a:r></a:p>"),
              std::string::npos) << rik;
    EXPECT_EQ(rik.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>", 0), 0u);
    const std::string& ny = til["xl/charts/chart2.xml"].innhold;
    EXPECT_NE(ny.find("<c:chart><c:title><c:tx><c:rich>"), std::string::npos) << ny;
    EXPECT_NE(ny.find("</c:title><c:autoTitleDeleted val=\"0\"/><c:plotArea>"), std::string::npos) << ny;
    EXPECT_EQ(til["xl/charts/chart3.xml"].innhold.find("strRef"), std::string::npos);
}

TEST_F(HandlagetBok, AkseminimumISkjemaetsRekkefolge)
{
    auto bok = apne(kilde);
    Arbeidsark& grafer = bok->ark(2);
    grafer.diagram(1).settKategoriMinimum(230);   // line chart: category axis
    grafer.diagram(2).settKategoriMinimum(12.5);  // scatter: the value axis at the bottom
    grafer.diagram(3).settKategoriMinimum(232);   // bar chart: replaces the minimum it has
    auto til = lagreOgLes(*bok);
    using V = std::vector<std::string>;
    EXPECT_EQ(skala(til["xl/charts/chart1.xml"].innhold, "10"), (V{"c:orientation=minMax", "c:min=230"}));
    EXPECT_EQ(skala(til["xl/charts/chart1.xml"].innhold, "20"), (V{"c:orientation=minMax"}));
    EXPECT_EQ(skala(til["xl/charts/chart2.xml"].innhold, "40"),
              (V{"c:logBase=10", "c:orientation=minMax", "c:max=500", "c:min=12.5", "c:extLst"}));
    EXPECT_EQ(skala(til["xl/charts/chart2.xml"].innhold, "30"), (V{"c:orientation=minMax"}));
    EXPECT_EQ(skala(til["xl/charts/chart3.xml"].innhold, "50"), (V{"c:orientation=minMax", "c:min=232"}));
}

TEST_F(HandlagetBok, FeilSomXlsxFeil)
{
    EXPECT_THROW(apne(dir.filePath(QStringLiteral("finnes_ikke.xlsx"))), XlsxFeil);
    QFile tekst(dir.filePath(QStringLiteral("tekst.xlsx")));
    ASSERT_TRUE(tekst.open(QIODevice::WriteOnly));
    tekst.write("Dato,Tid,CO2\n");
    tekst.close();
    EXPECT_THROW(apne(tekst.fileName()), XlsxFeil);
    test::skrivZip(s(dir.filePath(QStringLiteral("tom.xlsx"))), {{"a.txt", "x"}});
    EXPECT_THROW(apne(dir.filePath(QStringLiteral("tom.xlsx"))), XlsxFeil);

    auto bok = apne(kilde);
    EXPECT_THROW(bok->ark(3), XlsxFeil);
    EXPECT_THROW(bok->ark(0), XlsxFeil);
    EXPECT_THROW(bok->ark(2).diagram(4), XlsxFeil);
    EXPECT_THROW(bok->ark(1).diagram(1), XlsxFeil); // a sheet without drawing
    EXPECT_THROW(bok->ark(1).settFormel(QStringLiteral("1A"), QStringLiteral("=1")), XlsxFeil);
    EXPECT_THROW(bok->ark(1).settCelle(0, 1, 1.0), XlsxFeil);
    // XlsxFeil is the run-time error every command already handles.
    EXPECT_THROW(bok->ark(3), vb::Feil);
}

TEST_F(HandlagetBok, MislykketLagringEtterlaterIngenting)
{
    QFile f(kilde);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray original = f.readAll();
    f.close();
    auto bok = apne(kilde);
    bok->ark(1).settCelle(1, 1, QStringLiteral("endret"));
    EXPECT_THROW(bok->lagreSom(dir.filePath(QStringLiteral("mangler/ut.xlsx"))), XlsxFeil);
    QDir(dir.path()).mkdir(QStringLiteral("opptatt.xlsx")); // a folder in the way of the name
    EXPECT_THROW(bok->lagreSom(dir.filePath(QStringLiteral("opptatt.xlsx"))), XlsxFeil);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mal.xlsx")});
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), original);
    f.close();

    // Saving in place rewrites the opened file.
    bok->lagre();
    EXPECT_EQ(tekstAv(apne(kilde)->ark(1).celle(1, 1)), QStringLiteral("endret"));
}

TEST_F(HandlagetBok, FiltypenBestemmerInnholdstypen)
{
    auto bok = apne(kilde);
    const QString xlsm = dir.filePath(QStringLiteral("ut.xlsm"));
    bok->lagreSom(xlsm);
    std::string typer = test::lesZip(s(xlsm))["[Content_Types].xml"].innhold;
    EXPECT_NE(typer.find("PartName=\"/xl/workbook.xml\" ContentType=\"application/vnd.ms-excel.sheet.macroEnabled.main+xml\""),
              std::string::npos) << typer;
    EXPECT_EQ(test::lesZip(s(xlsm))["xl/vbaProject.bin"].innhold, test::lesZip(s(kilde))["xl/vbaProject.bin"].innhold);
    // After "save as" the workbook lives under the new name.
    bok->ark(1).settCelle(1, 1, QStringLiteral("igjen"));
    bok->lagre();
    EXPECT_EQ(tekstAv(apne(xlsm)->ark(1).celle(1, 1)), QStringLiteral("igjen"));
    EXPECT_EQ(tekstAv(apne(kilde)->ark(1).celle(1, 1)), QStringLiteral("Navn"));

    apne(xlsm)->lagreSom(ut);
    EXPECT_NE(test::lesZip(s(ut))["[Content_Types].xml"].innhold.find(
                  "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"),
              std::string::npos);
}
