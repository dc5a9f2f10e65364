#include "analysis/FrmGraph.h"
#include "analysis/Graf.h"
#include "AnalyseFelles.h"

#include <QPushButton>
#include <sqlite3.h>

namespace {

// What the graph window held when it was shown.
struct Vist {
    int rader = -1, punkter = -1;
    std::vector<std::optional<double>> verdier;
    QString tittel;
};

class Graf : public test::MedVindu {
protected:
    // n rows whose value in C is their row number times 1e-6.
    void fyllRader(int n)
    {
        db::Database d(mappe.sti(QStringLiteral("Data.mdb")));
        db::Transaksjon t(d);
        sqlite3_stmt* s = d.forbered("INSERT INTO DataLinjer (DatoTid, C) VALUES ('2012-11-23 14:00:00', ?)");
        for (int i = 1; i <= n; ++i) {
            sqlite3_bind_double(s, 1, i * 1e-6);
            sqlite3_step(s);
            sqlite3_reset(s);
        }
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
            v.tittel = g.windowTitle();
        });
        f->Command8_Click();
        return v;
    }
};

TEST(Provesteg, RundesTilNaermesteMedHalvTilPar)
{
    EXPECT_EQ(analyse::provesteg(30000), 1);
    EXPECT_EQ(analyse::provesteg(44999), 1);
    EXPECT_EQ(analyse::provesteg(45000), 2);   // 1,5 -> 2
    EXPECT_EQ(analyse::provesteg(75000), 2);   // 2,5 -> 2
    EXPECT_EQ(analyse::provesteg(105000), 4);  // 3,5 -> 4
    EXPECT_EQ(analyse::provesteg(1000000), 33);
}

TEST_F(Graf, TrettiTusenRaderBlirHverSinPunkt)
{
    fyllRader(30000);
    vindu();
    const Vist v = vis();
    EXPECT_EQ(v.tittel, QStringLiteral("Graf"));
    EXPECT_EQ(v.rader, 30000);
    EXPECT_EQ(v.punkter, 30000);
    EXPECT_FLOAT_EQ(*v.verdier.back(), 30000e-6f);
}

TEST_F(Graf, EnOgEnHalvGangTrettiTusenGirHverAndreRad)
{
    fyllRader(45000);
    vindu();
    const Vist v = vis();
    EXPECT_EQ(v.rader, 30000);
    EXPECT_EQ(v.punkter, 22500);  // the rows past 22500 get no value
    EXPECT_FLOAT_EQ(*v.verdier[0], 2e-6f);
    EXPECT_FLOAT_EQ(*v.verdier[22499], 45000e-6f);
    EXPECT_FALSE(v.verdier[22500].has_value());
}

TEST_F(Graf, ToOgEnHalvGangTrettiTusenViserBareDeForsteSekstiTusen)
{
    fyllRader(75000);
    vindu();
    const Vist v = vis();
    EXPECT_EQ(v.punkter, 30000);
    EXPECT_FLOAT_EQ(*v.verdier.back(), 60000e-6f);
}

TEST_F(Graf, VerdierOverEnGirHverSinMelding)
{
    fyll({{0, 0.5}, {1, 1.0}, {2, 1.0001}, {3, 3}});
    vindu();
    const Vist v = vis();
    EXPECT_EQ(v.punkter, 4);
    EXPECT_EQ(dialogs.meldinger(), (QStringList{QStringLiteral("1,0001"), QStringLiteral("3")}));
    EXPECT_EQ(dialogs.dialoger()[0].ikon, ui::Ikon::Ingen);
    EXPECT_EQ(dialogs.dialoger()[0].tittel, ui::ProgramTittel);
}

TEST_F(Graf, KolonnerUtenforCTilHOgFeilOgTomTabell)
{
    fyll({{0, 0.5}, {1, 0.7}});
    vindu().velgKolonne(1);  // I: drawn as zeros
    Vist v = vis();
    EXPECT_EQ(v.punkter, 2);
    EXPECT_EQ(*v.verdier[1], 0.0);

    for (int k : {2, 3}) {  // a letter the table lacks, an entry without a letter
        f->velgKolonne(k);
        v = vis();
        EXPECT_EQ(v.rader, -1);
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(QStringLiteral("Ingen graf kan vises: ")));
    }

    test::Programmappe tom;
    tom.skriv(QStringLiteral("Kolonner.txt"), "CO2                    [C]\r\n");
    ui::SkriptDialogs d2;
    Form1 tomVindu(tom.mappe(), d2);
    EXPECT_EQ(tomVindu.Command8_Click(), Utfall::Avvist);
    EXPECT_EQ(d2.meldinger(), QStringList{QStringLiteral("Ingen graf kan vises")});
    test::Programmappe ingen;
    Form1 utenKolonner(ingen.mappe(), d2);
    EXPECT_EQ(utenKolonner.Command8_Click(), Utfall::Avvist);
    EXPECT_EQ(d2.meldinger().last(), QStringLiteral("Ingen data importert"));
}

TEST_F(Graf, ExitLukkerVinduet)
{
    fyll({{0, 0.5}, {1, 0.7}});
    vindu();
    bool lukket = false;
    f->settModalVisning([&](QDialog& vindu) {
        vindu.show();
        auto* exit = vindu.findChild<QPushButton*>(QStringLiteral("Command1"));
        ASSERT_NE(exit, nullptr);
        EXPECT_EQ(exit->text(), QStringLiteral("Exit"));
        exit->click();
        lukket = !vindu.isVisible();
    });
    EXPECT_EQ(f->Command8_Click(), Utfall::Ferdig);
    EXPECT_TRUE(lukket);
}

} // namespace
