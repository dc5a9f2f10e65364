#include "export/Fremdrift.h"

#include "export/Eksport.h"

namespace eksport {

bool Fremdrift::rad(long long rad, int syklus)
{
    rad_ = rad;
    syklus_ = syklus;
    vist_ = false;
    const auto naa = Klokke::now();
    if (naa - sist_ < Intervall) return false;
    sist_ = naa;
    vis();
    vindu_.behandleHendelser();
    return true;
}

void Fremdrift::vis()
{
    if (vist_) return;
    vindu_.settLabel4(fremdrift(rad_, syklus_));
    vist_ = true;
}

} // namespace eksport
