#include "store/Radlager.h"

#include "store/Setninger.h"

namespace store {

Radlager::Radlager(db::Database& d) : db_(d), transaksjon_(d), innsetting_(d, RadInnsetting, RadTekster, RadVerdier) {}

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

}  // namespace store
