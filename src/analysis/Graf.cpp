#include "analysis/Graf.h"

#include "analysis/Sykluser.h"
#include "analysis/Syklusvinduer.h"
#include "files/SnuPunkter.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <algorithm>

namespace analysis {

int32_t provesteg(int32_t rader)
{
    return rader <= MaksPunkter ? 1 : vb::heltall32(static_cast<double>(rader) / MaksPunkter);
}

namespace {

// Minutes from the data start to t, to the second.
double minutterEtter(const vb::Dato& start, const vb::Dato& t)
{
    return static_cast<double>(vb::sekunderMellom(start, t)) / 60.0;
}

// The windows that "9.  Lag enkeltgraf" takes with the settings as they stand: from Text1 minutes
// before to Text2 minutes after the turning points of the cycles from Text4 to Text6. Settings that
// are no numbers give none, as the export would stop at them.
void leggTilUtsnitt(const Kontekst& k, const vb::Dato& start, const std::vector<vb::Dato>& tider, dialogs::Graf& graf)
{
    try {
        const double forste = vb::tall(k.vindu.forsteSyklus());
        const int16_t siste = vb::heltall16(k.vindu.sisteSyklus());
        for (size_t i = 0; i < tider.size(); ++i) {
            const int syklus = graf.snupunkter[i].syklus;
            if (syklus < forste || syklus > siste) continue;
            const Tidsvindu vindu = enkeltvindu(k, tider[i]);
            graf.utsnitt.push_back({syklus, minutterEtter(start, vindu.fra), minutterEtter(start, vindu.til)});
        }
    } catch (const vb::Feil&) {
    }
}

// What the last cycle search left, marked within the drawn rows: its start and threshold
// (SokStart.txt), the turning points (SnuPunkter.txt) and the export windows. Nothing without
// SnuPunkter.txt; texts that are no date-times mark nothing.
void leggTilSok(const Kontekst& k, const vb::Dato& start, dialogs::Graf& graf)
{
    const auto snu = files::SnuPunkter::les(k);
    if (!snu || graf.minutter.empty()) return;
    const double slutt = *std::max_element(graf.minutter.begin(), graf.minutter.end());
    const auto innenfor = [&](double m) { return m >= 0 && m <= slutt; };
    if (const auto sok = files::lesSok(k)) {
        if (innenfor(minutterEtter(start, sok->start))) graf.sokStart = minutterEtter(start, sok->start);
        graf.terskel = sok->terskel;
    }
    std::vector<vb::Dato> tider;
    for (int syklus = 1; syklus <= snu->antall(); ++syklus) {
        try {
            const vb::Dato t = snu->syklus(syklus);
            if (!innenfor(minutterEtter(start, t))) continue;
            graf.snupunkter.push_back({syklus, minutterEtter(start, t)});
            tider.push_back(t);
        } catch (const vb::Feil&) {
        }
    }
    leggTilUtsnitt(k, start, tider, graf);
}

}  // namespace

Utfall Command8_Click(Kontekst& k)
{
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return Utfall::Avvist;
    }
    const dialogs::Opptatt opptatt(k.vindu);
    const QString K = files::HentKode(k.vindu.kolonneTekst());
    dialogs::Graf graf;
    graf.tittel = k.vindu.kolonneTekst().simplified();
    try {
        auto poster = store::kolonneMedTid(k.tilkobling, K);
        if (poster.eof()) {
            k.dialogs.info(QStringLiteral("Ingen graf kan vises"));
            return Utfall::Avvist;
        }
        // n, the number of rows the statement returns, without a first walk through the rows.
        const int32_t n = vb::heltall32(static_cast<double>(store::antallRader(k.tilkobling)));
        const int32_t s = provesteg(n);
        graf.rader = std::min(n, MaksPunkter);
        graf.verdier.reserve(static_cast<size_t>(graf.rader));
        graf.minutter.reserve(static_cast<size_t>(graf.rader));
        graf.tidTekster.reserve(graf.rader);
        const int tid = poster.kolonne("DatoTid"), tekst = poster.kolonne("DatoTid_Tekst");
        const vb::Dato start = poster.dato(tid);
        graf.dataStart = start.generellTekst();

        int32_t c = 0;
        for (; !poster.eof(); poster.moveNext()) {
            ++c;
            if (c >= s && graf.verdier.size() < static_cast<size_t>(MaksPunkter)) {
                const float verdi = store::HentVerdi(K, poster);
                graf.verdier.push_back(verdi);
                graf.minutter.push_back(minutterEtter(start, poster.dato(tid)));
                graf.tidTekster.append(poster.tekst(tekst));
                if (verdi > 1) k.dialogs.melding(vb::tekst(verdi));
                c = 0;
            }
        }
        leggTilSok(k, start, graf);
    } catch (const std::exception& e) {
        // A letter the table lacks, or a store that cannot be read.
        k.dialogs.info(QStringLiteral("Ingen graf kan vises: ") + QString::fromUtf8(e.what()));
        return Utfall::Avvist;
    }
    k.vindu.visGraf(graf);
    return Utfall::Ferdig;
}

}  // namespace analysis
