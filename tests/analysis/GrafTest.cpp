#include "analysis/Graf.h"
#include "app/FrmGraph.h"
#include "felles/Eksportmappe.h"
#include "platform/db/Masseinnsetting.h"

#include <QChart>
#include <QPushButton>
#include <QScatterSeries>

namespace {

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
    // What the command hands the graph window, and the window's title and button and whether Exit
    // closed it (nothing when no window was shown).
    std::pair<dialogs::Graf, QString> vis()
    {
        std::pair<dialogs::Graf, QString> v;
        f->settGrafVisning([&](app::FrmGraph& g) {
            g.show();
            auto* exit = g.findChild<QPushButton*>(u"Command1"_s);
            exit->click();
            v = {g.graf(), g.windowTitle() + '|' + exit->text() + (g.isVisible() ? "" : "|lukket")};
        });
        f->Command8_Click();
        return v;
    }
    int fylt = 0;
};

// The marks of a graph as text: search start, threshold, cycle@minute, cycle:from-to.
QString merker(const dialogs::Graf& g)
{
    QStringList t;
    if (g.sokStart) t << u"start %1"_s.arg(*g.sokStart);
    if (g.terskel) t << u"terskel %1"_s.arg(*g.terskel);
    for (const auto& s : g.snupunkter) t << u"%1@%2"_s.arg(s.syklus).arg(s.minutt);
    for (const auto& u : g.utsnitt) t << u"%1:%2-%3"_s.arg(u.syklus).arg(u.fra).arg(u.til);
    return t.join(' ');
}

TEST_F(Graf, HoystTrettiTusenPunkterAvHverNteRad)
{
    vindu();
    // 1,5 times 30000 takes every second row and leaves the rows past 22500 without a value;
    // 2,5 times rounds to every second row too and shows only the first 60000 rows.
    // Rows in the table, points drawn, the first and the last value drawn.
    for (auto [rader, punkter, forste, siste] : {std::tuple{30000, 30000u, 1e-6f, 30000e-6f},
                                                 {45000, 22500u, 2e-6f, 45000e-6f},
                                                 {75000, 30000u, 2e-6f, 60000e-6f}}) {
        SCOPED_TRACE(rader);
        fyllTil(rader);
        const dialogs::Graf v = vis().first;
        EXPECT_EQ(v.rader, 30000);
        ASSERT_EQ(v.verdier.size(), punkter);
        EXPECT_FLOAT_EQ(v.verdier[0], forste);
        EXPECT_FLOAT_EQ(v.verdier.back(), siste);
    }
}

TEST_F(Graf, VerdierOverEnKolonnerOgTommeTabeller)
{
    EXPECT_EQ(vindu().Command8_Click(), Utfall::Avvist);  // an empty table
    fyll({{0, 0.5}, {1, 1.0}, {2, 1.0001}, {3, 3}});
    // Every value above 1 gets a box of its own.
    EXPECT_EQ(vis().second, u"Graf|Exit|lukket"_s);
    EXPECT_EQ(test::forlop(dialogs).toStdString(), "! (i) Ingen graf kan vises\n! 1,0001\n! 3\n");
    for (int k : {2, 3}) {  // a letter the table lacks, an entry without a letter
        f->velgKolonne(k);
        EXPECT_EQ(vis().second, QString()) << k;
        EXPECT_TRUE(dialogs.meldinger().last().startsWith(u"Ingen graf kan vises: "_s)) << k;
    }
    QFile::remove(mappe.sti(u"Kolonner.txt"_s));
    EXPECT_EQ(vindu({}).Command8_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), u"Ingen data importert"_s);
}

TEST_F(Graf, MerkerFraSisteSok)
{
    // A row every ten minutes for five hours (a row between two minutes, its time and the data start
    // are the window test's, below).
    std::vector<test::Rad> rader;
    for (int m = 0; m <= 300; m += 10) rader.push_back({m * 60, 1e-12 * (m + 1)});
    fyll(rader);
    vindu();
    EXPECT_EQ(merker(vis().first), QString());  // no search yet

    // Unreadable turning points and one outside the data mark nothing; the cycle numbers stay
    // those of the file. Windows for Text4 1,5 to Text6 5 only, 20,5 minutes after rounded to 20.
    mappe.skriv(u"SnuPunkter.txt"_s,
                "23.11.2012 14:30:00!tull!23.11.2012 16:00:00!00:00:00!23.11.2012 18:00:00!23.11.2012 20:00:00\r\n");
    mappe.skriv(u"SokStart.txt"_s, "23.11.2012 14:05:00!1.5E-10\r\n");
    for (auto [boks, tekst] : {std::pair{dialogs::Boks::Text4, "1,5"},
                               {dialogs::Boks::Text6, "5"},
                               {dialogs::Boks::Text1, "10"},
                               {dialogs::Boks::Text2, "20,5"}})
        f->settTekst(boks, QString::fromUtf8(tekst));
    EXPECT_EQ(merker(vis().first), u"start 5 terskel 1.5e-10 1@30 3@120 5@240 3:110-140 5:230-260"_s);

    // A SokStart.txt that is no search, or settings that are no numbers, leave the rest.
    mappe.skriv(u"SokStart.txt"_s, "23.11.2012 14:05:00\r\n");
    f->settTekst(dialogs::Boks::Text2, u"lang"_s);
    EXPECT_EQ(merker(vis().first), u"1@30 3@120 5@240"_s);
    // Without SnuPunkter.txt nothing is marked.
    mappe.skriv(u"SokStart.txt"_s, "23.11.2012 14:05:00!1.5E-10\r\n");
    QFile::remove(mappe.sti(u"SnuPunkter.txt"_s));
    EXPECT_EQ(merker(vis().first), QString());
}

// The curve's points (x in minutes after the data start) and the view, with the linear and the
// logarithmic value axis: on the log axis the zero and the negative value lie at its floor, the decade
// below the smallest value above zero, marked and counted in the legend; the linear axis gets them
// back. A view of some minutes fits the value axis to the rows in it. All in the known-good file.
TEST_F(Graf, VinduetLogaritmiskAkseOgAvlesning)
{
    fyll({{0, 0}, {60, 2e-12}, {120, -1e-13}, {13830, 5e-9}, {18000, 3e-10}});
    vindu();
    bool apnet = false;
    QString logg;
    f->settGrafVisning([&](app::FrmGraph& g) {
        apnet = true;
        g.show();
        auto* null = qobject_cast<QScatterSeries*>(g.diagram()->series().value(1));  // the values at the floor
        ASSERT_TRUE(null);
        const auto punkter = [&](const QList<QPointF>& liste) {
            QString t;
            for (const QPointF& p : liste) t += u" (%1, %2)"_s.arg(p.x()).arg(p.y(), 0, 'g', 4);
            return t + '\n';
        };
        logg += g.diagram()->axes(Qt::Horizontal)[0]->titleText() + '\n';
        for (bool logaritmisk : {false, true, false}) {
            g.settLogaritmisk(logaritmisk);
            logg += u"kurve:"_s + punkter(g.kurve()) + u"ved bunnen:"_s + punkter(null->points()) + test::vist(g);
        }
        g.visUtsnitt(100, std::nullopt);
        logg += test::vist(g);

        // The readout follows the mouse: the nearest drawn row's minutes, time text and value. (The wheel's
        // zoom is Qt Charts' arithmetic on the axis; no operator of the program's own decides it.)
        g.tilbakestill();
        test::pek(g, {229, 1e-9});
        EXPECT_EQ(g.avlesningTekst(), u"230,50 min etter start    2012-11-23 17:50:30    5E-09"_s);
    });
    f->Command8_Click();
    EXPECT_TRUE(apnet);
    test::sjekkGull(u"analysis/gull/Graf.Vinduet.txt"_s, logg);
}

}  // namespace
