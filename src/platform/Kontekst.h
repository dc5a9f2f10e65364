// What a command is given: the program folder, the database connection,
// the window's controls and the dialogs. Commands reach nothing else.
#pragma once

#include "platform/db/Database.h"
#include "platform/dialogs/Dialogs.h"
#include "platform/dialogs/Vindu.h"

#include <QString>

// mappe + "/" + navn; an existing file or folder whose name differs only in case is the same one.
QString iMappe(const QString& mappe, const QString& navn);

// How a command ended: at its normal end, or at one of its messages of refusal or error.
enum class Utfall { Ferdig, Avvist };

struct Kontekst {
    QString mappe;  // the program folder
    QString versjon;
    db::Database& tilkobling;
    dialogs::Vindu& vindu;
    dialogs::Dialogs& dialogs;

    // iMappe of the program folder.
    QString sti(const QString& navn) const;
};
