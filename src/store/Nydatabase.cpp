#include "store/Nydatabase.h"

#include "files/Tekstfil.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <QFile>
#include <filesystem>

namespace store {

std::optional<QString> erstattDatabase(Kontekst& k)
{
    const QString mal = k.sti(MalFil);
    const QString data = k.sti(DataFil);
    const QString ny = data + QStringLiteral(".import");
    if (!files::FilFinnes(mal)) return QStringLiteral("Finner ikke databasemalen %1.").arg(mal) + Uendret;
    QFile::remove(ny);
    QFile kopi(mal);
    if (!kopi.copy(ny))
        return QStringLiteral("Kan ikke kopiere databasemalen %1 til %2: %3.").arg(mal, ny, kopi.errorString()) +
               Uendret;
    QFile::setPermissions(ny, QFile::permissions(ny) | QFileDevice::WriteOwner);
    try {
        db::Database tom(ny);
        tomTabell(tom);
    } catch (const db::DbFeil& e) {
        QFile::remove(ny);
        return QStringLiteral("Databasemalen %1 kan ikke brukes: %2.").arg(mal, QString::fromStdString(e.what())) +
               Uendret;
    }
    k.tilkobling.lukk();
    std::error_code feil;
    std::filesystem::rename(QFile::encodeName(ny).toStdString(), QFile::encodeName(data).toStdString(), feil);
    if (feil) {
        QFile::remove(ny);
        try {
            k.tilkobling.aapne(data);
        } catch (const db::DbFeil&) {
            // it could not be opened before the import either; the start-up message said so
        }
        return QStringLiteral("Kan ikke erstatte databasen %1: %2.").arg(data, QString::fromLocal8Bit(feil.message())) +
               Uendret;
    }
    try {
        k.tilkobling.aapne(data);
    } catch (const db::DbFeil& e) {
        return QString::fromStdString(e.what()) +
               QStringLiteral(". Databasen er erstattet med en tom kopi av malen, men ingenting er importert.");
    }
    return std::nullopt;
}

}  // namespace store
