// "Test" (a hidden button): opens the cycle template's first chart and closes it unchanged.
#pragma once

#include "platform/Kontekst.h"

namespace exports {

// A template that cannot be opened or lacks the chart is reported with the reason.
Utfall Command6_Click(Kontekst& k);

}  // namespace exports
