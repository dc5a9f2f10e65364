// The measurement database on SQLCipher: one keyed connection, statements without
// rows and record sets over select statements. Statement texts arrive in the
// program's own dialect and are translated by JetDialekt before they run. Many rows
// at once go in through Masseinnsetting.
#pragma once

#include "platform/vb/Vb.h"

#include <QString>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace db {

// A failure of the store: a file that is no database, a wrong key, a rejected statement.
struct DbFeil : vb::Feil {
    using vb::Feil::Feil;
};

class Recordset;

class Database {
public:
    static constexpr const char* Passord = "tesko4NR";

    Database() = default;
    explicit Database(const QString& fil) { aapne(fil); }
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens an existing database file with the key; DbFeil (and closed) when it cannot.
    void aapne(const QString& fil);
    // Creates a new, empty keyed database file (the file must not exist).
    void lag(const QString& fil);
    // Writes a copy of this database to a new file under the same key but with a salt of its own,
    // so that no two database files share one: nokkel, from nyNokkel. A half-written copy is
    // removed on failure.
    void kopierTil(const QString& fil, const std::string& nokkel);
    // For a file that is thrown away on any failure (a database being built): no rollback
    // journal and no waiting for the disk; the caller makes the finished file durable itself.
    void utenJournal();
    // Has the system start writing what is written so far to the disk (see fil::begynnSkriving).
    void begynnSkriving() const;
    void lukk();
    bool erApen() const { return db_ != nullptr; }
    // What the engine said when a statement last found the file damaged; empty while none has.
    const QString& skadet() const { return skadet_; }
    const QString& fil() const { return fil_; }

    // Runs a statement that returns no rows.
    void utfor(const QString& sql);
    // Runs a select statement; the record set stays valid while the database is open.
    Recordset spor(const QString& sql);
    // Runs a statement given in SQLite's own text, untranslated (schema, pragmas).
    void utforSqlite(const char* sql);

    // What the import states about the order of the rows it wrote, kept in the file's
    // user_version. tidFolgerId: DatoTid never decreases from one ID to the next; the dialect then
    // answers "order by ID" of a time-bounded statement from the time indexes. idUtenHull: the IDs
    // run from the lowest to the highest without a gap, so the row count is read off the two ends.
    // A file that states neither is read plainly.
    void settRadorden(bool tidFolgerId, bool idUtenHull);
    bool idUtenHull() const { return idUtenHull_; }
    bool tidFolgerId() const { return tidFolgerId_; }

private:
    friend class Transaksjon;
    friend class Masseinnsetting;
    friend class Recordset;

    // A statement in SQLite's own text, prepared for repeated use with bound values.
    sqlite3_stmt* forbered(const char* sql);
    sqlite3* handle() const { return db_; }
    void apneFil(const QString& fil, int flagg, const std::string& nokkel);
    [[noreturn]] void kast(const QString& hva) const;
    // The store's reason for the last failure, with a full disk, disk errors, a lock held by
    // another program and a damaged file said plainly (the last is also kept in skadet).
    QString grunn() const;

    sqlite3* db_ = nullptr;
    QString fil_;
    mutable QString skadet_;
    bool tidFolgerId_ = false;
    bool idUtenHull_ = false;
};

// Groups statements into one transaction; rolled back unless committed.
class Transaksjon {
public:
    explicit Transaksjon(Database& db);
    ~Transaksjon();
    void fullfor();

private:
    Database& db_;
    bool aktiv_ = true;
};

// Rows of a select statement, read forwards.
class Recordset {
public:
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    bool eof() const { return eof_; }
    void moveNext();

    // Field of the current row by column name (not case-sensitive); DbFeil for an unknown name.
    bool erNull(std::string_view navn) const;
    double tall(std::string_view navn) const;
    QString tekst(std::string_view navn) const;
    // A date-time field (DatoTid); DbFeil when the field holds no date-time.
    vb::Dato dato(std::string_view navn) const;
    // The same by column position from 0.
    int kolonne(std::string_view navn) const;
    bool erNull(int kolonne) const;
    double tall(int kolonne) const;
    QString tekst(int kolonne) const;
    vb::Dato dato(int kolonne) const;

private:
    friend class Database;
    Recordset(const Database& db, sqlite3_stmt* stmt);
    void steg();

    const Database* db_ = nullptr;
    sqlite3_stmt* stmt_ = nullptr;
    bool eof_ = true;
    std::vector<std::string> navn_;
};

}  // namespace db
