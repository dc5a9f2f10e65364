// The measurement store as the window sees it: Data.mdb and its empty twin Template.mdb,
// the row count in the caption and the field reader HentVerdi.
#pragma once

#include "platform/Kontekst.h"

namespace store {

inline const QString DataFil = QStringLiteral("Data.mdb");
inline const QString MalFil = QStringLiteral("Template.mdb");

// Counts the rows of DataLinjer and writes the window caption with the count.
void VisAntallPoster(Kontekst& k);
// The caption for a row count: "Tolvik - " + count + " poster i databasen  [Versjon: " + versjon + "]".
QString tittel(long long antall, const QString& versjon);

// The value of column Kolonne ("C" to "H", case-sensitive) in the current row as single
// precision; 0 for any other letter and for an empty field.
float HentVerdi(const QString& Kolonne, const db::Recordset& Poster);

}  // namespace store
