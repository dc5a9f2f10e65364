// One writer per program folder. Two processes on one folder would replace each other's
// Data.mdb, journals and text files, so the window holds this lock for its whole run and
// tolvik-batch for its command. A lock left by a process that is gone (killed, crashed) is taken
// over. A folder where no lock file can be made cannot be written either, so it is used without one.
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QString>
#include <functional>

namespace app {

inline const QString LaasFil = QStringLiteral("Tolvik.lock");

class Mappelaas {
public:
    explicit Mappelaas(const QString& mappe);
    // False when another running Tolvik holds the folder.
    bool ledig() const { return ledig_; }
    // What to tell the user when it is not.
    QString melding() const;
    // Asks the window that holds the folder to come to the front; false when none answers (the
    // holder is tolvik-batch, or a window that cannot be reached).
    bool visAndre() const;
    // While the lock is held: vis runs whenever a second window asks this one to come forward.
    void vedVisAndre(std::function<void()> vis);

private:
    QString mappe_;
    QLockFile fil_;
    bool ledig_ = true;
    QLocalServer tjener_;
};

}  // namespace app
