#include "analysis/Graf.h"

#include "analysis/FrmGraph.h"
#include "analysis/Sykluser.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"

namespace analyse
{

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
    const ui::Opptatt opptatt(k.vindu);
    const QString K = filer::HentKode(k.vindu.kolonneTekst());
    FrmGraph frm_Graph;
    try {
        auto poster = k.tilkobling.spor(QStringLiteral("Select ") + K + QStringLiteral(" from DataLinjer order by ID"));
        if (poster.eof()) {
            k.dialogs.info(QStringLiteral("Ingen graf kan vises"));
            return Utfall::Avvist;
        }
        // n, the number of rows the statement returns, without a first walk through the rows.
        const int32_t n = vb::heltall32(static_cast<double>(store::antallRader(k.tilkobling)));
        const int32_t s = provesteg(n);
        frm_Graph.settRadAntall(std::min(n, MaksPunkter));

        int32_t i = 1, c = 0;
        for (; !poster.eof(); poster.moveNext()) {
            ++c;
            if (c >= s && i <= MaksPunkter) {
                const float verdi = store::HentVerdi(K, poster);
                frm_Graph.settVerdi(i, verdi);
                if (verdi > 1) k.dialogs.melding(vb::tekst(verdi));
                ++i;
                c = 0;
            }
        }
    } catch (const std::exception& e) {
        // A letter the table lacks, or a store that cannot be read.
        k.dialogs.info(QStringLiteral("Ingen graf kan vises: ") + QString::fromUtf8(e.what()));
        return Utfall::Avvist;
    }
    frm_Graph.tegn(k.vindu.kolonneTekst().simplified());
    k.vindu.visModalt(frm_Graph);
    return Utfall::Ferdig;
}

} // namespace analyse
