#include "platform/Kontekst.h"

#include <QDir>
#include <QFileInfo>

QString Kontekst::sti(const QString& navn) const
{
    const QString direkte = mappe + QLatin1Char('/') + navn;
    if (QFileInfo::exists(direkte)) return direkte;
    // Names that differ only in case name one file, as on the lab's own system.
    const QStringList like = QDir(mappe).entryList({navn}, QDir::AllEntries | QDir::Hidden | QDir::System);
    for (const QString& kandidat : like)
        if (kandidat.compare(navn, Qt::CaseInsensitive) == 0) return mappe + QLatin1Char('/') + kandidat;
    return direkte;
}
