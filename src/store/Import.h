// "1.  &Velg og importer fil": loads a CSV raw-data file into Data.mdb.
//
// The user picks the file and confirms the line count; Data.mdb is then replaced by a
// fresh copy of Template.mdb, the header's column names go to Kolonner.txt, and every
// data line of 4 to 13 fields becomes one row of DataLinjer.
#pragma once

#include "platform/Kontekst.h"

namespace store {

inline const QString CsvFilter = QStringLiteral("CSV-filer (*.CSV)|*.CSV");

Utfall Command2_Click(Kontekst& k);

} // namespace store
