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
    // The rows went into an empty table, so their IDs are without a gap when they span no more than the rows.
    db_.settRadorden(tidFolgerId_, idSpenn(db_) == innsetting_.lagret());
    transaksjon_.fullfor();
}

}  // namespace store
