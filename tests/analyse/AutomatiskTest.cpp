#include "analysis/AutomatiskSoking.h"
#include "AnalyseFelles.h"

using test::Rad;

namespace {

// First value 10, then a row every 10 seconds from 14:01:10: three low phases of six rows
// (1,5 with one 1,2) between high phases of 9,5; each low phase is one group.
std::vector<Rad> treSykluser(double forste = 10)
{
    std::vector<Rad> r = {{0, forste}};
    for (int k = 0; k < 42; ++k) {
        const int iFase = k % 12;
        const bool lav = iFase >= 6 && k < 36;
        r.push_back({70 + 10 * k, lav ? (iFase == 8 ? 1.2 : 1.5) : 9.5});
    }
    return r;
}

class AutomatiskSok : public test::MedVindu {
protected:
    Utfall sok(const QString& sykluser, bool ja)
    {
        svar({QStringLiteral("1"), sykluser, ja ? ui::Svar::Ja : ui::Svar::Nei});
        return f->Command11_Click();
    }
};

TEST_F(AutomatiskSok, PassetNaermestOnsketAntallBrukesOgJaSkriverSnuPunkter)
{
    fyll(treSykluser());
    vindu().velgAdsorpsjon(true);
    EXPECT_EQ(sok(QStringLiteral("30"), true), Utfall::Ferdig);
    ASSERT_EQ(dialogs.dialoger().size(), 3u);
    EXPECT_EQ(dialogs.dialoger()[0].forslag, QStringLiteral("230"));
    EXPECT_EQ(dialogs.dialoger()[1].tittel, QStringLiteral("Antall sykluser:"));
    EXPECT_EQ(dialogs.dialoger()[1].forslag, QStringLiteral("30"));
    // Minimum 1,2 and the first value 10 give the step 0,88; the first pass already finds the three
    // groups, which comes nearest to 30 of all passes (the highest ones take every row as one group).
    EXPECT_EQ(dialogs.meldinger().value(0),
              QStringLiteral("Det ble funnet 3 sykluser. Den første syklusen med en verdi mindre enn 2,08 er ved "
                             "tidspunktet 23.11.2012 14:02:10 (2 minutter etter oppstart).\nIntervallet mellom den "
                             "første og andre syklusen er ca. 1 minutter. Vil du sette inn disse verdiene som valg i "
                             "oppsettet?"));
    EXPECT_EQ(f->tekst(ui::Boks::Text6), QStringLiteral("3"));
    EXPECT_EQ(f->tekst(ui::Boks::Text3), QStringLiteral("-13"));
    EXPECT_EQ(f->tekst(ui::Boks::Text5), QStringLiteral("1"));
    // One turning point per group, the last group included.
    EXPECT_EQ(mappe.les(QStringLiteral("SnuPunkter.txt")),
              QByteArray("23.11.2012 14:02:30!23.11.2012 14:04:30!23.11.2012 14:06:30\r\n"));
}

TEST_F(AutomatiskSok, EnGruppeOgNeiLarSnuPunkterStaa)
{
    fyll(treSykluser());
    vindu().velgAdsorpsjon(false);
    mappe.skriv(QStringLiteral("SnuPunkter.txt"), "01.01.2012\r\n");
    EXPECT_EQ(sok(QStringLiteral("1"), false), Utfall::Ferdig);
    // The word stays "mindre" with Desorpsjon too.
    EXPECT_TRUE(dialogs.meldinger().value(0).startsWith(
        QStringLiteral("Det ble funnet 1 sykluser. Den første syklusen med en verdi mindre enn ")));
    EXPECT_EQ(mappe.les(QStringLiteral("SnuPunkter.txt")), QByteArray("01.01.2012\r\n"));
    EXPECT_EQ(f->tekst(ui::Boks::Text6), QStringLiteral("30"));

    // Desorpsjon takes the largest value of each group.
    EXPECT_EQ(sok(QStringLiteral("3"), true), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(QStringLiteral("SnuPunkter.txt")),
              QByteArray("23.11.2012 14:02:10!23.11.2012 14:04:10!23.11.2012 14:06:10\r\n"));
}

TEST_F(AutomatiskSok, EnderStilleUtenMelding)
{
    // The first value equals the minimum: no step, no pass finds a row.
    fyll(treSykluser(1.2));
    vindu();
    svar({QStringLiteral("1"), QStringLiteral("30")});
    EXPECT_EQ(f->Command11_Click(), Utfall::Avvist);
    svar({QStringLiteral("1"), QString()});
    EXPECT_EQ(f->Command11_Click(), Utfall::Avvist);  // Cancel at the number of cycles
    svar({QStringLiteral("100000"), QStringLiteral("30")});
    EXPECT_EQ(f->Command11_Click(), Utfall::Avvist);  // no row after the search start
    f->velgKolonne(2);
    svar({QStringLiteral("1"), QStringLiteral("30")});
    EXPECT_EQ(f->Command11_Click(), Utfall::Avvist);  // a letter the table does not have
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
    EXPECT_FALSE(QFile::exists(mappe.sti(QStringLiteral("SnuPunkter.txt"))));
}

} // namespace
