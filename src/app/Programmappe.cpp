#include "app/Programmappe.h"

#include "platform/db/Database.h"
#include "platform/fil/Varig.h"
#include "store/Maledata.h"
#include "store/Nydatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <optional>

namespace app {

namespace {

// Whether the folder holds a file of this name, in any case of its letters (as the program
// finds its files).
bool harFil(const QString& mappe, const QString& navn)
{
    return !QDir(mappe).entryList({navn}, QDir::Files | QDir::Hidden | QDir::System).isEmpty();
}

bool portabel(const QString& mappe) { return harFil(mappe, store::MalFil) && QFileInfo(mappe).isWritable(); }

// Copies a file into the folder unless it already holds one of that name (also one another process
// made meanwhile). The copy goes through a temporary name that the next start removes and is
// flushed before it takes its name, so neither a kill nor a power cut leaves half a file under the
// final name; it is writable by its owner, as the program rewrites templates in place.
std::optional<QString> kopierHvisMangler(const QString& fra, const QString& mappe)
{
    const QString navn = QFileInfo(fra).fileName();
    if (harFil(mappe, navn)) return std::nullopt;
    const QString til = mappe + QLatin1Char('/') + navn;
    const QString tmp = til + QStringLiteral(".tmp") + QString::number(QCoreApplication::applicationPid());
    QFile::remove(tmp);
    QFile kilde(fra);
    if (!kilde.copy(tmp)) return QStringLiteral("%1 kan ikke kopieres til %2: %3").arg(fra, til, kilde.errorString());
    QFile::setPermissions(tmp, QFile::permissions(tmp) | QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const std::error_code feil = fil::leggInn(QFile::encodeName(tmp).toStdString(), QFile::encodeName(til).toStdString());
    QFile::remove(tmp);  // left only when it was not put in place
    if (!feil || feil == std::errc::file_exists) return std::nullopt;
    return QStringLiteral("%1 kan ikke lages i %2: %3").arg(navn, mappe, QString::fromLocal8Bit(feil.message()));
}

// Sets up the user's folder from the installed files; returns what failed.
QStringList settOpp(const QString& kilde, const QString& bruker)
{
    if (!QDir().mkpath(bruker)) return {QStringLiteral("Mappen %1 kan ikke lages").arg(bruker)};
    const bool forsteStart = !harFil(bruker, store::MalFil);
    QStringList feil;
    const QStringList filer = QDir(kilde).entryList(
        {store::MalFil, QStringLiteral("Mal_*.xlsx"), QStringLiteral("Mal_*.xlsm")}, QDir::Files, QDir::Name);
    for (const QString& navn : filer)
        if (auto f = kopierHvisMangler(kilde + QLatin1Char('/') + navn, bruker)) feil << *f;
    if (forsteStart && harFil(bruker, store::MalFil) && !harFil(bruker, store::DataFil)) {
        try {
            store::lagFraMal(bruker + QLatin1Char('/') + store::MalFil, bruker + QLatin1Char('/') + store::DataFil);
        } catch (const db::DbFeil& e) {
            feil << QStringLiteral("%1 kan ikke lages i %2: %3")
                        .arg(store::DataFil, bruker, QString::fromUtf8(e.what()));
        }
    }
    return feil;
}

}  // namespace

Mappevalg velgProgrammappe(const QString& exeMappe, const QString& installert, const QString& brukerMappe)
{
    if (portabel(exeMappe)) return {exeMappe, {}};
    const QString kilde = harFil(installert, store::MalFil) ? installert : exeMappe;
    if (!harFil(kilde, store::MalFil)) return {exeMappe, {}};
    return {brukerMappe, settOpp(kilde, brukerMappe)};
}

QString programmappe(dialogs::Dialogs& dialogs)
{
    const QString exe = QCoreApplication::applicationDirPath();
    const Mappevalg valg = velgProgrammappe(exe, QDir::cleanPath(exe + QStringLiteral("/" TOLVIK_INSTALLERT_FRA_BIN)),
                                            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                                QStringLiteral("/Tolvik"));
    if (!valg.feil.isEmpty())
        dialogs.info(QStringLiteral("Programmappen %1 kunne ikke gjøres klar:\n").arg(valg.mappe) +
                     valg.feil.join(QLatin1Char('\n')));
    return valg.mappe;
}

}  // namespace app
