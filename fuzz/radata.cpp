// Fuzz target: the import's reading of raw-data lines.
#include "Ovelser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n)
{
    ovelse::radata({reinterpret_cast<const char*>(data), n});
    return 0;
}
