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

// Written parts are checked whole in ArkTest and ArbeidsbokTest; here the layer's error, with the
// parser's reason when asked for.
TEST(Xml, OdelagtDokument)
{
    auto feil = [](bool grunn) {
        try {
            pugi::xml_document d;
            lesXml(d, "<a><b></a>", pugi::parse_default, "a.xml", "Ødelagt del: a.xml", grunn);
        } catch (const XlsxFeil& f) {
            return std::string(f.what());
        }
        return std::string("ingen feil");
    };
    EXPECT_EQ(feil(false), "Ødelagt del: a.xml");
    EXPECT_EQ(feil(true), "Ødelagt del: a.xml (Start-end tags mismatch)");
}
