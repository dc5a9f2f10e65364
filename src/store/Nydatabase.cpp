#include "store/Nydatabase.h"

#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include "platform/db/Nokkel.h"

#include <QFile>
#include <filesystem>
#include <future>

namespace store {

namespace {

// The new database and the journal SQLite keeps beside it while it writes.
QStringList nyeFiler(const Kontekst& k)
{
    const QString ny = k.sti(NyDataFil);
    return {ny, ny + QStringLiteral("-journal")};
}

}  // namespace

void lagFraMal(const QString& mal, const QString& ny, db::Database& tom)
{
    {
        // The new file's key is derived on a thread of its own while the template opens.
        auto nokkel = std::async(std::launch::async, db::nyNokkel);
        db::Database kilde;
        apneMaledata(kilde, mal);
        kilde.kopierTil(ny, nokkel.get());
    }
    tom.aapne(ny);
    tomTabell(tom);
}

void lagFraMal(const QString& mal, const QString& ny)
{
    db::Database tom;
    lagFraMal(mal, ny, tom);
}

NyDatabase::~NyDatabase()
{
    if (!byttet_) fjern();
}

void NyDatabase::fjern()
{
    db_.lukk();
    for (const QString& f : nyeFiler(k_)) QFile::remove(f);
}

std::optional<QString> NyDatabase::lag()
{
    const QString mal = k_.sti(MalFil);
    const QString ny = k_.sti(NyDataFil);
    if (!files::FilFinnes(mal)) return QStringLiteral("Finner ikke databasemalen %1.").arg(mal) + Uendret;
    fjern();
    try {
        lagFraMal(mal, ny, db_);
    } catch (const db::DbFeil& e) {
        fjern();
        return QStringLiteral("Databasemalen %1 kan ikke brukes: %2.").arg(mal, QString::fromStdString(e.what())) +
               Uendret;
    }
    return std::nullopt;
}

std::optional<QString> NyDatabase::byttInn()
{
    db_.lukk();
    const QString data = k_.sti(DataFil);
    k_.tilkobling.lukk();
    std::error_code feil;
    std::filesystem::rename(QFile::encodeName(k_.sti(NyDataFil)).toStdString(), QFile::encodeName(data).toStdString(),
                            feil);
    byttet_ = !feil;
    try {
        k_.tilkobling.aapne(data);
    } catch (const db::DbFeil& e) {
        if (byttet_) return QString::fromStdString(e.what()) + QLatin1Char('.');
    }
    if (feil)
        return QStringLiteral("Kan ikke erstatte databasen %1: %2.").arg(data, QString::fromLocal8Bit(feil.message())) +
               Uendret;
    return std::nullopt;
}

std::optional<QString> ryddAvbruttImport(const Kontekst& k)
{
    bool fjernet = false;
    for (const QString& f : nyeFiler(k))
        if (QFile::exists(f)) fjernet = QFile::remove(f) || fjernet;
    if (!fjernet) return std::nullopt;
    return QStringLiteral("En import som ikke ble fullført, hadde latt en halvferdig database %1 ligge igjen. Den er "
                          "fjernet; databasen %2 er som før den importen.")
        .arg(k.sti(NyDataFil), k.sti(DataFil));
}

}  // namespace store
