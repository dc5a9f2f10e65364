#include "platform/vb/Vb.h"

#include <gtest/gtest.h>

using namespace vb;

TEST(Avrunding, HalvTilPar)
{
    EXPECT_EQ(rundHalvTilPar(0.5), 0);
    EXPECT_EQ(rundHalvTilPar(1.5), 2);
    EXPECT_EQ(rundHalvTilPar(2.5), 2);
    EXPECT_EQ(rundHalvTilPar(-2.5), -2);
    EXPECT_EQ(heltall16(QStringLiteral("3,5")), 4);
}

TEST(Tellere, SekstenBitOverflyt)
{
    EXPECT_EQ(pluss16(32766), 32767);
    EXPECT_THROW(pluss16(32767), Feil);
    EXPECT_EQ(heltall16(32767.4), 32767);
    EXPECT_THROW(heltall16(32767.5), Feil);
    EXPECT_THROW(heltall16(QStringLiteral("40000")), Feil);
}

TEST(Tall, BrukerensTekst)
{
    EXPECT_DOUBLE_EQ(tall(QStringLiteral("1,5")), 1.5);
    EXPECT_DOUBLE_EQ(tall(QStringLiteral(" 1.5E-08 ")), 1.5e-8);
    EXPECT_DOUBLE_EQ(tall(QStringLiteral("-3")), -3);
    for (const char* galt : {"", " ", "abc", "1,5x", "inf", "nan", "--1"})
        EXPECT_THROW(tall(QString::fromLatin1(galt)), Feil) << galt;
}

// Val of raw-data fields is RadataTest's; here what no raw-data line there holds.
TEST(Tall, ValAvEtFelt)
{
    EXPECT_DOUBLE_EQ(val(".5"), 0.5);
    EXPECT_EQ(val("inf"), 0);
    EXPECT_DOUBLE_EQ(val("7E"), 7);
}

TEST(Tall, ValSomLagret)
{
    // A stored value is the number an insert statement carries: at most 15 significant digits.
    EXPECT_EQ(valLagret("0.12345678901234567"), 0.123456789012346);
    EXPECT_EQ(valLagret("-1.2345E-10"), -1.2345e-10);
    EXPECT_EQ(valLagret("abc"), 0);
    EXPECT_EQ(valLagret("123456789012345678"), 123456789012346000.0);
    EXPECT_THROW(valLagret("1E999"), Feil);
    // The whole field is read, however long; past the double range: too large refused, too small 0.
    EXPECT_EQ(valLagret("1" + std::string(100, '0')), 1e100);
    EXPECT_EQ(valLagret(" 1 " + std::string(80, '0') + "E-80"), 1);
    EXPECT_EQ(valLagret("1.7976931348623157E+308"), 1.7976931348623157e308);
    EXPECT_THROW(valLagret("0.000" + std::string(400, '9') + "E+312"), Feil);
    EXPECT_EQ(valLagret("0.000" + std::string(400, '9') + "E+310"), 1e307);
    for (const std::string& felt :
         {std::string("1E-400"), std::string("-0.0000000001E-390"), "1" + std::string(20, '0') + "E-420"}) {
        bool forLite = false;
        EXPECT_EQ(valLagret(felt, &forLite), 0) << felt;
        EXPECT_TRUE(forLite) << felt;
    }
}

TEST(Tekster, AntallMonster)
{
    EXPECT_EQ(antallTekst(0), QStringLiteral("  "));
    EXPECT_EQ(antallTekst(5), QStringLiteral("  5"));
    EXPECT_EQ(antallTekst(1001), QStringLiteral(" 1 001"));
    EXPECT_EQ(antallTekst(123456), QStringLiteral(" 123 456"));
    EXPECT_EQ(antallTekst(1234567), QStringLiteral("1 234 567"));
}

TEST(Tekster, TallIMeldingOgSetning)
{
    EXPECT_EQ(tekst(1.5f), QStringLiteral("1,5"));
    EXPECT_EQ(tekst(1.234e-10f), QStringLiteral("1,234E-10"));
    EXPECT_EQ(sqlTekst(1.234e-10f), QStringLiteral("1.234E-10"));
    EXPECT_EQ(tekst(0.1f), QStringLiteral("0,1"));
    EXPECT_EQ(tekst(3.0), QStringLiteral("3"));
}

TEST(Datoer, TekstOgNokler)
{
    const Dato d = Dato::fra(2012, 11, 23, 14, 5, 31);
    EXPECT_EQ(d.tidsnokkel(), QStringLiteral("20121123140531"));
    EXPECT_EQ(d.iso(), QStringLiteral("2012-11-23 14:05:31"));
    EXPECT_EQ(d.generellTekst(), QStringLiteral("23.11.2012 14:05:31"));
    EXPECT_EQ(Dato().generellTekst(), QStringLiteral("00:00:00"));
    EXPECT_EQ(Dato::fra(2012, 11, 23).generellTekst(), QStringLiteral("23.11.2012"));
    EXPECT_EQ(Dato::fra(2012, 11, 23).fullTekst(), QStringLiteral("23.11.2012 00:00:00"));
    EXPECT_EQ(Dato().tidsnokkel(), QStringLiteral("18991230000000"));
    for (const Dato& x : {d, Dato::fra(2012, 11, 23), Dato(), Dato::fra(2000, 2, 29, 23, 59, 59)})
        EXPECT_EQ(Dato::fraGenerellTekst(x.generellTekst()), x);
    EXPECT_THROW(Dato::fraGenerellTekst(QStringLiteral("31.02.2012")), Feil);
    EXPECT_THROW(Dato::fraGenerellTekst(QStringLiteral("tull")), Feil);
    EXPECT_FALSE(Dato::gyldig(2013, 2, 29, 0, 0, 0));
    EXPECT_FALSE(Dato::gyldig(2012, 1, 1, 24, 0, 0));
}

TEST(Datoer, SifreneSinePlasser)
{
    // The digits of "YYYY-MM-DD HH:MM:SS" in their places, whatever stands between and after them.
    const struct {
        const char* tekst;
        std::optional<Dato> dato;
    } tilfeller[] = {
        {"2012-11-23 14:05:31", Dato::fra(2012, 11, 23, 14, 5, 31)},
        {"2012.11.23,14:05:31,1.5", Dato::fra(2012, 11, 23, 14, 5, 31)},
        {"2012/02/29 23:59:59", Dato::fra(2012, 2, 29, 23, 59, 59)},
        {"2012-11-23 14:60:00", std::nullopt},
        {"0099-12-31 00:00:00", std::nullopt},
        {"2012-11-23 14:05:3", std::nullopt},
        {"2012-11-23 14:05:3x", std::nullopt},
        {" 012-11-23 14:05:31", std::nullopt},
    };
    for (const auto& t : tilfeller) EXPECT_EQ(Dato::fraFastePlasser(t.tekst), t.dato) << t.tekst;
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
