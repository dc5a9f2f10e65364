// Cycle finding: the rows after the search start whose value lies below a threshold are split
// into groups at time jumps of more than 10 seconds, and each closed group gives one turning
// point, written to SnuPunkter.txt. The helpers here are shared with the automatic search.
#pragma once

#include "platform/Kontekst.h"

namespace analysis {

inline const QString IngenData = QStringLiteral("Ingen data importert");

// The questions of the cycle searches.
inline const dialogs::Sporsmal SporStart{
    dialogs::Sporsmal::Art::Inndata, QStringLiteral("Start søking etter X minutter"), QStringLiteral("Start søking")};
inline const dialogs::Sporsmal SporTerskel{
    dialogs::Sporsmal::Art::Inndata,
    QStringLiteral("Den minste verdien er %1. Oppgi søkeverdien som skal brukes under:"),
    QStringLiteral("Minste verdi")};
inline const dialogs::Sporsmal SporForslag{
    dialogs::Sporsmal::Art::JaNei,
    QStringLiteral("Det ble funnet %1 sykluser. Den første syklusen med en verdi %2 enn %3 er ved tidspunktet %4 "
                   "(%5 minutter etter oppstart).\nIntervallet mellom den første og andre syklusen er ca. %6 minutter. "
                   "Vil du sette inn disse verdiene som valg i oppsettet?")};

// Button "4.  Finn antall sykluser".
Utfall Command7_Click(Kontekst& k);

// True when two consecutive hit rows lie in different groups (more than 10 s apart either way).
bool erGap(const vb::Dato& forrige, const vb::Dato& neste);

// Asks "Det ble funnet N sykluser. …" and on Yes writes N into Text6, M − 15 into Text3 and
// I into Text5; true on Yes.
bool foreslaVerdier(Kontekst& k, int N, const QString& W, const QString& terskel, const vb::Dato& F, int64_t M,
                    int64_t I);

}  // namespace analysis
