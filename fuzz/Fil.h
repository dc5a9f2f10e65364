// The files a workbook fuzz target writes for each input: in memory (/dev/shm) and per process.
#pragma once

#include <QString>
#include <unistd.h>

inline QString fuzzfil(const char* navn)
{
    return QStringLiteral("/dev/shm/tolvik-fuzz-%1-%2").arg(::getpid()).arg(QLatin1String(navn));
}
