// One run through the raw-data file into a new database: the header's fields kept for
// Kolonner.txt, the data lines into DataLinjer inside one transaction.
#pragma once

#include "store/Lesetraad.h"

#include <functional>

namespace store {

class Innlesing {
public:
    // Hears the count of non-empty lines handled so far, the header included.
    using Fremdrift = std::function<void(int64_t behandlet)>;

    // fremdrift is called after the first block of lines, then at most every 50 ms.
    Innlesing(db::Database& d, files::Linjeleser& leser, const QString& fil, Fremdrift fremdrift);

    // Reads the file to its end and commits the rows. Returns the reason when the import had to
    // stop early; nothing is committed then. What fremdrift throws that is not a std::exception
    // (a program that is being ended) goes on out of les, with nothing committed.
    std::optional<QString> les();
    // The cleaned fields of the header line.
    const QStringList& overskrift() const { return overskrift_; }

    // Every line read, empty ones included.
    int32_t linjer() const { return linjeNr_; }
    // The non-empty lines handled, the header included.
    int64_t behandlet() const { return behandlet_; }
    // Read once les has returned.
    std::optional<QString> merknad() const { return tolker_.merknad(); }

private:
    void lagTidsindeks(const QStringList& overskrift);

    db::Database& db_;
    Tolker tolker_;
    const QString fil_;
    QStringList overskrift_;
    const Fremdrift fremdrift_;
    int32_t linjeNr_ = 0;
    int64_t behandlet_ = 0;
};

}  // namespace store
