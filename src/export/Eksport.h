// What the cycle exports share: the guards before they start, the turning-point
// list, the question, the file-name prefix, the output folder, the data start
// time and the progress text.
#pragma once

#include "analysis/Syklusvinduer.h"
#include "files/SnuPunkter.h"
#include "platform/Kontekst.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QElapsedTimer>
#include <QStringList>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace exports {

inline const QString UtMappe = QStringLiteral("Data_Bearbeidet");
inline const QString MalSykluser = QStringLiteral("Mal_Sykluser.xlsx");
inline const QString MalAdsorpsjon = QStringLiteral("Mal_Alle_Adsorpsjon.xlsm");
inline const QString MalDesorpsjon = QStringLiteral("Mal_Alle_Desorpsjon.xlsm");
using analysis::FeilMelding;

// The questions the exports share: how many cycles to write, and the file-name prefix.
inline const dialogs::Sporsmal SporEnkeltfiler{dialogs::Sporsmal::Art::JaNei,
                                               QStringLiteral("Vil du lage excel-filer for %1 run?")};
inline const dialogs::Sporsmal SporPrefiks{dialogs::Sporsmal::Art::Inndata, QStringLiteral("Angi filnavn"),
                                           QStringLiteral("Filnavn")};

// The guards every export runs first: the turning-point file must exist ("Du må først finne
// antall sykluser"), the chooser must hold entries ("Ingen data importert"); then the output
// folder is created when missing and the question (its %1 the count Text6 − Text4 + 1) is asked.
// Returns the turning points, or nothing after a refusal (Avvist) or the answer No (Ferdig).
struct Forberedt {
    std::optional<files::SnuPunkter> snupunkter;
    Utfall utfall = Utfall::Ferdig;
};
Forberedt forberedEksport(Kontekst& k, const dialogs::Sporsmal& sporsmal);

// Asks "Angi filnavn" proposing today's "ddmmyyyy_"; empty text when the user gives none.
// Feil, before anything is written, when the answer cannot begin a file name (a path or
// reserved character, or too long).
QString sporPrefiks(Kontekst& k);

// The combined template of the current adsorption/desorption choice.
inline const QString& samleMal(const dialogs::Vindu& vindu)
{
    return vindu.adsorpsjon() ? MalAdsorpsjon : MalDesorpsjon;
}

// Full path of a file in the output folder; an existing file whose name differs only in case is
// that file, so a later export overwrites it instead of writing a second one. vb::Feil when the
// name holds a character that a file name cannot hold on any of the systems the lab uses
// (\ / : * ? " < > | or a control character).
QString utFil(const Kontekst& k, const QString& navn);

// DatoTid of the first measurement row; vb::Feil when the table is empty.
vb::Dato dataStart(Kontekst& k);

// The export's one error message, with the cause kept for diagnosis.
Utfall eksportFeil(Kontekst& k, const std::exception& e);

// "# ### ###" count + " (Run " + cycle + ")", the progress text in Label4.
QString fremdrift(long long rad, int syklus);

// Progress of a written cycle in Label4. Writing a row is far quicker than repainting the
// window, so the label is set and pending events run after the cycle's first row and then at
// most every 50 ms; when the cycle's writing ends (also through an error) the label shows the
// exact text of the last row.
class Fremdrift {
public:
    Fremdrift(dialogs::Vindu& vindu, int syklus);
    ~Fremdrift();
    Fremdrift(const Fremdrift&) = delete;
    Fremdrift& operator=(const Fremdrift&) = delete;
    // After each written row, with the row counter already moved on. True when pending events
    // ran, so the window's controls may have changed.
    bool rad(long long rad);

private:
    dialogs::Vindu& vindu_;
    int syklus_;
    long long rad_ = -1;
    unsigned rader_ = 0;  // rows counted, the clock read at every 32nd
    QElapsedTimer klokke_;
};

// Written rows that a template's charts cannot draw (see xlsx::Arbeidsark::fyllNed), noted per
// cycle and shown in one information box when the export has ended, so no data is lost silently.
class Udekket {
public:
    // Notes rows dekket + 1 to sisteRad of cycle syklus in file fil, when there are any.
    void merk(int syklus, int sisteRad, int dekket, const QString& fil);
    // The box, after the export's own final message; nothing when every row is drawn.
    void vis(dialogs::Dialogs& dialogs) const;

private:
    QStringList linjer_;
};

// Saves workbooks on a second thread, one at a time and in the order given, so that a command
// fills its next workbook while the last ones are compressed and written. A workbook whose save
// fails stops the ones given after it. The thread lives as long as the object, so the formulas it
// has read once are known to it for the next workbooks.
class Bakgrunnslagring {
public:
    Bakgrunnslagring();
    // Waits for the workbooks given; their error is dropped here, so call vent() to see it.
    ~Bakgrunnslagring();
    Bakgrunnslagring(const Bakgrunnslagring&) = delete;
    Bakgrunnslagring& operator=(const Bakgrunnslagring&) = delete;

    // Waits for the workbooks given before, then starts saving bok as sti.
    void lagreSom(std::unique_ptr<xlsx::Arbeidsbok> bok, const QString& sti);
    // Saves bok as sti once the workbooks given before it are saved; not at all when one of them fails.
    void lagreDeretter(std::unique_ptr<xlsx::Arbeidsbok> bok, const QString& sti);
    // Waits for the workbooks given and throws the error of the one that failed, if any.
    void vent();
    // The command stopped with e: shows through vis the error of a workbook being saved, which
    // came first, or else e.
    Utfall stoppet(const std::exception& e, const std::function<Utfall(const std::exception&)>& vis);

private:
    struct Bok {
        std::unique_ptr<xlsx::Arbeidsbok> bok;
        QString sti;
    };
    void kjor();

    std::mutex mutex_;
    std::condition_variable endret_;
    std::deque<Bok> ko_;        // to save, the first one being saved
    std::vector<Bok> ferdige_;  // saved or given up, freed by vent()
    std::exception_ptr feil_;
    bool slutt_ = false;
    std::thread traad_;
};

// Minutes from the data start to t as a fraction: whole seconds / 60.
double startForskyvning(const vb::Dato& start, const vb::Dato& t);

}  // namespace exports
