// The line format of a raw-data file, as the import reads it. Double quotes are removed and
// every "/" becomes "." before a line is split at each ",". The first non-empty line is the
// header; a data line of 4 to 13 fields gives one row: the date-time from characters 1 to 19,
// the texts of fields 3 on as values of C to L, the last field left out.
#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store {

// A data line as the store takes it.
struct Rad {
    static constexpr int Verdier = 10;  // value columns C to L

    char datoTid[19];    // "YYYY-MM-DD HH:MM:SS"
    char datoTekst[45];  // DatoTid_Tekst: up to 22 Latin-1 characters, as UTF-8
    int datoTekstLengde = 0;
    int antall = 0;  // values in C and on; the rest stay empty
    double verdier[Verdier];

    std::string_view tid() const { return {datoTid, sizeof datoTid}; }
    std::string_view tekst() const { return {datoTekst, static_cast<size_t>(datoTekstLengde)}; }
};

// A data line the store cannot take, and the characters of the line it concerns.
struct Hopp {
    enum Grunn { Apostrof, UgyldigDatoTid, ForStortTall };
    Grunn grunn;
    std::string_view tekst;  // valid until the next line is read
};

// How the notice of skipped lines names the reason, e.g. "tallet «1E999» er for stort".
QString hoppTekst(const Hopp& hopp);

// One line at a time. The buffers are kept from line to line, so reading a line allocates
// nothing once they have grown to the longest line.
class Radatalinje {
public:
    // Cleans the line and splits it; the fields stay valid until the next line is read.
    void les(std::string_view raa);
    const std::vector<std::string_view>& felt() const { return felt_; }

    // Whether the line has the field count of a data line; other lines are passed over quietly.
    bool erDatalinje() const { return felt_.size() >= 4 && felt_.size() <= 13; }
    // The row of a data line, or why it cannot be stored (the row is then incomplete).
    std::optional<Hopp> tolk(Rad& rad);
    // The first value of the row just read that was too small for a double and is stored as 0;
    // empty when there was none.
    std::string_view forLite() const { return forLite_; }

private:
    std::string linje_;
    std::vector<std::string_view> felt_;
    std::string_view forLite_;
};

}  // namespace store
