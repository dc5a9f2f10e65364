// "7.  Lag samlegraf" on the real window: zero points, columns per cycle, clearing,
// the messages, and the workbook as openpyxl reads it.
#include "export/Eksport.h"
#include "export_combined/EksportFelles.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QApplication>
#include <QFile>

using ui::Svar;
using Forslag = ui::SkriptDialogs::Forslag;

namespace {

constexpr int T1 = 10 * 60, T2 = 14 * 60, T3 = 18 * 60;

// Column C: a low, varying level, a maximum 5 minutes before each turning point
// and a lower one 100 minutes after it.
double c(int m)
{
    for (int t : {T1, T2, T3}) {
        if (m == t - 5) return 9.0;
        if (m == t + 100) return 8.0;
    }
    return 1.0 + (m % 60) / 100.0 + 0.1;
}

// The stored value as the workbook receives it: single precision.
double enkel(double x) { return static_cast<double>(static_cast<float>(x)); }

QString tekst(int m)
{
    return QStringLiteral("2012/11/23 ,%1:%2:00,1.").arg(m / 60, 2, 10, QLatin1Char('0')).arg(m % 60, 2, 10, QLatin1Char('0'));
}

QString adr(const char* kol, int rad) { return QLatin1String(kol) + QString::number(rad); }

class Samlefil : public test::EksportTest {
protected:
    void SetUp() override
    {
        EksportTest::SetUp();
        for (int m = 9 * 60; m <= 21 * 60; ++m) rad(m, c(m), 0.0);
        snupunkter({T1, T2, T3});
    }
    void innstillinger(const char* fra, const char* til, bool adsorpsjon)
    {
        Form1& f = vindu();
        f.settTekst(ui::Boks::Text4, QLatin1String(fra));
        f.settTekst(ui::Boks::Text6, QLatin1String(til));
        f.settTekst(ui::Boks::Text1, QStringLiteral("10"));
        f.settTekst(ui::Boks::Text2, QStringLiteral("20"));
        f.velgKolonne(0);  // Argon [C]
        f.velgAdsorpsjon(adsorpsjon);
    }
};

TEST_F(Samlefil, AdsorpsjonLeggerSyklusneISineKolonnerFraNullpunktet)
{
    innstillinger("1", "3", true);
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("Forsok"));
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Ferdig);

    EXPECT_EQ(meldinger(), QStringList({QStringLiteral("Vil du lage en samlefil for 3 run?"),
                                        QStringLiteral("Eksporten er ferdig")}));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    // The window runs from the maximum (T - 5) less 10 minutes to T + 20, both ends included:
    // 36 rows, so the next free row is 38.
    EXPECT_EQ(label4(), eksport::fremdrift(38, 3));

    const test::Lest bok = test::lesMedOpenpyxl(ut(QStringLiteral("Forsok_Samlefil.xlsm")));
    EXPECT_TRUE(bok.makro);
    EXPECT_EQ(bok[QStringLiteral("A2")].toString(), tekst(T1 - 15));
    EXPECT_EQ(bok[QStringLiteral("A37")].toString(), tekst(T1 + 20));
    EXPECT_TRUE(bok[QStringLiteral("A38")].isUndefined());
    const char* kolonner[] = {"C", "D", "E"};
    const int snu[] = {T1, T2, T3};
    for (int s = 0; s < 3; ++s) {
        for (int r = 2; r <= 37; ++r)
            ASSERT_EQ(bok[adr(kolonner[s], r)].toDouble(), enkel(c(snu[s] - 15 + r - 2))) << kolonner[s] << r;
        EXPECT_TRUE(bok[adr(kolonner[s], 38)].isUndefined());
    }
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("C12")].toDouble(), 9.0);  // the maximum, 10 rows below the zero point
}

TEST_F(Samlefil, DesorpsjonFinnerAndreMaksimumInnenforPerioden)
{
    innstillinger("1", "2", false);
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("D"));
    dialogs.svar(Forslag{});
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Ferdig);

    const auto& periode = dialogs.dialoger().at(2);
    EXPECT_EQ(periode.tekst,
              QStringLiteral("Angi antall minutter større enn ventilskift, mindre enn makspunktet for desorpsjonskurva:"));
    EXPECT_EQ(periode.tittel, QStringLiteral("Periode"));
    EXPECT_EQ(periode.forslag, QStringLiteral("140"));

    // M1 = T - 5, M2 = the maximum between M1 + 60 and M1 + 140, that is T + 100;
    // the zero point is M2 - 10 and the window ends 20 minutes later.
    const test::Lest bok = test::lesMedOpenpyxl(ut(QStringLiteral("D_Samlefil.xlsm")));
    EXPECT_EQ(bok[QStringLiteral("A2")].toString(), tekst(T1 + 90));
    EXPECT_EQ(bok[QStringLiteral("A22")].toString(), tekst(T1 + 110));
    EXPECT_TRUE(bok[QStringLiteral("A23")].isUndefined());
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("C12")].toDouble(), 8.0);
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("D12")].toDouble(), 8.0);
}

TEST_F(Samlefil, FeilOgAvvisningerLagerIngenFil)
{
    innstillinger("1", "2", false);
    // A period of 60 minutes or less leaves the second interval without rows.
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    dialogs.svar(QStringLiteral("60"));
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    // A cancelled period box.
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    dialogs.svar(QString());
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    // More cycles than turning points: the error comes at cycle 4, before any save.
    vindu().settTekst(ui::Boks::Text6, QStringLiteral("4"));
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    dialogs.svar(Forslag{});
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    // A setting that is no number, already in the question.
    vindu().settTekst(ui::Boks::Text4, QStringLiteral("en"));
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    // No: nothing more is asked.
    vindu().settTekst(ui::Boks::Text4, QStringLiteral("1"));
    dialogs.svar(Svar::Nei);
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Ferdig);

    const QString feil = eksport::FeilMelding;
    EXPECT_EQ(meldinger(), QStringList({QStringLiteral("Vil du lage en samlefil for 2 run?"), feil,
                                        QStringLiteral("Vil du lage en samlefil for 2 run?"), feil,
                                        QStringLiteral("Vil du lage en samlefil for 4 run?"), feil, feil,
                                        QStringLiteral("Vil du lage en samlefil for 4 run?")}));
    EXPECT_FALSE(dialogs.ubrukteSvar());
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("P_Samlefil.xlsm"))));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    // A missing template stops before the prefix is asked for.
    QFile::remove(mappe.sti(QStringLiteral("Mal_Alle_Desorpsjon.xlsm")));
    dialogs.svar(Svar::Ja);
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    EXPECT_EQ(meldinger().last(), QStringLiteral("Du mangler malfila"));
    EXPECT_FALSE(dialogs.ubrukteSvar());
}

TEST_F(Samlefil, ForsteSyklusOverHoppetOgRadeneUnderDataTommesTil2000)
{
    // Fill the template's first columns so that what the export leaves and clears shows.
    {
        auto mal = xlsx::apne(mappe.sti(QStringLiteral("Mal_Alle_Adsorpsjon.xlsm")));
        for (int r = 2; r <= 2002; ++r)
            for (int k = 1; k <= 5; ++k) mal->ark(1).settCelle(r, k, 7.0);
        mal->lagre();
    }
    innstillinger("2", "3", true);
    vindu().velgKolonne(6);  // Neon [I]: its maxima place the windows, but no value is read from it
    dialogs.svar(Svar::Ja);
    dialogs.svar(vb::dagensDatoTekst() + QLatin1Char('_'));
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Ferdig);

    const test::Lest bok =
        test::lesMedOpenpyxl(ut(vb::dagensDatoTekst() + QStringLiteral("__Samlefil.xlsm")));
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("A2")].toDouble(), 7.0);
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("C2")].toDouble(), 7.0);
    EXPECT_DOUBLE_EQ(bok[QStringLiteral("C2000")].toDouble(), 7.0);
    for (const char* k : {"D", "E"}) {
        for (int r = 2; r <= 37; ++r) ASSERT_EQ(bok[adr(k, r)].toDouble(-1), 0.0) << k << r;
        EXPECT_TRUE(bok[adr(k, 38)].isUndefined());
        EXPECT_TRUE(bok[adr(k, 2000)].isUndefined());
        EXPECT_DOUBLE_EQ(bok[adr(k, 2001)].toDouble(), 7.0);
    }
}

class TomTabell : public test::EksportTest {};

TEST_F(TomTabell, SamlefilSporOmDataFinnes)
{
    snupunkter({T1});
    dialogs.svar(Svar::Ja);
    dialogs.svar(QStringLiteral("P"));
    EXPECT_EQ(vindu().Command5_Click(), Utfall::Avvist);
    EXPECT_EQ(meldinger().last(), QStringLiteral("Finnes det data i tabellen?"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Samlefil, BatchSvarerMedJaPrefiksOgPeriode)
{
    lagreRader();
    const QString m = mappe.mappe();
    auto kjor = [&](QStringList ekstra) {
        return test::batch(QStringList{QStringLiteral("--folder"), m, QStringLiteral("--column"), QStringLiteral("C"),
                                       QStringLiteral("--set"), QStringLiteral("Text6=2"),
                                       QStringLiteral("--set"), QStringLiteral("Text2=20")} +
                           ekstra);
    };
    const auto ja = kjor({QStringLiteral("export-combined"), QStringLiteral("--prefix"), QStringLiteral("B")});
    EXPECT_EQ(ja.status, 0) << ja.feil.toStdString();
    EXPECT_TRUE(ja.ut.contains(QStringLiteral("Eksporten er ferdig")));
    EXPECT_EQ(test::lesMedOpenpyxl(ut(QStringLiteral("B_Samlefil.xlsm")))[QStringLiteral("A2")].toString(), tekst(T1 + 90));

    const auto kort = kjor({QStringLiteral("export-combined"), QStringLiteral("--prefix"), QStringLiteral("K"),
                            QStringLiteral("--period"), QStringLiteral("50")});
    EXPECT_EQ(kort.status, 1);
    EXPECT_TRUE(kort.ut.contains(eksport::FeilMelding));

    const auto nei = kjor({QStringLiteral("export-combined"), QStringLiteral("--no")});
    EXPECT_EQ(nei.status, 0);
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("K_Samlefil.xlsm"))));
    EXPECT_EQ(kjor({QStringLiteral("export-combined")}).status, 2);
}

} // namespace
