// Fuzz target: the translation of statement texts for SQLite.
#include "Ovelser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n)
{
    ovelse::jetDialekt({reinterpret_cast<const char*>(data), n});
    return 0;
}
