#include "analysis/Syklusvinduer.h"
#include "app/FrmGraph.h"
#include "felles/Eksportmappe.h"

#include <QTabBar>
#include <QTableWidget>

namespace {

// One row a minute from 14:00 to 19:00, then 19:30 to 19:35, 1E-09 but at these minutes: surges of
// 5E-09 at 95 and 193, desorption peaks of 8E-09 at 165 and 270, one more surge at 332; the
// smallest values at the turning points 100 and 200 (the third, 360, has no row).
const std::map<int, double> Saerverdier = {{95, 5e-9},  {193, 5e-9},  {165, 8e-9}, {270, 8e-9},
                                           {332, 3e-9}, {100, 1e-12}, {200, 1e-12}};
const QByteArray Snupunkter = "23.11.2012 15:40:00!23.11.2012 17:20:00!23.11.2012 20:00:00\r\n";

class Syklusvinduer : public test::MedVindu {
protected:
    void SetUp() override
    {
        std::vector<test::Rad> rader;
        for (int m = 0; m <= 335; ++m)
            if (m <= 300 || m >= 330) rader.push_back({m * 60, Saerverdier.contains(m) ? Saerverdier.at(m) : 1e-9});
        fyll(rader);
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

// The view as text: each cycle's zero point and its rows (minute=value), then the table, marked rows with *.
QString beskriv(const analysis::Syklusbilde& bilde)
{
    QString ut;
    for (const auto& s : bilde.sykluser) {
        ut += u"Syklus %1, null %2:"_s.arg(s.syklus).arg(s.null);
        for (size_t i = 0; i < s.minutter.size(); ++i)
            ut += u" %1=%2"_s.arg(s.minutter[i]).arg(s.verdier[i], 0, 'g', 6);
        ut += '\n';
    }
    for (const auto& r : analysis::tabell(bilde)) ut += (r.merket ? u"* "_s : u"  "_s) + r.celler.join('|') + '\n';
    return ut;
}

// The cycles' windows (start minute excluded, end included), their zero points as the combined
// workbook takes them in either mode, and the table that marks the empty window past the data.
// Adsorpsjon: Text1 minutes before the surge in the 30 minutes before the turning point (cycle 1:
// −5 − 10); Desorpsjon: 10 minutes before the largest value 60 to 140 minutes after the surge.
TEST_F(Syklusvinduer, VinduerNullpunkterOgTabell)
{
    f->velgAdsorpsjon(true);
    const auto ads = analysis::lesSyklusbilde(f->kontekst());
    ASSERT_TRUE(ads);
    f->velgAdsorpsjon(false);
    sett(u"2"_s, u"2"_s, u"10"_s, u"20"_s);
    svar(u"140"_s);
    const auto des = analysis::lesSyklusbilde(f->kontekst());
    ASSERT_TRUE(des);
    test::sjekkGull(u"analysis/gull/Syklusvinduer.txt"_s, beskriv(*ads) + u"Desorpsjon\n"_s + beskriv(*des));
    EXPECT_TRUE(dialogs.meldinger().isEmpty()) << dialogs.meldinger().join('|');

    // Windows that begin at the first row (cycle 1) or end at the last (cycle 2) lie within the data.
    f->velgAdsorpsjon(true);
    sett(u"1"_s, u"2"_s, u"100"_s, u"135"_s);
    const auto grenser = analysis::lesSyklusbilde(f->kontekst());
    ASSERT_TRUE(grenser);
    for (const auto& syklus : grenser->sykluser) EXPECT_FALSE(syklus.utenforData) << syklus.syklus;
}

// What the exports stop at stops the view before anything is read, with the exports' messages (in
// the known-good transcript).
TEST_F(Syklusvinduer, AvvisningerGirEksportenesMeldinger)
{
    // Text4, Text6, Text1, Adsorpsjon and the answer to the desorption period.
    const std::tuple<QString, QString, QString, bool, QString> tilfeller[] = {
        {u"3"_s, u"2"_s, u"10"_s, true, {}},        // Text4 past Text6
        {u"1"_s, u"4"_s, u"10"_s, true, {}},        // no fourth turning point
        {u"3"_s, u"3"_s, u"10"_s, true, {}},        // the one window is empty
        {u"1"_s, u"2"_s, u"10"_s, false, u"60"_s},  // the peak's span is empty
        {u"1"_s, u"2"_s, u"ti"_s, true, {}},        // a setting that is no number
    };
    QString logg;
    for (const auto& [forste, siste, foer, ads, periode] : tilfeller) {
        const size_t fra = dialogs.dialoger().size();
        sett(forste, siste, foer, u"20"_s);
        f->velgAdsorpsjon(ads);
        if (!periode.isEmpty()) svar(periode);
        EXPECT_FALSE(analysis::lesSyklusbilde(f->kontekst())) << forste << siste << foer;
        logg += u"== %1 %2 %3\n"_s.arg(forste, siste, foer) + test::forlop(dialogs, fra);
    }
    const size_t fra = dialogs.dialoger().size();
    QFile::remove(mappe.sti(u"SnuPunkter.txt"_s));
    EXPECT_FALSE(analysis::lesSyklusbilde(f->kontekst()));
    test::sjekkGull(u"analysis/gull/Syklusvinduer.Avvist.txt"_s,
                    logg + u"== uten snupunkter\n"_s + test::forlop(dialogs, fra));
}

// The graph window's second tab: the cycles with their table, shifted onto the zero points when
// aligned, and the readout naming the cycle under the mouse. From the turning points the cycles run
// from minute −9 to 20; aligned, the zero points lie at 0 and cycle 2 runs from −9 + 17.
TEST_F(Syklusvinduer, VisningITabellOgBilde)
{
    f->velgAdsorpsjon(true);
    bool apnet = false;
    QString logg;
    f->settGrafVisning([&](app::FrmGraph& g) {
        apnet = true;
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

        // The mouse over cycle 2's surge, 7 minutes before its turning point.
        test::pek(g, {-7, 5e-9});
        logg += test::vist(g);
        g.settJustert(true);
        logg += test::vist(g) + u"syklus 2 forskjøvet %1\n"_s.arg(g.kurver()[1].forskyvning);
        faner->setCurrentIndex(0);
        EXPECT_FALSE(tabell->isVisible());
        logg += test::vist(g);
    });
    f->Command8_Click();
    EXPECT_TRUE(apnet);
    test::sjekkGull(u"analysis/gull/Syklusvinduer.Visning.txt"_s, logg);
}

}  // namespace
