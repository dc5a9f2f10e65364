// tolvik: the main window, run on the program folder (see Programmappe.h).
#include "app/Form1.h"
#include "app/Mappelaas.h"
#include "app/Programmappe.h"
#include "platform/dialogs/QtDialogs.h"

#include <QApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        std::fputs("Tolvik trenger en skjerm (DISPLAY er ikke satt).\n"
                   "Bruk tolvik-batch for å kjøre kommandoene uten vindu, eller start med xvfb-run.\n",
                   stderr);
        return 1;
    }
    QApplication app(argc, argv);
    dialogs::QtDialogs dialogs;
    const QString mappe = app::programmappe(dialogs);
    app::Mappelaas laas(mappe);
    if (!laas.ledig()) {
        if (laas.visAndre()) return 0;
        dialogs.info(laas.melding());
        return 1;
    }
    // Listening from the moment the folder is ours: a second window started while this one is
    // still being built finds it, and this one comes forward once it is shown.
    app::Form1* vist = nullptr;
    laas.vedVisAndre([&vist] {
        if (!vist) return;
        vist->showNormal();
        vist->raise();
        vist->activateWindow();
    });
    app::Form1 vindu(mappe, dialogs);
    dialogs.settEier(&vindu);
    vist = &vindu;
    vindu.show();
    return app.exec();
}
