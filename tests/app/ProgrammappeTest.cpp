// Which folder the program keeps its files in: a portable folder as it is, an installed program
// in the user's own folder set up from the installed files.
#include "app/Programmappe.h"
#include "felles/Felles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// An installed tree: bin/ without any program file, share/tolvik with Template.mdb and two
// templates (write-protected, as root installs them); the user's folder not made yet.
struct Installert {
    QTemporaryDir rot;
    QString bin = rot.path() + u"/bin"_s;
    QString delt = rot.path() + u"/share/tolvik"_s;
    QString bruker = rot.path() + u"/hjem/Tolvik"_s;
    Installert()
    {
        QDir().mkpath(bin);
        QDir().mkpath(delt);
        for (const char* navn : {"Template.mdb", "Mal_Sykluser.xlsx", "Mal_Alle_Adsorpsjon.xlsm"}) {
            const QString til = delt + QLatin1Char('/') + QLatin1String(navn);
            QFile::copy(QStringLiteral(TOLVIK_DIST "/") + QLatin1String(navn), til);
            QFile::setPermissions(til, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
        }
    }
    app::Mappevalg velg() const { return app::velgProgrammappe(bin, delt, bruker); }
};

// That a portable folder is used as it is, and that an installed program starts on the user's folder
// without any message, are the package test's (pakke/installert.sh).
TEST(Programmappe, ProgrammetsMappeEllerBrukermappe)
{
    Installert i;
    // No Template.mdb anywhere: the executable's folder, as before; start-up then says what is missing.
    EXPECT_EQ(app::velgProgrammappe(i.bin, i.bin, i.bruker).mappe, i.bin);
    EXPECT_FALSE(QDir(i.bruker).exists());
    // Installed: the user's own folder, set up from the installed files.
    const app::Mappevalg valg = i.velg();
    EXPECT_EQ(valg.mappe, i.bruker);
    EXPECT_TRUE(valg.feil.isEmpty()) << valg.feil.join('\n').toStdString();
    EXPECT_EQ(QDir(i.bruker).entryList(QDir::Files),
              QStringList({"Data.mdb", "Mal_Alle_Adsorpsjon.xlsm", "Mal_Sykluser.xlsx", "Template.mdb"}));
    EXPECT_TRUE(QFileInfo(i.bruker + u"/Mal_Sykluser.xlsx"_s).isWritable());

    // Later starts keep what the user has: an edited template (in any case of its name) and the
    // measurements. A removed template comes back; a removed Data.mdb is left to the start-up,
    // which makes it and says so.
    QFile::remove(i.bruker + u"/Mal_Sykluser.xlsx"_s);
    test::skriv(i.bruker + u"/mal_sykluser.xlsx"_s, "egen mal");
    QFile::remove(i.bruker + u"/Mal_Alle_Adsorpsjon.xlsm"_s);
    QFile::remove(i.bruker + u"/Data.mdb"_s);
    EXPECT_TRUE(i.velg().feil.isEmpty());
    EXPECT_EQ(test::les(i.bruker + u"/mal_sykluser.xlsx"_s), QByteArray("egen mal"));
    EXPECT_FALSE(QFile::exists(i.bruker + u"/Mal_Sykluser.xlsx"_s));
    EXPECT_TRUE(QFile::exists(i.bruker + u"/Mal_Alle_Adsorpsjon.xlsm"_s));
    EXPECT_FALSE(QFile::exists(i.bruker + u"/Data.mdb"_s));
}

}  // namespace
