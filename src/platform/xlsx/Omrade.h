// Cell ranges as charts and defined names refer to them: "Data!$B$2:$B$2000",
// "'Mitt ark'!$C$1", or a union of such blocks in brackets.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace xlsx {

// One block of cells on a named sheet. arkTekst is the sheet part as written, quotes kept.
struct Omrade {
    std::string ark, arkTekst;
    int rad1 = 0, kol1 = 0, rad2 = 0, kol2 = 0;
};

// The blocks of a reference; empty when any part of it is not a block on a named sheet
// (a defined name, a literal, a formula).
std::vector<Omrade> lesOmrader(std::string_view referanse);

// The block written back as an absolute reference: "Data!$B$2:$B$3600".
std::string skrivOmrade(const Omrade& omrade);

// Stretches a single block of more than one row on sheet ark down to sisteRad when it ends
// above it; returns the reference to write back, or "" when it stays as it is. dekket gets the
// last row of ark that the reference covers when it cannot be stretched (a union of blocks),
// and is left alone otherwise.
std::string strekkOmrade(std::string_view referanse, const std::string& ark, int sisteRad, int& dekket);

}  // namespace xlsx
