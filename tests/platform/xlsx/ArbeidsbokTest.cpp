#include "Hjelpere.h"

#include "platform/xlsx/Pakke.h"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

using namespace xlsx;
using S = std::vector<std::string>;
using test::har;
using V = std::vector<Verdi>;

namespace {

class HandlagetBok : public ::testing::Test {
protected:
    void SetUp() override { test::skrivZip(kilde, test::handlagetBok()); }
    QTemporaryDir dir;
    const QString kilde = dir.filePath(u"mal.xlsx"_s);
    const QString ut = dir.filePath(u"ut.xlsx"_s);
};

}  // namespace

TEST_F(HandlagetBok, CellerGjennomBokaOgUrorteDelerByteForByte)
{
    auto bok = apne(kilde);
    Arbeidsark& a = bok->ark(1);
    // The phonetic hint of the rich text left out; C4 is the shared formula B3*2 on an empty cell.
    EXPECT_EQ((V{a.celle(1, 1), a.celle(3, 1), a.celle(1, 2), a.celle(2, 3), a.celle(4, 3), a.celle(9, 9)}),
              (V{u"Navn"_s, u"Rik tekst"_s, 2.5, 30.0, 0.0, {}}));
    a.settCelle(3, 2, 4.0);
    EXPECT_EQ(a.celle(4, 3), Verdi(8.0));  // recomputed after the change
    a.settCelle(5, 1, u" <CO₂ & \"ø\"> "_s);
    bok->lagreSom(ut);
    auto fra = test::lesZip(kilde), til = test::lesZip(ut);
    EXPECT_EQ((V{apne(ut)->ark(1).celle(5, 1), apne(ut)->ark(1).celle(4, 3)}), (V{u" <CO₂ & \"ø\"> "_s, 8.0}));
    ASSERT_EQ(til.size(), fra.size());
    for (auto& [navn, o] : fra) {
        SCOPED_TRACE(navn);
        ASSERT_TRUE(til.count(navn));
        EXPECT_EQ(til[navn].nr, o.nr);
        if (navn == "xl/worksheets/sheet1.xml" || navn == "xl/workbook.xml") continue;
        EXPECT_EQ(til[navn].innhold, o.innhold);  // the calculation chain among them
        EXPECT_EQ(til[navn].metode, o.metode);    // the VBA part stays stored
        EXPECT_EQ(til[navn].komprimert, o.komprimert);
    }
    // Values changed on a sheet with formulas: recalculation on load.
    EXPECT_TRUE(har(til["xl/workbook.xml"].innhold, "<calcPr calcId=\"191029\" fullCalcOnLoad=\"1\"/><extLst>"));
}

TEST_F(HandlagetBok, FormlerFaarVerdiOgBeregningskjedenForsvinner)
{
    // A workbook without calcPr gets one where the schema wants it: before extLst.
    test::skrivZip(kilde, test::handlagetBok({{"xl/workbook.xml", test::data("inn/workbook_uten_calcpr.xml")}}));
    auto bok = apne(kilde);
    Arbeidsark& a = bok->ark(1);
    a.settFormel(u"C5"_s, u"= sum(C2:C4)"_s);
    a.settFormel(u"$D$5"_s, u"= abs((C5 -C6)/2)"_s);
    EXPECT_EQ((V{a.celle(5, 3), a.celle(5, 4)}), (V{70.0, 35.0}));
    bok->lagreSom(ut);
    auto til = test::lesZip(ut);
    EXPECT_FALSE(til.count("xl/calcChain.xml"));
    EXPECT_FALSE(har(til["xl/_rels/workbook.xml.rels"].innhold, "calcChain"));
    EXPECT_FALSE(har(til["[Content_Types].xml"].innhold, "calcChain"));
    EXPECT_EQ(til["xl/workbook.xml"].innhold, test::data("gull/workbook_uten_calcpr.xml"));
}

// The charts in the drawing's order, the picture before them no chart object: titles as read, and the chart
// parts a change writes, compared whole with gull/. A rich title keeps the formatting of its first paragraph
// and run (chart 1); a title from a cell becomes text (chart 3). Each axis is found by its id; the minimum
// goes after orientation and max, before extLst, and replaces one there was. Line chart: the category axis;
// scatter (chart 2): the value axis at the bottom.
TEST_F(HandlagetBok, DiagramobjekterITegningensRekkefolge)
{
    auto bok = apne(kilde);
    Arbeidsark& grafer = bok->ark(2);
    EXPECT_EQ((QStringList{grafer.diagram(1).tittel(), grafer.diagram(2).tittel(), grafer.diagram(3).tittel()}),
              (QStringList{u"Første del"_s, QString(), u"Fra celle"_s}));
    grafer.diagram(1).settTittel(u"Syklus 3 & 4"_s);
    grafer.diagram(3).settTittel(u"Ny"_s);
    for (auto [nr, minimum] : {std::pair{1, 230.0}, {2, 12.5}, {3, 232.0}})
        grafer.diagram(nr).settKategoriMinimum(minimum);
    bok->lagreSom(ut);
    auto til = test::lesZip(ut);
    for (const std::string nr : {"1", "2", "3"})
        EXPECT_EQ(til["xl/charts/chart" + nr + ".xml"].innhold, test::data("gull/handlaget_chart" + nr + ".xml")) << nr;
    EXPECT_EQ(apne(ut)->ark(2).diagram(3).tittel(), u"Ny"_s);
}

TEST_F(HandlagetBok, FeilSomXlsxFeil)
{
    // A file that is no zip, and a template without the second chart, are the title commands' (Graftittel).
    const QString utenBok = dir.filePath(u"tom.xlsx"_s), odelagt = dir.filePath(u"odelagt.xlsx"_s);
    test::skrivZip(utenBok, {{"a.txt", "x"}});
    test::skrivZip(odelagt, test::handlagetBok({{"xl/workbook.xml", "<workbook><sheets>"}}));
    for (const QString& sti : {dir.filePath(u"finnes_ikke.xlsx"_s), utenBok, odelagt})
        EXPECT_THROW(apne(sti), XlsxFeil) << sti.toStdString();
    auto bok = apne(kilde);
    EXPECT_THROW(bok->ark(0), XlsxFeil);
    EXPECT_THROW(bok->ark(1).diagram(1), XlsxFeil);  // a sheet without drawing
    EXPECT_THROW(bok->ark(1).settFormel(u"1A"_s, u"=1"_s), XlsxFeil);
    EXPECT_THROW(bok->ark(1).settCelle(0, 1, 1.0), XlsxFeil);
    EXPECT_THROW(bok->ark(3), vb::Feil);  // the run-time error every command already handles
}

TEST_F(HandlagetBok, LagringsstedOgFiltype)
{
    const QByteArray original = test::les(kilde);
    auto bok = apne(kilde);
    bok->ark(1).settCelle(1, 1, u"endret"_s);
    // A failed save leaves neither a half-written target nor a changed source.
    QDir(dir.path()).mkdir(u"opptatt.xlsx"_s);  // a folder in the way of the name
    EXPECT_THROW(bok->lagreSom(dir.filePath(u"opptatt.xlsx"_s)), XlsxFeil);
    const QString vernet = dir.filePath(u"vernet.xlsx"_s);  // write-protected, even for root
    ASSERT_TRUE(QFile::copy(kilde, vernet) && QFile::setPermissions(vernet, QFile::ReadOwner | QFile::ReadOther));
    EXPECT_THROW(bok->lagreSom(vernet), XlsxFeil);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), (QStringList{u"mal.xlsx"_s, u"vernet.xlsx"_s}));
    EXPECT_EQ(test::les(kilde), original);
    EXPECT_EQ(test::les(vernet), original);

    // .xlsm makes the package macro-enabled; from then on the workbook lives under that name.
    const QString xlsm = dir.filePath(u"ut.xlsm"_s);
    bok->lagreSom(xlsm);
    auto til = test::lesZip(xlsm);
    EXPECT_TRUE(
        har(til["[Content_Types].xml"].innhold,
            "PartName=\"/xl/workbook.xml\" ContentType=\"application/vnd.ms-excel.sheet.macroEnabled.main+xml\""));
    EXPECT_EQ(til["xl/vbaProject.bin"].innhold, test::handlagetBok().back().second);
    bok->ark(1).settCelle(1, 1, u"igjen"_s);
    bok->lagre();
    EXPECT_EQ(apne(xlsm)->ark(1).celle(1, 1), Verdi(u"igjen"_s));
    EXPECT_EQ(apne(kilde)->ark(1).celle(1, 1), Verdi(u"Navn"_s));
    apne(xlsm)->lagreSom(ut);
    EXPECT_TRUE(har(test::lesZip(ut)["[Content_Types].xml"].innhold,
                    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"));
}

// Targets of every kind: relative, absolute, up a folder, external (left as written). The parts lie in pakke/.
TEST(Pakke, RelasjonerSomDelnavn)
{
    const QString mappe = QStringLiteral(TOLVIK_TESTDATA "/platform/xlsx/pakke/");
    test::Deler deler;
    for (QDirIterator it(mappe, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();) {
        const QString del = it.next();
        deler.emplace_back(del.mid(mappe.size()).toStdString(), test::les(del).toStdString());
    }
    QTemporaryDir dir;
    const QString fil = dir.filePath(QStringLiteral("pakke.xlsx"));
    test::skrivZip(fil, deler);
    Pakke p(fil);
    auto maal = [&p](const std::string& del) {
        S ut;
        for (auto& r : p.relasjoner(del)) ut.push_back(r.type.substr(r.type.rfind('/') + 1) + " " + r.maal);
        return ut;
    };
    EXPECT_EQ(maal(""), S{"officeDocument xl/workbook.xml"});
    EXPECT_EQ(maal("xl/workbook.xml"), (S{"worksheet xl/worksheets/sheet1.xml", "worksheet xl/worksheets/sheet2.xml"}));
    EXPECT_EQ(maal("xl/worksheets/sheet1.xml"), (S{"drawing xl/drawings/drawing1.xml", "printerSettings xl/x/p1.bin"}));
    EXPECT_EQ(maal("xl/worksheets/sheet2.xml"), S{"hyperlink https://example.org/a/../b"});
    EXPECT_EQ(maal("xl/worksheets/sheet3.xml"), S{});
    EXPECT_TRUE(p.finnes("XL/Workbook.xml"));
    EXPECT_EQ(p.lesDel("xl/vbaProject.bin"), std::string("\0\1\2", 3));
    EXPECT_THROW(p.lesDel("xl/styles.xml"), XlsxFeil);
}
