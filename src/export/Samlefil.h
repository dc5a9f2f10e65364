// "7.  Lag samlegraf": all chosen cycles side by side in one workbook, each
// column starting at the cycle's zero point, so that the template's chart lays
// the cycles over each other.
#pragma once

#include "analysis/Syklusvinduer.h"
#include "platform/Kontekst.h"

namespace exports {

inline const dialogs::Sporsmal SporSamlefil{dialogs::Sporsmal::Art::JaNei,
                                            QStringLiteral("Vil du lage en samlefil for %1 run?")};
using analysis::SporPeriode;

Utfall Command5_Click(Kontekst& k);

}  // namespace exports
