// What the cycle exports share: the guards before they start, the turning-point
// list, the question, the file-name prefix, the output folder, the data start
// time and the progress text.
#pragma once

#include "platform/Kontekst.h"

#include <QStringList>
#include <optional>

namespace eksport {

inline const QString SnuPunktFil = QStringLiteral("SnuPunkter.txt");
inline const QString UtMappe = QStringLiteral("Data_Bearbeidet");
inline const QString FeilMelding =
    QStringLiteral("Det har oppstått en feil. Sjekk at du har oppgitt gyldige intervaller og tidspunkt.");

// The turning points of the last cycle search, cycle k at index k-1.
class SnuPunkter {
public:
    explicit SnuPunkter(QStringList tekster) : tekster_(std::move(tekster)) {}
    // Turning point of cycle k (from 1); vb::Feil when there is none or it is no date-time.
    vb::Dato syklus(int k) const;

private:
    QStringList tekster_;
};

// The guards every export runs first: the turning-point file must exist ("Du må først finne
// antall sykluser"), the chooser must hold entries ("Ingen data importert"); then the output
// folder is created when missing. Returns the turning points, or nothing after a refusal message.
std::optional<SnuPunkter> forberedEksport(Kontekst& k);

// Text6 − Text4 + 1 as the number text of the export question.
QString antallRun(const ui::Vindu& vindu);

// Asks "Angi filnavn" proposing today's "ddmmyyyy_"; empty text when the user gives none.
QString sporPrefiks(Kontekst& k);

// Full path of a file in the output folder.
QString utFil(const Kontekst& k, const QString& navn);

// DatoTid of the first measurement row; vb::Feil when the table is empty.
vb::Dato dataStart(Kontekst& k);

// "# ### ###" count + " (Run " + cycle + ")", the progress text in Label4.
QString fremdrift(long long rad, int syklus);

// Minutes from the data start to t as a fraction: whole seconds / 60.
double startForskyvning(const vb::Dato& start, const vb::Dato& t);

} // namespace eksport
