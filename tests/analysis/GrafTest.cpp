#include "analysis/Graf.h"
#include "app/FrmGraph.h"
#include "felles/MedVindu.h"
#include "platform/db/Masseinnsetting.h"

#include <QPushButton>

namespace {

// What the graph window held when it was shown; its title and button, and whether Exit closed it.
struct Vist {
    int rader = -1;
    std::vector<double> verdier;
    QString vindu;
};

class Graf : public test::MedVindu {
protected:
    // Adds rows up to n in all; the value in C is the row number times 1e-6.
    void fyllTil(int n)
    {
        db::Database d(mappe.sti(u"Data.mdb"_s));
        db::Transaksjon t(d);
        std::vector<double> c;
        while (fylt < n) c.push_back(++fylt * 1e-6);
        std::vector<db::Masseinnsetting::Rad> rader;
        for (const double& x : c) rader.push_back({{"2012-11-23 14:00:00"}, &x, 1});
        db::Masseinnsetting(d, "INSERT INTO DataLinjer (DatoTid, C)", 1, 1).settInn(rader);
        t.fullfor();
    }
    Vist vis()
    {
        Vist v;
        f->settGrafVisning([&](app::FrmGraph& g) {
            g.show();
            auto* exit = g.findChild<QPushButton*>(u"Command1"_s);
            exit->click();
            v = {g.graf().rader, g.graf().verdier,
                 g.windowTitle() + '|' + exit->text() + (g.isVisible() ? "" : "|lukket")};
        });
        f->Command8_Click();
        return v;
    }
    int fylt = 0;
};

TEST(Provesteg, RundesTilNaermesteMedHalvTilPar)
{
    for (auto [rader, steg] : {std::pair{30000, 1}, {44999, 1}, {45000, 2}, {75000, 2}, {105000, 4}, {1000000, 33}})
        EXPECT_EQ(analysis::provesteg(rader), steg) << rader;
}

TEST_F(Graf, HoystTrettiTusenPunkterAvHverNteRad)
{
    vindu();
    // 1,5 times 30000 takes every second row and leaves the rows past 22500 without a value;
    // 2,5 times rounds to every second row too and shows only the first 60000 rows.
    const struct {
        int rader, punkter;
        float forste, siste;
    } tilfeller[] = {
        {30000, 30000, 1e-6f, 30000e-6f}, {45000, 22500, 2e-6f, 45000e-6f}, {75000, 30000, 2e-6f, 60000e-6f}};
    for (const auto& t : tilfeller) {
        SCOPED_TRACE(t.rader);
        fyllTil(t.rader);
        const Vist v = vis();
        EXPECT_EQ(v.rader, 30000);
        ASSERT_EQ(v.verdier.size(), size_t(t.punkter));
        EXPECT_FLOAT_EQ(v.verdier[0], t.forste);
        EXPECT_FLOAT_EQ(v.verdier.back(), t.siste);
    }
}

TEST_F(Graf, VerdierOverEnKolonnerOgTommeTabeller)
{
    EXPECT_EQ(vindu().Command8_Click(), Utfall::Avvist);  // an empty table
    fyll({{0, 0.5}, {1, 1.0}, {2, 1.0001}, {3, 3}});
    f->velgKolonne(1);  // I, outside C to H: drawn as zeros
    EXPECT_EQ(vis().verdier, std::vector<double>(4, 0.0));
    f->velgKolonne(0);  // every value above 1 gets a box of its own
    const Vist v = vis();
    EXPECT_EQ(v.verdier.size(), 4u);
    EXPECT_EQ(v.vindu, u"Graf|Exit|lukket"_s);
    EXPECT_EQ(dialogs.meldinger(), (QStringList{u"Ingen graf kan vises"_s, u"1,0001"_s, u"3"_s}));
    EXPECT_EQ(dialogs.dialoger()[1].ikon, dialogs::Ikon::Ingen);
    EXPECT_EQ(dialogs.dialoger()[1].tittel, dialogs::ProgramTittel);

    for (int k : {2, 3}) {  // a letter the table lacks, an entry without a letter
        f->velgKolonne(k);
        EXPECT_EQ(vis().rader, -1);
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(u"Ingen graf kan vises: "_s)) << k;
    }
    QFile::remove(mappe.sti(u"Kolonner.txt"_s));
    EXPECT_EQ(vindu({}).Command8_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), u"Ingen data importert"_s);
}

}  // namespace
