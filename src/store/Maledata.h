// The measurement store: Data.mdb and its empty twin Template.mdb, the table
// DataLinjer, the row count in the caption and the field reader HentVerdi.
#pragma once

#include "platform/Kontekst.h"

namespace store {

inline const QString DataFil = QStringLiteral("Data.mdb");
inline const QString MalFil = QStringLiteral("Template.mdb");

// Creates a new keyed database file with the empty table DataLinjer and its time index.
void lagTomDatabase(const QString& fil);

// Opens a measurement database: DbFeil also when the file is a database without DataLinjer.
void apneMaledata(db::Database& tilkobling, const QString& fil);

// A time condition of the statements: "format(DatoTid, 'YYYYMMDDHHNNSS') " + op + " '" + time key + "'".
QString tidsvilkar(const char* op, const vb::Dato& tid);

// The number of rows in DataLinjer, which every select of the whole table returns; count(*)
// reads it from the small time index instead of walking every row.
long long antallRader(db::Database& d);
// Counts the rows of DataLinjer and writes the window caption with the count.
void VisAntallPoster(Kontekst& k);
// The caption for a row count: "Tolvik - " + count + " poster i databasen  [Versjon: " + versjon + "]".
QString tittel(long long antall, const QString& versjon);

// The value of column Kolonne ("C" to "H", case-sensitive) in the current row as single
// precision; 0 for any other letter and for an empty field.
float HentVerdi(const QString& Kolonne, const db::Recordset& Poster);

} // namespace store
