// Data.mdb replaced by an empty copy of Template.mdb before an import reads its file.
#pragma once

#include "platform/Kontekst.h"

#include <optional>

namespace store {

// Ends every refusal that leaves the user's files as they were.
inline const QString Uendret = QStringLiteral(" Ingenting er importert, og databasen er uendret.");

// Replaces Data.mdb by an empty copy of Template.mdb and opens the connection on it.
// The copy is made and tried beside Data.mdb and then renamed over it in one step, so
// Data.mdb is at every moment either the old database or the new empty one. On failure
// the old database stays and is opened again; the result is the message to show.
std::optional<QString> erstattDatabase(Kontekst& k);

}  // namespace store
