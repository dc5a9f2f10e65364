#include "store/Oversikt.h"

#include "files/Tekstfil.h"

#include <algorithm>

namespace store {

namespace {

constexpr int MaksOverskriftsfelt = 29;  // one column letter each, A to Å

}  // namespace

Oversikt sePaa(const QString& fil)
{
    files::Linjeleser leser(fil);
    Oversikt o;
    for (std::string_view linje; leser.neste(linje);) {
        ++o.linjer;
        if (o.nullLinje == 0 && linje.find('\0') != std::string_view::npos) o.nullLinje = o.linjer;
        if (linje.empty()) continue;
        if (o.overskriftLinje == 0) {
            o.overskriftLinje = o.linjer;
            o.overskriftFelt = std::count(linje.begin(), linje.end(), ',') + 1;
        } else {
            o.harData = true;
        }
    }
    return o;
}

std::optional<QString> innvending(const Oversikt& o, const QString& fil)
{
    if (o.nullLinje > 0)
        return QStringLiteral("Fila %1 er ikke en tekstfil: linje %2 inneholder nulltegn.").arg(fil).arg(o.nullLinje);
    if (o.overskriftLinje == 0) return QStringLiteral("Fila %1 er tom (%2 linjer uten tekst).").arg(fil).arg(o.linjer);
    if (o.overskriftFelt > MaksOverskriftsfelt)
        return QStringLiteral("Overskriftslinja (linje %1) i fila %2 har %3 felt, men bare %4 felt kan få en "
                              "kolonnebokstav (A til Å).")
            .arg(o.overskriftLinje)
            .arg(fil)
            .arg(o.overskriftFelt)
            .arg(MaksOverskriftsfelt);
    if (!o.harData)
        return QStringLiteral("Fila %1 har bare overskriftslinja (linje %2) og ingen datalinjer.")
            .arg(fil)
            .arg(o.overskriftLinje);
    return std::nullopt;
}

}  // namespace store
