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
    // Some 3 MB of the file a time, the disk starts on what SQLite has written, so that the
    // flush before the new file takes Data.mdb's place finds little left to write.
    if (innsetting_.lagret() >= nesteUtskriving_) {
        db_.begynnSkriving();
        nesteUtskriving_ = innsetting_.lagret() + RaderMellomUtskriving;
    }
}

void Radlager::lagre()
{
    // The rows went into an empty table, so their IDs are without a gap when they span no more than the rows.
    db_.settRadorden(tidFolgerId_, idSpenn(db_) == innsetting_.lagret());
    transaksjon_.fullfor();
}

}  // namespace store
