#include "store/Nydatabase.h"

#include "files/Oppsett.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include "platform/db/Nokkel.h"
#include "platform/fil/Varig.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <filesystem>
#include <future>

namespace store {

namespace {

std::string lokal(const QString& sti) { return QFile::encodeName(sti).toStdString(); }

// The new database and the journal SQLite keeps beside it while the template is copied.
QStringList nyeFiler(const Kontekst& k)
{
    const QString ny = k.sti(NyDataFil);
    return {ny, ny + QStringLiteral("-journal")};
}

// One rename of a swap: names in the program folder.
struct Bytte {
    QString fra, til;
};

// The swap list: the raw-data file's name on the first line, then one "from!to" line a rename.
struct Bytteliste {
    QString radata;
    QList<Bytte> bytter;
};

QStringList linjer(const Bytteliste& liste)
{
    QStringList ut{liste.radata};
    for (const Bytte& b : liste.bytter) ut << b.fra + QLatin1Char('!') + b.til;
    return ut;
}

Bytteliste lesBytteliste(const QString& fil)
{
    Bytteliste liste;
    files::Linjeleser leser(fil);
    std::string_view linje;
    if (leser.neste(linje)) liste.radata = files::latin1(linje);
    while (leser.neste(linje)) {
        const QStringList deler = files::latin1(linje).split(QLatin1Char('!'));
        if (deler.size() == 2) liste.bytter.append({deler[0], deler[1]});
    }
    return liste;
}

// Carries out the renames whose files still wait, then removes the list; what failed, if anything
// (the list then stays for the next start).
std::optional<QString> fullforBytte(const Kontekst& k, const Bytteliste& liste)
{
    for (const Bytte& b : liste.bytter) {
        const QString fra = k.sti(b.fra), til = k.sti(b.til);
        if (!QFile::exists(fra)) continue;  // renamed before a kill
        // A journal that the replaced database left would be taken for the new one's.
        if (b.til == DataFil) QFile::remove(til + QStringLiteral("-journal"));
        std::error_code feil;
        std::filesystem::rename(lokal(fra), lokal(til), feil);
        if (feil)
            return QStringLiteral("Kan ikke erstatte fila %1: %2").arg(til, QString::fromLocal8Bit(feil.message()));
    }
    const std::string mappe = lokal(k.mappe);
    if (const std::error_code feil = fil::synkMappe(mappe))
        return QStringLiteral("Kan ikke lagre mappen %1: %2").arg(k.mappe, QString::fromLocal8Bit(feil.message()));
    QFile::remove(k.sti(ByttFil));
    fil::synkMappe(mappe);
    return std::nullopt;
}

// "Data.mdb og Kolonner.txt": the final names of a swap.
QString endeligeNavn(const Kontekst& k, const Bytteliste& liste)
{
    QStringList navn;
    for (const Bytte& b : liste.bytter) navn << k.sti(b.til);
    return navn.join(QStringLiteral(" og "));
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
    tom.utenJournal();
    tomTabell(tom);
}

void lagFraMal(const QString& mal, const QString& ny)
{
    const QString tmp = ny + QStringLiteral(".tmp") + QString::number(QCoreApplication::applicationPid());
    QFile::remove(tmp);
    try {
        db::Database tom;
        lagFraMal(mal, tmp, tom);
    } catch (const db::DbFeil&) {
        QFile::remove(tmp);
        throw;
    }
    const std::error_code feil = fil::leggInn(lokal(tmp), lokal(ny));
    QFile::remove(tmp);  // left only when it was not put in place
    if (feil && feil != std::errc::file_exists)
        throw db::DbFeil(QStringLiteral("Kan ikke lage databasen %1: %2")
                             .arg(ny, QString::fromLocal8Bit(feil.message()))
                             .toStdString());
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
        return QStringLiteral("Den nye databasen kan ikke lages fra %1: %2.").arg(mal, QString::fromStdString(e.what())) +
               Uendret;
    }
    return std::nullopt;
}

std::optional<QString> NyDatabase::byttInn(const QString& radata, files::NyTekstfil* kolonner)
{
    db_.lukk();
    const QString ny = k_.sti(NyDataFil);
    if (const std::error_code feil = fil::synk(lokal(ny)))
        return QStringLiteral("Kan ikke skrive databasen %1: %2.").arg(ny, QString::fromLocal8Bit(feil.message())) +
               Uendret;
    Bytteliste liste{radata, {{NyDataFil, DataFil}}};
    if (kolonner) liste.bytter.append({QFileInfo(kolonner->tmp()).fileName(), files::KolonnerFil});
    try {
        files::NyTekstfil(k_.sti(ByttFil), linjer(liste)).erstatt();
    } catch (const files::FilFeil& e) {
        return QString::fromStdString(e.what()) + QLatin1Char('.') + Uendret;
    }
    // From here on the list finishes the swap, now or at the next start.
    byttet_ = true;
    k_.tilkobling.lukk();
    std::optional<QString> feil = fullforBytte(k_, liste);
    if (feil && QFile::exists(ny)) {
        // Not one file was replaced: the import is given up, and the old pair stays.
        QFile::remove(k_.sti(ByttFil));
        byttet_ = false;
        *feil += QLatin1Char('.') + Uendret;
    } else if (feil) {
        *feil += QStringLiteral(". Importen fullføres ved neste start.");
    }
    try {
        k_.tilkobling.aapne(k_.sti(DataFil));
    } catch (const db::DbFeil& e) {
        if (!feil) feil = QString::fromStdString(e.what()) + QLatin1Char('.');
    }
    return feil;
}

std::optional<QString> ryddAvbruttImport(const Kontekst& k)
{
    const QString byttFil = k.sti(ByttFil);
    if (QFile::exists(byttFil)) {
        Bytteliste liste;
        try {
            liste = lesBytteliste(byttFil);
        } catch (const files::FilFeil& e) {
            return QString::fromStdString(e.what()) + QLatin1Char('.');
        }
        const QString navn = endeligeNavn(k, liste);
        if (auto feil = fullforBytte(k, liste))
            return QStringLiteral("Importen av %1 ble avbrutt mens de nye filene ble lagt på plass, og den kan ikke "
                                  "fullføres nå: %2.")
                .arg(liste.radata, *feil);
        return QStringLiteral("Importen av %1 ble avbrutt mens de nye filene ble lagt på plass. Den er fullført nå: "
                              "%2 er fra den fila.")
            .arg(liste.radata, navn);
    }
    bool fjernet = false;
    for (const QString& f : nyeFiler(k))
        if (QFile::exists(f)) fjernet = QFile::remove(f) || fjernet;
    if (!fjernet) return std::nullopt;
    return QStringLiteral("En import som ikke ble fullført, hadde latt en halvferdig database %1 ligge igjen. Den er "
                          "fjernet; databasen %2 og kolonnelista %3 er som før den importen.")
        .arg(k.sti(NyDataFil), k.sti(DataFil), k.sti(files::KolonnerFil));
}

}  // namespace store
