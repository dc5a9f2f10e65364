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

void skrivSnuPunkter(const Kontekst& k, const std::vector<vb::Dato>& punkter)
{
    QStringList tekster;
    for (const vb::Dato& p : punkter) tekster << p.generellTekst();
    SkrivTilFil(k.sti(SnuPunktFil), tekster.join(QLatin1Char('!')));
}

void slettSnuPunkter(const Kontekst& k)
{
    const QString fil = k.sti(SnuPunktFil);
    if (FilFinnes(fil)) QFile::remove(fil);
}

}  // namespace files
