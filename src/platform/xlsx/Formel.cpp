#include "platform/xlsx/Formel.h"

#include "platform/xlsx/Arbeidsbok.h"

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace xlsx::formel {

namespace {

constexpr int maksRad = 1048576;
constexpr int maksKolonne = 16384;
// Parentheses and function calls nested deeper than this are refused: the parser and the
// evaluator go one call deeper for each level.
constexpr int maksNiva = 100;

// ---------------------------------------------------------------- tokens

struct Token {
    enum Art { Tall, Streng, Ref, Navn, Arknavn, Op, VParentes, HParentes, Komma, Kolon, Ukjent, Slutt };
    Art art = Slutt;
    std::string_view tekst;
    bool blankForan = false;
    // Ref: position and which parts carry "$".
    int rad = 0, kol = 0;
    bool fastRad = false, fastKol = false;
};

bool erBokstav(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool erSiffer(char c) { return c >= '0' && c <= '9'; }
bool erNavnTegn(char c) { return erBokstav(c) || erSiffer(c) || c == '_' || c == '.' || c == '$'; }
bool erBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// "$AB$12" in full, or false.
bool lesRef(std::string_view t, Token& tok)
{
    size_t i = 0;
    tok.fastKol = i < t.size() && t[i] == '$';
    if (tok.fastKol) ++i;
    int kol = 0;
    size_t b = i;
    while (i < t.size() && erBokstav(t[i]) && i - b < 3) kol = kol * 26 + ((t[i++] & 0x5F) - 'A' + 1);
    if (i == b || kol > maksKolonne) return false;
    tok.fastRad = i < t.size() && t[i] == '$';
    if (tok.fastRad) ++i;
    if (i >= t.size() || !erSiffer(t[i]) || t[i] == '0') return false;
    long rad = 0;
    for (; i < t.size(); ++i) {
        if (!erSiffer(t[i])) return false;
        rad = rad * 10 + (t[i] - '0');
        if (rad > maksRad) return false;
    }
    tok.rad = static_cast<int>(rad);
    tok.kol = kol;
    return true;
}

// Reads the tokens of a formula text one by one, the closing Slutt token included.
template <class Hver>
void skann(std::string_view f, Hver&& hver)
{
    size_t i = 0;
    while (i < f.size() && erBlank(f[i])) ++i;
    if (i < f.size() && f[i] == '=') ++i;
    bool blank = false;
    while (true) {
        while (i < f.size() && erBlank(f[i])) {
            ++i;
            blank = true;
        }
        Token tok;
        tok.blankForan = blank;
        blank = false;
        if (i >= f.size()) {
            hver(tok);
            return;
        }
        size_t start = i;
        char c = f[i];
        if (erSiffer(c) || (c == '.' && i + 1 < f.size() && erSiffer(f[i + 1]))) {
            while (i < f.size() && (erSiffer(f[i]) || f[i] == '.')) ++i;
            if (i < f.size() && (f[i] == 'e' || f[i] == 'E')) {
                size_t j = i + 1;
                if (j < f.size() && (f[j] == '+' || f[j] == '-')) ++j;
                if (j < f.size() && erSiffer(f[j])) {
                    i = j;
                    while (i < f.size() && erSiffer(f[i])) ++i;
                }
            }
            tok.art = Token::Tall;
        } else if (c == '"') {
            ++i;
            while (i < f.size()) {
                if (f[i] == '"') {
                    if (i + 1 < f.size() && f[i + 1] == '"') {
                        i += 2;
                        continue;
                    }
                    break;
                }
                ++i;
            }
            tok.art = i < f.size() ? Token::Streng : Token::Ukjent;
            if (i < f.size()) ++i;
        } else if (c == '\'') {
            ++i;
            while (i < f.size() && f[i] != '\'') ++i;
            if (i < f.size()) ++i;
            tok.art = Token::Arknavn;
        } else if (erBokstav(c) || c == '_' || c == '$') {
            while (i < f.size() && erNavnTegn(f[i])) ++i;
            size_t j = i;
            while (j < f.size() && erBlank(f[j])) ++j;
            bool funksjon = j < f.size() && f[j] == '(';
            tok.art = !funksjon && lesRef(f.substr(start, i - start), tok) ? Token::Ref : Token::Navn;
        } else if (c == '<' && i + 1 < f.size() && (f[i + 1] == '=' || f[i + 1] == '>')) {
            i += 2;
            tok.art = Token::Op;
        } else if (c == '>' && i + 1 < f.size() && f[i + 1] == '=') {
            i += 2;
            tok.art = Token::Op;
        } else {
            ++i;
            switch (c) {
            case '+':
            case '-':
            case '*':
            case '/':
            case '^':
            case '&':
            case '=':
            case '<':
            case '>':
            case '%': tok.art = Token::Op; break;
            case '(': tok.art = Token::VParentes; break;
            case ')': tok.art = Token::HParentes; break;
            case ',': tok.art = Token::Komma; break;
            case ':': tok.art = Token::Kolon; break;
            default: tok.art = Token::Ukjent; break;
            }
        }
        tok.tekst = f.substr(start, i - start);
        hver(tok);
    }
}

std::vector<Token> lesTokens(std::string_view f)
{
    std::vector<Token> ut;
    skann(f, [&](const Token& t) { ut.push_back(t); });
    return ut;
}

bool erOperand(const Token& t)
{
    return t.art == Token::Tall || t.art == Token::Streng || t.art == Token::Ref || t.art == Token::HParentes ||
           t.art == Token::Navn || t.art == Token::Arknavn;
}

// Writes the tokens back, references moved by (drad, dkol).
std::string skrivTokens(const std::vector<Token>& tokens, int drad, int dkol)
{
    std::string ut;
    const Token* forrige = nullptr;
    for (size_t n = 0; n < tokens.size() && tokens[n].art != Token::Slutt; ++n) {
        const Token& t = tokens[n];
        if (t.blankForan && forrige && erOperand(*forrige) && erOperand(t) && forrige->art != Token::HParentes)
            ut += ' ';
        if (t.art == Token::Ref) {
            int rad = t.fastRad ? t.rad : t.rad + drad;
            int kol = t.fastKol ? t.kol : t.kol + dkol;
            if (rad < 1 || rad > maksRad || kol < 1 || kol > maksKolonne)
                ut += "#REF!";
            else
                leggTilAdresse(ut, rad, kol, t.fastRad, t.fastKol);
        } else if (t.art == Token::Navn) {
            for (char c : t.tekst) ut += (c >= 'a' && c <= 'z') ? char(c - 32) : c;
        } else {
            ut += t.tekst;
        }
        forrige = &t;
    }
    return ut;
}

// ---------------------------------------------------------------- syntax tree

enum class Funk { Sum, Abs, Min, Maks, Hvis, Snitt, Mid, Verdi, Dato, Tid, Na, Ukjent };

Funk finnFunksjon(std::string_view navn)
{
    static const std::array<std::pair<const char*, Funk>, 11> tabell{{
        {"SUM", Funk::Sum},
        {"ABS", Funk::Abs},
        {"MIN", Funk::Min},
        {"MAX", Funk::Maks},
        {"IF", Funk::Hvis},
        {"AVERAGE", Funk::Snitt},
        {"MID", Funk::Mid},
        {"VALUE", Funk::Verdi},
        {"DATE", Funk::Dato},
        {"TIME", Funk::Tid},
        {"NA", Funk::Na},
    }};
    for (auto& [n, f] : tabell) {
        std::string_view s(n);
        if (s.size() != navn.size()) continue;
        bool lik = true;
        for (size_t i = 0; i < s.size() && lik; ++i) lik = (navn[i] & 0x5F) == s[i];
        if (lik) return f;
    }
    return Funk::Ukjent;
}

struct Node {
    enum Art { Tall, Tekst, Logisk, Ref, Omrade, Neg, Prosent, Bin, Kall, Feil };
    Art art = Feil;
    double tall = 0;
    std::string tekst;  // text constant, operator, or error code
    // Corners of a reference; a part without "$" is stored relative to the formula's cell.
    int r1 = 0, k1 = 0, r2 = 0, k2 = 0;
    bool fr1 = true, fk1 = true, fr2 = true, fk2 = true;
    int a = -1, b = -1;
    Funk funk = Funk::Ukjent;
    std::vector<int> args;
};

}  // namespace

struct Uttrykk {
    std::vector<Node> noder;
    int rot = -1;
};

namespace {

class Tolker {
public:
    Tolker(std::vector<Token> t, Uttrykk& u, int rad, int kol) : tok_(std::move(t)), u_(u), rad_(rad), kol_(kol) {}

    int helhet()
    {
        int n = sammenligning();
        if (!ok_ || tok_[pos_].art != Token::Slutt) return feilNode();
        return n;
    }
    // Whether the formula nests deeper than maksNiva (it then reads as #NAME?).
    bool forDyp() const { return forDyp_; }

private:
    const Token& se() const { return tok_[pos_]; }
    bool erOp(const char* op) const { return se().art == Token::Op && se().tekst == op; }
    int ny(Node n)
    {
        u_.noder.push_back(std::move(n));
        return static_cast<int>(u_.noder.size()) - 1;
    }
    int feilNode()
    {
        ok_ = false;
        Node n;
        n.art = Node::Feil;
        n.tekst = "#NAME?";
        return ny(std::move(n));
    }
    int binaer(std::string op, int a, int b)
    {
        Node n;
        n.art = Node::Bin;
        n.tekst = std::move(op);
        n.a = a;
        n.b = b;
        return ny(std::move(n));
    }

    // One level of left-associative binary operators: operands from the next level down.
    int niva(int (Tolker::*neste)(), std::initializer_list<std::string_view> operatorer)
    {
        int a = (this->*neste)();
        while (ok_ && se().art == Token::Op &&
               std::find(operatorer.begin(), operatorer.end(), se().tekst) != operatorer.end()) {
            std::string op(tok_[pos_++].tekst);
            a = binaer(op, a, (this->*neste)());
        }
        return a;
    }
    int sammenligning() { return niva(&Tolker::sammenkjeding, {"=", "<>", "<", ">", "<=", ">="}); }
    int sammenkjeding() { return niva(&Tolker::sum, {"&"}); }
    int sum() { return niva(&Tolker::produkt, {"+", "-"}); }
    int produkt() { return niva(&Tolker::potens, {"*", "/"}); }
    int potens() { return niva(&Tolker::fortegn, {"^"}); }
    // Signs and percent signs, each run of them one node that counts them ("--x" is x as a
    // number, "x%%" is x / 10000), so a long run nests nothing. A plus alone changes nothing.
    int fortegn()
    {
        int minus = 0;
        for (; erOp("-") || erOp("+"); ++pos_) minus += se().tekst == "-";
        int a = primaer();
        int prosent = 0;
        for (; ok_ && erOp("%"); ++pos_) ++prosent;
        if (prosent > 0) a = gjentatt(Node::Prosent, a, prosent);
        if (minus > 0) a = gjentatt(Node::Neg, a, minus);
        return a;
    }
    int gjentatt(Node::Art art, int a, int antall)
    {
        Node n;
        n.art = art;
        n.a = a;
        n.tall = antall;
        return ny(std::move(n));
    }
    // One level deeper into parentheses or a call; false (and the formula refused) past maksNiva.
    bool inn()
    {
        if (++niva_ <= maksNiva) return true;
        forDyp_ = true;
        return false;
    }
    int primaer()
    {
        if (!ok_ || se().art == Token::Slutt) return feilNode();
        const Token t = tok_[pos_++];
        Node n;
        switch (t.art) {
        case Token::Tall: {
            auto r = std::from_chars(t.tekst.data(), t.tekst.data() + t.tekst.size(), n.tall);
            if (r.ec != std::errc() || r.ptr != t.tekst.data() + t.tekst.size()) return feilNode();
            n.art = Node::Tall;
            return ny(std::move(n));
        }
        case Token::Streng:
            n.art = Node::Tekst;
            for (size_t i = 1; i + 1 < t.tekst.size(); ++i) {
                n.tekst += t.tekst[i];
                if (t.tekst[i] == '"') ++i;
            }
            return ny(std::move(n));
        case Token::Ref:
            n.art = Node::Ref;
            hjorne(t, n.r1, n.k1, n.fr1, n.fk1);
            if (se().art == Token::Kolon) {
                ++pos_;
                if (se().art != Token::Ref) return feilNode();
                n.art = Node::Omrade;
                hjorne(tok_[pos_++], n.r2, n.k2, n.fr2, n.fk2);
            }
            return ny(std::move(n));
        case Token::Navn: {
            if (se().art == Token::VParentes) return kall(t);
            std::string navn;
            for (char c : t.tekst) navn += char(c & 0x5F);
            if (navn == "TRUE" || navn == "FALSE") {
                n.art = Node::Logisk;
                n.tall = navn == "TRUE";
                return ny(std::move(n));
            }
            return usikker();
        }
        case Token::VParentes: {
            if (!inn()) return feilNode();
            int a = sammenligning();
            if (!ok_ || se().art != Token::HParentes) return feilNode();
            ++pos_;
            --niva_;
            return a;
        }
        case Token::Arknavn: return usikker();
        default: return feilNode();
        }
    }
    // Names and sheet references that this evaluator does not resolve: a spreadsheet
    // application may know them, so the result is an uncertain error.
    int usikker()
    {
        while (se().art != Token::Slutt) ++pos_;
        Node n;
        n.art = Node::Feil;
        n.tekst = "#NAME?";
        return ny(std::move(n));
    }
    int kall(const Token& navn)
    {
        ++pos_;  // (
        if (!inn()) return feilNode();
        Node n;
        n.art = Node::Kall;
        n.funk = finnFunksjon(navn.tekst);
        if (se().art != Token::HParentes) {
            while (true) {
                n.args.push_back(sammenligning());
                if (!ok_) return feilNode();
                if (se().art == Token::Komma) {
                    ++pos_;
                    continue;
                }
                break;
            }
        }
        if (se().art != Token::HParentes) return feilNode();
        ++pos_;
        --niva_;
        return ny(std::move(n));
    }

    void hjorne(const Token& t, int& r, int& k, bool& fr, bool& fk) const
    {
        fr = t.fastRad;
        fk = t.fastKol;
        r = fr ? t.rad : t.rad - rad_;
        k = fk ? t.kol : t.kol - kol_;
    }

    std::vector<Token> tok_;
    size_t pos_ = 0;
    bool ok_ = true;
    int niva_ = 0;
    bool forDyp_ = false;
    Uttrykk& u_;
    int rad_, kol_;
};

// ---------------------------------------------------------------- evaluation

const char* const verdiFeil = "#VALUE!";

bool tilTall(const Resultat& r, double& x, Resultat& feil)
{
    switch (r.art) {
    case Resultat::Tom: x = 0; return true;
    case Resultat::Tall:
    case Resultat::Logisk: x = r.tall; return true;
    case Resultat::Feil: feil = r; return false;
    case Resultat::Tekst: {
        size_t b = 0, e = r.tekst.size();
        while (b < e && erBlank(r.tekst[b])) ++b;
        while (e > b && erBlank(r.tekst[e - 1])) --e;
        if (b < e && r.tekst[b] == '+') ++b;
        auto res = std::from_chars(r.tekst.data() + b, r.tekst.data() + e, x);
        if (b < e && res.ec == std::errc() && res.ptr == r.tekst.data() + e) return true;
        feil = Resultat::feil(verdiFeil);
        return false;
    }
    }
    return false;
}

std::string tilTekst(const Resultat& r)
{
    switch (r.art) {
    case Resultat::Tall: {
        std::string s;
        leggTilTall(s, r.tall);
        return s;
    }
    case Resultat::Logisk: return r.tall != 0 ? "TRUE" : "FALSE";
    case Resultat::Tekst: return r.tekst;
    default: return {};
    }
}

Resultat tallResultat(double x)
{
    if (!std::isfinite(x)) return Resultat::feil("#NUM!");
    return Resultat::nummer(x);
}

int sammenlign(const Resultat& a0, const Resultat& b0)
{
    auto rang = [](Resultat::Art art) { return art == Resultat::Tall ? 0 : art == Resultat::Tekst ? 1 : 2; };
    Resultat a = a0, b = b0;
    auto fyllTom = [](Resultat& tom, const Resultat& annen) {
        if (tom.art != Resultat::Tom) return;
        tom.art = annen.art == Resultat::Tom ? Resultat::Tall : annen.art;
        tom.tall = 0;
    };
    fyllTom(a, b0);
    fyllTom(b, a0);
    if (rang(a.art) != rang(b.art)) return rang(a.art) < rang(b.art) ? -1 : 1;
    if (a.art == Resultat::Tekst)
        return QString::fromUtf8(a.tekst).compare(QString::fromUtf8(b.tekst), Qt::CaseInsensitive);
    return a.tall < b.tall ? -1 : a.tall > b.tall ? 1 : 0;
}

// Days from 30.12.1899 to a calendar date (months and days may run over).
double dagnummer(double aar, double mnd, double dag)
{
    long long y = static_cast<long long>(std::floor(aar));
    if (y < 1900) y += 1900;
    long long m = static_cast<long long>(std::floor(mnd)) - 1;
    y += m >= 0 ? m / 12 : -((11 - m) / 12);
    m = ((m % 12) + 12) % 12 + 1;
    // Days from civil (proleptic Gregorian), 1970-01-01 = 0.
    y -= m <= 2;
    long long era = (y >= 0 ? y : y - 399) / 400;
    long long yoe = y - era * 400;
    long long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5;
    long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    long long dager = era * 146097 + doe - 719468;
    return static_cast<double>(dager + 25569) + std::floor(dag) - 1;
}

// The rectangle of a reference node in a formula standing in cell (rad, kol); false outside the sheet.
bool rektangel(const Node& n, int rad, int kol, int& r1, int& k1, int& r2, int& k2)
{
    int ra = n.fr1 ? n.r1 : n.r1 + rad, ka = n.fk1 ? n.k1 : n.k1 + kol;
    int rb = ra, kb = ka;
    if (n.art == Node::Omrade) {
        rb = n.fr2 ? n.r2 : n.r2 + rad;
        kb = n.fk2 ? n.k2 : n.k2 + kol;
    }
    r1 = std::min(ra, rb);
    r2 = std::max(ra, rb);
    k1 = std::min(ka, kb);
    k2 = std::max(ka, kb);
    return r1 >= 1 && k1 >= 1 && r2 <= maksRad && k2 <= maksKolonne;
}

class Beregner {
public:
    Beregner(const Uttrykk& u, Kilde& k, int rad, int kol) : u_(u), k_(k), rad_(rad), kol_(kol) {}

    Resultat verdi(int i)
    {
        const Node& n = u_.noder[i];
        switch (n.art) {
        case Node::Tall: return Resultat::nummer(n.tall);
        case Node::Tekst: return Resultat::streng(n.tekst);
        case Node::Logisk: return {Resultat::Logisk, n.tall, {}, false};
        case Node::Ref: {
            int r1, k1, r2, k2;
            if (!rektangel(n, rad_, kol_, r1, k1, r2, k2)) return Resultat::feil("#REF!");
            return k_.celle(r1, k1);
        }
        case Node::Omrade: return Resultat::feil(verdiFeil);
        case Node::Feil: return Resultat::feil("#NAME?", true);
        case Node::Neg:
        case Node::Prosent: {
            Resultat f;
            double x;
            if (!tilTall(verdi(n.a), x, f)) return f;
            if (n.art == Node::Neg) return tallResultat(static_cast<int>(n.tall) % 2 ? -x : x);
            for (int i = 0; i < n.tall && x != 0; ++i) x /= 100;
            return tallResultat(x);
        }
        case Node::Bin: return binaer(n);
        case Node::Kall: return kall(n);
        }
        return Resultat::feil(verdiFeil);
    }

private:
    // A chain of left-associative operators ("1+2+3+...") nests to the left: its left operands
    // are walked down in a loop and the operators applied on the way back, so that a chain of
    // any length nests no calls. Only right operands and arguments are computed by recursion.
    Resultat binaer(const Node& n)
    {
        const size_t bunn = kjede_.size();
        kjede_.push_back(&n);
        while (u_.noder[kjede_.back()->a].art == Node::Bin) kjede_.push_back(&u_.noder[kjede_.back()->a]);
        Resultat a = verdi(kjede_.back()->a);
        while (kjede_.size() > bunn) {
            const Node& op = *kjede_.back();
            kjede_.pop_back();
            if (a.art != Resultat::Feil) a = anvend(op, a);
        }
        return a;
    }

    // A binary operator applied to its left operand's value a.
    Resultat anvend(const Node& n, const Resultat& a)
    {
        Resultat b = verdi(n.b);
        if (b.art == Resultat::Feil) return b;
        const std::string& op = n.tekst;
        if (op == "&") return Resultat::streng(tilTekst(a) + tilTekst(b));
        if (op == "=" || op == "<>" || op == "<" || op == ">" || op == "<=" || op == ">=") {
            int s = sammenlign(a, b);
            bool sann = op == "="    ? s == 0
                        : op == "<>" ? s != 0
                        : op == "<"  ? s < 0
                        : op == ">"  ? s > 0
                        : op == "<=" ? s <= 0
                                     : s >= 0;
            return {Resultat::Logisk, sann ? 1.0 : 0.0, {}, false};
        }
        Resultat f;
        double x, y;
        if (!tilTall(a, x, f) || !tilTall(b, y, f)) return f;
        switch (op[0]) {
        case '+': return tallResultat(x + y);
        case '-': return tallResultat(x - y);
        case '*': return tallResultat(x * y);
        case '/': return y == 0 ? Resultat::feil("#DIV/0!") : tallResultat(x / y);
        default: return tallResultat(std::pow(x, y));
        }
    }

    // Feeds the numbers of the arguments: references and ranges give their numbers only,
    // direct values are turned into numbers. Stops at the first error.
    bool tall(const Node& n, const std::function<void(double)>& hver, Resultat& feil)
    {
        bool ok = true;
        for (int i : n.args) {
            const Node& a = u_.noder[i];
            if (a.art == Node::Ref || a.art == Node::Omrade) {
                int r1, k1, r2, k2;
                if (!rektangel(a, rad_, kol_, r1, k1, r2, k2)) {
                    feil = Resultat::feil("#REF!");
                    return false;
                }
                k_.omrade(r1, k1, r2, k2, [&](const Resultat& r) {
                    if (!ok) return;
                    if (r.art == Resultat::Feil) {
                        feil = r;
                        ok = false;
                    } else if (r.art == Resultat::Tall)
                        hver(r.tall);
                });
            } else {
                double x;
                if (!tilTall(verdi(i), x, feil)) return false;
                hver(x);
            }
            if (!ok) return false;
        }
        return true;
    }

    Resultat kall(const Node& n)
    {
        Resultat f;
        const size_t antall = n.args.size();
        auto arg = [&](size_t i, double& x) { return tilTall(verdi(n.args[i]), x, f); };
        switch (n.funk) {
        case Funk::Sum:
        case Funk::Snitt: {
            double s = 0;
            long teller = 0;
            if (!tall(
                    n,
                    [&](double x) {
                        s += x;
                        ++teller;
                    },
                    f))
                return f;
            if (n.funk == Funk::Sum) return tallResultat(s);
            return teller == 0 ? Resultat::feil("#DIV/0!") : tallResultat(s / teller);
        }
        case Funk::Min:
        case Funk::Maks: {
            bool noen = false;
            double m = 0;
            bool minst = n.funk == Funk::Min;
            if (!tall(
                    n,
                    [&](double x) {
                        if (!noen || (minst ? x < m : x > m)) m = x;
                        noen = true;
                    },
                    f))
                return f;
            return Resultat::nummer(m);
        }
        case Funk::Abs: {
            double x;
            if (antall != 1) break;
            return arg(0, x) ? Resultat::nummer(std::fabs(x)) : f;
        }
        case Funk::Hvis: {
            if (antall < 2 || antall > 3) break;
            Resultat v = verdi(n.args[0]);
            double x;
            if (v.art == Resultat::Tekst) {
                QString t = QString::fromUtf8(v.tekst).toUpper();
                if (t != QLatin1String("TRUE") && t != QLatin1String("FALSE")) return Resultat::feil(verdiFeil);
                x = t == QLatin1String("TRUE");
            } else if (!tilTall(v, x, f)) {
                return f;
            }
            if (x != 0) return verdi(n.args[1]);
            if (antall == 3) return verdi(n.args[2]);
            return {Resultat::Logisk, 0, {}, false};
        }
        case Funk::Mid: {
            double start, lengde;
            if (antall != 3) break;
            Resultat t = verdi(n.args[0]);
            if (t.art == Resultat::Feil) return t;
            if (!arg(1, start) || !arg(2, lengde)) return f;
            if (start < 1 || lengde < 0) return Resultat::feil(verdiFeil);
            std::string s = tilTekst(t);
            size_t fra = static_cast<size_t>(start) - 1, n = static_cast<size_t>(lengde);
            if (std::all_of(s.begin(), s.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
                return Resultat::streng(fra < s.size() ? s.substr(fra, n) : std::string());
            QString q = QString::fromUtf8(s);
            return Resultat::streng(q.mid(static_cast<int>(fra), static_cast<int>(n)).toStdString());
        }
        case Funk::Verdi: {
            double x;
            if (antall != 1) break;
            Resultat v = verdi(n.args[0]);
            if (v.art == Resultat::Tom) return Resultat::feil(verdiFeil);
            return tilTall(v, x, f) ? Resultat::nummer(x) : f;
        }
        case Funk::Dato:
        case Funk::Tid: {
            double a, b, c;
            if (antall != 3) break;
            if (!arg(0, a) || !arg(1, b) || !arg(2, c)) return f;
            if (n.funk == Funk::Dato) return tallResultat(dagnummer(a, b, c));
            double sek = std::floor(a) * 3600 + std::floor(b) * 60 + std::floor(c);
            if (sek < 0) return Resultat::feil("#NUM!");
            return Resultat::nummer(std::fmod(sek, 86400.0) / 86400.0);
        }
        case Funk::Na:
            if (antall != 0) break;
            return Resultat::feil("#N/A");
        case Funk::Ukjent: return Resultat::feil("#NAME?", true);
        }
        return Resultat::feil(verdiFeil);
    }

    const Uttrykk& u_;
    Kilde& k_;
    int rad_, kol_;
    std::vector<const Node*> kjede_;  // the chains of binaer, innermost on top
};

}  // namespace

namespace {
// Parses a formula text standing in cell (rad, kolonne).
std::shared_ptr<const Uttrykk> tolk(std::string_view formel, int rad, int kolonne)
{
    auto u = std::make_shared<Uttrykk>();
    Tolker t(lesTokens(formel), *u, rad, kolonne);
    u->rot = t.helhet();
    if (t.forDyp()) {
        std::string celle;
        leggTilAdresse(celle, rad, kolonne);
        throw XlsxFeil("Formelen i " + celle + " har parenteser eller funksjoner nestet i mer enn " +
                       std::to_string(maksNiva) + " nivåer");
    }
    return u;
}
}  // namespace

Resultat beregn(const Uttrykk& uttrykk, Kilde& kilde, int rad, int kolonne)
{
    Beregner b(uttrykk, kilde, rad, kolonne);
    return b.verdi(uttrykk.rot);
}

void referanser(const Uttrykk& uttrykk, int rad, int kolonne,
                const std::function<void(int rad1, int kol1, int rad2, int kol2)>& hver)
{
    for (const Node& n : uttrykk.noder) {
        int r1, k1, r2, k2;
        if ((n.art == Node::Ref || n.art == Node::Omrade) && rektangel(n, rad, kolonne, r1, k1, r2, k2))
            hver(r1, k1, r2, k2);
    }
}

constexpr size_t MaksICelle = 200000;

std::shared_ptr<const Uttrykk> Tolkelager::hent(std::string_view formel, int rad, int kolonne)
{
    std::string& nokkel = nokkel_;
    auto tall = [&](int x, bool fast) {
        leggTilHeltall(nokkel, x);
        if (fast) nokkel += '$';
    };
    nokkel.assign(formel);
    nokkel += '@';
    tall(rad, false);
    nokkel += ',';
    tall(kolonne, false);
    if (auto kjent = iCelle_.find(nokkel); kjent != iCelle_.end()) return kjent->second;
    if (iCelle_.size() > MaksICelle) iCelle_.clear();  // bounds a long session's memory
    std::string iCelle = nokkel;
    nokkel.clear();
    skann(formel, [&](const Token& t) {
        if (t.blankForan) nokkel += ' ';
        nokkel += static_cast<char>('a' + t.art);
        if (t.art == Token::Ref) {
            tall(t.fastRad ? t.rad : t.rad - rad, t.fastRad);
            nokkel += ',';
            tall(t.fastKol ? t.kol : t.kol - kolonne, t.fastKol);
        } else {
            nokkel += t.tekst;
        }
    });
    auto it = lager_.find(nokkel);
    if (it == lager_.end()) it = lager_.emplace(nokkel, tolk(formel, rad, kolonne)).first;
    return iCelle_.emplace(std::move(iCelle), it->second).first->second;
}

std::string normaliser(std::string_view formel) { return skrivTokens(lesTokens(formel), 0, 0); }

std::string flytt(std::string_view formel, int drad, int dkol) { return skrivTokens(lesTokens(formel), drad, dkol); }

bool lesAdresse(std::string_view tekst, int& rad, int& kolonne)
{
    Token t;
    while (!tekst.empty() && erBlank(tekst.front())) tekst.remove_prefix(1);
    while (!tekst.empty() && erBlank(tekst.back())) tekst.remove_suffix(1);
    if (!lesRef(tekst, t)) return false;
    rad = t.rad;
    kolonne = t.kol;
    return true;
}

void leggTilAdresse(std::string& ut, int rad, int kolonne, bool fastRad, bool fastKolonne)
{
    if (fastKolonne) ut += '$';
    char buf[8];  // the letters of any positive int
    int n = 0;
    while (kolonne > 0) {
        buf[n++] = static_cast<char>('A' + (kolonne - 1) % 26);
        kolonne = (kolonne - 1) / 26;
    }
    while (n > 0) ut += buf[--n];
    if (fastRad) ut += '$';
    leggTilHeltall(ut, rad);
}

void leggTilHeltall(std::string& ut, long x)
{
    char buf[24];
    auto r = std::to_chars(buf, buf + sizeof buf, x);
    ut.append(buf, r.ptr);
}

void leggTilTall(std::string& ut, double x)
{
    char buf[32];
    auto r = std::to_chars(buf, buf + sizeof buf, x);
    ut.append(buf, r.ptr);
}

}  // namespace xlsx::formel
