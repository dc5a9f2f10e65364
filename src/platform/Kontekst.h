// What a command is given: the program folder, the database connection,
// the window's controls and the dialogs. Commands reach nothing else.
#pragma once

#include "platform/db/Database.h"
#include "platform/dialogs/Dialogs.h"
#include "platform/dialogs/Vindu.h"

#include <QString>

// How a command ended: at its normal end, or at one of its messages of refusal or error.
enum class Utfall { Ferdig, Avvist };

struct Kontekst {
    QString mappe;  // the program folder
    QString versjon;
    db::Database& tilkobling;
    dialogs::Vindu& vindu;
    dialogs::Dialogs& dialogs;

    // program folder + "/" + name; an existing file whose name differs only in case is the same file.
    QString sti(const QString& navn) const;
};
