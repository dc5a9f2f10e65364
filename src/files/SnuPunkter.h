// SnuPunkter.txt: the turning points of the last cycle search on one line, in the general
// date-time text ("dd.MM.yyyy HH:mm:ss"), separated by "!". The cycle searches write it;
// the exports read it, cycle k from the k-th turning point.
#pragma once

#include "platform/Kontekst.h"

#include <optional>
#include <vector>

namespace files {

inline const QString SnuPunktFil = QStringLiteral("SnuPunkter.txt");

// The turning points of the last cycle search.
class SnuPunkter {
public:
    // The file in the program folder; empty when there is none (no search has been run).
    static std::optional<SnuPunkter> les(const Kontekst& k);
    // Turning point of cycle k (from 1); vb::Feil when there is none or it is no date-time.
    vb::Dato syklus(int k) const;

private:
    explicit SnuPunkter(QStringList tekster) : tekster_(std::move(tekster)) {}
    QStringList tekster_;
};

// Replaces the file with these turning points (an empty line for none).
void skrivSnuPunkter(const Kontekst& k, const std::vector<vb::Dato>& punkter);
// Removes the file of an earlier search, under whatever case of its name.
void slettSnuPunkter(const Kontekst& k);

}  // namespace files
