#include "platform/Kontekst.h"

#include <QDir>
#include <QFileInfo>

QString iMappe(const QString& mappe, const QString& navn)
{
    const QString direkte = mappe + QLatin1Char('/') + navn;
    if (QFileInfo::exists(direkte)) return direkte;
    // Names that differ only in case name one file, as on the lab's own system. Every entry is
    // compared, since a name given by the user may hold the wildcards of a name filter.
    const QStringList alle =
        QDir(mappe).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& kandidat : alle)
        if (kandidat.compare(navn, Qt::CaseInsensitive) == 0) return mappe + QLatin1Char('/') + kandidat;
    return direkte;
}

QString Kontekst::sti(const QString& navn) const { return iMappe(mappe, navn); }
