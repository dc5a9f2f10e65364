#include "files/Tekstfil.h"

#include <QFileInfo>
#include <algorithm>
#include <cstring>

namespace files {

namespace {

constexpr size_t Blokk = 1 << 20;

void skriv(const QString& Filnavn, const QString& Streng, QIODevice::OpenMode modus)
{
    QFile fil(Filnavn);
    QByteArray data = Streng.toLatin1();
    data += "\r\n";
    if (!fil.open(modus) || fil.write(data) != data.size())
        throw FilFeil(QStringLiteral("Kan ikke skrive fila %1: %2").arg(Filnavn, fil.errorString()).toStdString());
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

void SkrivTilFil(const QString& Filnavn, const QString& Streng)
{
    skriv(Filnavn, Streng, QIODevice::WriteOnly | QIODevice::Truncate);
}

void SkrivTilFilAppend(const QString& Filnavn, const QString& Streng)
{
    skriv(Filnavn, Streng, QIODevice::WriteOnly | QIODevice::Append);
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

Linjeleser::Linjeleser(const QString& Filnavn) : fil_(Filnavn), buf_(Blokk)
{
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
    if (slutt_ == buf_.size()) buf_.resize(buf_.size() * 2);
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
                return true;
            }
            i += n;
        }
        soktTil = slutt_ - start_;
        if (!fyll()) {
            if (start_ == slutt_) return false;
            linje = std::string_view(buf_.data() + start_, slutt_ - start_);
            start_ = slutt_;
            return true;
        }
    }
}

}  // namespace files
