#include "analysis/Graf.h"

#include "analysis/Sykluser.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

namespace analysis {

int32_t provesteg(int32_t rader)
{
    return rader <= MaksPunkter ? 1 : vb::heltall32(static_cast<double>(rader) / MaksPunkter);
}

Utfall Command8_Click(Kontekst& k)
{
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return Utfall::Avvist;
    }
    const dialogs::Opptatt opptatt(k.vindu);
    const QString K = files::HentKode(k.vindu.kolonneTekst());
    dialogs::Graf graf{k.vindu.kolonneTekst().simplified(), 0, {}};
    try {
        auto poster = store::kolonne(k.tilkobling, K);
        if (poster.eof()) {
            k.dialogs.info(QStringLiteral("Ingen graf kan vises"));
            return Utfall::Avvist;
        }
        // n, the number of rows the statement returns, without a first walk through the rows.
        const int32_t n = vb::heltall32(static_cast<double>(store::antallRader(k.tilkobling)));
        const int32_t s = provesteg(n);
        graf.rader = std::min(n, MaksPunkter);
        graf.verdier.reserve(static_cast<size_t>(graf.rader));

        int32_t c = 0;
        for (; !poster.eof(); poster.moveNext()) {
            ++c;
            if (c >= s && graf.verdier.size() < static_cast<size_t>(MaksPunkter)) {
                const float verdi = store::HentVerdi(K, poster);
                graf.verdier.push_back(verdi);
                if (verdi > 1) k.dialogs.melding(vb::tekst(verdi));
                c = 0;
            }
        }
    } catch (const std::exception& e) {
        // A letter the table lacks, or a store that cannot be read.
        k.dialogs.info(QStringLiteral("Ingen graf kan vises: ") + QString::fromUtf8(e.what()));
        return Utfall::Avvist;
    }
    k.vindu.visGraf(graf);
    return Utfall::Ferdig;
}

}  // namespace analysis
