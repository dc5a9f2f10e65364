#include "Hjelpere.h"

#include "platform/xlsx/Pakke.h"

#include <QTemporaryDir>

using namespace xlsx;
using S = std::vector<std::string>;

namespace {

// A relationships part of these types and targets, numbered in order.
std::string relasjoner(std::initializer_list<std::pair<const char*, const char*>> maal, const char* tillegg = "")
{
    int nr = 0;
    std::string ut = "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
    for (auto [type, target] : maal)
        ut += "<Relationship Id=\"rId" + std::to_string(++nr) +
              "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/" + type + "\" Target=\"" +
              target + "\"" + tillegg + "/>";
    return ut + "</Relationships>";
}

}  // namespace

// Targets of every kind: relative, absolute, up a folder, external (left as written).
TEST(Pakke, RelasjonerSomDelnavn)
{
    QTemporaryDir dir;
    const QString fil = dir.filePath(QStringLiteral("pakke.xlsx"));
    test::skrivZip(fil, {{"_rels/.rels", relasjoner({{"officeDocument", "xl/workbook.xml"}})},
                         {"xl/workbook.xml", "<workbook/>"},
                         {"xl/_rels/workbook.xml.rels", relasjoner({{"worksheet", "worksheets/sheet1.xml"},
                                                                    {"worksheet", "/xl/worksheets/sheet2.xml"}})},
                         {"xl/worksheets/_rels/sheet1.xml.rels",
                          relasjoner({{"drawing", "../drawings/drawing1.xml"},
                                      {"printerSettings", "./../printerSettings/../x/./p1.bin"}})},
                         {"xl/worksheets/_rels/sheet2.xml.rels",
                          relasjoner({{"hyperlink", "https://example.org/a/../b"}}, " TargetMode=\"External\"")},
                         {"xl/vbaProject.bin", std::string("\0\1\2", 3)}});
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
