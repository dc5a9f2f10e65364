#include "Hjelpere.h"

#include "platform/xlsx/Pakke.h"

#include <QTemporaryDir>

using namespace xlsx;
using S = std::vector<std::string>;

namespace {

const std::string deklarasjon = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
const std::string hovedtype = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
const std::string relasjoner = "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";

std::string relasjon(const char* id, const char* type, const char* target, const char* tillegg = "")
{
    return std::string("<Relationship Id=\"") + id +
           "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/" + type + "\" Target=\"" +
           target + "\"" + tillegg + "/>";
}

// A small package with a target of every kind: relative, absolute, up a folder, external.
class Pakken : public ::testing::Test {
protected:
    void SetUp() override
    {
        test::skrivZip(
            fil,
            {
                {"[Content_Types].xml",
                 deklarasjon +
                     "\n<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                     "<Default Extension=\"xml\" ContentType=\"application/xml\"/>" +
                     hovedOverride(hovedtype) + kjede},
                {"_rels/.rels",
                 relasjoner + relasjon("rId1", "officeDocument", "xl/workbook.xml") + "</Relationships>"},
                {"xl/workbook.xml", "<workbook/>"},
                {"xl/_rels/workbook.xml.rels",
                 deklarasjon + "\n" + relasjoner + bokRelasjoner + relasjon("rId3", "calcChain", "calcChain.xml") +
                     relasjon("rId4", "hyperlink", "https://example.org/a/../b", " TargetMode=\"External\"") +
                     "</Relationships>"},
                {"xl/worksheets/_rels/sheet1.xml.rels",
                 relasjoner + relasjon("rId1", "drawing", "../drawings/drawing1.xml") +
                     relasjon("rId2", "printerSettings", "./../printerSettings/../x/./p1.bin") + "</Relationships>"},
                {"xl/vbaProject.bin", std::string("\0\1\2", 3)},
            });
    }
    S maal(const std::string& del)
    {
        S ut;
        for (auto& r : Pakke(fil).relasjoner(del))
            ut.push_back(r.id + " " + r.type.substr(r.type.rfind('/') + 1) + " " + r.maal);
        return ut;
    }
    static std::string hovedOverride(const std::string& type)
    {
        return "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" + type + "\"/>";
    }
    const std::string kjede =
        "<Override PartName=\"/xl/calcChain.xml\" ContentType=\"application/vnd.openxmlformats-officedocument."
        "spreadsheetml.calcChain+xml\"/></Types>";
    const std::string bokRelasjoner = relasjon("rId1", "worksheet", "worksheets/sheet1.xml") +
                                      relasjon("rId2", "worksheet", "/xl/worksheets/sheet2.xml");
    QTemporaryDir dir;
    const QString fil = dir.filePath(QStringLiteral("pakke.xlsx"));
};

}  // namespace

TEST_F(Pakken, RelasjonerSomDelnavn)
{
    EXPECT_EQ(maal(""), S{"rId1 officeDocument xl/workbook.xml"});
    EXPECT_EQ(maal("xl/workbook.xml"),
              (S{"rId1 worksheet xl/worksheets/sheet1.xml", "rId2 worksheet xl/worksheets/sheet2.xml",
                 "rId3 calcChain xl/calcChain.xml", "rId4 hyperlink https://example.org/a/../b"}));
    EXPECT_EQ(maal("xl/worksheets/sheet1.xml"),
              (S{"rId1 drawing xl/drawings/drawing1.xml", "rId2 printerSettings xl/x/p1.bin"}));
    EXPECT_EQ(maal("xl/worksheets/sheet2.xml"), S{});
    Pakke p(fil);
    EXPECT_TRUE(p.finnes("XL/Workbook.xml"));
    EXPECT_EQ(p.lesDel("xl/vbaProject.bin"), std::string("\0\1\2", 3));
    EXPECT_THROW(p.lesDel("xl/styles.xml"), XlsxFeil);
}

TEST_F(Pakken, InnholdstyperOgRelasjonerSkrivesPaNytt)
{
    Pakke p(fil);
    Endringer uendret;
    p.settInnholdstyper("xl/workbook.xml", false, uendret);
    EXPECT_TRUE(uendret.nye.empty());

    // To .xlsm, without the calculation chain: the declaration kept, the line break after it not.
    Endringer e;
    e.borte.insert("xl/calcChain.xml");
    p.fjernRelasjoner("xl/workbook.xml", "/calcChain", e);
    p.settInnholdstyper("xl/workbook.xml", true, e);
    EXPECT_EQ(e.nye, (std::map<std::string, std::string>{
                         {"xl/_rels/workbook.xml.rels",
                          deklarasjon + relasjoner + bokRelasjoner +
                              relasjon("rId4", "hyperlink", "https://example.org/a/../b", " TargetMode=\"External\"") +
                              "</Relationships>"},
                         {"[Content_Types].xml",
                          deklarasjon +
                              "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                              "<Default Extension=\"xml\" ContentType=\"application/xml\"/>" +
                              hovedOverride("application/vnd.ms-excel.sheet.macroEnabled.main+xml") + "</Types>"}}));
}
