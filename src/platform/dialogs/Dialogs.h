// How the commands talk to the user: message boxes, input boxes and the
// open-file dialog, all modal. The window shows real dialogs; tests and
// tolvik-batch answer them from a script.
#pragma once

#include <QString>

#include <exception>

namespace dialogs {

enum class Knapper { Ok, JaNei };
enum class Ikon { Ingen, Informasjon, Sporsmal };
enum class Svar { Ok, Ja, Nei };

inline const QString ProgramTittel = QStringLiteral("Tolvik");

// A question a command asks: the kind of box, its text with %1, %2 … where the command fills in
// values (the file name, a count), and its title. The command builds the box from it, and a
// script answers the box that asks it, in whatever order the questions come.
struct Sporsmal {
    enum class Art { JaNei, Inndata, Fil };
    Art art;
    QString tekst;  // message, prompt or file filter
    QString tittel = ProgramTittel;

    // Whether a box of this kind, text and title asks this question.
    bool stilles(Art a, const QString& t, const QString& tt) const;
};

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
    // The cause behind a command's one error message, for whoever diagnoses a failure: it is
    // not shown in a box (the window writes it to stderr, tolvik-batch prints it there).
    virtual void feilGrunn(const QString& grunn) = 0;

    // Shorthands for the kinds of box the commands use most.
    void info(const QString& tekst) { melding(tekst, Knapper::Ok, Ikon::Informasjon); }
    bool sporJaNei(const QString& tekst) { return melding(tekst, Knapper::JaNei, Ikon::Sporsmal) == Svar::Ja; }
    // An input box asking a question whose prompt has no values filled in.
    QString inndata(const Sporsmal& s, const QString& forslag) { return inndata(s.tekst, s.tittel, forslag); }
    void feilGrunn(const std::exception& e) { feilGrunn(QString::fromUtf8(e.what())); }
};

}  // namespace dialogs
