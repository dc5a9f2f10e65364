#include "files/Tekstfil.h"

#include "platform/fil/Varig.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace files {

namespace {

// The longest line any of the program's files may hold; a longer one is no line of theirs.
constexpr size_t MaksLinje = 1 << 20;

[[noreturn]] void kanIkkeSkrive(const QString& Filnavn, const QString& grunn)
{
    throw FilFeil(QStringLiteral("Kan ikke skrive fila %1: %2").arg(Filnavn, grunn).toStdString());
}

}  // namespace

bool FilFinnes(const QString& Filnavn)
{
    const QFileInfo info(Filnavn);
    return info.isFile() && !info.isHidden();
}

bool MappeFinnes(const QString& Mappe) { return QFileInfo(Mappe).isDir(); }

int32_t TellLinjer(const QString& Filnavn)
{
    Linjeleser leser(Filnavn);
    int32_t antall = 0;
    for (std::string_view linje; leser.neste(linje);) ++antall;
    return antall;
}

bool Skrivebeskyttet(const QString& Filnavn)
{
    // The owner's write bit counts too: a superuser may write any file, but the user protected this one.
    const QFileInfo info(Filnavn);
    return info.exists() && (!info.isWritable() || !info.permissions().testFlag(QFile::WriteOwner));
}

void SlettFiler(const QStringList& Filnavn)
{
    for (const QString& fil : Filnavn)
        if (Skrivebeskyttet(fil))
            throw FilFeil(QStringLiteral("Kan ikke slette fila %1: fila er skrivebeskyttet").arg(fil).toStdString());
    for (const QString& fil : Filnavn) {
        QFile f(fil);
        if (FilFinnes(fil) && !f.remove())
            throw FilFeil(QStringLiteral("Kan ikke slette fila %1: %2").arg(fil, f.errorString()).toStdString());
    }
}

void SkrivTilFil(const QString& Filnavn, const QString& Streng) { NyTekstfil(Filnavn, {Streng}).erstatt(); }

NyTekstfil::NyTekstfil(const QString& Filnavn, const QStringList& linjer)
    : fil_(Filnavn), tmp_(Filnavn + QStringLiteral(".tmp") + QString::number(::getpid()))
{
    if (Skrivebeskyttet(Filnavn)) kanIkkeSkrive(Filnavn, QStringLiteral("fila er skrivebeskyttet"));
    QByteArray data;
    for (const QString& linje : linjer) data += linje.toLatin1() + "\r\n";
    QFile ut(tmp_);
    QString grunn;
    if (!ut.open(QIODevice::WriteOnly | QIODevice::Truncate) || ut.write(data) != data.size() || !ut.flush())
        grunn = ut.errorString();
    else if (::fsync(ut.handle()) != 0)
        grunn = QString::fromLocal8Bit(std::strerror(errno));
    ut.close();
    if (!grunn.isEmpty()) {
        ut.remove();
        kanIkkeSkrive(Filnavn, grunn);
    }
}

NyTekstfil::~NyTekstfil()
{
    if (!erstattet_) QFile::remove(tmp_);
}

void NyTekstfil::erstatt()
{
    if (const std::error_code feil =
            fil::byttInn(QFile::encodeName(tmp_).toStdString(), QFile::encodeName(fil_).toStdString()))
        throw FilFeil(QStringLiteral("Kan ikke erstatte fila %1: %2")
                          .arg(fil_, QString::fromLocal8Bit(feil.message()))
                          .toStdString());
    erstattet_ = true;
}

void RyddForlatteTmp(const QString& Mappe)
{
    static const QRegularExpression Monster(QStringLiteral("\\.tmp(\\d{1,9})(_\\d+)?(\\.[0-9A-Za-z]{6})?$"));
    for (const QString& navn : QDir(Mappe).entryList(QDir::Files | QDir::Hidden)) {
        const QRegularExpressionMatch m = Monster.match(navn);
        if (!m.hasMatch()) continue;
        const auto pid = static_cast<pid_t>(m.captured(1).toLong());
        if (pid != ::getpid() && ::kill(pid, 0) != 0 && errno == ESRCH) QFile::remove(Mappe + QLatin1Char('/') + navn);
    }
}

QString HentFraFil(const QString& Filnavn)
{
    if (!FilFinnes(Filnavn)) return {};
    try {
        Linjeleser leser(Filnavn);
        std::string_view linje;
        return leser.neste(linje) ? latin1(linje) : QString();
    } catch (const FilFeil&) {
        return {};
    }
}

QString HentKode(const QString& Streng)
{
    const qsizetype p1 = Streng.lastIndexOf(QLatin1Char('['));
    const qsizetype p2 = Streng.lastIndexOf(QLatin1Char(']'));
    if (p1 < 0 || p2 < 0 || p2 < p1) return {};
    return Streng.mid(p1 + 1, p2 - p1 - 1);
}

Linjeleser::Linjeleser(const QString& Filnavn) : fil_(Filnavn), buf_(MaksLinje + 1)
{
    const QFileInfo info(Filnavn);
    if (info.exists() && !info.isFile())
        throw FilFeil(QStringLiteral("Kan ikke åpne fila %1: det er ingen vanlig fil").arg(Filnavn).toStdString());
    if (!fil_.open(QIODevice::ReadOnly))
        throw FilFeil(QStringLiteral("Kan ikke åpne fila %1: %2").arg(Filnavn, fil_.errorString()).toStdString());
}

bool Linjeleser::fyll()
{
    if (ferdig_) return false;
    if (start_ > 0) {
        std::memmove(buf_.data(), buf_.data() + start_, slutt_ - start_);
        slutt_ -= start_;
        start_ = 0;
    }
    if (slutt_ == buf_.size())
        throw FilFeil(QStringLiteral("Linje %1 i fila %2 er lengre enn %3 MB")
                          .arg(QString::number(linjeNr_ + 1), fil_.fileName(), QString::number(MaksLinje >> 20))
                          .toStdString());
    const qint64 n = fil_.read(buf_.data() + slutt_, static_cast<qint64>(buf_.size() - slutt_));
    if (n < 0)
        throw FilFeil(
            QStringLiteral("Kan ikke lese fila %1: %2").arg(fil_.fileName(), fil_.errorString()).toStdString());
    if (n == 0) {
        ferdig_ = true;
        return false;
    }
    slutt_ += static_cast<size_t>(n);
    return true;
}

bool Linjeleser::neste(std::string_view& linje)
{
    size_t soktTil = start_;
    for (;;) {
        if (hoppOverLf_ && start_ < slutt_) {
            if (buf_[start_] == '\n') ++start_;
            hoppOverLf_ = false;
            soktTil = start_;
        }
        // The first CR or LF, sought with memchr a stretch at a time (both kinds of line end
        // stay cheap, also in a file that has only one of them).
        const char* b = buf_.data();
        for (size_t i = soktTil; i < slutt_;) {
            const size_t n = std::min<size_t>(slutt_ - i, 256);
            const auto* lf = static_cast<const char*>(std::memchr(b + i, '\n', n));
            const auto* cr =
                static_cast<const char*>(std::memchr(b + i, '\r', lf ? static_cast<size_t>(lf - (b + i)) : n));
            if (const char* brudd = cr ? cr : lf) {
                const auto slutt = static_cast<size_t>(brudd - b);
                linje = std::string_view(b + start_, slutt - start_);
                hoppOverLf_ = *brudd == '\r';
                start_ = slutt + 1;
                ++linjeNr_;
                return true;
            }
            i += n;
        }
        soktTil = slutt_ - start_;
        if (!fyll()) {
            if (start_ == slutt_) return false;
            linje = std::string_view(buf_.data() + start_, slutt_ - start_);
            start_ = slutt_;
            ++linjeNr_;
            return true;
        }
    }
}

}  // namespace files
