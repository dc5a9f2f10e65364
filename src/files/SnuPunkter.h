// SnuPunkter.txt: the turning points of the last cycle search on one line, in the general
// date-time text ("dd.MM.yyyy HH:mm:ss"), separated by "!". The cycle searches write it;
// the exports read it, cycle k from the k-th turning point. Beside it SokStart.txt keeps where that
// search started and its threshold ("dd.MM.yyyy HH:mm:ss!1.5E-10"), for the overview graph.
#pragma once

#include "platform/Kontekst.h"

#include <optional>
#include <vector>

namespace files {

inline const QString SnuPunktFil = QStringLiteral("SnuPunkter.txt");
inline const QString SokStartFil = QStringLiteral("SokStart.txt");

// Where a cycle search started and the threshold it took.
struct Sok {
    vb::Dato start;
    float terskel = 0;  // single precision, as the searches hold it
};

// The turning points of the last cycle search.
class SnuPunkter {
public:
    // The file in the program folder; empty when there is none (no search has been run).
    static std::optional<SnuPunkter> les(const Kontekst& k);
    // Turning point of cycle k (from 1); vb::Feil when there is none or it is no date-time.
    vb::Dato syklus(int k) const;
    // The number of texts on the line, read or not.
    int antall() const { return static_cast<int>(tekster_.size()); }

private:
    explicit SnuPunkter(QStringList tekster) : tekster_(std::move(tekster)) {}
    QStringList tekster_;
};

// Replaces the file with these turning points (an empty line for none), and SokStart.txt with the
// search that found them.
void skrivSnuPunkter(const Kontekst& k, const std::vector<vb::Dato>& punkter, const Sok& sok);
// The search of SokStart.txt; empty when the file is missing or its line is not start!threshold.
std::optional<Sok> lesSok(const Kontekst& k);
// Removes both files of an earlier search, under whatever case of their names; FilFeil, with both
// kept, when either is write-protected.
void slettSnuPunkter(const Kontekst& k);

}  // namespace files
