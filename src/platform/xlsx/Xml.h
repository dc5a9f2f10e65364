// Small helpers for the XML of a workbook's parts, shared by the sheets, the charts and
// the workbook: text escaped for XML, elements found whatever their namespace prefix,
// a part read into a document and a document written back.
#pragma once

#include <pugixml.hpp>

#include <cstring>
#include <string>
#include <string_view>

namespace xlsx {

// Parse options for a part that is written back as a document: its XML declaration is kept.
constexpr unsigned medDeklarasjon = pugi::parse_default | pugi::parse_declaration;

// Appends text as element content: & < > escaped, control characters XML 1.0 forbids left out.
void leggTilTekst(std::string& ut, std::string_view s);
// Appends text as an attribute value: escaped as element content, and " as well.
void leggTilAttributt(std::string& ut, std::string_view s);

// The name without its namespace prefix: "x:row" -> "row". Inline, as a sheet asks it of every cell.
inline std::string_view lokaltNavn(const char* navn)
{
    const char* kolon = std::strrchr(navn, ':');
    return kolon ? kolon + 1 : navn;
}
// The first child element with this local name; an empty node when there is none.
inline pugi::xml_node barn(pugi::xml_node n, std::string_view navn)
{
    for (pugi::xml_node b = n.first_child(); b; b = b.next_sibling())
        if (b.type() == pugi::node_element && lokaltNavn(b.name()) == navn) return b;
    return {};
}
// The plain text of a string item or inline string: its <t> elements, phonetic hints (rPh) left out.
std::string rentTekst(pugi::xml_node n);

// Reads the XML text of the part del into d; when it is not well-formed, XlsxFeil with the message
// feil, followed by the parser's reason in brackets when medGrunn is set. A text of more than
// 500 000 elements is refused before it is read: the document and the cells made of it would
// take gigabytes.
void lesXml(pugi::xml_document& d, std::string_view xml, unsigned valg, const std::string& del, const std::string& feil,
            bool medGrunn);
// The document as the parts are written: raw, without indentation or added line breaks.
std::string skrivXml(const pugi::xml_document& d);

}  // namespace xlsx
