// Cycle finding: the rows after the search start whose value lies below a threshold are split
// into groups at time jumps of more than 10 seconds, and each closed group gives one turning
// point, written to SnuPunkter.txt. The helpers here are shared with the automatic search.
#pragma once

#include "platform/Kontekst.h"

#include <optional>

namespace analyse
{

inline const QString SnuPunktFil = QStringLiteral("SnuPunkter.txt");
inline const QString IngenData = QStringLiteral("Ingen data importert");

// Button "4.  Finn antall sykluser".
Utfall Command7_Click(Kontekst& k);

// The row with the smallest ID; empty for an empty table.
std::optional<db::Recordset> dataStart(db::Database& d);
// Makes the column's time index when it is missing and keeps a large page cache while the
// returned guard lives. The index, on (DatoTid, ID, K) for a value column K, is made the first
// time the column is searched and kept until the next import replaces Data.mdb. It holds all
// that a search reads, so the Minimum, the hit rows and each turning point come from it alone,
// in time order, without the much wider table rows; the cache keeps it decrypted between them.
// Other letters get no index.
[[nodiscard]] db::StortMellomlager forberedSok(db::Database& d, const QString& K);
// The column's smallest value after the search start (null when no row lies after it).
std::optional<double> minimum(db::Database& d, const QString& K, const vb::Dato& sokStart);
// The hit rows: DatoTid and Verdi of the rows after the search start whose value in K lies below
// the threshold (its statement text), in ID order.
db::Recordset treff(db::Database& d, const QString& K, const QString& terskel, const vb::Dato& sokStart);
// True when two consecutive hit rows lie in different groups (more than 10 s apart either way).
bool erGap(const vb::Dato& forrige, const vb::Dato& neste);

// The statement texts of the Minimum query, the hit query and FinnSnuPunkt.
QString minimumSetning(const QString& K, const vb::Dato& sokStart);
QString treffSetning(const QString& K, const QString& terskel, const vb::Dato& sokStart);
QString snuPunktSetning(const vb::Dato& FraTid, const vb::Dato& TilTid, bool Valg, const QString& Kolonne);
// The DatoTid of the row from FraTid (inclusive) to TilTid (exclusive) holding the span's smallest
// (Valg) or largest value of Kolonne; the zero date-time when the span has no row.
vb::Dato FinnSnuPunkt(db::Database& d, const vb::Dato& FraTid, const vb::Dato& TilTid, bool Valg,
                      const QString& Kolonne);

// Asks "Det ble funnet N sykluser. …" and on Yes writes N into Text6, M − 15 into Text3 and
// I into Text5; true on Yes.
bool foreslaVerdier(Kontekst& k, int N, const QString& W, const QString& terskel, const vb::Dato& F, int64_t M,
                    int64_t I);


} // namespace analyse
