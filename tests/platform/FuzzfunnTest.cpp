// The inputs fuzzing was seeded with or found faults with, kept beside the tests as
// tests/<layer>/fuzz-funn/<target>/, each run again through its target's own exercise (fuzz/Ovelser.h).
#include "felles/Felles.h"
#include "fuzz/Ovelser.h"

#include <QDir>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <map>

using namespace Qt::StringLiterals;

// Raw-data lines, statements, formulas, workbooks and parts of one are handled without a crash.
TEST(Fuzzfunn, HvertMaalsInngangerUtenKrasj)
{
    QTemporaryDir dir;
    const QString inn = dir.filePath(u"inn.xlsx"_s), ut = dir.filePath(u"ut.xlsx"_s);
    using Ovelse = std::function<void(const QString& fil, std::string_view data)>;
    const std::map<QString, Ovelse> maal = {
        {u"store/fuzz-funn/radata"_s, [](const QString&, std::string_view d) { ovelse::radata(d); }},
        {u"platform/db/fuzz-funn/jetdialekt"_s, [](const QString&, std::string_view d) { ovelse::jetDialekt(d); }},
        {u"platform/xlsx/fuzz-funn/formel"_s, [](const QString&, std::string_view d) { ovelse::formel(d); }},
        {u"platform/xlsx/fuzz-funn/arbeidsbok"_s, [&](const QString& fil, std::string_view) { ovelse::arbeidsbok(fil, ut); }},
        {u"platform/xlsx/fuzz-funn/bokdel"_s,
         [&](const QString&, std::string_view d) {
             ovelse::byttDel(u"" TOLVIK_DIST "/Mal_desorpsjon_areal_alle.xlsx"_s, d, inn);
             ovelse::arbeidsbok(inn, ut);
         }},
    };
    for (const auto& [mappe, ovelse] : maal) {
        const QFileInfoList filer = QDir(u"" TOLVIK_TESTDATA "/"_s + mappe).entryInfoList(QDir::Files, QDir::Name);
        EXPECT_FALSE(filer.isEmpty()) << mappe;  // a folder without inputs would replay nothing
        for (const QFileInfo& fil : filer) {
            SCOPED_TRACE(fil.filePath().toStdString());
            ovelse(fil.filePath(), test::les(fil.filePath()).toStdString());
        }
    }
}
