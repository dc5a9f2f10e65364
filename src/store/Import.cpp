#include "store/Import.h"

#include "files/Oppsett.h"
#include "store/Innlesing.h"
#include "store/Maledata.h"
#include "store/Nydatabase.h"
#include "store/Oversikt.h"

namespace store {

namespace {

// Why the chosen file cannot be imported, from a first pass over it; o gets what it found.
std::optional<QString> forhaandssjekk(const QString& fil, Oversikt& o)
{
    try {
        o = sePaa(fil);
        return innvending(o, fil);
    } catch (const files::FilFeil& e) {
        return QString::fromStdString(e.what()) + QLatin1Char('.');
    }
}

// Opens the file for reading and builds the new database beside the old one; why not, when
// either fails.
std::optional<QString> klargjor(NyDatabase& ny, std::optional<files::Linjeleser>& leser, const QString& fil)
{
    try {
        leser.emplace(fil);
    } catch (const files::FilFeil& e) {
        return QString::fromStdString(e.what()) + QLatin1Char('.') + Uendret;
    }
    return ny.lag();
}

// Puts the new database and the header's Kolonner.txt in place, both written in full before
// either replaces its old file; why not, when that fails.
std::optional<QString> byttInn(Kontekst& k, NyDatabase& ny, const QString& fil, const QStringList& overskrift)
{
    std::optional<files::NyTekstfil> kolonner;
    try {
        const QStringList linjer = files::kolonneLinjer(overskrift);
        if (!linjer.isEmpty()) kolonner.emplace(k.sti(files::KolonnerFil), linjer);
    } catch (const files::FilFeil& e) {
        return QString::fromStdString(e.what()) + QLatin1Char('.') + Uendret;
    }
    return ny.byttInn(fil, kolonner ? &*kolonner : nullptr);
}

// The messages once the file is read: where it stopped or the line count, then the lines left out.
Utfall rapporter(Kontekst& k, const Innlesing& innlesing, const std::optional<QString>& stopp)
{
    files::LesKolonner(k);
    if (stopp)
        k.dialogs.info(*stopp);
    else
        k.dialogs.melding(QStringLiteral("Antall linjer importert: ") + vb::antallTekst(innlesing.linjer()));
    if (auto merknad = innlesing.merknad(); merknad && !stopp) k.dialogs.info(*merknad);
    VisAntallPoster(k);
    return stopp ? Utfall::Avvist : Utfall::Ferdig;
}

Utfall avvis(Kontekst& k, const QString& grunn)
{
    k.dialogs.info(grunn);
    return Utfall::Avvist;
}

}  // namespace

Utfall Command2_Click(Kontekst& k)
{
    const QString fil = k.dialogs.velgFil(SporFil.tekst);
    k.vindu.behandleHendelser();
    if (fil.isEmpty()) {
        VisAntallPoster(k);
        return Utfall::Ferdig;
    }

    std::optional<dialogs::Opptatt> opptatt(std::in_place, k.vindu);
    Oversikt oversikt;
    if (auto nei = forhaandssjekk(fil, oversikt)) {
        opptatt.reset();
        return avvis(k, *nei + Uendret);
    }
    if (!k.dialogs.sporJaNei(SporImport.tekst.arg(fil, vb::antallTekst(oversikt.linjer)))) return Utfall::Ferdig;

    std::optional<files::Linjeleser> leser;
    NyDatabase ny(k);
    if (auto nei = klargjor(ny, leser, fil)) {
        opptatt.reset();
        return avvis(k, *nei);
    }

    Innlesing innlesing(ny.db(), *leser, fil, [&k](int64_t behandlet) {
        k.vindu.settLabel4(vb::antallTekst(behandlet));
        k.vindu.behandleHendelser();
    });
    std::optional<QString> stopp = innlesing.les();
    if (stopp)
        *stopp += Uendret;
    else
        stopp = byttInn(k, ny, fil, innlesing.overskrift());
    k.vindu.settLabel4(vb::antallTekst(innlesing.behandlet()));
    leser.reset();
    opptatt.reset();
    return rapporter(k, innlesing, stopp);
}

}  // namespace store
