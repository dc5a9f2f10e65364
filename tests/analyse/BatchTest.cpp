#include "AnalyseFelles.h"

#include <QImage>

namespace {

using BatchAnalyse = test::MedVindu;

// tolvik-batch on a folder with two low phases between high ones in column C, ten-second steps.
TEST_F(BatchAnalyse, BatchFinnerSykluserSokerOgTegner)
{
    std::vector<test::Rad> r = {{0, 0.9}};
    for (int k = 0; k < 40; ++k) r.push_back({60 + 10 * k, (k / 8) % 2 ? 0.01 + k * 0.0001 : 0.9});
    fyll(r);
    mappe.skriv(u"Kolonner.txt"_s, test::Kolonner);
    auto kjor = [&](QStringList args) { return test::batch(QStringList{"--folder", mappe.mappe()} + args); };
    const QString png = mappe.sti(u"graf.png"_s);
    const struct {
        QStringList args;
        QString ut;  // the start of what it prints
    } tilfeller[] = {
        {{"--adsorption", "find-cycles", "--start", "0", "--threshold", "0,5"}, u"Det ble funnet 1 sykluser."_s},
        // The proposed threshold, 100 times the minimum, takes every row: one group, nothing closed.
        {{"--save-settings", "find-cycles", "--start", "0", "--apply"}, u"Det ble funnet 0 sykluser."_s},
        {{"auto-search", "--start", "0", "--cycles", "2"}, u"Det ble funnet 2 sykluser."_s},
        {{"graph", "--png", png}, u"Punkter i grafen: 41\n"_s},
    };
    for (const auto& t : tilfeller) {
        const auto k = kjor(t.args);
        EXPECT_EQ(k.status, 0) << k.feil.toStdString();
        EXPECT_TRUE(k.ut.startsWith(t.ut)) << k.ut.toStdString();
    }
    EXPECT_TRUE(mappe.les(u"Oppsett.txt"_s).startsWith("1!0!"));
    EXPECT_GT(QImage(png).width(), 400);
    EXPECT_EQ(kjor({"find-cycles"}).status, 2);  // --start is required
}

} // namespace
