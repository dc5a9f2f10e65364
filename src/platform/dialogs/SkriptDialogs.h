// Dialogs answered from a script, every box recorded. An answer is given either for the next
// question, whatever it asks, or for one question (its kind, text and title), whenever that is
// asked. A question without an answer of the right kind fails loudly.
#pragma once

#include "platform/dialogs/Dialogs.h"

#include <QStringList>

#include <deque>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace dialogs {

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

    // The answer to the next question asked.
    void svar(Svaret s) { svar_.push_back({std::nullopt, std::move(s)}); }
    // The answer to the question s whenever it is asked; questions answered so are looked up
    // before the answers for whatever comes next.
    void svar(const Sporsmal& s, Svaret svaret) { svar_.push_back({s, std::move(svaret)}); }

    const std::vector<Dialog>& dialoger() const { return dialoger_; }
    // The texts of the message boxes shown, in order.
    QStringList meldinger() const;
    bool ubrukteSvar() const { return !svar_.empty(); }
    // The causes the commands gave behind their error messages, in order.
    const QStringList& grunner() const { return grunner_; }
    // Called with every message box as it is shown, and with every cause (tolvik-batch prints them).
    std::function<void(const QString&)> vedMelding, vedGrunn;

    Svar melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel) override;
    QString inndata(const QString& sporsmal, const QString& tittel, const QString& forslag) override;
    QString velgFil(const QString& filter) override;
    void feilGrunn(const QString& grunn) override;

private:
    struct Oppfort {
        std::optional<Sporsmal> sporsmal;  // none: the next question
        Svaret svar;
    };
    Svaret neste(Sporsmal::Art art, const QString& tekst, const QString& tittel);

    std::deque<Oppfort> svar_;
    std::vector<Dialog> dialoger_;
    QStringList grunner_;
};

}  // namespace dialogs
