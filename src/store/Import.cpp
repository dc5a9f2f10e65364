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

// Opens the file for reading, then replaces the database; why not, when either fails.
std::optional<QString> klargjor(Kontekst& k, std::optional<files::Linjeleser>& leser, const QString& fil)
{
    try {
        leser.emplace(fil);
    } catch (const files::FilFeil& e) {
        return QString::fromStdString(e.what()) + QLatin1Char('.') + Uendret;
    }
    return erstattDatabase(k);
}

// The messages once the file is read: where it stopped or the line count, then the lines left out.
Utfall rapporter(Kontekst& k, const Innlesing& innlesing, const std::optional<QString>& stopp)
{
    files::LesKolonner(k);
    if (stopp)
        k.dialogs.info(*stopp);
    else
        k.dialogs.melding(QStringLiteral("Antall linjer importert: ") + vb::antallTekst(innlesing.linjer()));
    if (auto hoppet = innlesing.hoppetOver()) k.dialogs.info(*hoppet);
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
    if (auto nei = klargjor(k, leser, fil)) {
        opptatt.reset();
        return avvis(k, *nei);
    }

    Innlesing innlesing(k.tilkobling, *leser, fil, k.sti(files::KolonnerFil), [&k](int64_t behandlet) {
        k.vindu.settLabel4(vb::antallTekst(behandlet));
        k.vindu.behandleHendelser();
    });
    const std::optional<QString> stopp = innlesing.les();
    k.vindu.settLabel4(vb::antallTekst(innlesing.behandlet()));
    leser.reset();
    opptatt.reset();
    return rapporter(k, innlesing, stopp);
}

}  // namespace store
