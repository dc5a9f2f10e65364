// Worksheet formulas: reading the formula texts that templates and the program
// write, computing their values, and the A1 cell addresses they use.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace xlsx::formel {

// A computed value. Texts are UTF-8; an error keeps its code ("#VALUE!", "#DIV/0!", "#N/A").
struct Resultat {
    enum Art : unsigned char { Tom, Tall, Tekst, Logisk, Feil };
    Art art = Tom;
    double tall = 0;    // number, or 1/0 for a logical value
    std::string tekst;  // text, or the error code
    // An error that a spreadsheet application may judge otherwise (unknown function,
    // reference to another sheet, circular reference): never stored as a cached value.
    bool usikker = false;

    static Resultat nummer(double x) { return {Tall, x, {}, false}; }
    static Resultat streng(std::string s) { return {Tekst, 0, std::move(s), false}; }
    static Resultat feil(const char* kode, bool usikker = false) { return {Feil, 0, kode, usikker}; }
};

// Where a formula finds the cells it refers to. Row and column from 1.
class Kilde {
public:
    virtual ~Kilde() = default;
    // A cell's value; a formula cell gives its computed value.
    virtual Resultat celle(int rad, int kolonne) = 0;
    // Every non-empty cell inside the rectangle, in row and column order.
    virtual void omrade(int rad1, int kol1, int rad2, int kol2, const std::function<void(const Resultat&)>& hver) = 0;
};

struct Uttrykk;  // the parsed form of one formula

// The value of a parsed formula in cell (rad, kolonne). The cells it refers to are asked of
// kilde, which computes a formula cell there on its own (see referanser).
Resultat beregn(const Uttrykk& uttrykk, Kilde& kilde, int rad, int kolonne);
// The rectangles (rows and columns from 1) of the cells a parsed formula in cell (rad, kolonne)
// refers to, references outside the sheet left out, so that a sheet can compute those cells first.
void referanser(const Uttrykk& uttrykk, int rad, int kolonne,
                const std::function<void(int rad1, int kol1, int rad2, int kol2)>& hver);

// Parsed formulas by their position-independent form: a column of template formulas
// that differ only by their row is parsed once. The same text in the same cell is found
// without reading it again, so a template opened once per exported cycle is read once.
class Tolkelager {
public:
    // The parsed form of a formula text standing in cell (rad, kolonne); a leading "=" and
    // blanks around tokens are allowed, names are case-insensitive. XlsxFeil when parentheses
    // and function calls nest more than 100 levels deep; any other text it cannot read
    // evaluates to #NAME?. References without "$" are kept relative to the cell,
    // so one parsed form serves every cell whose formula differs only by that position.
    std::shared_ptr<const Uttrykk> hent(std::string_view formel, int rad, int kolonne);

private:
    std::unordered_map<std::string, std::shared_ptr<const Uttrykk>> lager_;
    std::unordered_map<std::string, std::shared_ptr<const Uttrykk>> iCelle_;
    std::string nokkel_;
};

// The text a workbook stores for a formula: no "=", function names in capitals,
// blanks only where they separate two operands.
std::string normaliser(std::string_view formel);
// The formula as it reads in a cell moved by (drad, dkol): relative references shift,
// $-fixed parts stay.
std::string flytt(std::string_view formel, int drad, int dkol);

// "B12" / "$B$12" -> row 12, column 2; false when the text is no single cell address.
bool lesAdresse(std::string_view tekst, int& rad, int& kolonne);
// Appends the A1 address of a cell, "$" before the fixed parts: (12, 2) -> "B12", (12, 27) -> "AA12",
// fixed row -> "B$12".
void leggTilAdresse(std::string& ut, int rad, int kolonne, bool fastRad = false, bool fastKolonne = false);
// Appends a whole number ("12", "-3").
void leggTilHeltall(std::string& ut, long x);
// Appends the shortest text that reads back as the same double ("0.1", "1e-10", "230.5").
void leggTilTall(std::string& ut, double x);

}  // namespace xlsx::formel
