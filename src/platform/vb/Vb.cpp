#include "platform/vb/Vb.h"

#include <QDate>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace vb {

namespace {

const char* const Overflyt = "Overflyt";
const char* const FeilType = "Typen stemmer ikke";

// Days from 1970-01-01 of a civil date (proleptic Gregorian).
int64_t dagerFraEpoke(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void datoFraDager(int64_t z, int& y, int& m, int& d)
{
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = static_cast<int>(static_cast<int64_t>(yoe) + era * 400 + (m <= 2));
}

const int64_t DagNull = dagerFraEpoke(1899, 12, 30);
constexpr int64_t SekPerDag = 86400;

int64_t gulvDel(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

bool erSkuddaar(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int dagerIMnd(int y, int m)
{
    static const int dager[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && erSkuddaar(y) ? 29 : dager[m - 1];
}

// Writes x with the given significant digits the way the message texts show numbers.
QString tallTekst(double x, int siffer, bool enkelPresisjon, char desimaltegn)
{
    char buf[64];
    auto res = enkelPresisjon
                   ? std::to_chars(buf, buf + sizeof buf, static_cast<float>(x), std::chars_format::general, siffer)
                   : std::to_chars(buf, buf + sizeof buf, x, std::chars_format::general, siffer);
    QString ut = QString::fromLatin1(buf, res.ptr - buf);
    ut.replace(QLatin1Char('e'), QLatin1Char('E'));
    ut.replace(QLatin1Char('.'), QLatin1Char(desimaltegn));
    return ut;
}

int toSiffer(std::string_view s, size_t pos) { return (s[pos] - '0') * 10 + (s[pos + 1] - '0'); }

bool sifreOk(std::string_view s, std::initializer_list<size_t> plasser)
{
    for (size_t p : plasser)
        if (p >= s.size() || s[p] < '0' || s[p] > '9') return false;
    return true;
}

}  // namespace

double rundHalvTilPar(double x) { return std::nearbyint(x); }

int16_t heltall16(double x)
{
    const double r = rundHalvTilPar(x);
    if (!(r >= -32768.0 && r <= 32767.0)) throw Feil(Overflyt);
    return static_cast<int16_t>(r);
}

int32_t heltall32(double x)
{
    const double r = rundHalvTilPar(x);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw Feil(Overflyt);
    return static_cast<int32_t>(r);
}

int16_t pluss16(int16_t teller, int steg)
{
    const int sum = teller + steg;
    if (sum > 32767 || sum < -32768) throw Feil(Overflyt);
    return static_cast<int16_t>(sum);
}

float enkel(double x)
{
    if (std::isfinite(x) && std::fabs(x) > std::numeric_limits<float>::max()) throw Feil(Overflyt);
    return static_cast<float>(x);
}

double tall(const QString& tekst)
{
    QByteArray b = tekst.trimmed().toLatin1();
    b.replace(',', '.');
    const char* p = b.constData();
    const char* slutt = p + b.size();
    if (p != slutt && *p == '+') ++p;
    const char* tallStart = (p != slutt && *p == '-') ? p + 1 : p;
    if (tallStart == slutt || !(std::isdigit(static_cast<unsigned char>(*tallStart)) || *tallStart == '.'))
        throw Feil(FeilType);
    double x = 0;
    auto res = std::from_chars(p, slutt, x, std::chars_format::general);
    if (res.ec != std::errc() || res.ptr != slutt) throw Feil(FeilType);
    return x;
}

namespace {

// The order of magnitude of the unsigned number text at p: the place of its first non-zero
// digit relative to the decimal point, plus its exponent part ("1500" 4, "0.0012E-3" -5).
// Only its sign is used, to tell a number too large for a double from one too small.
long long storrelsesorden(const char* p, const char* slutt)
{
    long long foranPunkt = 0, nullerEtterPunkt = 0;
    bool punkt = false, sifferSett = false;
    for (; p != slutt && (*p == '.' || (*p >= '0' && *p <= '9')); ++p) {
        if (*p == '.') {
            punkt = true;
        } else if (sifferSett || *p != '0') {
            sifferSett = true;
            if (!punkt) ++foranPunkt;
        } else if (punkt) {
            ++nullerEtterPunkt;
        }
    }
    long long eksponent = 0;
    if (p != slutt && (*p == 'E' || *p == 'e') && ++p != slutt) {
        const bool minus = *p == '-';
        if (*p == '+' || *p == '-') ++p;
        for (; p != slutt && *p >= '0' && *p <= '9' && eksponent < 1'000'000'000; ++p)
            eksponent = eksponent * 10 + (*p - '0');
        if (minus) eksponent = -eksponent;
    }
    return (foranPunkt > 0 ? foranPunkt : -nullerEtterPunkt) + eksponent;
}

}  // namespace

double val(std::string_view felt, bool* forLite)
{
    // Blanks anywhere are skipped; a field without any is read where it stands.
    std::string utenBlanke;
    if (felt.find_first_of(" \t\n\r") != std::string_view::npos) {
        for (char c : felt)
            if (c != ' ' && c != '\t' && c != '\n' && c != '\r') utenBlanke += c;
        felt = utenBlanke;
    }
    const char* p = felt.data();
    const char* slutt = p + felt.size();
    bool negativ = false;
    if (p != slutt && (*p == '+' || *p == '-')) negativ = *p++ == '-';
    if (p == slutt) return 0;
    const bool siffer = *p >= '0' && *p <= '9';
    const bool punktSiffer = *p == '.' && p + 1 != slutt && p[1] >= '0' && p[1] <= '9';
    if (!siffer && !punktSiffer) return 0;
    double x = 0;
    auto res = std::from_chars(p, slutt, x, std::chars_format::general);
    if (res.ec == std::errc::result_out_of_range) {
        if (storrelsesorden(p, slutt) > 0) throw Feil(Overflyt);
        if (forLite) *forLite = true;
        return 0;
    }
    if (res.ec != std::errc()) return 0;
    return negativ ? -x : x;
}

double valLagret(std::string_view felt, bool* forLite)
{
    const double x = val(felt, forLite);
    // A field of at most 15 digits is read exactly as its 15-digit text would be.
    if (std::count_if(felt.begin(), felt.end(), [](char c) { return c >= '0' && c <= '9'; }) <= 15) return x;
    char buf[32];
    const auto skrevet = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::general, 15);
    double y = 0;
    // Rounding the largest doubles to 15 digits passes the range: they keep their own value.
    if (std::from_chars(buf, skrevet.ptr, y, std::chars_format::general).ec != std::errc()) return x;
    return y;
}

QString antallTekst(long long antall)
{
    static const char Monster[] = "# ### ###";
    const bool negativ = antall < 0;
    std::string siffer = std::to_string(negativ ? -antall : antall);
    if (antall == 0) siffer.clear();
    std::string ut;
    int i = static_cast<int>(siffer.size()) - 1;
    for (int p = static_cast<int>(sizeof Monster) - 2; p >= 0; --p) {
        if (Monster[p] == '#') {
            if (i >= 0) ut.insert(ut.begin(), siffer[static_cast<size_t>(i--)]);
        } else {
            ut.insert(ut.begin(), Monster[p]);
        }
    }
    if (i >= 0) ut.insert(0, siffer.substr(0, static_cast<size_t>(i + 1)));
    if (negativ) ut.insert(ut.begin(), '-');
    return QString::fromLatin1(ut.data(), static_cast<qsizetype>(ut.size()));
}

QString tekst(float x) { return tallTekst(x, 7, true, ','); }
QString tekst(double x) { return tallTekst(x, 15, false, ','); }
QString sqlTekst(float x) { return tallTekst(x, 7, true, '.'); }
QString sqlTekst(double x) { return tallTekst(x, 15, false, '.'); }

std::optional<Dato> Dato::gyldig(int aar, int mnd, int dag, int time, int min, int sek)
{
    if (aar < 100 || aar > 9999 || mnd < 1 || mnd > 12 || dag < 1 || dag > dagerIMnd(aar, mnd) || time < 0 ||
        time > 23 || min < 0 || min > 59 || sek < 0 || sek > 59)
        return std::nullopt;
    const int64_t dager = dagerFraEpoke(aar, static_cast<unsigned>(mnd), static_cast<unsigned>(dag)) - DagNull;
    return Dato(dager * SekPerDag + time * 3600 + min * 60 + sek);
}

Dato Dato::fra(int aar, int mnd, int dag, int time, int min, int sek)
{
    if (auto d = gyldig(aar, mnd, dag, time, min, sek)) return *d;
    throw Feil(FeilType);
}

void Dato::deler(int& aar, int& mnd, int& dag, int& time, int& min, int& sek) const
{
    const int64_t dager = gulvDel(sek_, SekPerDag);
    const int64_t iDag = sek_ - dager * SekPerDag;
    datoFraDager(dager + DagNull, aar, mnd, dag);
    time = static_cast<int>(iDag / 3600);
    min = static_cast<int>(iDag / 60 % 60);
    sek = static_cast<int>(iDag % 60);
}

QString Dato::tidsnokkel() const
{
    int y, mo, d, h, mi, s;
    deler(y, mo, d, h, mi, s);
    return QString::asprintf("%04d%02d%02d%02d%02d%02d", y, mo, d, h, mi, s);
}

QString Dato::iso() const
{
    int y, mo, d, h, mi, s;
    deler(y, mo, d, h, mi, s);
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", y, mo, d, h, mi, s);
}

std::optional<Dato> Dato::fraFastePlasser(std::string_view t)
{
    if (t.size() < 19 || !sifreOk(t, {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18})) return std::nullopt;
    return gyldig(toSiffer(t, 0) * 100 + toSiffer(t, 2), toSiffer(t, 5), toSiffer(t, 8), toSiffer(t, 11),
                  toSiffer(t, 14), toSiffer(t, 17));
}

QString Dato::fullTekst() const
{
    int y, mo, d, h, mi, s;
    deler(y, mo, d, h, mi, s);
    return QString::asprintf("%02d.%02d.%04d %02d:%02d:%02d", d, mo, y, h, mi, s);
}

QString Dato::generellTekst() const
{
    const QString full = fullTekst();
    const int64_t dag = gulvDel(sek_, SekPerDag);
    if (dag == 0) return full.mid(11);                    // day zero: the time alone
    if (dag * SekPerDag == sek_) return full.left(10);  // midnight: the date alone
    return full;
}

Dato Dato::fraGenerellTekst(const QString& tekst)
{
    const std::string t = tekst.trimmed().toStdString();
    const std::string_view v(t);
    auto lesTid = [&](size_t p, int& h, int& mi, int& s) {
        if (!sifreOk(v, {p, p + 1, p + 3, p + 4, p + 6, p + 7}) || v[p + 2] != ':' || v[p + 5] != ':') return false;
        h = toSiffer(v, p), mi = toSiffer(v, p + 3), s = toSiffer(v, p + 6);
        return true;
    };
    int h = 0, mi = 0, s = 0;
    if (v.size() == 8) {
        if (lesTid(0, h, mi, s) && h < 24 && mi < 60 && s < 60) return Dato(h * 3600 + mi * 60 + s);
        throw Feil(FeilType);
    }
    if ((v.size() != 10 && v.size() != 19) || !sifreOk(v, {0, 1, 3, 4, 6, 7, 8, 9}) || v[2] != '.' || v[5] != '.')
        throw Feil(FeilType);
    if (v.size() == 19 && (v[10] != ' ' || !lesTid(11, h, mi, s))) throw Feil(FeilType);
    return fra(toSiffer(v, 6) * 100 + toSiffer(v, 8), toSiffer(v, 3), toSiffer(v, 0), h, mi, s);
}

Dato Dato::leggTilMinutter(double minutter) const
{
    const double hele = rundHalvTilPar(minutter);
    if (!(std::fabs(hele) < 5.0e9)) throw Feil(Overflyt);
    return Dato(sek_ + static_cast<int64_t>(hele) * 60);
}

int64_t minutterMellom(const Dato& a, const Dato& b) { return gulvDel(b.sekunder(), 60) - gulvDel(a.sekunder(), 60); }

int64_t sekunderMellom(const Dato& a, const Dato& b) { return b.sekunder() - a.sekunder(); }

QString dagensDatoTekst() { return QDate::currentDate().toString(QStringLiteral("ddMMyyyy")); }

}  // namespace vb
