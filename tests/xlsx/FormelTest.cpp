#include "platform/xlsx/Formel.h"

#include <gtest/gtest.h>

#include <map>

using namespace xlsx::formel;

namespace {

// A sheet of plain values, and formulas computed through the same source.
struct Celler : Kilde {
    std::map<std::pair<int, int>, Resultat> verdier;
    std::map<std::pair<int, int>, std::string> formler;
    std::map<std::pair<int, int>, bool> underveis;

    Resultat celle(int rad, int kol) override {
        auto f = formler.find({rad, kol});
        if (f != formler.end()) {
            if (underveis[{rad, kol}]) return Resultat::feil("#REF!", true);
            underveis[{rad, kol}] = true;
            Resultat r = beregn(*tolk(f->second, rad, kol), *this, rad, kol);
            underveis[{rad, kol}] = false;
            return r;
        }
        auto v = verdier.find({rad, kol});
        return v == verdier.end() ? Resultat{} : v->second;
    }
    void omrade(int r1, int k1, int r2, int k2, const std::function<void(const Resultat&)>& hver) override {
        for (int r = r1; r <= r2; ++r)
            for (int k = k1; k <= k2; ++k)
                if (Resultat v = celle(r, k); v.art != Resultat::Tom) hver(v);
    }
    void tall(const char* adresse, double x) { verdier[pos(adresse)] = Resultat::nummer(x); }
    void tekst(const char* adresse, const char* s) { verdier[pos(adresse)] = Resultat::streng(s); }
    static std::pair<int, int> pos(const char* adresse) {
        int r = 0, k = 0;
        EXPECT_TRUE(lesAdresse(adresse, r, k)) << adresse;
        return {r, k};
    }
    Resultat i(const char* formel, const char* adresse = "Z99") {
        auto [r, k] = pos(adresse);
        return beregn(*tolk(formel, r, k), *this, r, k);
    }
    double x(const char* formel, const char* adresse = "Z99") {
        Resultat v = i(formel, adresse);
        EXPECT_EQ(v.art, Resultat::Tall) << formel << " gave " << v.tekst;
        return v.tall;
    }
};

} // namespace

TEST(Formel, RegneartOgRekkefolge)
{
    Celler c;
    EXPECT_DOUBLE_EQ(c.x("=1+2*3"), 7);
    EXPECT_DOUBLE_EQ(c.x("(1+2)*3"), 9);
    EXPECT_DOUBLE_EQ(c.x("2^3^2"), 64);  // left to right
    EXPECT_DOUBLE_EQ(c.x("-2^2"), 4);    // the sign binds first
    EXPECT_DOUBLE_EQ(c.x("10-4-3"), 3);
    EXPECT_DOUBLE_EQ(c.x("7/2"), 3.5);
    EXPECT_DOUBLE_EQ(c.x("1.5E-10*2"), 3e-10);
    EXPECT_DOUBLE_EQ(c.x("50%"), 0.5);
    EXPECT_EQ(c.i("1/0").tekst, "#DIV/0!");
    EXPECT_EQ(c.i("(1+").tekst, "#NAME?");
    EXPECT_TRUE(c.i("(1+").usikker);
}

TEST(Formel, CellerOgOmrader)
{
    Celler c;
    c.tall("D40", 5e-10);
    c.tall("D41", 3e-10);
    c.tall("$G$3", 1);
    c.tall("G4", 2);
    c.tekst("G5", "tekst");
    c.tall("G57", 4);
    // The program's own formula texts, blanks and lower case as it writes them.
    EXPECT_DOUBLE_EQ(c.x("= abs((D40 -D41)/2)"), 1e-10);
    EXPECT_DOUBLE_EQ(c.x("= abs((D41-D40)/2)"), 1e-10);
    EXPECT_DOUBLE_EQ(c.x("= abs((D3-D3)/2)"), 0);
    EXPECT_DOUBLE_EQ(c.x("= sum(G3:G57)"), 7);      // text and empty cells left out
    EXPECT_DOUBLE_EQ(c.x("=SUM(G57:G3)"), 7);       // corners in any order
    EXPECT_DOUBLE_EQ(c.x("=AVERAGE(G3:G57)"), 7.0 / 3);
    EXPECT_DOUBLE_EQ(c.x("=MIN(G3:G57,0.5)"), 0.5);
    EXPECT_DOUBLE_EQ(c.x("=max($G$3:G4, 3)"), 3);
    EXPECT_DOUBLE_EQ(c.x("=A1+1"), 1);              // empty counts as 0
    EXPECT_EQ(c.i("=G5+1").tekst, "#VALUE!");       // text in arithmetic
    EXPECT_EQ(c.i("=AVERAGE(A1:A5)").tekst, "#DIV/0!");
    EXPECT_EQ(c.i("=Ark2!A1").art, Resultat::Feil); // other sheets are not resolved
    EXPECT_TRUE(c.i("=Ark2!A1").usikker);
    EXPECT_TRUE(c.i("=FINNESIKKE(1)").usikker);
}

TEST(Formel, SammenligningOgHvis)
{
    Celler c;
    c.tekst("A1", "abc");
    c.tall("A2", 2);
    EXPECT_DOUBLE_EQ(c.x("=IF(A2>1,10,20)"), 10);
    EXPECT_DOUBLE_EQ(c.x("=IF(A2<=1,10,20)"), 20);
    EXPECT_DOUBLE_EQ(c.x("=IF(A1=\"ABC\",1,0)"), 1);    // text compares without case
    EXPECT_DOUBLE_EQ(c.x("=IF(A3=\"\",1,0)"), 1);        // an empty cell equals ""
    EXPECT_DOUBLE_EQ(c.x("=IF(A3=0,1,0)"), 1);           // ... and 0
    EXPECT_DOUBLE_EQ(c.x("=IF(A1<>A2,1,0)"), 1);
    EXPECT_EQ(c.i("=IF(A2>5,1)").art, Resultat::Logisk);
    EXPECT_DOUBLE_EQ(c.x("=IF(A2>1,5,1/0)"), 5);         // the branch not taken is not computed
    EXPECT_EQ(c.i("=IF(A3=\"\",NA(),1)").tekst, "#N/A");
    EXPECT_FALSE(c.i("=NA()").usikker);
}

TEST(Formel, TidFraTidstekst)
{
    Celler c;
    c.tekst("A2", "2012/11/23 ,23:59:30,1.");
    c.tekst("A3", "2012/11/24 ,00:00:15,1.");
    EXPECT_EQ(c.i("=MID(A2,13,8)").tekst, "23:59:30");
    EXPECT_DOUBLE_EQ(c.x("=VALUE(MID(A2,1,4))"), 2012);
    EXPECT_DOUBLE_EQ(c.x("=DATE(2012,11,23)"), 41236);
    EXPECT_DOUBLE_EQ(c.x("=DATE(2012,13,1)"), c.x("=DATE(2013,1,1)"));
    EXPECT_DOUBLE_EQ(c.x("=TIME(12,0,0)"), 0.5);
    EXPECT_NEAR(c.x("=(DATE(2012,11,24)+TIME(0,0,15)-(DATE(2012,11,23)+TIME(23,59,30)))*1440"), 0.75, 1e-8);
    EXPECT_EQ(c.i("=VALUE(\"x\")").tekst, "#VALUE!");
    EXPECT_EQ(c.i("=MID(\"CO₂-nivå\",3,5)").tekst, "₂-niv");
}

TEST(Formel, KjederOgSirkler)
{
    Celler c;
    c.tall("C3", 2);
    c.formler[Celler::pos("D3")] = "=C3*2";
    c.formler[Celler::pos("E3")] = "=D3+1";
    EXPECT_DOUBLE_EQ(c.x("=E3*10"), 50);
    c.formler[Celler::pos("F1")] = "=F2+1";
    c.formler[Celler::pos("F2")] = "=F1+1";
    Resultat r = c.i("=F1");
    EXPECT_EQ(r.art, Resultat::Feil);
    EXPECT_TRUE(r.usikker); // a circular reference is never stored as a value
}

TEST(Formel, TekstForm)
{
    EXPECT_EQ(normaliser("= abs((D40 -D41)/2)"), "ABS((D40-D41)/2)");
    EXPECT_EQ(normaliser("= sum(G3:G57)"), "SUM(G3:G57)");
    EXPECT_EQ(normaliser("=IF(a1=\"x y\",1,0)"), "IF(A1=\"x y\",1,0)");
    EXPECT_EQ(flytt("B2*2+$C$1+C$1+$C1", 2, 1), "C4*2+$C$1+D$1+$C3");
    EXPECT_EQ(flytt("A1", -1, 0), "#REF!");
    int r = 0, k = 0;
    EXPECT_TRUE(lesAdresse("$AB$12", r, k));
    EXPECT_EQ(r, 12);
    EXPECT_EQ(k, 28);
    EXPECT_FALSE(lesAdresse("A0", r, k));
    EXPECT_FALSE(lesAdresse("B2:C3", r, k));
    EXPECT_EQ(kolonneNavn(16384), "XFD");
    EXPECT_EQ(tallTekst(230.5), "230.5");
    EXPECT_EQ(tallTekst(1e-13), "1e-13");
    EXPECT_EQ(tallTekst(0.1 + 0.2), "0.30000000000000004");
}

TEST(Formel, LagerDelerFormPaTversAvRader)
{
    // The same shape in two rows gives one parsed form that reads each row's own cells.
    Celler c;
    c.tall("A2", 1);
    c.tall("A3", 10);
    c.tall("$B$1", 100);
    Tolkelager lager;
    auto f2 = lager.hent("=A2+$B$1", 2, 3);
    auto f3 = lager.hent("=A3+$B$1", 3, 3);
    EXPECT_EQ(f2, f3);
    EXPECT_DOUBLE_EQ(beregn(*f2, c, 2, 3).tall, 101);
    EXPECT_DOUBLE_EQ(beregn(*f3, c, 3, 3).tall, 110);
    // A fixed row, or another function name, is another shape.
    EXPECT_NE(lager.hent("=A$2+$B$1", 3, 3), f3);
    EXPECT_NE(lager.hent("=LOG10(A3)", 3, 3), lager.hent("=LOG11(A4)", 4, 3));
}
