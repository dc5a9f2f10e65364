// The main window's controls as the commands see them: the six setting boxes,
// the column chooser, the adsorption/desorption choice, the progress label,
// the caption, the busy pointer and letting pending events run.
#pragma once

#include <QString>
#include <QStringList>

class QDialog;

namespace ui {

// Thrown out of behandleHendelser() when the user ends the program in the middle of a
// command; it is no std::exception, so the command's own error path lets it pass.
struct Avbrutt {};

enum class Boks { Text4, Text6, Text5, Text3, Text1, Text2 };
// The setting boxes in the order of Oppsett.txt.
inline constexpr Boks AlleBokser[] = {Boks::Text4, Boks::Text6, Boks::Text5, Boks::Text3, Boks::Text1, Boks::Text2};

class Vindu {
public:
    virtual ~Vindu() = default;

    virtual QString tekst(Boks boks) const = 0;
    virtual void settTekst(Boks boks, const QString& tekst) = 0;

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

    // Shows a window of a command modally: the command goes on when it has been closed.
    virtual void visModalt(QDialog& vindu) = 0;
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

} // namespace ui
