#include "app/Mappelaas.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>

namespace app {

namespace {

// The name a window on this folder listens on, the same for every process on the folder.
QString kanal(const QString& mappe)
{
    const QByteArray sti = QDir(mappe).canonicalPath().toUtf8();
    return QStringLiteral("tolvik-") +
           QString::fromLatin1(QCryptographicHash::hash(sti, QCryptographicHash::Sha1).toHex().left(16));
}

}  // namespace

Mappelaas::Mappelaas(const QString& mappe) : mappe_(mappe), fil_(mappe + QLatin1Char('/') + LaasFil)
{
    // A lock is stale only when its process is gone, however long a window has held it.
    fil_.setStaleLockTime(0);
    ledig_ = fil_.tryLock(0) || fil_.error() != QLockFile::LockFailedError;
}

QString Mappelaas::melding() const
{
    qint64 pid = 0;
    QString vert, program;
    fil_.getLockInfo(&pid, &vert, &program);
    return QStringLiteral("Tolvik kjører allerede fra mappen %1 (prosess %2 på %3). Bruk det som kjører, eller vent "
                          "til det er avsluttet. Bare ett Tolvik om gangen kan arbeide i samme mappe.")
        .arg(QDir::toNativeSeparators(mappe_), QString::number(pid), vert);
}

bool Mappelaas::visAndre() const
{
    QLocalSocket andre;
    andre.connectToServer(kanal(mappe_));
    return andre.waitForConnected(2000);  // the window comes forward when a connection arrives
}

void Mappelaas::vedVisAndre(std::function<void()> vis)
{
    QLocalServer::removeServer(kanal(mappe_));  // a socket a killed window left behind
    if (!tjener_.listen(kanal(mappe_))) return;
    QObject::connect(&tjener_, &QLocalServer::newConnection, &tjener_, [this, vis = std::move(vis)] {
        while (QLocalSocket* s = tjener_.nextPendingConnection()) {
            QObject::connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
            s->disconnectFromServer();
            vis();
        }
    });
}

}  // namespace app
