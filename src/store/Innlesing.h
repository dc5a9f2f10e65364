// One run through the raw-data file once the database has been replaced: the header's
// column names to Kolonner.txt, the data lines into DataLinjer inside one transaction.
#pragma once

#include "store/Lesetraad.h"

#include <functional>

namespace store {

class Innlesing {
public:
    // Hears the count of non-empty lines handled so far, the header included.
    using Fremdrift = std::function<void(int64_t behandlet)>;

    // fremdrift is called at most every 50 ms while the file is read.
    Innlesing(db::Database& d, files::Linjeleser& leser, const QString& fil, const QString& kolonnefil,
              Fremdrift fremdrift);

    // Reads the file to its end. Returns the reason when the import had to stop early; the
    // rows read until then are kept. When fremdrift throws anything but a std::exception (a
    // program that is being ended), the rows are kept too and it goes on out of les.
    std::optional<QString> les();

    // Every line read, empty ones included.
    int32_t linjer() const { return linjeNr_; }
    // The non-empty lines handled, the header included.
    int64_t behandlet() const { return behandlet_; }
    // Read once les has returned.
    std::optional<QString> hoppetOver() const { return tolker_.hoppetOver(); }

private:
    void skrivKolonner(const QStringList& felt, int32_t overskriftLinje);

    db::Database& db_;
    Tolker tolker_;
    const QString fil_;
    const QString kolonnefil_;
    const Fremdrift fremdrift_;
    int32_t linjeNr_ = 0;
    int64_t behandlet_ = 0;
};

}  // namespace store
