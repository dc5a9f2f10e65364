#include "platform/xlsx/Formel.h"

#include "Hjelpere.h"
#include "felles/Felles.h"

#include <gtest/gtest.h>

#include <charconv>
#include <map>

using namespace xlsx::formel;

namespace {

// A sheet of plain values (formula cells are the workbook's business).
struct Celler : Kilde {
    std::map<std::pair<int, int>, Resultat> verdier;

    Resultat celle(int rad, int kol) override
    {
        auto v = verdier.find({rad, kol});
        return v == verdier.end() ? Resultat{} : v->second;
    }
    void omrade(int r1, int k1, int r2, int k2, const std::function<void(const Resultat&)>& hver) override
    {
        for (int r = r1; r <= r2; ++r)
            for (int k = k1; k <= k2; ++k)
                if (Resultat v = celle(r, k); v.art != Resultat::Tom) hver(v);
    }
    static std::pair<int, int> pos(const char* adresse)
    {
        int r = 0, k = 0;
        EXPECT_TRUE(lesAdresse(adresse, r, k)) << adresse;
        return {r, k};
    }
    // What a formula standing in Z99 gives, as text: a number in its shortest form, a text in single
    // quotes, TRUE or FALSE, or an error's code followed by "usikker" when it is never stored as a value.
    std::string vis(std::string_view formel)
    {
        const Resultat v = beregn(*Tolkelager().hent(formel, 99, 26), *this, 99, 26);
        char tall[32];
        switch (v.art) {
        case Resultat::Tom: return "";
        case Resultat::Tall:
            return std::string(tall, std::to_chars(tall, tall + sizeof tall, v.tall, std::chars_format::general).ptr);
        case Resultat::Tekst: return "'" + v.tekst + "'";
        case Resultat::Logisk: return v.tall ? "TRUE" : "FALSE";
        case Resultat::Feil: return v.tekst + (v.usikker ? " usikker" : "");
        }
        return "?";
    }
};

// One sheet for every case: numbers, texts and a time text.
Celler ark()
{
    Celler c;
    for (auto [adresse, x] :
         {std::pair{"$G$3", 1.0}, {"G4", 2.0}, {"G57", 4.0}, {"J4", 1.0}, {"J5", 10.0}, {"$B$1", 100.0}})
        c.verdier[Celler::pos(adresse)] = Resultat::nummer(x);
    for (auto [adresse, t] : {std::pair{"G5", "tekst"}, {"H1", "abc"}, {"H2", "2012/11/23 ,23:59:30,1."}})
        c.verdier[Celler::pos(adresse)] = Resultat::streng(t);
    return c;
}

}  // namespace

// The rules of the language, case by case in gull/formler.txt: each formula with what it gives, and why it is there.
TEST(Formel, VerdierTeksterOgFeil)
{
    Celler c = ark();
    QString ut;
    for (const QString& linje :
         QString::fromStdString(test::data("gull/formler.txt")).split('\n', Qt::SkipEmptyParts)) {
        const std::string formel = linje.section(QStringLiteral(" => "), 0, 0).toStdString();
        ut += linje.startsWith('#') ? linje : QString::fromStdString(formel + " => " + c.vis(formel));
        ut += '\n';
    }
    test::sjekkGull(QStringLiteral("platform/xlsx/gull/formler.txt"), ut);
}

TEST(Formel, TekstForm)
{
    // Names in capitals; a blank stays only between two operands, where it is the intersection.
    EXPECT_EQ(normaliser("=IF(a1=\"x y\",1,0)"), "IF(A1=\"x y\",1,0)");
    EXPECT_EQ(normaliser("= sum(a1:b2 b2:c3) + 1 x \"s\""), "SUM(A1:B2 B2:C3)+1 X \"s\"");
    EXPECT_EQ(flytt("B2*2+$C$1+C$1+$C1", 2, 1), "C4*2+$C$1+D$1+$C3");
    EXPECT_EQ(flytt("A1", -1, 0), "#REF!");
    int r = 0, k = 0;
    EXPECT_TRUE(lesAdresse("$AB$12", r, k));
    EXPECT_EQ(std::pair(r, k), std::pair(12, 28));
    EXPECT_TRUE(lesAdresse(" XFD1048576 ", r, k));  // the last cell of a sheet
    for (const char* galt : {"A0", "B2:C3", "XFE1", "A1048577", "ABCD1", "1A", "$"})
        EXPECT_FALSE(lesAdresse(galt, r, k)) << galt;
    std::string ut;
    leggTilAdresse(ut, 1048576, 16384);
    leggTilAdresse(ut, 7, 27, true, true);
    leggTilTall(ut, 0.1 + 0.2);
    EXPECT_EQ(ut, "XFD1048576$AA$70.30000000000000004");
}

TEST(Formel, LagerDelerFormPaTversAvRader)
{
    // The same shape in two rows gives one parsed form that reads each row's own cells.
    Celler c = ark();
    Tolkelager lager;
    auto f4 = lager.hent("=J4+$B$1", 4, 3), f5 = lager.hent("=J5+$B$1", 5, 3);
    EXPECT_EQ(f4, f5);
    EXPECT_DOUBLE_EQ(beregn(*f4, c, 4, 3).tall, 101);
    EXPECT_DOUBLE_EQ(beregn(*f5, c, 5, 3).tall, 110);
    // A fixed row, or another function name, is another shape.
    EXPECT_NE(lager.hent("=J$4+$B$1", 5, 3), f5);
    EXPECT_NE(lager.hent("=LOG10(J5)", 5, 3), lager.hent("=LOG11(J6)", 6, 3));
}

// Formulas of any length are computed without deep recursion; nesting is bounded with an error.
TEST(Formel, LangeOgDypeFormler)
{
    Celler c = ark();
    std::string minus(100000, '-');
    EXPECT_EQ(c.vis(minus + "3"), "3");
    EXPECT_EQ(c.vis("-" + minus + "G4%%"), "-0.0002");
    std::string kjede = "0";
    for (int i = 0; i < 100000; ++i) kjede += "+G4";
    EXPECT_EQ(c.vis(kjede), "200000");
    // 100 levels are read, more are refused with the cell and the limit named.
    const auto nestet = [](int n) { return std::string(n, '(') + "1" + std::string(n, ')'); };
    EXPECT_EQ(c.vis(nestet(50)), "1");
    EXPECT_EQ(c.vis("SUM(" + nestet(99) + ")"), "1");
    try {
        c.vis(nestet(3000));
        ADD_FAILURE() << "3000 nivåer ble lest";
    } catch (const xlsx::XlsxFeil& e) {
        EXPECT_STREQ(e.what(), "Formelen i Z99 har parenteser eller funksjoner nestet i mer enn 100 nivåer");
    }
    EXPECT_THROW(c.vis("SUM(" + nestet(100) + ")"), xlsx::XlsxFeil);
}
