// Dialogs answered from a script: a queue of answers, every box recorded.
// A question without a queued answer of the right kind fails loudly.
#pragma once

#include "platform/dialogs/Dialogs.h"

#include <QStringList>

#include <deque>
#include <functional>
#include <variant>
#include <vector>

namespace ui {

// Thrown for a question the script has no answer for. It is no std::exception,
// so no command's own error path can take it for a failure of its own.
struct UbesvartSporsmal {
    QString sporsmal;
};

class SkriptDialogs : public Dialogs {
public:
    struct Forslag {};  // accept what the input box proposes
    using Svaret = std::variant<Svar, QString, Forslag>;

    enum class Type { Melding, Inndata, Fil };
    struct Dialog {
        Type type;
        QString tekst;  // message text, prompt or filter
        QString tittel;
        QString forslag;
        Knapper knapper = Knapper::Ok;
        Ikon ikon = Ikon::Ingen;
    };

    void svar(Svaret s) { svar_.push_back(std::move(s)); }
    const std::vector<Dialog>& dialoger() const { return dialoger_; }
    // The texts of the message boxes shown, in order.
    QStringList meldinger() const;
    bool ubrukteSvar() const { return !svar_.empty(); }
    // Called with every message box as it is shown (tolvik-batch prints them).
    std::function<void(const QString&)> vedMelding;

    Svar melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel) override;
    QString inndata(const QString& sporsmal, const QString& tittel, const QString& forslag) override;
    QString velgFil(const QString& filter) override;

private:
    Svaret neste(const QString& sporsmal);

    std::deque<Svaret> svar_;
    std::vector<Dialog> dialoger_;
};

} // namespace ui
