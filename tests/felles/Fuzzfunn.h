// The inputs that fuzzing has found, kept beside the tests as tests/<layer>/fuzz-funn/<target>/:
// each is run again through its fuzz target's own exercise (fuzz/Ovelser.h).
#pragma once

#include "fuzz/Ovelser.h"

#include <QDir>
#include <QTemporaryDir>

namespace test {

// Every kept input of a target (mappe under tests/), with its bytes.
inline std::vector<std::pair<QString, std::string>> fuzzfunn(const char* mappe)
{
    std::vector<std::pair<QString, std::string>> ut;
    const QDir d(QStringLiteral(TOLVIK_TESTDATA "/") + QLatin1String(mappe));
    for (const QFileInfo& fil : d.entryInfoList(QDir::Files, QDir::Name)) {
        QFile f(fil.filePath());
        if (f.open(QIODevice::ReadOnly)) ut.emplace_back(fil.filePath(), f.readAll().toStdString());
    }
    return ut;
}

}  // namespace test
