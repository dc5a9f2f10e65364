// "6.  Rediger samlegraf" and "8.  Rediger enkeltgraf": set the chart titles of the templates
// themselves, so that every later export carries them.
#pragma once

#include "platform/Kontekst.h"

namespace exports {

inline const dialogs::Sporsmal SporTittel{dialogs::Sporsmal::Art::Inndata, QStringLiteral("Angi tittel"),
                                          QStringLiteral("Tittel")};

// The combined template of the current adsorption/desorption choice: title of chart 1.
Utfall Command4_Click(Kontekst& k);
// Mal_Sykluser.xlsx: the same title on both charts.
Utfall Command9_Click(Kontekst& k);

}  // namespace exports
