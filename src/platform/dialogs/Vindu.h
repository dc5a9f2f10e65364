// The main window's controls as the commands see them: the six setting boxes,
// the column chooser, the adsorption/desorption choice, the progress label,
// the caption, the busy pointer, letting pending events run, and the graph window.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace dialogs {

// Thrown out of behandleHendelser() when the user ends the program in the middle of a
// command; it is no std::exception, so the command's own error path lets it pass.
struct Avbrutt {};

// The six setting boxes.
enum class Boks { Text4, Text6, Text5, Text3, Text1, Text2 };

// A setting box: its control name, the label beside it, its text at start-up.
struct Innstilling {
    Boks boks;
    const char* navn;
    const char* etikett;  // UTF-8
    const char* standard;
};

// The six settings in the order of Oppsett.txt.
inline constexpr Innstilling Innstillinger[] = {
    {Boks::Text4, "Text4", "Sykluser (1 - max)", "1"},   // first cycle
    {Boks::Text6, "Text6", "Sykluser (1 - max)", "30"},  // last cycle
    {Boks::Text5, "Text5", "Tid mellom min. punkt", "200"},
    {Boks::Text3, "Text3", "Start første run (minutter)", "230"},
    {Boks::Text1, "Text1", "Antall minutter før min. punkt", "10"},
    {Boks::Text2, "Text2", "Antall minutter etter min. punkt", "120"},
};

// What the overview graph draws: its title, the number of chart rows, and the values of
// rows 1, 2, 3 … (rows past the values have none and are not drawn), each at its minutes after
// the data start and with its own date-time text (DatoTid_Tekst). Beside them what the last
// cycle search left: its start and threshold, the turning points and the windows that the
// single-cycle export takes, all in minutes after the data start.
struct Graf {
    QString tittel;
    int rader = 0;
    std::vector<double> verdier;
    std::vector<double> minutter;
    QStringList tidTekster;
    QString dataStart;  // the general date-time text of the first row

    struct Snupunkt {
        int syklus;
        double minutt;
    };
    struct Utsnitt {
        int syklus;
        double fra, til;
    };
    std::optional<double> sokStart, terskel;
    std::vector<Snupunkt> snupunkter;
    std::vector<Utsnitt> utsnitt;
};

class Vindu {
public:
    virtual ~Vindu() = default;

    virtual QString tekst(Boks boks) const = 0;
    virtual void settTekst(Boks boks, const QString& tekst) = 0;

    // The settings by what they mean; each read gives the box's text at that moment.
    QString forsteSyklus() const { return tekst(Boks::Text4); }
    QString sisteSyklus() const { return tekst(Boks::Text6); }
    QString minutterFor() const { return tekst(Boks::Text1); }
    QString minutterEtter() const { return tekst(Boks::Text2); }
    // What a cycle search proposes: the last cycle, the time between cycles, the first run's start.
    void settSisteSyklus(const QString& t) { settTekst(Boks::Text6, t); }
    void settTidMellom(const QString& t) { settTekst(Boks::Text5, t); }
    void settStartForsteRun(const QString& t) { settTekst(Boks::Text3, t); }

    // Combo1: its entries, the selected one (-1 for none) and its text.
    virtual QStringList kolonner() const = 0;
    virtual void settKolonner(const QStringList& oppforinger) = 0;
    virtual int valgtKolonne() const = 0;
    virtual void velgKolonne(int indeks) = 0;
    QString kolonneTekst() const
    {
        const int i = valgtKolonne();
        return i < 0 ? QString() : kolonner().value(i);
    }

    // Option1 "Adsorpsjon" selected (otherwise Option2 "Desorpsjon").
    virtual bool adsorpsjon() const = 0;

    virtual void settLabel4(const QString& tekst) = 0;
    virtual QString tittel() const = 0;
    virtual void settTittel(const QString& tekst) = 0;

    // The busy pointer; nested calls count.
    virtual void settOpptatt(bool opptatt) = 0;
    // Lets the window repaint and handle clicks in the middle of a command; throws Avbrutt
    // when the program is being ended.
    virtual void behandleHendelser() = 0;

    // Shows the graph window "Graf" modally: the command goes on when it has been closed.
    virtual void visGraf(const Graf& graf) = 0;
};

// Shows the busy pointer for as long as it lives, whatever way a command ends.
class Opptatt {
public:
    explicit Opptatt(Vindu& v) : v_(v) { v_.settOpptatt(true); }
    ~Opptatt() { v_.settOpptatt(false); }
    Opptatt(const Opptatt&) = delete;
    Opptatt& operator=(const Opptatt&) = delete;

private:
    Vindu& v_;
};

}  // namespace dialogs
