#include "Hjelpere.h"

#include "platform/xlsx/Pakke.h"

#include <QDirIterator>
#include <QTemporaryDir>

using namespace xlsx;
using S = std::vector<std::string>;

// Targets of every kind: relative, absolute, up a folder, external (left as written). The parts lie in pakke/.
TEST(Pakke, RelasjonerSomDelnavn)
{
    const QString mappe = QStringLiteral(TOLVIK_TESTDATA "/platform/xlsx/pakke/");
    test::Deler deler;
    for (QDirIterator it(mappe, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();) {
        const QString del = it.next();
        deler.emplace_back(del.mid(mappe.size()).toStdString(), test::filinnhold(del).toStdString());
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
