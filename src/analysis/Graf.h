// The overview graph: the whole series of the chosen column in the graph window, thinned to
// every s-th row so that the chart never holds more than 30000 points.
#pragma once

#include "platform/Kontekst.h"

namespace analysis {

inline constexpr int MaksPunkter = 30000;

// Button "3.  Graf (viser hele fila)".
Utfall Command8_Click(Kontekst& k);

// Every s-th row is drawn: 1 up to 30000 rows, else rows / 30000 rounded half to even.
int32_t provesteg(int32_t rader);

}  // namespace analysis
