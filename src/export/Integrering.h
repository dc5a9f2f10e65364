// "10. Redigert CO2 kolonne": for every chosen cycle the CO2 column (F) around the
// turning point goes into an integration workbook, cut after the turning point where
// the value falls below its start level; the cycle area that the workbook computes
// in L17 is collected, one row per cycle, in the area summary.
#pragma once

#include "export/Eksport.h"
#include "platform/Kontekst.h"

namespace exports {

inline const dialogs::Sporsmal SporMinutterFor{dialogs::Sporsmal::Art::Inndata,
                                               QStringLiteral("Angi antall minutter før"), QStringLiteral("Minutter")};
inline const dialogs::Sporsmal SporMinutterEtter{
    dialogs::Sporsmal::Art::Inndata, QStringLiteral("Angi antall minutter etter"), QStringLiteral("Minutter")};

Utfall Command12_Click(Kontekst& k);

// Writes and saves the integration workbook of one cycle and enters its area into the
// summary. PosterFor is on its first row; PosterEtter on its first row or at its end. Rows the
// templates' charts cannot draw are noted in udekket. The workbook is saved through lagring,
// while the next cycle is filled; the summary is saved before this returns.
void LagIntegreringsfil(Kontekst& k, const QString& Filnavn, db::Recordset& PosterFor, db::Recordset& PosterEtter,
                        int16_t SyklusNr, const vb::Dato& StartTid, int16_t SisteSyklus, Udekket& udekket,
                        Bakgrunnslagring& lagring);

}  // namespace exports
