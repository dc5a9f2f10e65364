#include "analysis/AutomatiskSoking.h"

#include "analysis/Sykluser.h"
#include "files/SnuPunkter.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <cmath>
#include <vector>

namespace analysis {

namespace {

// One group of hit rows: its first and its last row's time.
struct Gruppe {
    vb::Dato start, slutt;
};

// One pass: its threshold and its groups in time order.
struct Gjennomlop {
    float T = 0;
    std::vector<Gruppe> grupper;
};

Gjennomlop lop(Kontekst& k, const QString& K, float T, const vb::Dato& sokStart)
{
    Gjennomlop g{T, {}};
    int16_t N = 1;
    for (const vb::Dato& t : store::treffTider(k.tilkobling, K, vb::sqlTekst(T), sokStart)) {
        if (g.grupper.empty()) {
            g.grupper.push_back({t, t});
        } else if (erGap(g.grupper.back().slutt, t)) {
            N = vb::pluss16(N);
            g.grupper.push_back({t, t});
        } else {
            g.grupper.back().slutt = t;
        }
    }
    return g;
}

// The pass with hit rows whose group count is nearest the wanted number; the lower threshold wins a tie.
const Gjennomlop* velg(const std::vector<Gjennomlop>& lop, int onsket)
{
    const auto avstand = [onsket](const Gjennomlop& x) {
        return std::abs(static_cast<int>(x.grupper.size()) - onsket);
    };
    const Gjennomlop* best = nullptr;
    for (const Gjennomlop& g : lop) {
        if (!g.grupper.empty() && (!best || avstand(g) < avstand(*best))) best = &g;
    }
    return best;
}

// The search itself; the busy pointer is off again when it returns or fails.
Utfall sokAutomatisk(Kontekst& k)
{
    const float X = vb::enkel(k.dialogs.inndata(SporStart, QStringLiteral("230")));
    const int16_t onsket = vb::heltall16(k.dialogs.inndata(SporAntallSykluser, QStringLiteral("30")));
    k.vindu.behandleHendelser();
    std::optional<dialogs::Opptatt> opptatt(std::in_place, k.vindu);

    const auto start = store::forsteRad(k.tilkobling);
    if (!start) return Utfall::Avvist;
    const vb::Dato dataStartTid = start->dato("DatoTid");
    const vb::Dato sokStart = dataStartTid.leggTilMinutter(X);
    const QString K = files::HentKode(k.vindu.kolonneTekst());
    // The searched column's own first value sizes the step: the level the signal starts from.
    const float R = store::HentVerdi(K, *start);
    store::forberedSok(k.tilkobling, K);
    const std::optional<double> Minimum = store::minimum(k.tilkobling, K, sokStart);
    if (!Minimum) return Utfall::Avvist;
    const float D = vb::enkel(std::abs(R - *Minimum) / 10.0);
    float T = vb::enkel(*Minimum);

    // The hit rows are the rows below the threshold with either option, so it climbs in both.
    std::vector<Gjennomlop> alle;
    for (int pass = 0; pass <= 10; ++pass) {
        T = vb::enkel(static_cast<double>(T) + D);
        alle.push_back(lop(k, K, T, sokStart));
        k.vindu.behandleHendelser();
    }
    const Gjennomlop* valgt = velg(alle, onsket);
    if (!valgt) return Utfall::Avvist;

    const auto& grupper = valgt->grupper;
    const int16_t N = vb::heltall16(static_cast<double>(grupper.size()));
    const vb::Dato F = grupper.front().start;
    const int64_t M = vb::minutterMellom(dataStartTid, F);
    const int32_t I = grupper.size() > 1
                          ? vb::heltall32(static_cast<double>(vb::minutterMellom(grupper[0].slutt, grupper[1].start)))
                          : 0;
    opptatt.reset();
    if (foreslaVerdier(k, N, QStringLiteral("mindre"), vb::tekst(valgt->T), F, M, I)) {
        // One turning point per group, so that the exports find every cycle counted in Text6.
        std::vector<vb::Dato> S;
        const dialogs::Opptatt skriver(k.vindu);
        for (const Gruppe& g : grupper)
            S.push_back(store::snuPunkt(k.tilkobling, g.start, g.slutt, k.vindu.adsorpsjon(), K));
        files::skrivSnuPunkter(k, S, {sokStart, valgt->T});
    }
    return Utfall::Ferdig;
}

}  // namespace

Utfall Command11_Click(Kontekst& k)
{
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return Utfall::Avvist;
    }
    try {
        return sokAutomatisk(k);
    } catch (const std::exception& e) {
        k.dialogs.feilGrunn(e);  // this search ends without a message on every failure
        return Utfall::Avvist;
    }
}

}  // namespace analysis
