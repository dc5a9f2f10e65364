#include "analysis/Syklusvinduer.h"

#include "analysis/Sykluser.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <QLocale>
#include <algorithm>

namespace analysis {

std::optional<files::SnuPunkter> lesSnupunkter(Kontekst& k)
{
    std::optional<files::SnuPunkter> liste = files::SnuPunkter::les(k);
    if (!liste) {
        k.dialogs.info(QStringLiteral("Du må først finne antall sykluser"));
        return std::nullopt;
    }
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return std::nullopt;
    }
    return liste;
}

Tidsvindu enkeltvindu(const Kontekst& k, const vb::Dato& snupunkt)
{
    return {snupunkt.leggTilMinutter(-vb::tall(k.vindu.minutterFor())),
            snupunkt.leggTilMinutter(vb::tall(k.vindu.minutterEtter()))};
}

namespace {

// DatoTid of the first row holding the largest value of the column strictly between a and b.
vb::Dato maksTid(Kontekst& k, const QString& kolonne, const vb::Dato& a, const vb::Dato& b)
{
    const std::optional<vb::Dato> tid = store::maksTid(k.tilkobling, kolonne, a, b);
    if (!tid) throw vb::Feil("Ingen rad med største verdi i intervallet");
    return *tid;
}

}  // namespace

vb::Dato FinnNullpunktAdsorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Minutter)
{
    return maksTid(k, Kolonne, SnuPunkt.leggTilMinutter(-30), SnuPunkt).leggTilMinutter(-Minutter);
}

vb::Dato FinnNullpunktDesorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Periode)
{
    const vb::Dato m1 = maksTid(k, Kolonne, SnuPunkt.leggTilMinutter(-30), SnuPunkt);
    return maksTid(k, Kolonne, m1.leggTilMinutter(60), m1.leggTilMinutter(Periode)).leggTilMinutter(-10);
}

Tidsvindu samlevindu(Kontekst& k, const vb::Dato& snupunkt, const QString& K, int16_t periode)
{
    if (k.vindu.adsorpsjon()) {
        const vb::Dato null = FinnNullpunktAdsorpsjon(k, snupunkt, K, vb::heltall16(k.vindu.minutterFor()));
        return {null, snupunkt.leggTilMinutter(vb::tall(k.vindu.minutterEtter()))};
    }
    const vb::Dato null = FinnNullpunktDesorpsjon(k, snupunkt, K, periode);
    return {null, null.leggTilMinutter(vb::tall(k.vindu.minutterEtter()))};
}

namespace {

double minutterFra(const vb::Dato& fra, const vb::Dato& t)
{
    return static_cast<double>(vb::sekunderMellom(fra, t)) / 60.0;
}

// The view's cycles: every step that the exports would stop at throws.
Syklusbilde lesSykluser(Kontekst& k, const files::SnuPunkter& liste, const QString& K)
{
    Syklusbilde bilde;
    bilde.tittel = k.vindu.kolonneTekst().simplified();
    bilde.adsorpsjon = k.vindu.adsorpsjon();
    bilde.foer = vb::tall(k.vindu.minutterFor());
    bilde.etter = vb::tall(k.vindu.minutterEtter());
    const double forste = vb::tall(k.vindu.forsteSyklus());
    const int16_t siste = vb::heltall16(k.vindu.sisteSyklus());
    if (forste > siste) throw vb::Feil("Første syklus (Text4) er større enn siste syklus (Text6)");
    const std::optional<vb::Dato> start = store::forsteTid(k.tilkobling), slutt = store::sisteTid(k.tilkobling);
    if (!start || !slutt) throw vb::Feil("Tabellen er tom");
    int16_t periode = 0;
    if (!bilde.adsorpsjon) periode = vb::heltall16(k.dialogs.inndata(SporPeriode, QStringLiteral("140")));

    bool rader = false;
    for (int16_t syklus = 1; syklus <= siste; syklus = vb::pluss16(syklus)) {
        if (forste > syklus) continue;
        Syklusrader s;
        s.syklus = syklus;
        s.snupunkt = liste.syklus(syklus);
        const Tidsvindu vindu = enkeltvindu(k, s.snupunkt);
        s.null = minutterFra(s.snupunkt, samlevindu(k, s.snupunkt, K, periode).fra);
        s.utenforData = vindu.fra < *start || vindu.til > *slutt;
        auto poster = store::vinduRader(k.tilkobling, false, vindu.fra, vindu.til, K);
        const int tid = poster.kolonne("DatoTid");
        for (; !poster.eof(); poster.moveNext()) {
            s.minutter.push_back(minutterFra(s.snupunkt, poster.dato(tid)));
            s.verdier.push_back(store::HentVerdi(K, poster));
        }
        rader = rader || !s.minutter.empty();
        bilde.sykluser.push_back(std::move(s));
    }
    if (!rader) throw vb::Feil("Ingen rader i vinduene til de valgte syklusene");
    return bilde;
}

}  // namespace

std::optional<Syklusbilde> lesSyklusbilde(Kontekst& k)
{
    const std::optional<files::SnuPunkter> liste = lesSnupunkter(k);
    if (!liste) return std::nullopt;
    const dialogs::Opptatt opptatt(k.vindu);
    try {
        return lesSykluser(k, *liste, files::HentKode(k.vindu.kolonneTekst()));
    } catch (const std::exception& e) {
        k.dialogs.info(FeilMelding);
        k.dialogs.feilGrunn(e);
        return std::nullopt;
    }
}

QStringList tabellOverskrifter()
{
    return {QStringLiteral("Syklus"),     QStringLiteral("Snupunkt"),        QStringLiteral("Rader"),
            QStringLiteral("Minimum"),    QStringLiteral("Ved minutt"),      QStringLiteral("Maksimum"),
            QStringLiteral("Ved minutt"), QStringLiteral("Nullpunkt (min)"), QStringLiteral("Merknad")};
}

namespace {

const QLocale Norsk(QLocale::NorwegianBokmal, QLocale::Norway);

QString minuttTekst(double m) { return Norsk.toString(m, 'f', 2); }

}  // namespace

std::vector<Tabellrad> tabell(const Syklusbilde& bilde)
{
    std::vector<Tabellrad> rader;
    for (const Syklusrader& s : bilde.sykluser) {
        Tabellrad r;
        r.celler << QString::number(s.syklus) << s.snupunkt.fullTekst() << QString::number(s.minutter.size());
        if (s.verdier.empty()) {
            r.celler << QString() << QString() << QString() << QString();
        } else {
            const auto [lav, hoy] = std::minmax_element(s.verdier.begin(), s.verdier.end());
            for (const auto i : {lav, hoy})
                r.celler << vb::tekst(static_cast<float>(*i))
                         << minuttTekst(s.minutter[static_cast<size_t>(i - s.verdier.begin())]);
        }
        r.celler << minuttTekst(s.null);
        QStringList merknad;
        if (s.minutter.empty()) merknad << QStringLiteral("Ingen rader i vinduet");
        if (s.utenforData) merknad << QStringLiteral("Vinduet går utenfor dataene");
        r.merket = !merknad.isEmpty();
        r.celler << merknad.join(QStringLiteral("; "));
        rader.push_back(std::move(r));
    }
    return rader;
}

}  // namespace analysis
