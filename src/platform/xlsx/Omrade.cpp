#include "platform/xlsx/Omrade.h"

#include "platform/xlsx/Formel.h"

#include <algorithm>

namespace xlsx {

namespace {

// The sheet name of the part before "!": quotes removed, a doubled quote read as one.
std::string arkNavn(std::string_view tekst)
{
    if (tekst.size() < 2 || tekst.front() != '\'' || tekst.back() != '\'') return std::string(tekst);
    std::string ut;
    tekst = tekst.substr(1, tekst.size() - 2);
    for (size_t i = 0; i < tekst.size(); ++i) {
        ut += tekst[i];
        if (tekst[i] == '\'' && i + 1 < tekst.size() && tekst[i + 1] == '\'') ++i;
    }
    return ut;
}

// One block "Ark!$B$2:$B$9" or "Ark!$C$1"; false when the text is something else.
bool lesBlokk(std::string_view tekst, Omrade& o)
{
    const size_t utrop = tekst.rfind('!');
    if (utrop == std::string_view::npos || utrop == 0) return false;
    o.arkTekst = std::string(tekst.substr(0, utrop));
    o.ark = arkNavn(o.arkTekst);
    const std::string_view celler = tekst.substr(utrop + 1);
    const size_t kolon = celler.find(':');
    if (!formel::lesAdresse(celler.substr(0, kolon), o.rad1, o.kol1)) return false;
    if (kolon == std::string_view::npos) {
        o.rad2 = o.rad1;
        o.kol2 = o.kol1;
        return true;
    }
    return formel::lesAdresse(celler.substr(kolon + 1), o.rad2, o.kol2);
}

}  // namespace

std::vector<Omrade> lesOmrader(std::string_view referanse)
{
    if (referanse.size() >= 2 && referanse.front() == '(' && referanse.back() == ')')
        referanse = referanse.substr(1, referanse.size() - 2);
    std::vector<Omrade> ut;
    bool iSitat = false;
    size_t start = 0;
    for (size_t i = 0; i <= referanse.size(); ++i) {
        if (i < referanse.size() && referanse[i] == '\'') iSitat = !iSitat;
        if (i < referanse.size() && (iSitat || referanse[i] != ',')) continue;
        Omrade o;
        if (!lesBlokk(referanse.substr(start, i - start), o)) return {};
        ut.push_back(std::move(o));
        start = i + 1;
    }
    return ut;
}

std::string skrivOmrade(const Omrade& o)
{
    std::string ut = o.arkTekst + '!';
    formel::leggTilAdresse(ut, o.rad1, o.kol1, true, true);
    if (o.rad1 != o.rad2 || o.kol1 != o.kol2) {
        ut += ':';
        formel::leggTilAdresse(ut, o.rad2, o.kol2, true, true);
    }
    return ut;
}

std::string strekkOmrade(std::string_view referanse, const std::string& ark, int sisteRad, int& dekket)
{
    std::vector<Omrade> blokker = lesOmrader(referanse);
    if (blokker.size() == 1) {
        Omrade& o = blokker.front();
        if (o.ark != ark || o.rad2 <= o.rad1 || o.rad2 >= sisteRad) return {};
        o.rad2 = sisteRad;
        return skrivOmrade(o);
    }
    int slutt = 0;
    bool berort = false;
    for (const Omrade& o : blokker) {
        if (o.ark != ark || o.rad2 <= o.rad1) continue;
        berort = true;
        slutt = std::max(slutt, o.rad2);
    }
    if (berort && slutt < sisteRad) dekket = std::min(dekket, slutt);
    return {};
}

}  // namespace xlsx
