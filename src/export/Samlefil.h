// "7.  Lag samlegraf": all chosen cycles side by side in one workbook, each
// column starting at the cycle's zero point, so that the template's chart lays
// the cycles over each other.
#pragma once

#include "platform/Kontekst.h"

namespace exports {

inline const dialogs::Sporsmal SporSamlefil{dialogs::Sporsmal::Art::JaNei,
                                            QStringLiteral("Vil du lage en samlefil for %1 run?")};
inline const dialogs::Sporsmal SporPeriode{
    dialogs::Sporsmal::Art::Inndata,
    QStringLiteral("Angi antall minutter større enn ventilskift, mindre enn makspunktet for desorpsjonskurva:"),
    QStringLiteral("Periode")};

Utfall Command5_Click(Kontekst& k);

// The time of the largest value of column Kolonne strictly inside the minute window
// around the turning point, less Minutter minutes; vb::Feil when the window has no row.
vb::Dato FinnNullpunktAdsorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Minutter);
// M1 = time of the maximum in the 30 minutes before the turning point; M2 = time of the
// maximum between M1 + 60 minutes and M1 + Periode minutes; returns M2 less 10 minutes.
vb::Dato FinnNullpunktDesorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Periode);

}  // namespace exports
