#include "store/Radlager.h"

namespace store {

namespace {

// The import's statements on DataLinjer.
const QString TomTabell = QStringLiteral("Delete from Datalinjer");
// A row: the date-time and its text as read, then the values C to L.
constexpr std::string_view SettInnRad = "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K, L)";
constexpr int Tekstkolonner = 2, Verdikolonner = 10;

} // namespace

void tomDataLinjer(db::Database& d) { d.utfor(TomTabell); }

Radlager::Radlager(db::Database& d)
    : db_(d), transaksjon_(d), innsetting_(d, SettInnRad, Tekstkolonner, Verdikolonner)
{
}

void Radlager::settInn(const Rad* rader, int antall, bool tidFolgerId)
{
    tidFolgerId_ = tidFolgerId_ && tidFolgerId;
    innsetting_.settInn(static_cast<size_t>(antall), [rader](size_t i) {
        const Rad& rad = rader[i];
        return db::Masseinnsetting::Rad{{rad.tid(), rad.tekst()}, rad.verdier, rad.antall};
    });
}

void Radlager::lagre()
{
    db_.settTidFolgerId(tidFolgerId_);
    transaksjon_.fullfor();
}

} // namespace store
