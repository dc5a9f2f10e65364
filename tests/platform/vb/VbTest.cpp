#include "platform/vb/Vb.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace vb;

TEST(Heltall, HalvTilParOgSekstenBitOverflyt)
{
    for (auto [x, ventet] : {std::pair{0.5, 0}, {1.5, 2}, {2.5, 2}, {-2.5, -2}, {32767.4, 32767}})
        EXPECT_EQ(heltall16(x), ventet) << x;
    for (double x : {32767.5, 40000.0}) EXPECT_THROW(heltall16(x), Feil) << x;
    EXPECT_EQ(heltall16(u"3,5"_s), 4);
    EXPECT_EQ(pluss16(32766), 32767);
    EXPECT_THROW(pluss16(32767), Feil);
}

TEST(Tall, BrukerensTekst)
{
    for (auto [tekst, ventet] : {std::pair{"1,5", 1.5}, {" 1.5E-08 ", 1.5e-8}, {"-3", -3.0}})
        EXPECT_DOUBLE_EQ(tall(QString::fromLatin1(tekst)), ventet) << tekst;
    for (const char* galt : {"", " ", "abc", "1,5x", "inf", "nan", "--1"})
        EXPECT_THROW(tall(QString::fromLatin1(galt)), Feil) << galt;
}

// Val of raw-data fields is RadataTest's; here what no raw-data line there holds, and the value as stored.
TEST(Tall, ValSomLagret)
{
    const std::string mange9 = "0.000" + std::string(400, '9');
    const std::pair<std::string, double> tilfeller[] = {
        {".5", 0.5},
        {"inf", 0},
        {"7E", 7},
        {"abc", 0},
        {"1\t0\r\n", 10},
        // At most 15 significant digits, as an insert statement carries the number.
        {"0.12345678901234567", 0.123456789012346},
        {"-1.2345E-10", -1.2345e-10},
        {"123456789012345678", 123456789012346000.0},
        // The whole field is read, however long, up to the largest double.
        {"1" + std::string(100, '0'), 1e100},
        {" 1 " + std::string(80, '0') + "E-80", 1},
        {"1.7976931348623157E+308", 1.7976931348623157e308},
        {mange9 + "E+310", 1e307}};
    for (const auto& [felt, ventet] : tilfeller) EXPECT_EQ(valLagret(felt), ventet) << felt;
    // Past the double range: too large refused, too small 0; every digit of the exponent counts.
    for (const std::string& felt : {std::string("1E999"), mange9 + "E+312", "1" + std::string(400, '0') + "E+"})
        EXPECT_THROW(valLagret(felt), Feil) << felt;
    for (const std::string& felt :
         {std::string("1E-400"), std::string("-0.0000000001E-390"), "1" + std::string(20, '0') + "E-420",
          "1" + std::string(30, '0') + "E-400", "1" + std::string(35, '0') + "E-390"}) {
        bool forLite = false;
        EXPECT_EQ(valLagret(felt, &forLite), 0) << felt;
        EXPECT_TRUE(forLite) << felt;
    }
}

TEST(Tekster, AntallOgTall)
{
    for (auto [antall, ventet] :
         {std::pair{0, "  "}, {5, "  5"}, {1001, " 1 001"}, {123456, " 123 456"}, {1234567, "1 234 567"}})
        EXPECT_EQ(antallTekst(antall), QString::fromLatin1(ventet)) << antall;
    EXPECT_EQ(tekst(1.5f), u"1,5"_s);
    EXPECT_EQ(tekst(1.234e-10f), u"1,234E-10"_s);
    EXPECT_EQ(sqlTekst(1.234e-10f), u"1.234E-10"_s);
    EXPECT_EQ(tekst(0.1f), u"0,1"_s);
    EXPECT_EQ(tekst(3.0), u"3"_s);
}

TEST(Datoer, TekstOgNokler)
{
    // A whole date-time's key, ISO form and text are in the store's and the searches' known-good results.
    const Dato d = Dato::fra(2012, 11, 23, 14, 5, 31);
    EXPECT_EQ(Dato().generellTekst(), u"00:00:00"_s);
    EXPECT_EQ(Dato::fra(2012, 11, 23).generellTekst(), u"23.11.2012"_s);
    EXPECT_EQ(Dato::fra(2012, 11, 23).fullTekst(), u"23.11.2012 00:00:00"_s);
    EXPECT_EQ(Dato().tidsnokkel(), u"18991230000000"_s);
    for (const Dato& x : {d, Dato::fra(2012, 11, 23), Dato(), Dato::fra(2000, 2, 29, 23, 59, 59)})
        EXPECT_EQ(Dato::fraGenerellTekst(x.generellTekst()), x);
    for (const char* galt : {"31.02.2012", "tull", "24:00:00", "23.11.2012 14.05.31"})
        EXPECT_THROW(Dato::fraGenerellTekst(QString::fromLatin1(galt)), Feil) << galt;
}

// The digits of "YYYY-MM-DD HH:MM:SS" in their places, whatever stands between and after them. Every way
// such a text is no date-time is here; the import leaves a line out for these.
TEST(Datoer, SifreneSinePlasser)
{
    for (const char* tekst : {"2012-11-23 14:05:31", "2012.11.23,14:05:31,1.5", "2012/11/23x14'05:31"})
        EXPECT_EQ(Dato::fraFastePlasser(tekst), Dato::fra(2012, 11, 23, 14, 5, 31)) << tekst;
    EXPECT_EQ(Dato::fraFastePlasser("2012/02/29 23:59:59"), Dato::fra(2012, 2, 29, 23, 59, 59));
    EXPECT_EQ(Dato::fraFastePlasser("2000-02-29 00:00:00"), Dato::fra(2000, 2, 29));
    for (const char* galt : {"2013-02-29 14:05:31", "1900-02-29 14:05:31", "2012-04-31 14:05:31", "2012-13-01 14:05:31",
                             "2012-00-01 14:05:31", "2012-11-00 14:05:31", "2012-11-23 24:00:00", "2012-11-23 14:60:00",
                             "2012-11-23 14:05:60", "0099-12-31 00:00:00", "2012-11-23 14:05:3", "2012-11-23 14:05:3x",
                             " 012-11-23 14:05:31", "xx,yy,1,2,"})
        EXPECT_EQ(Dato::fraFastePlasser(galt), std::nullopt) << galt;
}

TEST(Datoer, MinutterTellesSomGrenser)
{
    const Dato a = Dato::fra(2012, 1, 1, 10, 0, 59);
    EXPECT_EQ(minutterMellom(a, Dato::fra(2012, 1, 1, 10, 1, 0)), 1);
    EXPECT_EQ(minutterMellom(a, Dato::fra(2012, 1, 1, 10, 1, 58)), 1);
    EXPECT_EQ(minutterMellom(Dato::fra(2012, 1, 1, 10, 1, 0), a), -1);
    EXPECT_EQ(sekunderMellom(a, Dato::fra(2012, 1, 1, 10, 1, 10)), 11);
    EXPECT_EQ(a.leggTilMinutter(-10), Dato::fra(2012, 1, 1, 9, 50, 59));
    EXPECT_EQ(a.leggTilMinutter(2.5), a.leggTilMinutter(2));
    EXPECT_EQ(Dato::fra(2012, 12, 31, 23, 59, 0).leggTilMinutter(1), Dato::fra(2013, 1, 1));
}
