#include "platform/db/Database.h"

#include "platform/db/JetDialekt.h"
#include "platform/db/Nokkel.h"
#include "platform/fil/Varig.h"

#include <QFile>
#include <cstring>
#include <sqlite3.h>

namespace db {

namespace {

// Bits of the file's user_version: DatoTid never decreases from one ID to the next; the IDs have no gap.
constexpr int TidFolgerId = 1, IdUtenHull = 2;

// format(DatoTid, 'YYYYMMDDHHNNSS') where a statement uses it outside a comparison
// that the dialect could turn into a plain range on the stored date-time.
void formatFunksjon(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    const auto* verdi = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const auto* monster = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    if (!verdi) return sqlite3_result_null(ctx);
    if (!monster || sqlite3_stricmp(monster, "YYYYMMDDHHNNSS") != 0)
        return sqlite3_result_error(ctx, "format: bare mønsteret 'YYYYMMDDHHNNSS' er kjent", -1);
    auto dato = vb::Dato::fraIso(verdi);
    if (!dato) return sqlite3_result_null(ctx);
    const QByteArray nokkel = dato->tidsnokkel().toLatin1();
    sqlite3_result_text(ctx, nokkel.constData(), static_cast<int>(nokkel.size()), SQLITE_TRANSIENT);
}

}  // namespace

Database::~Database() { lukk(); }

void Database::kast(const QString& hva) const
{
    const QString g = grunn();
    throw DbFeil((hva + (g.isEmpty() ? QString() : QStringLiteral(": ") + g)).toStdString());
}

QString Database::grunn() const
{
    if (!db_) return {};
    const char* tekst = sqlite3_errmsg(db_);
    const QString melding = QString::fromUtf8(tekst);
    // sqlcipher_export passes on a full disk of the copy as a plain error with the engine's text.
    int kode = sqlite3_errcode(db_);
    if (std::strcmp(tekst, sqlite3_errstr(SQLITE_FULL)) == 0) kode = SQLITE_FULL;
    switch (kode) {
    case SQLITE_FULL: return QStringLiteral("disken er full (%1)").arg(melding);
    case SQLITE_IOERR: return QStringLiteral("lese- eller skrivefeil på disken (%1)").arg(melding);
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return QStringLiteral("databasen er låst av et annet program (%1)").arg(melding);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        skadet_ = melding;
        return QStringLiteral("databasen er skadet (%1)").arg(melding);
    default: return melding;
    }
}

void Database::apneFil(const QString& fil, int flagg, const std::string& nokkel)
{
    // Every connection is used by one thread only: SQLite's own locking and its memory
    // statistics would only cost time (about a twentieth of a bulk import).
    static const bool konfigurert = [] {
        sqlite3_config(SQLITE_CONFIG_MULTITHREAD);
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        return true;
    }();
    (void)konfigurert;
    lukk();
    const QByteArray sti = QFile::encodeName(fil);
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(sti.constData(), &db, flagg, nullptr) != SQLITE_OK) {
        const QString grunn = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_close(db);
        throw DbFeil(QStringLiteral("Kan ikke åpne databasen %1: %2").arg(fil, grunn).toStdString());
    }
    db_ = db;
    fil_ = fil;
    skadet_.clear();
    sqlite3_key(db_, nokkel.data(), static_cast<int>(nokkel.size()));
    // A second thread sorts while the first reads, when an index is built or a result sorted.
    // The page cache is SQLite's usual 2 MB: the program's reads are scans that never come back
    // to a page, and a larger cache only costs fresh memory on the first scan.
    const bool ok = sqlite3_exec(db_, "PRAGMA cipher_page_size = 4096; PRAGMA cache_size = -2000; PRAGMA threads = 2;",
                                 nullptr, nullptr, nullptr) == SQLITE_OK &&
                    sqlite3_exec(db_, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) == SQLITE_OK;
    if (!ok) {
        const QString g = sqlite3_errcode(db_) == SQLITE_NOTADB
                              ? QStringLiteral("fila er ikke en database, eller den har et annet passord")
                              : grunn();
        lukk();
        throw DbFeil(QStringLiteral("Kan ikke åpne databasen %1: %2").arg(fil, g).toStdString());
    }
    const auto orden = static_cast<int>(spor(QStringLiteral("PRAGMA user_version")).tall(0));
    tidFolgerId_ = orden & TidFolgerId;
    idUtenHull_ = orden & IdUtenHull;
    sqlite3_create_function(db_, "format", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, formatFunksjon, nullptr,
                            nullptr);
}

void Database::aapne(const QString& fil)
{
    if (!QFile::exists(fil))
        throw DbFeil(QStringLiteral("Kan ikke åpne databasen %1: fila finnes ikke").arg(fil).toStdString());
    apneFil(fil, SQLITE_OPEN_READWRITE, nokkelFor(fil));
}

void Database::lag(const QString& fil)
{
    if (QFile::exists(fil)) throw DbFeil(QStringLiteral("Databasen %1 finnes allerede").arg(fil).toStdString());
    apneFil(fil, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nyNokkel());
}

void Database::kopierTil(const QString& fil, const std::string& nokkel)
{
    if (!db_) throw DbFeil("Databasen er ikke åpen");
    if (QFile::exists(fil)) throw DbFeil(QStringLiteral("Databasen %1 finnes allerede").arg(fil).toStdString());
    // The connection may not create files; an empty file is a new database to SQLite.
    if (QFile tom(fil); !tom.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw DbFeil(QStringLiteral("Kan ikke lage databasen %1: %2").arg(fil, tom.errorString()).toStdString());
    auto tekst = [](QString t) { return t.replace(QLatin1Char('\''), QStringLiteral("''")); };
    const QByteArray sql = QStringLiteral("ATTACH DATABASE '%1' AS kopi KEY '%2'; PRAGMA kopi.cipher_page_size = 4096; "
                                          "SELECT sqlcipher_export('kopi'); DETACH DATABASE kopi;")
                               .arg(tekst(fil), tekst(QString::fromStdString(nokkel)))
                               .toUtf8();
    if (sqlite3_exec(db_, sql.constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        const QString g = grunn();
        sqlite3_exec(db_, "DETACH DATABASE kopi", nullptr, nullptr, nullptr);
        QFile::remove(fil);
        throw DbFeil(QStringLiteral("Kan ikke lage databasen %1: %2").arg(fil, g).toStdString());
    }
}

void Database::utenJournal() { utforSqlite("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"); }

void Database::begynnSkriving() const { fil::begynnSkriving(QFile::encodeName(fil_).toStdString()); }

void Database::lukk()
{
    if (db_) sqlite3_close_v2(db_);
    db_ = nullptr;
}

void Database::utforSqlite(const char* sql)
{
    if (!db_) throw DbFeil("Databasen er ikke åpen");
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        kast(QStringLiteral("Setningen ble avvist (%1)").arg(QString::fromUtf8(sql)));
}

void Database::utfor(const QString& sql) { utforSqlite(tilSqlite(sql, tidFolgerId_).toUtf8().constData()); }

void Database::settRadorden(bool tidFolgerId, bool idUtenHull)
{
    const int orden = (tidFolgerId ? TidFolgerId : 0) | (idUtenHull ? IdUtenHull : 0);
    utforSqlite(("PRAGMA user_version = " + std::to_string(orden)).c_str());
    tidFolgerId_ = tidFolgerId;
    idUtenHull_ = idUtenHull;
}

sqlite3_stmt* Database::forbered(const char* sql)
{
    if (!db_) throw DbFeil("Databasen er ikke åpen");
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &stmt, nullptr) != SQLITE_OK)
        kast(QStringLiteral("Setningen ble avvist (%1)").arg(QString::fromUtf8(sql)));
    return stmt;
}

Recordset Database::spor(const QString& sql)
{
    const QByteArray tekst = tilSqlite(sql, tidFolgerId_).toUtf8();
    sqlite3_stmt* stmt = forbered(tekst.constData());
    return Recordset(*this, stmt);
}

Transaksjon::Transaksjon(Database& db) : db_(db) { db_.utforSqlite("BEGIN"); }

Transaksjon::~Transaksjon()
{
    if (aktiv_ && db_.erApen()) sqlite3_exec(db_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaksjon::fullfor()
{
    db_.utforSqlite("COMMIT");
    aktiv_ = false;
}

Recordset::Recordset(const Database& db, sqlite3_stmt* stmt) : db_(&db), stmt_(stmt)
{
    const int n = sqlite3_column_count(stmt_);
    for (int i = 0; i < n; ++i) navn_.emplace_back(sqlite3_column_name(stmt_, i));
    try {
        steg();
    } catch (...) {
        sqlite3_finalize(stmt_);
        stmt_ = nullptr;
        throw;
    }
}

Recordset::Recordset(Recordset&& r) noexcept
    : db_(r.db_), stmt_(std::exchange(r.stmt_, nullptr)), eof_(r.eof_), navn_(std::move(r.navn_))
{
}

Recordset& Recordset::operator=(Recordset&& r) noexcept
{
    if (this != &r) {
        sqlite3_finalize(stmt_);
        db_ = r.db_;
        stmt_ = std::exchange(r.stmt_, nullptr);
        eof_ = r.eof_;
        navn_ = std::move(r.navn_);
    }
    return *this;
}

Recordset::~Recordset() { sqlite3_finalize(stmt_); }

void Recordset::steg()
{
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) {
        eof_ = false;
    } else if (rc == SQLITE_DONE) {
        eof_ = true;
    } else {
        eof_ = true;
        db_->kast(QStringLiteral("Spørringen feilet"));
    }
}

void Recordset::moveNext()
{
    if (eof_) throw DbFeil("Ingen gjeldende post");
    steg();
}

int Recordset::kolonne(std::string_view navn) const
{
    for (size_t i = 0; i < navn_.size(); ++i)
        if (navn_[i].size() == navn.size() &&
            sqlite3_strnicmp(navn_[i].data(), navn.data(), static_cast<int>(navn.size())) == 0)
            return static_cast<int>(i);
    throw DbFeil(QStringLiteral("Feltet %1 finnes ikke i spørringen")
                     .arg(QString::fromUtf8(navn.data(), static_cast<qsizetype>(navn.size())))
                     .toStdString());
}

bool Recordset::erNull(int k) const
{
    if (eof_) throw DbFeil("Ingen gjeldende post");
    return sqlite3_column_type(stmt_, k) == SQLITE_NULL;
}

double Recordset::tall(int k) const
{
    if (erNull(k)) throw DbFeil("Feltet er tomt");
    return sqlite3_column_double(stmt_, k);
}

bool Recordset::erNull(std::string_view navn) const { return erNull(kolonne(navn)); }
double Recordset::tall(std::string_view navn) const { return tall(kolonne(navn)); }

QString Recordset::tekst(std::string_view navn) const { return tekst(kolonne(navn)); }

QString Recordset::tekst(int k) const
{
    if (erNull(k)) return {};
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt_, k)),
                             sqlite3_column_bytes(stmt_, k));
}

vb::Dato Recordset::dato(std::string_view navn) const { return dato(kolonne(navn)); }

vb::Dato Recordset::dato(int k) const
{
    if (!erNull(k)) {
        const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, k));
        if (auto d = vb::Dato::fraIso(std::string_view(t, static_cast<size_t>(sqlite3_column_bytes(stmt_, k)))))
            return *d;
    }
    throw DbFeil("Feltet inneholder ikke en gyldig dato");
}

}  // namespace db
