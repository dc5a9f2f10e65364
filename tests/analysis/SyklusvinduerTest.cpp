#include "analysis/Syklusvinduer.h"
#include "app/FrmGraph.h"
#include "felles/MedVindu.h"

#include <QChart>
#include <QChartView>
#include <QMouseEvent>
#include <QTabBar>
#include <QTableWidget>

namespace {

// One row a minute from 14:00 to 19:00, then 19:30 to 19:35. Turning points at minutes 100, 200
// and 360 (where no row lies). Surges of 5E-09 at 95 and 193, desorption peaks of 8E-09 at 165
// and 270, one more surge at 332; the smallest values at the turning points.
std::vector<test::Rad> rader()
{
    std::vector<test::Rad> r;
    const auto verdi = [](int m) {
        switch (m) {
        case 95:
        case 193: return 5e-9;
        case 165:
        case 270: return 8e-9;
        case 332: return 3e-9;
        case 100:
        case 200: return 1e-12;
        default: return 1e-9;
        }
    };
    for (int m = 0; m <= 300; ++m) r.push_back({m * 60, verdi(m)});
    for (int m = 330; m <= 335; ++m) r.push_back({m * 60, verdi(m)});
    return r;
}

const QByteArray Snupunkter = "23.11.2012 15:40:00!23.11.2012 17:20:00!23.11.2012 20:00:00\r\n";

class Syklusvinduer : public test::MedVindu {
protected:
    void SetUp() override
    {
        fyll(rader());
        mappe.skriv(u"SnuPunkter.txt"_s, Snupunkter);
        vindu();
        sett(u"1"_s, u"3"_s, u"10"_s, u"20"_s);
    }
    void sett(const QString& forste, const QString& siste, const QString& foer, const QString& etter)
    {
        f->settTekst(dialogs::Boks::Text4, forste);
        f->settTekst(dialogs::Boks::Text6, siste);
        f->settTekst(dialogs::Boks::Text1, foer);
        f->settTekst(dialogs::Boks::Text2, etter);
    }
};

// The cycles' windows (start minute excluded, end included), their zero points as the combined
// workbook takes them in either mode, and the table that marks the empty window past the data.
TEST_F(Syklusvinduer, VinduerNullpunkterOgTabell)
{
    f->velgAdsorpsjon(true);
    auto bilde = analysis::lesSyklusbilde(f->kontekst());
    ASSERT_TRUE(bilde);
    ASSERT_EQ(bilde->sykluser.size(), 3u);
    const auto& en = bilde->sykluser[0];
    ASSERT_EQ(en.minutter.size(), 30u);
    EXPECT_EQ(en.minutter.front(), -9);
    EXPECT_EQ(en.minutter.back(), 20);
    EXPECT_FLOAT_EQ(en.verdier[4], 5e-9f);  // minute -5
    // Adsorpsjon: Text1 minutes before the surge in the 30 minutes before the turning point.
    EXPECT_EQ(en.null, -15);
    EXPECT_EQ(bilde->sykluser[1].null, -17);
    EXPECT_EQ(bilde->sykluser[2].null, -38);

    const QStringList forventet[] = {
        {u"1"_s, u"23.11.2012 15:40:00"_s, u"30"_s, u"1E-12"_s, u"0,00"_s, u"5E-09"_s, u"−5,00"_s, u"−15,00"_s, {}},
        {u"2"_s, u"23.11.2012 17:20:00"_s, u"30"_s, u"1E-12"_s, u"0,00"_s, u"5E-09"_s, u"−7,00"_s, u"−17,00"_s, {}},
        {u"3"_s,
         u"23.11.2012 20:00:00"_s,
         u"0"_s,
         {},
         {},
         {},
         {},
         u"−38,00"_s,
         u"Ingen rader i vinduet; Vinduet går utenfor dataene"_s},
    };
    const auto tabell = analysis::tabell(*bilde);
    ASSERT_EQ(tabell.size(), 3u);
    for (size_t i = 0; i < tabell.size(); ++i) {
        EXPECT_EQ(tabell[i].celler, forventet[i]) << tabell[i].celler.join('|');
        EXPECT_EQ(tabell[i].merket, i == 2);
        EXPECT_EQ(tabell[i].celler.size(), analysis::tabellOverskrifter().size());
    }

    // Desorpsjon: 10 minutes before the largest value 60 to 140 minutes after the surge.
    f->velgAdsorpsjon(false);
    sett(u"2"_s, u"2"_s, u"10"_s, u"20"_s);
    svar(u"140"_s);
    bilde = analysis::lesSyklusbilde(f->kontekst());
    ASSERT_TRUE(bilde);
    ASSERT_EQ(bilde->sykluser.size(), 1u);
    EXPECT_EQ(bilde->sykluser[0].syklus, 2);
    EXPECT_EQ(bilde->sykluser[0].null, 60);
    EXPECT_TRUE(dialogs.meldinger().isEmpty()) << dialogs.meldinger().join('|');
}

// What the exports stop at stops the view before anything is read, with the exports' messages.
TEST_F(Syklusvinduer, AvvisningerGirEksportenesMeldinger)
{
    const QString Feil = analysis::FeilMelding;
    const struct {
        QString forste, siste, foer, etter;
        bool ads;
        QString periode;  // the answer to the desorption period
        QString melding;
    } tilfeller[] = {
        {u"3"_s, u"2"_s, u"10"_s, u"20"_s, true, {}, Feil},        // Text4 past Text6
        {u"1"_s, u"4"_s, u"10"_s, u"20"_s, true, {}, Feil},        // no fourth turning point
        {u"3"_s, u"3"_s, u"10"_s, u"20"_s, true, {}, Feil},        // the one window is empty
        {u"1"_s, u"2"_s, u"10"_s, u"20"_s, false, u"60"_s, Feil},  // the peak's span is empty
        {u"1"_s, u"2"_s, u"ti"_s, u"20"_s, true, {}, Feil},        // a setting that is no number
    };
    for (const auto& t : tilfeller) {
        sett(t.forste, t.siste, t.foer, t.etter);
        f->velgAdsorpsjon(t.ads);
        if (!t.periode.isEmpty()) svar(t.periode);
        const QStringList foer = dialogs.meldinger();
        EXPECT_FALSE(analysis::lesSyklusbilde(f->kontekst())) << t.forste << t.siste << t.foer;
        EXPECT_EQ(dialogs.meldinger().mid(foer.size()), QStringList{t.melding}) << t.forste << t.siste << t.foer;
    }
    QFile::remove(mappe.sti(u"SnuPunkter.txt"_s));
    EXPECT_FALSE(analysis::lesSyklusbilde(f->kontekst()));
    EXPECT_EQ(dialogs.meldinger().last(), u"Du må først finne antall sykluser"_s);
}

}  // namespace

// The graph window's second tab: the cycles with their table, shifted onto the zero points when
// aligned, the readout naming the cycle under the mouse, and the view saved as PNG and as PDF.
TEST_F(Syklusvinduer, VisningITabellOgBilde)
{
    f->velgAdsorpsjon(true);
    bool vist = false;
    f->settGrafVisning([&](app::FrmGraph& g) {
        vist = true;
        g.show();
        auto* faner = g.findChild<QTabBar*>(u"Visning"_s);
        // A refusal leaves the whole file in view; the next click reads the settings again.
        sett(u"3"_s, u"2"_s, u"10"_s, u"20"_s);
        faner->setCurrentIndex(1);
        EXPECT_EQ(faner->currentIndex(), 0);
        EXPECT_FALSE(g.sykluser());
        EXPECT_EQ(dialogs.meldinger(), QStringList{analysis::FeilMelding});
        sett(u"1"_s, u"3"_s, u"10"_s, u"20"_s);
        faner->setCurrentIndex(1);
        ASSERT_TRUE(g.sykluser());
        auto* tabell = g.findChild<QTableWidget*>(u"Syklustabell"_s);
        ASSERT_EQ(tabell->rowCount(), 3);
        EXPECT_TRUE(tabell->isVisible());
        EXPECT_EQ(tabell->item(1, 1)->text(), u"23.11.2012 17:20:00"_s);
        EXPECT_NE(tabell->item(2, 0)->background(), tabell->item(0, 0)->background());  // cycle 3 marked

        // From the turning points: minute −9 to 20; aligned: the zero points at 0, cycle 2 from −9 + 17.
        EXPECT_EQ(g.tidsomrade(), QPointF(-9, 20));
        QChartView* visning = g.findChild<QChartView*>(u"MSChart"_s);
        const auto iVisning = [&](QPointF verdi) {
            return visning->mapFromScene(g.diagram()->mapToScene(g.diagram()->mapToPosition(verdi)));
        };
        const QPointF over = iVisning({-7, 5e-9});  // cycle 2's surge, 7 minutes before its turning point
        QMouseEvent flytt(QEvent::MouseMove, over, visning->mapToGlobal(over), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(visning->viewport(), &flytt);
        EXPECT_EQ(g.avlesningTekst(), u"Syklus 2    −7,00 min fra snupunktet    5E-09"_s);

        g.settJustert(true);
        EXPECT_EQ(g.tidsomrade(), QPointF(0, 37));
        EXPECT_EQ(g.kurver()[1].forskyvning, -17);

        for (const QString& navn : {u"bilde.png"_s, u"bilde.pdf"_s}) {
            ASSERT_TRUE(g.lagreBilde(mappe.sti(navn))) << navn;
            EXPECT_TRUE(mappe.les(navn).startsWith(navn.endsWith(u"pdf"_s) ? "%PDF" : "\x89PNG")) << navn;
        }
        faner->setCurrentIndex(0);
        EXPECT_FALSE(tabell->isVisible());
        EXPECT_EQ(g.tidsomrade().y(), 335);
    });
    f->Command8_Click();
    EXPECT_TRUE(vist);
}
