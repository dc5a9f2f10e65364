// Fuzz target: formula parsing, computing and rewriting.
#include "Ovelser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n)
{
    ovelse::formel({reinterpret_cast<const char*>(data), n});
    return 0;
}
