// The main window's two files: Oppsett.txt (the six settings on one line,
// separated by "!") and Kolonner.txt (one line per value column of the last
// imported file: name, 20 blanks, the letter in brackets).
#pragma once

#include "platform/Kontekst.h"

#include <QString>

namespace files {

inline const QString OppsettFil = QStringLiteral("Oppsett.txt");
inline const QString KolonnerFil = QStringLiteral("Kolonner.txt");

// Loads the six setting boxes from Oppsett.txt. Six or more fields set all six;
// exactly five set the first five and leave Text2; fewer change nothing.
void LesOppsett(Kontekst& k);
// The line the Exit button writes: the six boxes joined by "!".
QString oppsettLinje(const dialogs::Vindu& vindu);

// Fills the column chooser from Kolonner.txt and selects the first entry holding "CO2".
void LesKolonner(Kontekst& k);
// The place of that entry among the lines of Kolonner.txt; -1 when none holds "CO2".
qsizetype forsteCo2(const QStringList& linjer);
// Letter of header position 1..29: "A" .. "Z", "Æ", "Ø", "Å"; empty text past 29.
QString kolonneBokstav(int posisjon);
// A line of Kolonner.txt.
QString kolonneLinje(const QString& navn, const QString& bokstav);
// The lines of Kolonner.txt for a header's cleaned fields: field 3 always, each later field whose
// text is not empty; none when the header has fewer than three fields.
QStringList kolonneLinjer(const QStringList& overskrift);

}  // namespace files
