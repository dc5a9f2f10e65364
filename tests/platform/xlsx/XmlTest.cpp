#include "Hjelpere.h"

#include "platform/xlsx/Xml.h"

using namespace xlsx;

TEST(Xml, TekstOgAttributtverdier)
{
    // Tab, line feed and carriage return stay; other control characters are not allowed in XML 1.0.
    const std::string tekst = "a<b> & \"c\"\x01\x1f\t\n\r ø";
    std::string innhold, attributt;
    leggTilTekst(innhold, tekst);
    leggTilAttributt(attributt, tekst);
    EXPECT_EQ(innhold, "a&lt;b&gt; &amp; \"c\"\t\n\r ø");
    EXPECT_EQ(attributt, "a&lt;b&gt; &amp; &quot;c&quot;\t\n\r ø");
}

TEST(Xml, LesOgSkrivDokument)
{
    pugi::xml_document d;
    lesXml(d, "<?xml version=\"1.0\" standalone=\"yes\"?>\n<x:a xmlns:x=\"u\">\n  <x:b/><c/></x:a>", medDeklarasjon, "",
           false);
    EXPECT_EQ(skrivXml(d), "<?xml version=\"1.0\" standalone=\"yes\"?><x:a xmlns:x=\"u\"><x:b/><c/></x:a>");
    // The layer's error, with the parser's reason when asked for.
    auto feil = [&d](bool grunn) {
        try {
            lesXml(d, "<a><b></a>", pugi::parse_default, "Ødelagt del: a.xml", grunn);
        } catch (const XlsxFeil& f) {
            return std::string(f.what());
        }
        return std::string("ingen feil");
    };
    EXPECT_EQ(feil(false), "Ødelagt del: a.xml");
    EXPECT_EQ(feil(true), "Ødelagt del: a.xml (Start-end tags mismatch)");
}
