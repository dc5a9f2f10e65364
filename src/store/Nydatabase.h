// The database an import builds: a new Data.mdb made beside the old one and put in its place
// only when it is complete, so that an import that does not finish leaves the old one as it was.
#pragma once

#include "platform/Kontekst.h"

#include <optional>

namespace store {

// Ends every refusal that leaves the user's files as they were.
inline const QString Uendret = QStringLiteral(" Ingenting er importert, og databasen er uendret.");

// Where the new database is built, beside Data.mdb.
inline const QString NyDataFil = QStringLiteral("Data.mdb.import");

// Writes a new, empty database from Template.mdb under the same key but with a salt of its own
// and leaves `tom` open on it; DbFeil when it cannot.
void lagFraMal(const QString& mal, const QString& ny, db::Database& tom);
void lagFraMal(const QString& mal, const QString& ny);

class NyDatabase {
public:
    explicit NyDatabase(Kontekst& k) : k_(k) {}
    // Removes the half-built database unless it was put in place.
    ~NyDatabase();
    NyDatabase(const NyDatabase&) = delete;
    NyDatabase& operator=(const NyDatabase&) = delete;

    // Builds the empty database beside Data.mdb and opens it; the message to show when it cannot.
    std::optional<QString> lag();
    db::Database& db() { return db_; }
    // Closes the new database and renames it over Data.mdb in one step, then opens the window's
    // connection on it; the message to show when it cannot (Data.mdb then is the old one).
    std::optional<QString> byttInn();

private:
    void fjern();

    Kontekst& k_;
    db::Database db_;
    bool byttet_ = false;
};

// Removes what an import that was killed left beside Data.mdb; the notice to show, if anything
// was removed.
std::optional<QString> ryddAvbruttImport(const Kontekst& k);

}  // namespace store
