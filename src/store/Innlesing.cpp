#include "store/Innlesing.h"

#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "store/Radlager.h"
#include "store/Setninger.h"

#include <chrono>

namespace store {

namespace {

using Klokke = std::chrono::steady_clock;
constexpr auto Fremdriftsintervall = std::chrono::milliseconds(50);

}  // namespace

Innlesing::Innlesing(db::Database& d, files::Linjeleser& leser, const QString& fil, Fremdrift fremdrift)
    : db_(d), tolker_(leser, fil), fil_(fil), fremdrift_(std::move(fremdrift))
{
}

// The header is known before the first rows go in: the CO2 column the chooser will select gets
// its time index now, kept up row by row, instead of being built by the first search.
void Innlesing::lagTidsindeks(const QStringList& overskrift)
{
    overskrift_ = overskrift;
    const QStringList linjer = files::kolonneLinjer(overskrift);
    if (const qsizetype co2 = files::forsteCo2(linjer); co2 >= 0)
        tidsindeksVedImport(db_, files::HentKode(linjer[co2]));
}

std::optional<QString> Innlesing::les()
{
    Radlager lager(db_);
    {
        Lesetraad leser(tolker_);
        auto nesteVisning = Klokke::now();  // the first count is shown at once
        try {
            for (bool ferdig = false; !ferdig;) {
                Blokk& b = leser.neste();
                if (!b.overskrift.isEmpty()) lagTidsindeks(b.overskrift);
                lager.settInn(b.rader.data(), b.antall, b.tidFolgerId);
                linjeNr_ = b.linjeNr;
                behandlet_ = b.behandlet;
                const std::optional<QString> feil = b.feil;
                ferdig = b.slutt || b.feil;
                leser.giTilbake(b);
                if (feil) return feil;
                if (Klokke::now() >= nesteVisning) {
                    fremdrift_(behandlet_);
                    nesteVisning = Klokke::now() + Fremdriftsintervall;
                }
            }
        } catch (const std::exception& e) {
            return QStringLiteral("Importen stoppet ved linje %1 i fila %2: %3.")
                .arg(QString::number(linjeNr_), fil_, QString::fromStdString(e.what()));
        }
    }
    try {
        lager.lagre();
    } catch (const db::DbFeil& e) {
        return QStringLiteral("Radene fra fila %1 kunne ikke lagres: %2.").arg(fil_, QString::fromStdString(e.what()));
    }
    return std::nullopt;
}

}  // namespace store
