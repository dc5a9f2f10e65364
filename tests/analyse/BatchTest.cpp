#include "AnalyseFelles.h"

#include <QImage>

namespace {

// tolvik-batch on a folder with a few cycles in column C.
class BatchAnalyse : public test::MedVindu {
protected:
    void SetUp() override
    {
        // Two low phases between high ones, ten-second steps.
        std::vector<test::Rad> r = {{0, 0.9}};
        for (int k = 0; k < 40; ++k) r.push_back({60 + 10 * k, (k / 8) % 2 ? 0.01 + k * 0.0001 : 0.9});
        fyll(r);
        vindu();
        f.reset();
    }
    test::Kjoring kjor(QStringList args) { return test::batch(QStringList{"--folder", mappe.mappe()} + args); }
};

TEST_F(BatchAnalyse, FinnSyklusereMedOgUtenApply)
{
    auto k = kjor({"--adsorption", "find-cycles", "--start", "0", "--threshold", "0,5"});
    EXPECT_EQ(k.status, 0) << k.feil.toStdString();
    EXPECT_TRUE(k.ut.startsWith(QStringLiteral("Det ble funnet 1 sykluser."))) << k.ut.toStdString();
    // The proposed threshold, 100 times the minimum, takes every row: one group, nothing closed.
    k = kjor({"--save-settings", "find-cycles", "--start", "0", "--apply"});
    EXPECT_EQ(k.status, 0) << k.feil.toStdString();
    EXPECT_TRUE(mappe.les(QStringLiteral("Oppsett.txt")).startsWith("1!0!"));
    EXPECT_EQ(kjor({"find-cycles"}).status, 2);  // --start is required
}

TEST_F(BatchAnalyse, AutomatiskSokOgGrafSomBilde)
{
    auto k = kjor({"auto-search", "--start", "0", "--cycles", "2"});
    EXPECT_EQ(k.status, 0) << k.feil.toStdString();
    EXPECT_TRUE(k.ut.startsWith(QStringLiteral("Det ble funnet 2 sykluser."))) << k.ut.toStdString();

    const QString png = mappe.sti(QStringLiteral("graf.png"));
    k = kjor({"graph", "--png", png});
    EXPECT_EQ(k.status, 0) << k.feil.toStdString();
    EXPECT_EQ(k.ut, QStringLiteral("Punkter i grafen: 41\n"));
    const QImage bilde(png);
    EXPECT_FALSE(bilde.isNull());
    EXPECT_GT(bilde.width(), 400);
}

} // namespace
