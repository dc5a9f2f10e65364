// "1.  &Velg og importer fil": loads a CSV raw-data file into Data.mdb.
//
// The user picks the file and confirms the line count; Data.mdb is then replaced by a
// fresh copy of Template.mdb, the header's column names go to Kolonner.txt, and every
// data line of 4 to 13 fields becomes one row of DataLinjer.
#pragma once

#include "platform/Kontekst.h"

namespace store {

// The import's questions: the file (the dialog's filter), then whether to start.
inline const dialogs::Sporsmal SporFil{dialogs::Sporsmal::Art::Fil, QStringLiteral("CSV-filer (*.CSV)|*.CSV")};
inline const dialogs::Sporsmal SporImport{dialogs::Sporsmal::Art::JaNei,
                                          QStringLiteral("Fila %1 består av %2 linjer. Vil du starte importen?")};

Utfall Command2_Click(Kontekst& k);

}  // namespace store
