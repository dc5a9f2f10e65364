// Fuzz target: one XML part of the summary template (the smallest) replaced (first line: the part's
// name, then its text), the workbook then opened, changed and saved.
#include "Fil.h"
#include "Ovelser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n)
{
    static const QString fil = fuzzfil("del.xlsx"), kopi = fuzzfil("delut.xlsx");
    ovelse::byttDel(QStringLiteral(TOLVIK_DIST "/Mal_desorpsjon_areal_alle.xlsx"),
                    {reinterpret_cast<const char*>(data), n}, fil);
    ovelse::arbeidsbok(fil, kopi);
    return 0;
}
