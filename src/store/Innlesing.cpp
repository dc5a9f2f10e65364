#include "store/Innlesing.h"

#include "files/Oppsett.h"
#include "store/Radlager.h"

#include <chrono>

namespace store {

namespace {

using Klokke = std::chrono::steady_clock;
constexpr auto Fremdriftsintervall = std::chrono::milliseconds(50);

}  // namespace

Innlesing::Innlesing(db::Database& d, files::Linjeleser& leser, const QString& fil, const QString& kolonnefil,
                     Fremdrift fremdrift)
    : db_(d), tolker_(leser, fil), fil_(fil), kolonnefil_(kolonnefil), fremdrift_(std::move(fremdrift))
{
}

std::optional<QString> Innlesing::les()
{
    std::optional<QString> stopp;
    Radlager lager(db_);
    {
        Lesetraad leser(tolker_);
        auto nesteVisning = Klokke::now() + Fremdriftsintervall;
        try {
            for (bool ferdig = false; !ferdig;) {
                Blokk& b = leser.neste();
                if (!b.overskrift.isEmpty()) skrivKolonner(b.overskrift, b.overskriftLinje);
                lager.settInn(b.rader.data(), b.antall, b.tidFolgerId);
                linjeNr_ = b.linjeNr;
                behandlet_ = b.behandlet;
                stopp = b.feil;
                ferdig = b.slutt || b.feil;
                leser.giTilbake(b);
                if (Klokke::now() >= nesteVisning) {
                    fremdrift_(behandlet_);
                    nesteVisning = Klokke::now() + Fremdriftsintervall;
                }
            }
        } catch (const std::exception& e) {
            stopp = QStringLiteral("Importen stoppet ved linje %1 i fila %2: %3.")
                        .arg(linjeNr_)
                        .arg(fil_, QString::fromStdString(e.what()));
        } catch (...) {
            try {
                lager.lagre();
            } catch (const db::DbFeil&) {
                // the program is ending; the store keeps the database as it was before the transaction
            }
            throw;
        }
    }
    try {
        lager.lagre();
    } catch (const db::DbFeil& e) {
        return QStringLiteral("Radene fra fila %1 kunne ikke lagres: %2. Databasen er tom.")
            .arg(fil_, QString::fromStdString(e.what()));
    }
    if (stopp) *stopp += QStringLiteral(" De %1 radene som var lest inn før, er lagret.").arg(lager.lagret());
    return stopp;
}

// Field 3 always gets its line (replacing the file); later fields only when named.
void Innlesing::skrivKolonner(const QStringList& felt, int32_t overskriftLinje)
{
    linjeNr_ = overskriftLinje;
    for (qsizetype i = 2; i < felt.size(); ++i) {
        const QString linje = files::kolonneLinje(felt[i], files::kolonneBokstav(static_cast<int>(i) + 1));
        if (i == 2)
            files::SkrivTilFil(kolonnefil_, linje);
        else if (!felt[i].isEmpty())
            files::SkrivTilFilAppend(kolonnefil_, linje);
    }
}

}  // namespace store
