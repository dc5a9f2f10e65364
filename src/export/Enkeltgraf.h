// "9.  Lag enkeltgraf": one workbook per chosen cycle, made from Mal_Sykluser.xlsx and
// saved in Data_Bearbeidet as prefix + "_" + cycle + ".xlsx".
#pragma once

#include "export/Eksport.h"
#include "platform/Kontekst.h"

#include <cstdint>

namespace exports {

Utfall Command3_Click(Kontekst& k);

// Writes the rows of Poster (positioned on its first row) into a copy of the cycle template
// and saves it for cycle SyklusNr. A missing template gives "Du mangler malfila" and writes
// nothing; any other failure is thrown to the caller. Rows the template's charts cannot draw
// are noted in udekket. The workbook is saved through lagring, while the next cycle is filled.
void LagSyklusfil(Kontekst& k, const QString& Filnavn, db::Recordset& Poster, int16_t SyklusNr,
                  const vb::Dato& StartTid, Udekket& udekket, Bakgrunnslagring& lagring);

}  // namespace exports
