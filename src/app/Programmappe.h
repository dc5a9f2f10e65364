// The folder the program keeps its files in. A portable folder (the executable's own folder,
// writable and holding Template.mdb) is used as it is. An installed program's folder is not
// writable, so it keeps its files in a folder of the user's own instead, made on the first start
// from the installed Template.mdb and template workbooks.
#pragma once

#include "platform/dialogs/Dialogs.h"

#include <QString>
#include <QStringList>

namespace app {

struct Mappevalg {
    QString mappe;     // the program folder to use
    QStringList feil;  // what could not be set up there: file and reason, one line each
};

// The program folder for an executable in exeMappe. When exeMappe is no portable folder, the
// installed files are taken from installert (or from exeMappe itself when installert holds no
// Template.mdb, as for a write-protected copy of a portable folder) and brukerMappe is set up
// from them: missing files are copied, nothing there is replaced, and Data.mdb is made from
// Template.mdb when the folder had no Template.mdb yet. With no Template.mdb anywhere, exeMappe.
Mappevalg velgProgrammappe(const QString& exeMappe, const QString& installert, const QString& brukerMappe);

// The program folder of this run: velgProgrammappe on the executable's folder, the installed data
// folder beside it and the user's application-data folder. What could not be set up is shown in
// one notice.
QString programmappe(dialogs::Dialogs& dialogs);

}  // namespace app
