#include "platform/xlsx/Xml.h"

#include "platform/xlsx/Arbeidsbok.h"

#include <cstring>
#include <sstream>

namespace xlsx {

namespace {

// Text of an element or attribute value, escaped for XML.
void escape(std::string& ut, std::string_view s, bool attributt)
{
    size_t fra = 0;
    for (size_t i = 0; i < s.size(); ++i) {
        const char* erstatt = nullptr;
        unsigned char c = static_cast<unsigned char>(s[i]);
        switch (c) {
        case '&': erstatt = "&amp;"; break;
        case '<': erstatt = "&lt;"; break;
        case '>': erstatt = "&gt;"; break;
        case '"': erstatt = attributt ? "&quot;" : nullptr; break;
        case '\t':
        case '\n':
        case '\r': break;
        default:
            if (c < 0x20) erstatt = "";  // not allowed in XML 1.0
        }
        if (!erstatt) continue;
        ut.append(s.data() + fra, i - fra);
        ut += erstatt;
        fra = i + 1;
    }
    ut.append(s.data() + fra, s.size() - fra);
}

}  // namespace

void leggTilTekst(std::string& ut, std::string_view s) { escape(ut, s, false); }

void leggTilAttributt(std::string& ut, std::string_view s) { escape(ut, s, true); }

std::string rentTekst(pugi::xml_node n)
{
    std::string s;
    for (auto x : n.select_nodes(".//*[local-name()='t' and not(ancestor::*[local-name()='rPh'])]"))
        s += x.node().child_value();
    return s;
}

void lesXml(pugi::xml_document& d, std::string_view xml, unsigned valg, const std::string& del, const std::string& feil,
            bool medGrunn)
{
    constexpr long maksElementer = 500000;
    long elementer = 0;
    const char* slutt = xml.data() + xml.size();
    for (const char* p = xml.data(); (p = static_cast<const char*>(std::memchr(p, '<', slutt - p)));) {
        ++p;
        if (p < slutt && *p != '/' && *p != '?' && *p != '!' && ++elementer > maksElementer)
            throw XlsxFeil("Delen " + del + " har mer enn 500 000 XML-elementer");
    }
    auto res = d.load_buffer(xml.data(), xml.size(), valg);
    if (!res) throw XlsxFeil(medGrunn ? feil + " (" + res.description() + ")" : feil);
}

std::string skrivXml(const pugi::xml_document& d)
{
    std::ostringstream ut;
    d.save(ut, "", pugi::format_raw);
    return ut.str();
}

}  // namespace xlsx
