// Writes the empty measurement database (Template.mdb) for the program folder.
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("Bruk: lag_database UTFIL\n", stderr);
        return 2;
    }
    const QString fil = QString::fromLocal8Bit(argv[1]);
    QFile::remove(fil);
    try {
        store::lagTomDatabase(fil);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
