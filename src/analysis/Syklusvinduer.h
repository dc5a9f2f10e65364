// The windows of the chosen cycles, as the exports take them: the single-cycle window from Text1
// minutes before to Text2 minutes after each turning point, and the combined workbook's zero
// point and window. The exports and the graph window's view of the cycles over each other both
// take them from here; the view's rows and its table are made here too, without a screen.
#pragma once

#include "files/SnuPunkter.h"
#include "platform/Kontekst.h"

#include <optional>
#include <vector>

namespace analysis {

inline const QString FeilMelding =
    QStringLiteral("Det har oppstått en feil. Sjekk at du har oppgitt gyldige intervaller og tidspunkt.");

inline const dialogs::Sporsmal SporPeriode{
    dialogs::Sporsmal::Art::Inndata,
    QStringLiteral("Angi antall minutter større enn ventilskift, mindre enn makspunktet for desorpsjonskurva:"),
    QStringLiteral("Periode")};

// The guards every cycle command runs first: the turning-point file must exist ("Du må først
// finne antall sykluser"), the chooser must hold entries ("Ingen data importert"). The turning
// points, or nothing after the message.
std::optional<files::SnuPunkter> lesSnupunkter(Kontekst& k);

// A time window from fra to til; whether the row at fra belongs to it is the reading statement's part.
struct Tidsvindu {
    vb::Dato fra, til;
};

// The single-cycle window of a turning point with the settings as they stand: Text1 minutes
// before to Text2 minutes after; vb::Feil for a setting that is no number.
Tidsvindu enkeltvindu(const Kontekst& k, const vb::Dato& snupunkt);

// The time of the largest value of column Kolonne in the 30 minutes before the turning point,
// less Minutter minutes; vb::Feil when that span has no row.
vb::Dato FinnNullpunktAdsorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Minutter);
// M1 = time of the maximum in the 30 minutes before the turning point; M2 = time of the
// maximum between M1 + 60 minutes and M1 + Periode minutes; returns M2 less 10 minutes.
vb::Dato FinnNullpunktDesorpsjon(Kontekst& k, const vb::Dato& SnuPunkt, const QString& Kolonne, int16_t Periode);

// The combined workbook's window of a cycle with the current choice and settings: from its zero
// point (fra) to Text2 minutes after the turning point (Adsorpsjon) or after the zero point
// (Desorpsjon). periode: the desorption period, not read with Adsorpsjon.
Tidsvindu samlevindu(Kontekst& k, const vb::Dato& snupunkt, const QString& K, int16_t periode);

// One cycle of the view: its single-cycle window's rows (minutes from the turning point and the
// chosen column's value as HentVerdi reads it) and the combined workbook's zero point.
struct Syklusrader {
    int syklus = 0;
    vb::Dato snupunkt;
    std::vector<double> minutter, verdier;
    double null = 0;           // minutes from the turning point to the combined zero point
    bool utenforData = false;  // the window reaches before the first or past the last row
};

// The chosen cycles (Text4 to Text6) of the column, over the window Text1 minutes before to
// Text2 minutes after their turning points.
struct Syklusbilde {
    QString tittel;  // the column's chooser text
    bool adsorpsjon = true;
    double foer = 0, etter = 0;  // Text1 and Text2
    std::vector<Syklusrader> sykluser;
};

// Reads the view with the settings as they stand, after the cycle exports' guards and their
// messages; Desorpsjon asks for the period as the combined export does. Nothing after a message:
// no turning points, an empty chooser, no chosen cycle (Text4 past Text6), a setting, turning
// point or zero point the exports would stop at, or windows without any row.
std::optional<Syklusbilde> lesSyklusbilde(Kontekst& k);

// The table beside the view: its headings, and one row of texts per cycle.
QStringList tabellOverskrifter();
struct Tabellrad {
    QStringList celler;
    bool merket = false;  // no rows in the window, or it runs past the data
};
std::vector<Tabellrad> tabell(const Syklusbilde& bilde);

}  // namespace analysis
