#include "analysis/Sykluser.h"

#include "files/SnuPunkter.h"
#include "files/Tekstfil.h"
#include "store/Setninger.h"

namespace analysis {

namespace {

const QString Feilmelding = QStringLiteral("Det oppstod en feil i denne rutinen");

}  // namespace

bool erGap(const vb::Dato& forrige, const vb::Dato& neste) { return std::abs(vb::sekunderMellom(forrige, neste)) > 10; }

bool foreslaVerdier(Kontekst& k, int N, const QString& W, const QString& terskel, const vb::Dato& F, int64_t M,
                    int64_t I)
{
    if (!k.dialogs.sporJaNei(SporForslag.tekst.arg(QString::number(N), W, terskel, F.generellTekst(),
                                                   QString::number(M), QString::number(I))))
        return false;
    k.vindu.settSisteSyklus(QString::number(N));
    k.vindu.settStartForsteRun(QString::number(M - 15));
    k.vindu.settTidMellom(QString::number(I));
    return true;
}

namespace {

// The search itself; every failure leaves it with the busy pointer already restored.
Utfall finnSykluser(Kontekst& k)
{
    const float X = vb::enkel(k.dialogs.inndata(SporStart, QStringLiteral("50")));
    const dialogs::Opptatt opptatt(k.vindu);
    k.vindu.behandleHendelser();

    const auto start = store::forsteRad(k.tilkobling);
    if (!start) return Utfall::Avvist;
    const vb::Dato dataStartTid = start->dato("DatoTid");
    const vb::Dato sokStart = dataStartTid.leggTilMinutter(X);
    const QString K = files::HentKode(k.vindu.kolonneTekst());
    store::forberedSok(k.tilkobling, K);
    const std::optional<double> Minimum = store::minimum(k.tilkobling, K, sokStart);

    files::slettSnuPunkter(k);

    // Without a row after the search start there is no minimum to show or to propose.
    const QString minTekst = Minimum ? vb::tekst(*Minimum) : QString();
    const QString forslag = Minimum ? vb::tekst(100.0 * *Minimum) : QString();
    const float V = vb::enkel(k.dialogs.inndata(SporTerskel.tekst.arg(minTekst), SporTerskel.tittel, forslag));

    const std::vector<vb::Dato> tider = store::treffTider(k.tilkobling, K, vb::sqlTekst(V), sokStart);
    if (tider.empty()) {
        k.dialogs.info(QStringLiteral("Ingen datapunkter er lavere enn den angitte verdien (") + vb::tekst(V) +
                       QLatin1Char(')'));
        return Utfall::Avvist;
    }

    const bool ads = k.vindu.adsorpsjon();
    std::vector<vb::Dato> S;
    int16_t N = 0;
    int32_t I = 0;
    const vb::Dato F = tider.front();
    vb::Dato G = F, P = F;
    for (const vb::Dato& t : tider) {
        if (erGap(P, t)) {
            const vb::Dato E = P;
            if (N == 0) I = vb::heltall32(static_cast<double>(vb::minutterMellom(E, t)));
            S.push_back(store::snuPunkt(k.tilkobling, G, E, ads, K));
            N = vb::pluss16(N);
            G = t;
        }
        P = t;
    }

    const QString W = ads ? QStringLiteral("mindre") : QStringLiteral("større");
    const int64_t M = vb::minutterMellom(dataStartTid, F);
    foreslaVerdier(k, N, W, vb::tekst(V), F, M, I);
    files::skrivSnuPunkter(k, S, {sokStart, V});
    return Utfall::Ferdig;
}

}  // namespace

Utfall Command7_Click(Kontekst& k)
{
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return Utfall::Avvist;
    }
    try {
        return finnSykluser(k);
    } catch (const std::exception& e) {
        k.dialogs.info(Feilmelding);
        k.dialogs.feilGrunn(e);
        return Utfall::Avvist;
    }
}

}  // namespace analysis
