// The rows one import writes into DataLinjer, inside one transaction.
#pragma once

#include "platform/db/Masseinnsetting.h"
#include "store/Radata.h"

namespace store {

// Writes the rows of one import into DataLinjer. They are kept only once lagre has committed
// them; the transaction is rolled back otherwise.
class Radlager {
public:
    explicit Radlager(db::Database& d);

    // tidFolgerId: whether no row has an earlier DatoTid than the row before it, the rows given
    // before included. DbFeil when the database refuses a row; the rows before it stay for lagre.
    void settInn(const Rad* rader, int antall, bool tidFolgerId);
    int64_t lagret() const { return innsetting_.lagret(); }
    // Commits the rows, with the store told whether their time follows their order.
    void lagre();

private:
    db::Database& db_;
    db::Transaksjon transaksjon_;
    db::Masseinnsetting innsetting_;
    bool tidFolgerId_ = true;
    static constexpr int64_t RaderMellomUtskriving = 20000;
    int64_t nesteUtskriving_ = RaderMellomUtskriving;
};

}  // namespace store
