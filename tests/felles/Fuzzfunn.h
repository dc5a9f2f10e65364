// The inputs that fuzzing has found, kept beside the tests as tests/<layer>/fuzz-funn/<target>/:
// each is run again through its fuzz target's own exercise (fuzz/Ovelser.h).
#pragma once

#include "fuzz/Ovelser.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace test {

// Every kept input of a target (mappe under tests/), with its bytes: the fuzz target's seeds and
// what it found. A folder without inputs fails the test, as it would replay nothing.
inline std::vector<std::pair<QString, std::string>> fuzzfunn(const char* mappe)
{
    std::vector<std::pair<QString, std::string>> ut;
    const QDir d(QStringLiteral(TOLVIK_TESTDATA "/") + QLatin1String(mappe));
    for (const QFileInfo& fil : d.entryInfoList(QDir::Files, QDir::Name)) {
        QFile f(fil.filePath());
        if (f.open(QIODevice::ReadOnly)) ut.emplace_back(fil.filePath(), f.readAll().toStdString());
    }
    if (ut.empty()) ADD_FAILURE() << "ingen innganger i " << d.path().toStdString();
    return ut;
}

}  // namespace test
