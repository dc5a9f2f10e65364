// Every statement the program sends to the measurement database, and the queries that run
// them. The texts are written in the program's own dialect (time keys through
// format(DatoTid, 'YYYYMMDDHHNNSS'), results in ID order); db::Database turns them into SQLite.
// The commands call the queries; nothing else builds statement text over DataLinjer.
#pragma once

#include "platform/db/Database.h"

#include <optional>
#include <string_view>
#include <vector>

namespace store {

// ------------------------------------------------------------------ the table

// Creates a new keyed database file with the empty table DataLinjer and its time index.
void lagTomDatabase(const QString& fil);
// Opens a measurement database: DbFeil also when the file is a database without DataLinjer.
void apneMaledata(db::Database& tilkobling, const QString& fil);
// "Delete from Datalinjer": empties the table of a fresh copy of the template.
void tomTabell(db::Database& d);
// Before an import's rows go in: the time index of column K (the CO2 column), kept up as the rows
// arrive in time order, takes the place of the plain DatoTid index, which it covers. The first
// search of that column then finds its index made. Nothing for a letter that is no value column.
void tidsindeksVedImport(db::Database& d, const QString& K);
// The import's insert of a row: DatoTid and DatoTid_Tekst as read, then the values C to L
// (db::Masseinnsetting sends many rows in one statement).
inline constexpr std::string_view RadInnsetting =
    "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K, L)";
inline constexpr int RadTekster = 2, RadVerdier = 10;

// ------------------------------------------------------------------ the statement texts

// The texts of the statements with arguments, as the queries below send them.
namespace setning {
// The smallest value after sokStart (up to til inclusive, when given).
QString minimum(const QString& K, const vb::Dato& sokStart, const std::optional<vb::Dato>& til = {});
// The rows below the threshold after sokStart (up to til inclusive, when given), in ID order.
QString treff(const QString& K, const QString& terskel, const vb::Dato& sokStart,
              const std::optional<vb::Dato>& til = {});
// The row of a span's smallest (minste) or largest value: from fra inclusive to til exclusive.
QString snuPunkt(const vb::Dato& fra, const vb::Dato& til, bool minste, const QString& K);
// The row of a span's largest value, both ends exclusive.
QString maksTid(const QString& K, const vb::Dato& fra, const vb::Dato& til);
// The rows of a window in ID order: the start row taken or not (medStart), the end row always;
// every field, or with a column letter K only DatoTid and K.
QString vindu(bool medStart, const vb::Dato& fra, const vb::Dato& til, const QString& K = {});
}  // namespace setning

// ------------------------------------------------------------------ the queries

// The number of rows, which every select of the whole table returns: read off the lowest and the
// highest ID where the import found them without a gap, else counted.
long long antallRader(db::Database& d);
// The highest ID less the lowest, plus one; 0 for an empty table.
long long idSpenn(db::Database& d);
// One column of every row in ID order, with the row's DatoTid and DatoTid_Tekst:
// "Select DatoTid, DatoTid_Tekst, K from DataLinjer order by ID".
db::Recordset kolonneMedTid(db::Database& d, const QString& K);

// The first measurement row (lowest ID), as the cycle searches read it; empty for an empty table.
std::optional<db::Recordset> forsteRad(db::Database& d);
// DatoTid of the first measurement row, as the single-cycle and integration exports read it;
// empty for an empty table.
std::optional<vb::Dato> forsteTid(db::Database& d);
// DatoTid of the last measurement row (highest ID); empty for an empty table.
std::optional<vb::Dato> sisteTid(db::Database& d);
// Whether the table holds a row, as the combined export asks it.
bool harRader(db::Database& d);

// Makes the column's time index when it is missing. The index, on (DatoTid, ID, K) for a value
// column K, is made by the import for the CO2 column and otherwise the first time the column is
// searched, and kept until the next import replaces Data.mdb. It holds all that a search reads,
// so the minimum, the hit rows and each turning point come from it alone, in time order, without
// the much wider table rows. (A large page cache that kept it decrypted between the two scans
// cost more in fresh memory on the first search than the second scan costs.) Other letters get
// no index, and a database that cannot take it is searched without it.
void forberedSok(db::Database& d, const QString& K);
// The column's smallest value after the search start (empty when no row lies after it).
std::optional<double> minimum(db::Database& d, const QString& K, const vb::Dato& sokStart);
// DatoTid of the rows after the search start whose value in K lies below the threshold (its
// statement text), in ID order.
std::vector<vb::Dato> treffTider(db::Database& d, const QString& K, const QString& terskel, const vb::Dato& sokStart);
// DatoTid of the row from fra (inclusive) to til (exclusive) holding the span's smallest
// (minste) or largest value of K; the zero date-time when the span has no row.
vb::Dato snuPunkt(db::Database& d, const vb::Dato& fra, const vb::Dato& til, bool minste, const QString& K);
// DatoTid of the first row holding the largest value of K strictly between fra and til;
// empty when the span has no row.
std::optional<vb::Dato> maksTid(db::Database& d, const QString& K, const vb::Dato& fra, const vb::Dato& til);
// Every row of a time window in ID order; the row at fra only with medStart, the row at til always.
// With a column letter K only DatoTid and K, which the column's time index holds without the table rows.
db::Recordset vinduRader(db::Database& d, bool medStart, const vb::Dato& fra, const vb::Dato& til,
                         const QString& K = {});

}  // namespace store
