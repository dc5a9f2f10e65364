#include "store/Radlager.h"

#include <cstring>

namespace store {

namespace {

// The import's statements on DataLinjer.
const QString TomTabell = QStringLiteral("Delete from Datalinjer");
// A row: the date-time and its text as read, then the values C to L.
constexpr std::string_view SettInnRad = "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K, L)";

} // namespace

void tomDataLinjer(db::Database& d) { d.utfor(TomTabell); }

Radlager::Radlager(db::Database& d) : db_(d), transaksjon_(d), innsetting_(d, SettInnRad, 2, Rad::Verdier) {}

void Radlager::settInn(const Rad* rader, int antall)
{
    verdier_.resize(static_cast<size_t>(antall));
    for (int i = 0; i < antall; ++i) {
        const Rad& rad = rader[i];
        if (std::memcmp(rad.datoTid, forrigeTid_, sizeof forrigeTid_) < 0) tidFolgerId_ = false;
        std::memcpy(forrigeTid_, rad.datoTid, sizeof forrigeTid_);
        verdier_[static_cast<size_t>(i)] = {{rad.tid(), rad.tekst()}, rad.verdier, rad.antall};
    }
    innsetting_.settInn(verdier_);
}

void Radlager::lagre()
{
    db_.settTidFolgerId(tidFolgerId_);
    transaksjon_.fullfor();
}

} // namespace store
