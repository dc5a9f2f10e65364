// The value rules of the program's original platform, kept in one place:
// 16-bit counters with overflow, rounding half to even, Val of a field,
// single precision, the "# ### ###" count pattern, the number texts of messages
// and statements, and date-times with their minute arithmetic and texts.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace vb {

// A run-time error inside a command. Each command's own error path catches it.
struct Feil : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Rounds to the nearest whole number, halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
double rundHalvTilPar(double x);

// Whole number of a value as a signed 16-bit integer (rounded half to even); Feil past the range.
int16_t heltall16(double x);
// The same for a signed 32-bit integer.
int32_t heltall32(double x);
// Adds to a signed 16-bit counter; passing 32767 (or -32768) is Feil("Overflow").
int16_t pluss16(int16_t teller, int steg = 1);

// Single precision of a value; Feil when it does not fit.
float enkel(double x);

// The number a user typed: "," or "." as decimal separator, optional exponent,
// blanks around it allowed. Empty text or anything else raises Feil("Type mismatch").
double tall(const QString& tekst);
inline float enkel(const QString& tekst) { return enkel(tall(tekst)); }
inline int16_t heltall16(const QString& tekst) { return heltall16(tall(tekst)); }

// Val of a field, read whole: blanks are skipped, then the longest decimal number at the start
// is read ("." as decimal point, optional E and signed exponent); no number gives 0.
// Feil("Overflyt") for a number too large for a double; one too small gives 0 and sets *forLite.
double val(std::string_view felt, bool* forLite = nullptr);
// Val of a field as an insert statement stores it: the number written with at most
// 15 significant digits and read back.
double valLagret(std::string_view felt, bool* forLite = nullptr);

// A count in the pattern "# ### ###": digit places, groups of three, zero as two blanks.
QString antallTekst(long long antall);

// The message form of a number: up to 7 (single) or 15 (double) significant digits,
// decimal comma, exponent form "1,5E-10" for very small or large values.
QString tekst(float x);
QString tekst(double x);
// The statement form of a number: the message form with "." as decimal point.
QString sqlTekst(float x);
QString sqlTekst(double x);

// A date-time to the whole second, counted from day zero, 30.12.1899 00:00:00.
class Dato {
public:
    Dato() = default;
    // Feil when the parts do not form a valid date and time of day.
    static Dato fra(int aar, int mnd, int dag, int time = 0, int min = 0, int sek = 0);
    static std::optional<Dato> gyldig(int aar, int mnd, int dag, int time, int min, int sek);

    int64_t sekunder() const { return sek_; }
    void deler(int& aar, int& mnd, int& dag, int& time, int& min, int& sek) const;

    // "YYYYMMDDHHNNSS", the key every time condition of the store compares.
    QString tidsnokkel() const;
    // "YYYY-MM-DD HH:MM:SS", how the store keeps a date-time.
    QString iso() const;
    // Reads the store's date-time text, in the form iso writes.
    static std::optional<Dato> fraIso(std::string_view tekst) { return fraFastePlasser(tekst); }
    // The date-time whose digits stand at the places of "YYYY-MM-DD HH:MM:SS" from the start
    // of the text; the characters between the digit pairs are not looked at. nullopt for a
    // shorter text, a non-digit in a digit's place or no valid date and time of day.
    static std::optional<Dato> fraFastePlasser(std::string_view tekst);
    // "dd.MM.yyyy HH:mm:ss", always with both parts.
    QString fullTekst() const;
    // The general date-time text: fullTekst, but the date alone at midnight and the time alone
    // on day zero. Also the format of SnuPunkter.txt.
    QString generellTekst() const;
    // Reads what generellTekst writes; Feil("Type mismatch") for anything else.
    static Dato fraGenerellTekst(const QString& tekst);

    // Adds minutes; a fraction is rounded to whole minutes (half to even).
    Dato leggTilMinutter(double minutter) const;

    auto operator<=>(const Dato&) const = default;

private:
    explicit Dato(int64_t sek) : sek_(sek) {}
    int64_t sek_ = 0;
};

// Minutes from a to b counted as minute boundaries crossed (both cut to the minute).
int64_t minutterMellom(const Dato& a, const Dato& b);
// Whole seconds from a to b.
int64_t sekunderMellom(const Dato& a, const Dato& b);

// Today's date as "ddmmyyyy", the start of the proposed file-name prefix.
QString dagensDatoTekst();

}  // namespace vb
