#include "store/Oversikt.h"

#include "files/Tekstfil.h"
#include "store/Radata.h"

#include <algorithm>

namespace store {

namespace {

constexpr int MaksOverskriftsfelt = 29;  // one column letter each, A to Å
constexpr int MaksNavn = 255;            // characters of a column name

// Why a data line gives no row; empty when it gives one.
QString hinder(Radatalinje& linje, Rad& rad)
{
    if (!linje.erDatalinje())
        return QStringLiteral("den har %1 felt, men en datalinje har 4 til 13").arg(linje.felt().size());
    if (const auto hopp = linje.tolk(rad)) return hoppTekst(*hopp);
    return {};
}

}  // namespace

Oversikt sePaa(const QString& fil)
{
    files::Linjeleser leser(fil);
    Oversikt o;
    Radatalinje tolket;
    Rad rad;
    for (std::string_view linje; leser.neste(linje);) {
        ++o.linjer;
        if (o.nullLinje == 0 && linje.find('\0') != std::string_view::npos) o.nullLinje = o.linjer;
        if (linje.empty()) continue;
        if (o.overskriftLinje == 0) {
            o.overskriftLinje = o.linjer;
            tolket.les(linje);
            o.overskriftFelt = static_cast<qsizetype>(tolket.felt().size());
            for (std::string_view f : tolket.felt())
                o.lengsteNavn = std::max(o.lengsteNavn, static_cast<qsizetype>(f.size()));
            continue;
        }
        ++o.datalinjer;
        if (o.kanLagres) continue;
        tolket.les(linje);
        const QString h = hinder(tolket, rad);
        o.kanLagres = h.isEmpty();
        if (o.forsteDatalinje == 0) {
            o.forsteDatalinje = o.linjer;
            o.forsteHinder = h;
        }
    }
    return o;
}

std::optional<QString> innvending(const Oversikt& o, const QString& fil)
{
    if (o.nullLinje > 0)
        return QStringLiteral("Fila %1 er ikke en tekstfil: linje %2 inneholder nulltegn.")
            .arg(fil, QString::number(o.nullLinje));
    if (o.overskriftLinje == 0)
        return QStringLiteral("Fila %1 er tom (%2 %3 uten tekst).")
            .arg(fil, QString::number(o.linjer), o.linjer == 1 ? QStringLiteral("linje") : QStringLiteral("linjer"));
    // "Overskriftslinja (linje N) i fila F har " + what is wrong with it.
    const auto overskrift = [&](const QString& hva, qsizetype antall, int grense) {
        return QStringLiteral("Overskriftslinja (linje %1) i fila %2 har ")
                   .arg(QString::number(o.overskriftLinje), fil) +
               hva.arg(QString::number(antall), QString::number(grense));
    };
    if (o.overskriftFelt > MaksOverskriftsfelt)
        return overskrift(QStringLiteral("%1 felt, men bare %2 felt kan få en kolonnebokstav (A til Å)."),
                          o.overskriftFelt, MaksOverskriftsfelt);
    if (o.lengsteNavn > MaksNavn)
        return overskrift(QStringLiteral("et felt på %1 tegn, men et kolonnenavn kan ha høyst %2 tegn."), o.lengsteNavn,
                          MaksNavn);
    if (o.datalinjer == 0)
        return QStringLiteral("Fila %1 har bare overskriftslinja (linje %2) og ingen datalinjer.")
            .arg(fil, QString::number(o.overskriftLinje));
    if (!o.kanLagres && o.datalinjer == 1)
        return QStringLiteral("Den eneste datalinjen i fila %1 (linje %2) kan ikke lagres: %3.")
            .arg(fil, QString::number(o.forsteDatalinje), o.forsteHinder);
    if (!o.kanLagres)
        return QStringLiteral("Ingen av de %1 datalinjene i fila %2 kan lagres. Den første (linje %3): %4.")
            .arg(QString::number(o.datalinjer), fil, QString::number(o.forsteDatalinje), o.forsteHinder);
    return std::nullopt;
}

}  // namespace store
