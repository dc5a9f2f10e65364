// The automatic cycle search: eleven passes with a threshold climbing from the column's minimum
// after the search start; the pass whose group count comes closest to the wanted number of cycles
// is reported and, on Yes, applied to the settings and to SnuPunkter.txt.
#pragma once

#include "platform/Kontekst.h"

namespace analysis {

inline const dialogs::Sporsmal SporAntallSykluser{dialogs::Sporsmal::Art::Inndata,
                                                  QStringLiteral("Antall sykluser som skal brukes"),
                                                  QStringLiteral("Antall sykluser:")};

// Button "Automatisk søking" (hidden in the window).
Utfall Command11_Click(Kontekst& k);

}  // namespace analysis
