// How the commands talk to the user: message boxes, input boxes and the
// open-file dialog, all modal. The window shows real dialogs; tests and
// tolvik-batch answer them from a script.
#pragma once

#include <QString>

namespace ui {

enum class Knapper { Ok, JaNei };
enum class Ikon { Ingen, Informasjon, Sporsmal };
enum class Svar { Ok, Ja, Nei };

inline const QString ProgramTittel = QStringLiteral("Tolvik");

class Dialogs {
public:
    virtual ~Dialogs() = default;
    // A message box; returns the button pressed.
    virtual Svar melding(const QString& tekst, Knapper knapper = Knapper::Ok, Ikon ikon = Ikon::Ingen,
                         const QString& tittel = ProgramTittel) = 0;
    // An input box; Cancel returns empty text.
    virtual QString inndata(const QString& sporsmal, const QString& tittel, const QString& forslag) = 0;
    // The open-file dialog with a filter "Name (*.EXT)|*.EXT"; empty text when no file was chosen.
    virtual QString velgFil(const QString& filter) = 0;

    // Shorthands for the two kinds of box the commands use most.
    void info(const QString& tekst) { melding(tekst, Knapper::Ok, Ikon::Informasjon); }
    bool sporJaNei(const QString& tekst) { return melding(tekst, Knapper::JaNei, Ikon::Sporsmal) == Svar::Ja; }
};

} // namespace ui
