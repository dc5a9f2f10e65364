// Fuzz target: a workbook file as the template commands open, change and save it.
#include "Fil.h"
#include "Ovelser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n)
{
    static const QString fil = fuzzfil("inn.xlsx"), kopi = fuzzfil("ut.xlsx");
    QFile f(fil);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    f.write(reinterpret_cast<const char*>(data), static_cast<qint64>(n));
    f.close();
    ovelse::arbeidsbok(fil, kopi);
    return 0;
}
