// Turns the program's statement texts into SQLite. The texts keep the shape the
// commands build (time keys through format(DatoTid, 'YYYYMMDDHHNNSS'), day-first
// date literals, results in ID order without "order by"); SQLite gets the same
// meaning in a form that an index on DatoTid can serve.
#pragma once

#include <QString>

namespace db {

// DatoTid is stored as "YYYY-MM-DD HH:MM:SS", so a time-key comparison becomes a
// comparison of DatoTid with the key written the same way; day-first literals
// 'DD/MM/YYYY HH:MM:SS' become that form too (DbFeil for an impossible date);
// a plain select without "order by" gets " order by ID".
// In a statement with a time-key condition, min and max of a column are written so that an
// index holding the column can serve them, and with tidFolgerId (DatoTid never decreases
// from one ID to the next) a closing "order by ID" becomes "order by DatoTid, ID".
QString tilSqlite(const QString& setning, bool tidFolgerId = false);

}  // namespace db
