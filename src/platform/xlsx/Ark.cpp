#include "platform/xlsx/Ark.h"

#include "platform/xlsx/Xml.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <sstream>

namespace xlsx {

using formel::leggTilAdresse;
using formel::leggTilHeltall;
using formel::Resultat;

namespace {

// The element's attributes as they stand, those named in utenom left out.
void attributter(std::string& ut, pugi::xml_node n, std::initializer_list<std::string_view> utenom)
{
    for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute()) {
        if (std::find(utenom.begin(), utenom.end(), std::string_view(a.name())) != utenom.end()) continue;
        ut += ' ';
        ut += a.name();
        ut += "=\"";
        leggTilAttributt(ut, a.value());
        ut += '"';
    }
}

// The plain text of an inline rich-text element.
std::string rikTekst(const std::string& xml)
{
    pugi::xml_document d;
    d.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    return rentTekst(d);
}

}  // namespace

// ---------------------------------------------------------------- reading

std::deque<Ark::Lest>& Ark::lesteArk()
{
    thread_local std::deque<Lest> lest;
    return lest;
}

void Ark::last()
{
    if (lastet_) return;
    constexpr size_t Husket = 4;
    std::string lagret = bok_.lagretForm(sti_);
    auto& husket = lesteArk();
    auto kjent = std::find_if(husket.begin(), husket.end(), [&](const Lest& l) { return l.lagret == lagret; });
    if (kjent != husket.end()) {
        // The sheet read last goes to the back, so that the sheets saved and read again every
        // cycle (the integration's summary) push out one another instead of the template.
        std::rotate(kjent, kjent + 1, husket.end());
        kjent = husket.end() - 1;
        ns_ = kjent->ns;
        foran_ = kjent->foran;
        bak_ = kjent->bak;
        kolonnestiler_ = kjent->kolonnestiler;
        rader_ = kjent->rader;
        ekstra_ = kjent->ekstra;
        // Room for as many formulas again: the copy is filled, and the template's formulas are
        // not moved when cells get their own.
        formler_.reserve(2 * kjent->formler.size());
        formler_.assign(kjent->formler.begin(), kjent->formler.end());
        antallFormler_ = kjent->antallFormler;
        lagrede_ = kjent->lagrede;
    } else {
        tolk(bok_.lesDel(sti_));
        husket.push_back({std::move(lagret), ns_, foran_, bak_, kolonnestiler_, rader_, formler_, ekstra_,
                          antallFormler_, lagrede_});
        if (husket.size() > Husket) husket.pop_front();
    }
    lastet_ = true;
    sist_ = 0;
}

void Ark::tolk(const std::string& xml)
{
    size_t start = std::string::npos;
    for (size_t p = xml.find("sheetData"); p != std::string::npos; p = xml.find("sheetData", p + 1)) {
        size_t lt = p;
        while (lt > 0 && xml[lt - 1] != '<' && xml[lt - 1] != '>' && xml[lt - 1] != '/' && xml[lt - 1] != ' ') --lt;
        if (lt > 0 && xml[lt - 1] == '<') {
            start = lt - 1;
            ns_ = xml.substr(lt, p - lt);
            break;
        }
    }
    if (start == std::string::npos) throw XlsxFeil("Arket mangler celledata: " + sti_);
    size_t slutt;
    size_t tagSlutt = xml.find('>', start);
    if (tagSlutt == std::string::npos) throw XlsxFeil("Ødelagt ark: " + sti_);
    if (xml[tagSlutt - 1] == '/') {
        slutt = tagSlutt + 1;
    } else {
        std::string lukk = "</" + ns_ + "sheetData>";
        size_t p = xml.find(lukk, tagSlutt);
        if (p == std::string::npos) throw XlsxFeil("Ødelagt ark: " + sti_);
        slutt = p + lukk.size();
    }
    pugi::xml_document d;
    lesXml(d, std::string_view(xml).substr(start, slutt - start), pugi::parse_default | pugi::parse_ws_pcdata_single,
           sti_, "Ødelagt ark: " + sti_, true);
    foran_ = xml.substr(0, start);
    bak_ = xml.substr(slutt);
    lesKolonnestiler();
    // A place for every formula at once: a template has thousands.
    const std::string fTagg = "<" + ns_ + "f";
    size_t antall = 0;
    for (size_t p = xml.find(fTagg, start); p < slutt; p = xml.find(fTagg, p + fTagg.size())) ++antall;
    formler_.reserve(antall);
    lagrede_ = std::make_shared<Lagrede>();

    // A shared formula's first cell; its parse serves every cell of the group, since a parse
    // is independent of the cell it stands in.
    struct Delt {
        std::string tekst;
        int rad, kol;
        std::shared_ptr<const formel::Uttrykk> tre;
    };
    std::map<std::string, Delt> delte;
    int radNr = 0;
    for (pugi::xml_node r = d.first_child().first_child(); r; r = r.next_sibling()) {
        if (r.type() != pugi::node_element || lokaltNavn(r.name()) != "row") continue;
        radNr = r.attribute("r") ? r.attribute("r").as_int() : radNr + 1;
        Rad& rad = hentRad(radNr);
        attributter(rad.attr, r, {"r", "spans"});
        if (r.attribute("customFormat").as_bool() && r.attribute("s"))
            rad.stil = static_cast<long>(r.attribute("s").as_uint());
        int kolNr = 0;
        for (pugi::xml_node c = r.first_child(); c; c = c.next_sibling()) {
            if (c.type() != pugi::node_element || lokaltNavn(c.name()) != "c") continue;
            int rr = radNr;
            if (!formel::lesAdresse(c.attribute("r").value(), rr, kolNr)) ++kolNr;
            Celle celle;
            celle.kol = kolNr;
            celle.stil = c.attribute("s") ? static_cast<long>(c.attribute("s").as_uint()) : -1;
            std::string ekstra;
            attributter(ekstra, c, {"r", "s", "t"});
            if (!ekstra.empty()) {
                celle.ekstra = static_cast<int>(ekstra_.size());
                ekstra_.push_back(std::move(ekstra));
            }
            std::string_view t = c.attribute("t").value();
            pugi::xml_node v = barn(c, "v");
            const char* vt = v.child_value();
            if (t == "s") {
                celle.art = Celle::Delt;
                celle.tall = std::atol(vt);
            } else if (t == "inlineStr") {
                pugi::xml_node is = barn(c, "is");
                pugi::xml_node tn = barn(is, "t");
                if (tn && !tn.next_sibling()) {
                    celle.art = Celle::Tekst;
                    celle.tekst = tn.child_value();
                } else if (is) {
                    std::ostringstream o;
                    is.print(o, "", pugi::format_raw);
                    celle.art = Celle::Rik;
                    celle.tekst = o.str();
                }
            } else if (t == "b") {
                celle.art = Celle::Logisk;
                celle.tall = std::atoi(vt) != 0;
            } else if (t == "e") {
                celle.art = Celle::Feil;
                celle.tekst = vt;
            } else if (t == "str" || t == "d") {
                celle.art = Celle::Tekst;
                celle.tekst = vt;
            } else if (v) {
                celle.art = Celle::Tall;
                std::from_chars(vt, vt + std::strlen(vt), celle.tall);
            }
            if (pugi::xml_node f = barn(c, "f")) {
                std::shared_ptr<const formel::Uttrykk> tre;
                std::string_view ft = f.attribute("t").value();
                std::string tekst, attr;
                if (ft == "shared") {
                    std::string si = f.attribute("si").value();
                    if (f.attribute("ref")) {
                        tekst = f.child_value();
                        tre = tolkelager().hent(tekst, radNr, kolNr);
                        delte[si] = {tekst, radNr, kolNr, tre};
                    } else if (auto m = delte.find(si); m != delte.end()) {
                        tekst = formel::flytt(m->second.tekst, radNr - m->second.rad, kolNr - m->second.kol);
                        tre = m->second.tre;
                    }
                } else {
                    tekst = f.child_value();
                    attributter(attr, f, {});
                }
                // Every formula is parsed here, so that the copies of a sheet read once carry the parse.
                if (!tre) tre = tolkelager().hent(tekst, radNr, kolNr);
                FormelDel fd;
                fd.lagret = &lagrede_->emplace_back(Lagret{std::move(tekst), std::move(attr), radNr, std::move(tre)});
                // The cached value is computed anew; only the formula is kept.
                celle.art = Celle::Tom;
                celle.tekst.clear();
                celle.formel = nyFormel(std::move(fd));
            }
            rad.celler.push_back(std::move(celle));
        }
        std::sort(rad.celler.begin(), rad.celler.end(), [](const Celle& a, const Celle& b) { return a.kol < b.kol; });
    }
}

void Ark::lesKolonnestiler()
{
    const std::string apne = "<" + ns_ + "cols>", lukk = "</" + ns_ + "cols>";
    const size_t a = foran_.find(apne);
    const size_t e = a == std::string::npos ? a : foran_.find(lukk, a);
    if (e == std::string::npos) return;
    pugi::xml_document d;
    lesXml(d, std::string_view(foran_).substr(a, e + lukk.size() - a), pugi::parse_default, sti_,
           "Ødelagt ark: " + sti_, true);
    for (pugi::xml_node c : d.first_child().children())
        if (lokaltNavn(c.name()) == "col" && c.attribute("style"))
            kolonnestiler_.push_back({c.attribute("min").as_int(), c.attribute("max").as_int(),
                                      static_cast<long>(c.attribute("style").as_uint())});
}

long Ark::nyStil(const Rad& rad, int kol) const
{
    if (rad.stil >= 0) return rad.stil;
    for (const Kolonnestil& k : kolonnestiler_)
        if (k.fra <= kol && kol <= k.til) return k.stil;
    return -1;
}

const formel::Uttrykk& Ark::tre(Lagret& f, int kol)
{
    if (!f.tre) f.tre = tolkelager().hent(f.tekst, f.rad, kol);
    return *f.tre;
}

formel::Tolkelager& Ark::tolkelager()
{
    thread_local formel::Tolkelager lager;  // workbooks are saved on a thread of their own
    return lager;
}

// ---------------------------------------------------------------- cells

std::vector<Ark::Rad>::iterator Ark::fraRad(int nr)
{
    // Cells are mostly visited row by row: the rows around the one used last come first.
    const size_t fra = sist_ > 0 ? sist_ - 1 : 0;
    for (size_t i = fra; i < rader_.size() && i <= sist_ + 1; ++i)
        if (rader_[i].nr >= nr) {
            if (i > fra || i == 0) return rader_.begin() + static_cast<std::ptrdiff_t>(i);
            break;  // the row may lie further up
        }
    return std::lower_bound(rader_.begin(), rader_.end(), nr, [](const Rad& r, int n) { return r.nr < n; });
}

Ark::Rad* Ark::finnRad(int nr)
{
    auto it = fraRad(nr);
    if (it == rader_.end() || it->nr != nr) return nullptr;
    sist_ = static_cast<size_t>(it - rader_.begin());
    return &*it;
}

Ark::Rad& Ark::hentRad(int nr)
{
    if (rader_.empty() || rader_.back().nr < nr) {  // rows are mostly added after the last one
        sist_ = rader_.size();
        return rader_.emplace_back(Rad{nr, {}, -1, {}});
    }
    if (Rad* r = finnRad(nr)) return *r;
    auto it = rader_.insert(fraRad(nr), Rad{nr, {}, -1, {}});
    sist_ = static_cast<size_t>(it - rader_.begin());
    return *it;
}

Ark::Celle* Ark::finn(int rad, int kol)
{
    Rad* r = finnRad(rad);
    if (!r) return nullptr;
    auto& v = r->celler;
    auto it = std::lower_bound(v.begin(), v.end(), kol, [](const Celle& c, int k) { return c.kol < k; });
    return it != v.end() && it->kol == kol ? &*it : nullptr;
}

Ark::Celle& Ark::hent(int rad, int kol)
{
    if (rad < 1 || rad > 1048576 || kol < 1 || kol > 16384)
        throw XlsxFeil("Ugyldig celle: rad " + std::to_string(rad) + ", kolonne " + std::to_string(kol));
    Rad& r = hentRad(rad);
    auto& v = r.celler;
    if (v.size() == v.capacity()) v.reserve(std::max<size_t>(8, 2 * v.size()));  // rows fill up cell by cell
    auto it = v.empty() || v.back().kol < kol
                  ? v.end()
                  : std::lower_bound(v.begin(), v.end(), kol, [](const Celle& c, int k) { return c.kol < k; });
    if (it == v.end() || it->kol != kol) {
        it = v.insert(it, Celle{});
        it->kol = kol;
        it->stil = nyStil(r, kol);
    }
    return *it;
}

int Ark::nyFormel(FormelDel f)
{
    ++antallFormler_;
    formler_.push_back(std::move(f));
    return static_cast<int>(formler_.size() - 1);
}

void Ark::fjernFormel(Celle& c)
{
    if (c.formel < 0) return;
    formler_[static_cast<size_t>(c.formel)] = {};  // its place stays unused
    c.formel = -1;
    --antallFormler_;
    formlerEndret_ = true;
}

void Ark::settCelle(int rad, int kolonne, const Verdi& verdi)
{
    last();
    endring(rad);
    bool tom = std::holds_alternative<std::monostate>(verdi) ||
               (std::holds_alternative<QString>(verdi) && std::get<QString>(verdi).isEmpty());
    if (tom) {
        Celle* c = finn(rad, kolonne);
        if (!c) return;
        fjernFormel(*c);
        if (c->stil < 0 && c->ekstra < 0) {
            tomCelle(rad, kolonne);
            return;
        }
        c->art = Celle::Tom;
        c->tekst.clear();
        return;
    }
    Celle& c = hent(rad, kolonne);
    fjernFormel(c);
    sisteSkrevne_ = std::max(sisteSkrevne_, rad);
    if (const double* x = std::get_if<double>(&verdi)) {
        if (std::isfinite(*x)) {
            c.art = Celle::Tall;
            c.tall = *x;
            c.tekst.clear();
        } else {
            c.art = Celle::Feil;
            c.tekst = "#NUM!";
        }
    } else {
        c.art = Celle::Tekst;
        c.tekst = std::get<QString>(verdi).toStdString();
    }
}

void Ark::settFormel(const QString& adresse, const QString& tekst)
{
    last();
    int rad, kol;
    if (!formel::lesAdresse(adresse.toStdString(), rad, kol))
        throw XlsxFeil("Ugyldig celleadresse: " + adresse.toStdString());
    endring(rad);
    Celle& c = hent(rad, kol);
    FormelDel f;
    f.lagret = egen(formel::normaliser(tekst.toStdString()), rad);
    if (c.formel < 0)
        c.formel = nyFormel(std::move(f));
    else
        formler_[static_cast<size_t>(c.formel)] = std::move(f);
    c.art = Celle::Tom;
    c.tekst.clear();
    formlerEndret_ = true;
}

void Ark::tomCelle(int rad, int kolonne)
{
    last();
    endring(rad);
    Rad* r = finnRad(rad);
    if (!r) return;
    auto& v = r->celler;
    auto c = std::lower_bound(v.begin(), v.end(), kolonne, [](const Celle& x, int k) { return x.kol < k; });
    if (c == v.end() || c->kol != kolonne) return;
    fjernFormel(*c);
    v.erase(c);
}

void Ark::tomRad(int rad)
{
    last();
    endring(rad);
    Rad* r = finnRad(rad);
    if (!r) return;
    auto& v = r->celler;
    for (Celle& c : v) {
        fjernFormel(c);
        c.art = Celle::Tom;
        c.tekst.clear();
    }
    // Formatting stays: a styled cell remains as an empty cell.
    v.erase(std::remove_if(v.begin(), v.end(), [](const Celle& c) { return c.stil < 0 && c.ekstra < 0; }), v.end());
}

Verdi Ark::celle(int rad, int kolonne)
{
    last();
    Celle* c = finn(rad, kolonne);
    Resultat r = c ? resultat(*c) : Resultat{};
    switch (r.art) {
    case Resultat::Tom: return std::monostate{};
    case Resultat::Tall:
    case Resultat::Logisk: return r.tall;
    default: return QString::fromStdString(r.tekst);
    }
}

int Ark::fyllNed()
{
    last();
    if (sisteSkrevne_ == 0) return 0;
    fyllFormlerNed(sisteSkrevne_);
    return bok_.strekkOmrader(sti_, sisteSkrevne_);
}

// The last formula of each column is filled down when the cell above it holds the same formula
// (relative references shifted); cells that hold a value keep it.
void Ark::fyllFormlerNed(int sisteRad)
{
    std::map<int, int> siste;  // column -> the row of its last formula
    for (const Rad& rad : rader_)
        for (const Celle& c : rad.celler)
            if (c.formel >= 0) siste[c.kol] = rad.nr;
    for (auto [kol, nr] : siste) {
        Celle* over = finn(nr - 1, kol);
        Celle* forbilde = finn(nr, kol);
        if (nr >= sisteRad || !over || over->formel < 0) continue;
        Lagret& o = *formelAv(*over).lagret;
        Lagret& f = *formelAv(*forbilde).lagret;
        if (&tre(o, kol) != &tre(f, kol)) continue;
        endring(nr + 1);
        formlerEndret_ = true;
        // The cells added below may move the model cell; its formula stays where it is.
        const long stil = forbilde->stil;
        for (int r = nr + 1; r <= sisteRad; ++r) {
            Celle& c = hent(r, kol);
            if (c.formel >= 0 || c.art != Celle::Tom) continue;
            c.stil = stil;
            FormelDel ny;
            ny.lagret = egen(formel::flytt(f.tekst, r - nr, 0), r, f.tre);
            c.formel = nyFormel(std::move(ny));
        }
    }
}

// ---------------------------------------------------------------- values
template <class Hver>
void Ark::forHverCelle(int rad1, int kol1, int rad2, int kol2, Hver&& hver)
{
    for (auto it = fraRad(rad1); it != rader_.end() && it->nr <= rad2; ++it) {
        auto& v = it->celler;
        auto c = std::lower_bound(v.begin(), v.end(), kol1, [](const Celle& x, int k) { return x.kol < k; });
        for (; c != v.end() && c->kol <= kol2; ++c) hver(*c);
    }
}

Resultat Ark::verdiAv(Celle& c)
{
    FormelDel& f = formelAv(c);
    if (f.gen != gen_) beregnMedKilder(c);
    if (f.underveis) return Resultat::feil("#REF!", true);  // circular reference
    return f.verdi;
}

// Computes the formula cell c after the formula cells it refers to, the deepest first, on a
// stack of its own: a column where each cell refers to the next is as long as the sheet, and
// following it by recursion would exhaust the call stack. When a cell is computed, every cell
// it refers to is computed already or still waits for its own sources below it on the stack:
// the latter closes a circle and gives a circular-reference error.
void Ark::beregnMedKilder(Celle& c)
{
    struct Steg {
        Celle* celle;
        bool kilderLagt;  // its sources are on the stack above it
    };
    std::vector<Steg> stakk{{&c, false}};
    while (!stakk.empty()) {
        Steg steg = stakk.back();
        FormelDel& f = formelAv(*steg.celle);
        if (steg.kilderLagt) {
            stakk.pop_back();
            Resultat r = formel::beregn(*f.lagret->tre, kilde_, f.lagret->rad, steg.celle->kol);
            f.verdi = r.art == Resultat::Tom ? Resultat::nummer(0) : std::move(r);
            f.underveis = false;
        } else if (f.gen == gen_) {
            stakk.pop_back();  // computed, or waiting further down
        } else {
            f.gen = gen_;
            f.underveis = true;
            stakk.back().kilderLagt = true;
            const int kol = steg.celle->kol;
            formel::referanser(tre(*f.lagret, kol), f.lagret->rad, kol, [&](int r1, int k1, int r2, int k2) {
                forHverCelle(r1, k1, r2, k2, [&](Celle& kilde) {
                    if (kilde.formel >= 0 && formelAv(kilde).gen != gen_) stakk.push_back({&kilde, false});
                });
            });
        }
    }
}

Resultat Ark::resultat(Celle& c)
{
    if (c.formel >= 0) return verdiAv(c);
    switch (c.art) {
    case Celle::Tom: return {};
    case Celle::Tall: return Resultat::nummer(c.tall);
    case Celle::Logisk: return {Resultat::Logisk, c.tall, {}, false};
    case Celle::Tekst: return Resultat::streng(c.tekst);
    case Celle::Delt: return Resultat::streng(bok_.deltTekst(static_cast<long>(c.tall)));
    case Celle::Feil: return Resultat::feil(c.tekst.c_str());
    case Celle::Rik: return Resultat::streng(rikTekst(c.tekst));
    }
    return {};
}

Resultat Ark::Kilde::celle(int rad, int kolonne)
{
    ark_.lestTil_ = std::max(ark_.lestTil_, rad);
    Celle* c = ark_.finn(rad, kolonne);
    return c ? ark_.resultat(*c) : Resultat{};
}

void Ark::Kilde::omrade(int rad1, int kol1, int rad2, int kol2, const std::function<void(const Resultat&)>& hver)
{
    ark_.lestTil_ = std::max(ark_.lestTil_, rad2);
    ark_.forHverCelle(rad1, kol1, rad2, kol2, [&](Celle& c) {
        Resultat r = ark_.resultat(c);
        if (r.art != Resultat::Tom) hver(r);
    });
}

// ---------------------------------------------------------------- writing

void Ark::apneTagg(std::string& ut, const char* navn) const
{
    ut += '<';
    ut += ns_;
    ut += navn;
    ut += '>';
}

void Ark::lukkTagg(std::string& ut, const char* navn) const
{
    ut += "</";
    ut += ns_;
    ut += navn;
    ut += '>';
}

void Ark::skrivCelle(std::string& ut, int rad, Celle& c)
{
    ut += "<";
    ut += ns_;
    ut += "c r=\"";
    leggTilAdresse(ut, rad, c.kol);
    ut += '"';
    if (c.stil >= 0) {
        ut += " s=\"";
        leggTilHeltall(ut, c.stil);
        ut += '"';
    }
    // Type attribute and value element.
    const char* type = nullptr;
    // The text of <v>: a number written into tall, other texts into tekst, which most cells leave
    // unused (a number longer than a short string's room would otherwise be allocated).
    std::string_view verdi;
    char tall[32];
    std::string tekst;
    auto medTall = [&](auto x) {
        verdi = {tall, static_cast<size_t>(std::to_chars(tall, tall + sizeof tall, x).ptr - tall)};
    };
    auto medTekst = [&](std::string_view t) {
        leggTilTekst(tekst, t);
        verdi = tekst;
    };
    bool harV = false;  // a <v> element, also an empty one for an empty text result
    bool rik = false;
    const bool harFormel = c.formel >= 0;
    if (harFormel) {
        Resultat r = verdiAv(c);
        switch (r.art) {
        case Resultat::Tall: medTall(r.tall); break;
        case Resultat::Logisk:
            type = "b";
            verdi = r.tall != 0 ? "1" : "0";
            break;
        case Resultat::Tekst:
            type = "str";
            medTekst(r.tekst);
            break;
        case Resultat::Feil:
            if (!r.usikker) {
                type = "e";
                medTekst(r.tekst);
            }
            break;
        case Resultat::Tom: break;
        }
        harV = r.art != Resultat::Feil || !r.usikker;
    } else {
        switch (c.art) {
        case Celle::Tom: break;
        case Celle::Tall: medTall(c.tall); break;
        case Celle::Logisk:
            type = "b";
            verdi = c.tall != 0 ? "1" : "0";
            break;
        case Celle::Delt:
            type = "s";
            medTall(static_cast<long>(c.tall));
            break;
        case Celle::Feil:
            type = "e";
            medTekst(c.tekst);
            break;
        case Celle::Tekst: type = "inlineStr"; break;
        case Celle::Rik:
            type = "inlineStr";
            rik = true;
            break;
        }
    }
    if (type) {
        ut += " t=\"";
        ut += type;
        ut += '"';
    }
    if (c.ekstra >= 0) ut += ekstra_[static_cast<size_t>(c.ekstra)];
    if (!harFormel) harV = !verdi.empty();
    bool harInnhold = harFormel || c.art == Celle::Tekst || rik || harV;
    if (!harInnhold) {
        ut += "/>";
        return;
    }
    ut += '>';
    if (harFormel) {
        const FormelDel& f = formelAv(c);
        ut += '<';
        ut += ns_;
        ut += 'f';
        ut += f.lagret->attr;
        if (f.delt >= 0) {
            ut += " t=\"shared\"";
            if (f.deltTil > rad) {
                ut += " ref=\"";
                leggTilAdresse(ut, rad, c.kol);
                ut += ':';
                leggTilAdresse(ut, f.deltTil, c.kol);
                ut += '"';
            }
            ut += " si=\"";
            leggTilHeltall(ut, f.delt);
            ut += '"';
        }
        if (f.delt >= 0 && f.deltTil <= rad) {
            ut += "/>";
        } else {
            ut += '>';
            leggTilTekst(ut, f.lagret->tekst);
            lukkTagg(ut, "f");
        }
    }
    if (!harFormel && c.art == Celle::Tekst) {
        const std::string& t = c.tekst;
        bool bevar = !t.empty() && (t.front() == ' ' || t.back() == ' ' || t.front() == '\n' || t.back() == '\n');
        ut += '<';
        ut += ns_;
        ut += bevar ? "is><" + ns_ + "t xml:space=\"preserve\">" : "is><" + ns_ + "t>";
        leggTilTekst(ut, t);
        lukkTagg(ut, "t");
        lukkTagg(ut, "is");
    } else if (rik) {
        ut += c.tekst;
    } else if (harV) {
        apneTagg(ut, "v");
        ut += verdi;
        lukkTagg(ut, "v");
    }
    lukkTagg(ut, "c");
}

// Runs of cells down a column whose formulas differ only by their row are written as one
// shared formula: its text once, in the first cell.
void Ark::finnDelteFormler()
{
    struct Lop {
        const formel::Uttrykk* tre = nullptr;
        int sisteRad = 0;
        FormelDel* forste = nullptr;
    };
    std::map<int, Lop> lop;
    int neste = 0;
    for (Rad& rad : rader_) {
        const int nr = rad.nr;
        for (Celle& c : rad.celler) {
            if (c.formel < 0) continue;
            FormelDel& f = formelAv(c);
            f.delt = -1;
            f.deltTil = 0;
            if (!f.lagret->attr.empty()) continue;
            const formel::Uttrykk* t = &tre(*f.lagret, c.kol);
            Lop& l = lop[c.kol];
            if (l.tre == t && l.sisteRad == nr - 1) {
                if (l.forste->delt < 0) l.forste->delt = neste++;
                l.forste->deltTil = nr;
                f.delt = l.forste->delt;
                l.sisteRad = nr;
            } else {
                l = {t, nr, &f};
            }
        }
    }
}

void Ark::beregn()
{
    last();
    finnDelteFormler();
    for (Rad& rad : rader_)
        for (Celle& c : rad.celler)
            if (c.formel >= 0) verdiAv(c);
    beregnet_ = true;
}

std::string Ark::skriv()
{
    last();
    // Values computed since the last change are current: every change starts a new generation.
    if (!beregnet_) finnDelteFormler();
    int r1 = 0, r2 = 0, k1 = 0, k2 = 0;
    size_t antall = 0;
    for (const Rad& rad : rader_) {
        antall += rad.celler.size();
        if (rad.celler.empty()) continue;
        if (!r1) r1 = rad.nr;
        r2 = rad.nr;
        k1 = k1 ? std::min(k1, rad.celler.front().kol) : rad.celler.front().kol;
        k2 = std::max(k2, rad.celler.back().kol);
    }
    std::string ut;
    ut.reserve(foran_.size() + bak_.size() + antall * 48 + rader_.size() * 24);
    ut += foran_;
    // The used range in <dimension>.
    std::string dim = "<" + ns_ + "dimension ";
    if (size_t p = ut.find(dim); p != std::string::npos) {
        size_t a = ut.find("ref=\"", p);
        size_t e = a == std::string::npos ? a : ut.find('"', a + 5);
        if (e != std::string::npos && a < ut.find('>', p)) {
            std::string ref;
            leggTilAdresse(ref, r1 ? r1 : 1, k1 ? k1 : 1);
            if (r1 && (r1 != r2 || k1 != k2)) {
                ref += ':';
                leggTilAdresse(ref, r2, k2);
            }
            ut.replace(a + 5, e - a - 5, ref);
        }
    }
    apneTagg(ut, "sheetData");
    for (Rad& rad : rader_) {
        const int nr = rad.nr;
        if (rad.celler.empty() && rad.attr.empty()) continue;
        ut += '<';
        ut += ns_;
        ut += "row r=\"";
        leggTilHeltall(ut, nr);
        ut += '"';
        ut += rad.attr;
        if (rad.celler.empty()) {
            ut += "/>";
            continue;
        }
        ut += '>';
        for (Celle& c : rad.celler) skrivCelle(ut, nr, c);
        lukkTagg(ut, "row");
    }
    lukkTagg(ut, "sheetData");
    ut += bak_;
    return ut;
}

}  // namespace xlsx
