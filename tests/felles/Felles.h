// Test helpers: a fresh program folder made from the built one, and tolvik-batch runs.
#pragma once

#include "platform/db/Database.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <ostream>

// Texts in failure messages as text.
inline std::ostream& operator<<(std::ostream& os, const QString& s) { return os << '"' << s.toStdString() << '"'; }

namespace test {

struct Kjoring {
    int status = -1;
    QString ut;
    QString feil;
};

// A file with exactly these bytes (a failed write fails the test); a file's bytes, none when unreadable.
void skriv(const QString& sti, const QByteArray& innhold);
QByteArray les(const QString& sti);

// A temporary program folder holding Template.mdb and a fresh Data.mdb copied from the build.
class Programmappe {
public:
    Programmappe();
    // The built workbook templates (Mal_*) copied in.
    void kopierMaler() const;
    QString sti(const QString& navn) const { return dir_.path() + QLatin1Char('/') + navn; }
    const QString& mappe() const { return mappe_; }
    void skriv(const QString& navn, const QByteArray& innhold) const;
    QByteArray les(const QString& navn) const;
    // tolvik-batch on this folder; with ok set, any status but 0 fails the test.
    Kjoring batch(const QStringList& argumenter, bool ok = false) const;
    // The same as text for a known-good transcript (see utskrift below), the folder's path as <mappe>.
    QString utskrift(const QStringList& argumenter) const;

private:
    QTemporaryDir dir_;
    QString mappe_;
};

// tekst against the known-good file navn under tests/ (with TOLVIK_NY_GULL set: writes the file).
void sjekkGull(const QString& navn, const QString& tekst);

// Every stored row (hvor narrows them) as "DatoTid|DatoTid_Tekst|C D ... L", "-" for an empty field.
QStringList rader(db::Database& d, const QString& hvor = {});

// The exit status the test environment gives the sanitizers' reports.
constexpr int Sanitizerstatus = TOLVIK_SANITIZERSTATUS;
// Runs the built tolvik-batch with these arguments; a run that hangs, crashes or ends with a
// sanitizer's report fails the test (and gives status -1).
Kjoring batch(const QStringList& argumenter);
// A run as text for a known-good transcript: the arguments, the exit status, what it printed, and
// what it wrote on stderr when it failed (else Qt's own notices may stand there).
QString utskrift(const QStringList& argumenter, const Kjoring& k);
inline QString utskrift(const QStringList& argumenter) { return utskrift(argumenter, batch(argumenter)); }

}  // namespace test
