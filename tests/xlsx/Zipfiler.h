// Test helpers: writing a package from XML texts and reading a saved one entry by entry.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace test {

struct Oppforing {
    std::string innhold;
    int metode = 0;
    unsigned long long komprimert = 0;
    unsigned crc = 0;
};

// Writes the entries in the given order; names in `lagret` are stored without compression.
void skrivZip(const std::string& sti, const std::vector<std::pair<std::string, std::string>>& deler,
              const std::set<std::string>& lagret = {});
std::map<std::string, Oppforing> lesZip(const std::string& sti);
std::vector<std::string> navnIZip(const std::string& sti);

// The workbook a spreadsheet application would write: shared strings (one of them rich
// text), styles, a calculation chain, a shared formula, a VBA part, and on sheet 2 a
// picture followed by a line chart with a rich title, a scatter chart without a title
// and a bar chart whose title is a cell reference.
std::vector<std::pair<std::string, std::string>> handlagetBok();

} // namespace test
