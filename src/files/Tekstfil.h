// The text-file helpers every command uses. Files are single-byte Latin-1 text;
// writing ends each line with CR LF; reading ends a line at CR, CR LF or a lone LF,
// and a last line without a line end is still a line.
#pragma once

#include "platform/vb/Vb.h"

#include <QFile>
#include <QString>
#include <QStringList>
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
// True when the file exists and is write-protected; the program neither replaces nor removes it.
bool Skrivebeskyttet(const QString& Filnavn);
// Removes those of the files that exist, or none: FilFeil naming the first write-protected one
// before any is removed, or a file that could not be removed.
void SlettFiler(const QStringList& Filnavn);
// The file holds Streng as its only line, written as NyTekstfil does. FilFeil when it cannot be
// written; the old file is then unchanged.
void SkrivTilFil(const QString& Filnavn, const QString& Streng);

// A text file written beside its final name (as name + ".tmp" + process number) and renamed
// over it in one step, so that a full disk or a killed program never leaves a half-written
// file under the final name.
class NyTekstfil {
public:
    // Writes the lines to the temporary file and flushes them to the disk; FilFeil when any
    // write fails.
    NyTekstfil(const QString& Filnavn, const QStringList& linjer);
    // Removes the temporary file unless it was put in place.
    ~NyTekstfil();
    NyTekstfil(const NyTekstfil&) = delete;
    NyTekstfil& operator=(const NyTekstfil&) = delete;
    // Renames the file over its final name, durably (see fil::byttInn); FilFeil when that fails.
    void erstatt();
    // Where the file waits for its final name.
    const QString& tmp() const { return tmp_; }

private:
    QString fil_, tmp_;
    bool erstattet_ = false;
};

// Removes from a folder the temporary files that the program writes beside a final name
// (name + ".tmp" + process number, optionally "_" + a count, optionally the six-character
// suffix of the zip library's own temporary file) and that a process no longer running left
// behind when it was killed.
void RyddForlatteTmp(const QString& Mappe);
// The first line, or empty text when the file is missing, empty or unreadable.
QString HentFraFil(const QString& Filnavn);
// The text between the last "[" and the last "]"; empty when either is missing
// or the last "]" stands before the last "[".
QString HentKode(const QString& Streng);

// Reads a file line by line through a buffer of 1 MB; memory does not grow with the file.
class Linjeleser {
public:
    // FilFeil when the file cannot be opened or is no regular file (a folder, a device).
    explicit Linjeleser(const QString& Filnavn);
    // The next line without its line end, valid until the next call; false at the end.
    // FilFeil when reading fails half-way or a line is longer than 1 MB.
    bool neste(std::string_view& linje);

private:
    bool fyll();

    QFile fil_;
    std::vector<char> buf_;
    size_t start_ = 0, slutt_ = 0;
    int64_t linjeNr_ = 0;
    bool ferdig_ = false;
    bool hoppOverLf_ = false;
};

inline QString latin1(std::string_view s) { return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size())); }

}  // namespace files
