// The database an import builds: a new Data.mdb made beside the old one and put in its place,
// together with the new Kolonner.txt, only when both are complete. An import that does not finish
// leaves the old pair as it was; one killed while it puts the new pair in place is finished at
// the next start. The two files always come from the same raw-data file.
#pragma once

#include "files/Tekstfil.h"
#include "platform/Kontekst.h"

#include <optional>

namespace store {

// Ends every refusal that leaves the user's files as they were.
inline const QString Uendret = QStringLiteral(" Ingenting er importert, og databasen er uendret.");

// Where the new database is built, beside Data.mdb.
inline const QString NyDataFil = QStringLiteral("Data.mdb.import");
// The list of renames that put an import's files in place, written before the first of them; an
// import whose list is found at start-up was killed half-way through them and is finished then.
inline const QString ByttFil = QStringLiteral("Data.mdb.bytt");

// Writes a new, empty database from Template.mdb under the same key but with a salt of its own
// and leaves `tom` open on it; DbFeil when it cannot.
void lagFraMal(const QString& mal, const QString& ny, db::Database& tom);
// The same, closed, and under the name `ny` only once it is complete; a `ny` that another process
// made meanwhile is kept.
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
    // Puts the new database over Data.mdb and, when given, the new column list over Kolonner.txt,
    // as one step that a kill cannot split; then opens the window's connection on the new
    // database. radata names the raw-data file in the notice of an interrupted step. The message
    // to show when it cannot (Data.mdb and Kolonner.txt are then the old ones, unless it says so).
    std::optional<QString> byttInn(const QString& radata, files::NyTekstfil* kolonner);

private:
    void fjern();

    Kontekst& k_;
    db::Database db_;
    bool byttet_ = false;
};

// At start-up, before Data.mdb is opened: finishes putting in place the files of an import that
// was killed while it did so, or removes the half-built database an import killed earlier left
// behind. The notice that says which, if there was anything to do.
std::optional<QString> ryddAvbruttImport(const Kontekst& k);

}  // namespace store
