#include "felles/Fuzzfunn.h"

#include <gtest/gtest.h>

// Statements, formulas and workbooks that fuzzing found faults with are handled without a crash.
TEST(Fuzzfunn, Plattform)
{
    for (auto& [fil, data] : test::fuzzfunn("platform/db/fuzz-funn/jetdialekt")) ovelse::jetDialekt(data);
    for (auto& [fil, data] : test::fuzzfunn("platform/xlsx/fuzz-funn/formel")) ovelse::formel(data);
    QTemporaryDir dir;
    const QString inn = dir.filePath(QStringLiteral("inn.xlsx")), ut = dir.filePath(QStringLiteral("ut.xlsx"));
    for (auto& [fil, data] : test::fuzzfunn("platform/xlsx/fuzz-funn/arbeidsbok")) {
        SCOPED_TRACE(fil.toStdString());
        ovelse::arbeidsbok(fil, ut);
    }
    for (auto& [fil, data] : test::fuzzfunn("platform/xlsx/fuzz-funn/bokdel")) {
        SCOPED_TRACE(fil.toStdString());
        ovelse::byttDel(QStringLiteral(TOLVIK_DIST "/Mal_desorpsjon_areal_alle.xlsx"), data, inn);
        ovelse::arbeidsbok(inn, ut);
    }
}
