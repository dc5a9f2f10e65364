// A first pass over a raw-data file, before anything is changed: its line count and what
// the import needs to know to refuse a file that it cannot take.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace store {

struct Oversikt {
    int32_t linjer = 0;           // as TellLinjer counts them
    int32_t overskriftLinje = 0;  // 0: the file holds no non-empty line
    qsizetype overskriftFelt = 0;
    qsizetype lengsteNavn = 0;  // characters of the header's longest field
    int32_t datalinjer = 0;     // non-empty lines after the header
    bool kanLagres = false;     // at least one data line gives a row
    QString forsteHinder;       // why the first data line gives no row, while none does
    int32_t forsteDatalinje = 0;
    int32_t nullLinje = 0;  // first line holding a NUL character: no text file
};

// FilFeil when the file cannot be read.
Oversikt sePaa(const QString& fil);

// Why the file cannot be imported, if it cannot.
std::optional<QString> innvending(const Oversikt& o, const QString& fil);

}  // namespace store
