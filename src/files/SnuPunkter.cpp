#include "files/SnuPunkter.h"

#include "files/Tekstfil.h"

namespace files {

std::optional<SnuPunkter> SnuPunkter::les(const Kontekst& k)
{
    const QString fil = k.sti(SnuPunktFil);
    if (!FilFinnes(fil)) return std::nullopt;
    return SnuPunkter(HentFraFil(fil).split(QLatin1Char('!')));
}

vb::Dato SnuPunkter::syklus(int k) const
{
    if (k < 1 || k > tekster_.size())
        throw vb::Feil(QStringLiteral("Syklus %1 har ikke noe snupunkt").arg(k).toStdString());
    return vb::Dato::fraGenerellTekst(tekster_[k - 1]);
}

void skrivSnuPunkter(const Kontekst& k, const std::vector<vb::Dato>& punkter, const Sok& sok)
{
    QStringList tekster;
    for (const vb::Dato& p : punkter) tekster << p.generellTekst();
    SkrivTilFil(k.sti(SnuPunktFil), tekster.join(QLatin1Char('!')));
    SkrivTilFil(k.sti(SokStartFil), sok.start.generellTekst() + QLatin1Char('!') + vb::sqlTekst(sok.terskel));
}

std::optional<Sok> lesSok(const Kontekst& k)
{
    const QStringList deler = HentFraFil(k.sti(SokStartFil)).split(QLatin1Char('!'));
    if (deler.size() != 2) return std::nullopt;
    try {
        return Sok{vb::Dato::fraGenerellTekst(deler[0]), vb::enkel(deler[1])};
    } catch (const vb::Feil&) {
        return std::nullopt;
    }
}

void slettSnuPunkter(const Kontekst& k) { SlettFiler({k.sti(SnuPunktFil), k.sti(SokStartFil)}); }

}  // namespace files
