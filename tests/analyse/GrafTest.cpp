#include "analysis/FrmGraph.h"
#include "analysis/Graf.h"
#include "AnalyseFelles.h"

#include <QPushButton>
#include <sqlite3.h>

namespace {

// What the graph window held when it was shown, and whether its Exit button closed it.
struct Vist {
    int rader = -1, punkter = -1;
    std::vector<std::optional<double>> verdier;
    QString tittelOgExit;
    bool lukket = false;
};

class Graf : public test::MedVindu {
protected:
    // Adds rows up to n in all; the value in C is the row number times 1e-6.
    void fyllTil(int n)
    {
        db::Database d(mappe.sti(u"Data.mdb"_s));
        db::Transaksjon t(d);
        sqlite3_stmt* s = d.forbered("INSERT INTO DataLinjer (DatoTid, C) VALUES ('2012-11-23 14:00:00', ?)");
        for (; fylt < n; sqlite3_reset(s)) sqlite3_bind_double(s, 1, ++fylt * 1e-6), sqlite3_step(s);
        sqlite3_finalize(s);
        t.fullfor();
    }
    Vist vis()
    {
        Vist v;
        f->settModalVisning([&](QDialog& vindu) {
            auto& g = dynamic_cast<analyse::FrmGraph&>(vindu);
            v.rader = g.radAntall();
            v.punkter = g.punkter();
            for (int i = 1; i <= g.radAntall(); ++i) v.verdier.push_back(g.verdi(i));
            g.show();
            auto* exit = g.findChild<QPushButton*>(u"Command1"_s);
            v.tittelOgExit = g.windowTitle() + '|' + exit->text();
            exit->click();
            v.lukket = !g.isVisible();
        });
        f->Command8_Click();
        return v;
    }
    int fylt = 0;
};

TEST(Provesteg, RundesTilNaermesteMedHalvTilPar)
{
    for (auto [rader, steg] : {std::pair{30000, 1}, {44999, 1}, {45000, 2}, {75000, 2}, {105000, 4}, {1000000, 33}})
        EXPECT_EQ(analyse::provesteg(rader), steg) << rader;
}

TEST_F(Graf, HoystTrettiTusenPunkterAvHverNteRad)
{
    vindu();
    // 1,5 times 30000 takes every second row and leaves the rows past 22500 without a value;
    // 2,5 times rounds to every second row too and shows only the first 60000 rows.
    const struct { int rader, punkter; float forste, siste; } tilfeller[] = {
        {30000, 30000, 1e-6f, 30000e-6f}, {45000, 22500, 2e-6f, 45000e-6f}, {75000, 30000, 2e-6f, 60000e-6f}};
    for (const auto& t : tilfeller) {
        SCOPED_TRACE(t.rader);
        fyllTil(t.rader);
        const Vist v = vis();
        EXPECT_EQ(v.rader, 30000);
        EXPECT_EQ(v.punkter, t.punkter);
        EXPECT_FLOAT_EQ(*v.verdier[0], t.forste);
        EXPECT_FLOAT_EQ(*v.verdier[t.punkter - 1], t.siste);
        EXPECT_FALSE(t.punkter < v.rader && v.verdier[t.punkter].has_value());
    }
}

TEST_F(Graf, VerdierOverEnKolonnerOgTommeTabeller)
{
    fyll({{0, 0.5}, {1, 1.0}, {2, 1.0001}, {3, 3}});
    vindu().velgKolonne(1);  // I, outside C to H: drawn as zeros
    EXPECT_EQ(vis().verdier, (std::vector<std::optional<double>>{0.0, 0.0, 0.0, 0.0}));
    EXPECT_TRUE(dialogs.meldinger().isEmpty());

    f->velgKolonne(0);  // every value above 1 gets a box of its own
    const Vist v = vis();
    EXPECT_EQ(v.punkter, 4);
    EXPECT_EQ(dialogs.meldinger(), (QStringList{u"1,0001"_s, u"3"_s}));
    EXPECT_EQ(dialogs.dialoger()[0].ikon, ui::Ikon::Ingen);
    EXPECT_EQ(dialogs.dialoger()[0].tittel, ui::ProgramTittel);
    EXPECT_EQ(v.tittelOgExit, u"Graf|Exit"_s);
    EXPECT_TRUE(v.lukket);

    for (int k : {2, 3}) {  // a letter the table lacks, an entry without a letter
        f->velgKolonne(k);
        EXPECT_EQ(vis().rader, -1);
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(u"Ingen graf kan vises: "_s));
    }
    test::Programmappe tom;
    tom.skriv(u"Kolonner.txt"_s, "CO2                    [C]\r\n");
    ui::SkriptDialogs d2;
    EXPECT_EQ(Form1(tom.mappe(), d2).Command8_Click(), Utfall::Avvist);
    test::Programmappe ingen;
    EXPECT_EQ(Form1(ingen.mappe(), d2).Command8_Click(), Utfall::Avvist);
    EXPECT_EQ(d2.meldinger(), (QStringList{u"Ingen graf kan vises"_s, u"Ingen data importert"_s}));
}

} // namespace
