// The text-file helpers every command uses. Files are single-byte Latin-1 text;
// writing ends each line with CR LF; reading ends a line at CR, CR LF or a lone LF,
// and a last line without a line end is still a line.
#pragma once

#include "platform/vb/Vb.h"

#include <QFile>
#include <QString>
#include <string_view>
#include <vector>

namespace files {

// A file that cannot be opened, read or written.
struct FilFeil : vb::Feil {
    using vb::Feil::Feil;
};

// True when an ordinary, visible file of that name exists (a folder counts as missing).
bool FilFinnes(const QString& Filnavn);
bool MappeFinnes(const QString& Mappe);
// Number of lines (0 for an empty file; empty lines count). FilFeil when unreadable.
int32_t TellLinjer(const QString& Filnavn);
// The file holds Streng as its only line. FilFeil when it cannot be written.
void SkrivTilFil(const QString& Filnavn, const QString& Streng);
// Streng added as a new last line, the file created when missing.
void SkrivTilFilAppend(const QString& Filnavn, const QString& Streng);
// The first line, or empty text when the file is missing, empty or unreadable.
QString HentFraFil(const QString& Filnavn);
// The text between the last "[" and the last "]"; empty when either is missing
// or the last "]" stands before the last "[".
QString HentKode(const QString& Streng);

// Reads a file line by line through a large buffer; memory does not grow with the file.
class Linjeleser {
public:
    // FilFeil when the file cannot be opened.
    explicit Linjeleser(const QString& Filnavn);
    // The next line without its line end, valid until the next call; false at the end.
    // FilFeil when reading fails half-way.
    bool neste(std::string_view& linje);

private:
    bool fyll();

    QFile fil_;
    std::vector<char> buf_;
    size_t start_ = 0, slutt_ = 0;
    bool ferdig_ = false;
    bool hoppOverLf_ = false;
};

inline QString latin1(std::string_view s) { return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size())); }

}  // namespace files
