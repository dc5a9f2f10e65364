#include "analysis/Sykluser.h"
#include "AnalyseFelles.h"

using test::Rad;
using ui::SkriptDialogs;

namespace {

const QString Feil = QStringLiteral("Det oppstod en feil i denne rutinen");

// Data start 14:00:00. With a search start one minute later and the threshold 1:
// group A 14:01:10-14:01:40 in 10-second steps (the value 1 at 14:01:45 is no hit),
// group B the lone row 14:02:05, group C 14:03:00-14:03:05, then 11 seconds on the last group 14:03:16.
// The row at exactly 14:01:00 holds the smallest value but lies on the search start.
const std::vector<Rad> Sykluser = {
    {0, 5},      {60, 0.01},  {70, 0.3},  {80, 0.2},  {90, 0.1},  {100, 0.05}, {105, 1.0},
    {110, 4},    {125, 0.4},  {150, 4},   {180, 0.2}, {185, 0.15}, {196, 0.1},  {200, 4},
};

class Syklusfinning : public test::MedVindu {
protected:
    Utfall finn(const QString& terskel, bool ja = false, const QString& start = QStringLiteral("1"))
    {
        svar({start, terskel, ja ? ui::Svar::Ja : ui::Svar::Nei});
        return f->Command7_Click();
    }
    QByteArray snuPunkter() const { return mappe.les(QStringLiteral("SnuPunkter.txt")); }
};

TEST_F(Syklusfinning, LukkedeGrupperGirSnuPunkterOgSisteGruppeTellesIkke)
{
    fyll(Sykluser);
    vindu().velgAdsorpsjon(true);
    EXPECT_EQ(finn(QStringLiteral("1"), true), Utfall::Ferdig);

    ASSERT_EQ(dialogs.dialoger().size(), 3u);
    const auto& terskel = dialogs.dialoger()[1];
    // The row on the search start second is not searched: the minimum is 0,05, not 0,01.
    EXPECT_EQ(terskel.tekst, QStringLiteral("Den minste verdien er 0,05. Oppgi søkeverdien som skal brukes under:"));
    EXPECT_EQ(terskel.tittel, QStringLiteral("Minste verdi"));
    EXPECT_EQ(terskel.forslag, QStringLiteral("5"));
    EXPECT_EQ(dialogs.dialoger()[2].ikon, ui::Ikon::Sporsmal);
    EXPECT_EQ(dialogs.meldinger().value(0),
              QStringLiteral("Det ble funnet 3 sykluser. Den første syklusen med en verdi mindre enn 1 er ved tidspunktet "
                             "23.11.2012 14:01:10 (1 minutter etter oppstart).\nIntervallet mellom den første og andre "
                             "syklusen er ca. 1 minutter. Vil du sette inn disse verdiene som valg i oppsettet?"));
    // A: minimum of its span without its last row (0,05 at 14:01:40 lies outside); B: empty span, day zero;
    // C ends at 14:03:05 because 11 seconds follow it; the last group gets nothing.
    EXPECT_EQ(snuPunkter(), QByteArray("23.11.2012 14:01:30!00:00:00!23.11.2012 14:03:00\r\n"));
    EXPECT_EQ(f->tekst(ui::Boks::Text6), QStringLiteral("3"));
    EXPECT_EQ(f->tekst(ui::Boks::Text3), QStringLiteral("-14"));
    EXPECT_EQ(f->tekst(ui::Boks::Text5), QStringLiteral("1"));
}

TEST_F(Syklusfinning, DesorpsjonTarStorsteVerdiOgNeiEndrerIkkeOppsettet)
{
    fyll(Sykluser);
    vindu().velgAdsorpsjon(false);
    EXPECT_EQ(finn(QStringLiteral("1,0")), Utfall::Ferdig);
    EXPECT_TRUE(dialogs.meldinger().value(0).contains(QStringLiteral("med en verdi større enn 1 er")));
    EXPECT_EQ(snuPunkter(), QByteArray("23.11.2012 14:01:10!00:00:00!23.11.2012 14:03:00\r\n"));
    EXPECT_EQ(f->tekst(ui::Boks::Text6), QStringLiteral("30"));
    EXPECT_EQ(f->tekst(ui::Boks::Text3), QStringLiteral("230"));
    EXPECT_EQ(f->tekst(ui::Boks::Text5), QStringLiteral("200"));
}

TEST_F(Syklusfinning, EnEllerToGrupper)
{
    fyll(Sykluser);
    vindu().velgAdsorpsjon(true);
    // Hits 14:01:40 alone: one group, nothing closed, an empty line in the file.
    EXPECT_EQ(finn(QStringLiteral("0.07"), true), Utfall::Ferdig);
    EXPECT_TRUE(dialogs.meldinger().value(0).startsWith(QStringLiteral("Det ble funnet 0 sykluser. ")));
    EXPECT_TRUE(dialogs.meldinger().value(0).contains(QStringLiteral("ca. 0 minutter")));
    EXPECT_EQ(snuPunkter(), QByteArray("\r\n"));
    EXPECT_EQ(f->tekst(ui::Boks::Text6), QStringLiteral("0"));

    // Hits 14:01:30, 14:01:40 and 14:03:16: two groups, one turning point, the interval runs
    // from the first group's last row to the second group's first (14:01 to 14:03).
    EXPECT_EQ(finn(QStringLiteral("0.12"), true), Utfall::Ferdig);
    EXPECT_TRUE(dialogs.meldinger().value(1).startsWith(QStringLiteral("Det ble funnet 1 sykluser. ")));
    EXPECT_EQ(snuPunkter(), QByteArray("23.11.2012 14:01:30\r\n"));
    EXPECT_EQ(f->tekst(ui::Boks::Text5), QStringLiteral("2"));
}

TEST_F(Syklusfinning, IngenTreffOgFeilSletterSnuPunkterFraForrigeKjoring)
{
    fyll(Sykluser);
    vindu();
    // The file written under another case is the same file.
    mappe.skriv(QStringLiteral("Snupunkter.txt"), "01.01.2012\r\n");
    svar({QStringLiteral("1"), QStringLiteral("0.02")});  // 0,01 lies on the search start
    EXPECT_EQ(f->Command7_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger(), QStringList{QStringLiteral("Ingen datapunkter er lavere enn den angitte verdien (0,02)")});
    EXPECT_FALSE(QFile::exists(mappe.sti(QStringLiteral("Snupunkter.txt"))));

    mappe.skriv(QStringLiteral("SnuPunkter.txt"), "01.01.2012\r\n");
    svar({QStringLiteral("1"), QString()});  // Cancel at the threshold
    EXPECT_EQ(f->Command7_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), Feil);
    EXPECT_EQ(dialogs.dialoger().back().ikon, ui::Ikon::Informasjon);
    EXPECT_FALSE(QFile::exists(mappe.sti(QStringLiteral("SnuPunkter.txt"))));
}

TEST_F(Syklusfinning, UgyldigeSvarOgKolonnerEnderIFeilmeldingen)
{
    fyll(Sykluser);
    vindu();
    const struct {
        int kolonne;
        std::vector<SkriptDialogs::Svaret> svar;
        const char* hva;
    } tilfeller[] = {
        {0, {QString()}, "Cancel at the start minutes"},
        {0, {QStringLiteral("en time")}, "start minutes no number"},
        {0, {QStringLiteral("1"), QStringLiteral("lav")}, "threshold no number"},
        {0, {QStringLiteral("100000"), SkriptDialogs::Forslag{}}, "no row after the search start"},
        {2, {QStringLiteral("1")}, "a letter the table does not have"},
        {3, {QStringLiteral("1")}, "an entry without a letter"},
    };
    for (const auto& t : tilfeller) {
        f->velgKolonne(t.kolonne);
        for (const auto& s : t.svar) dialogs.svar(s);
        EXPECT_EQ(f->Command7_Click(), Utfall::Avvist) << t.hva;
        EXPECT_EQ(dialogs.dialoger().back().tekst, Feil) << t.hva;
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << t.hva;
    }
    // Without a row after the search start the prompt shows no number and proposes nothing.
    const auto uten = std::find_if(dialogs.dialoger().rbegin(), dialogs.dialoger().rend(),
                                   [](const auto& d) { return d.tittel == QLatin1String("Minste verdi"); });
    ASSERT_NE(uten, dialogs.dialoger().rend());
    EXPECT_EQ(uten->tekst, QStringLiteral("Den minste verdien er . Oppgi søkeverdien som skal brukes under:"));
    EXPECT_EQ(uten->forslag, QString());
}

TEST_F(Syklusfinning, TomTabellOgTomKolonneliste)
{
    vindu();
    dialogs.svar(QStringLiteral("50"));
    EXPECT_EQ(f->Command7_Click(), Utfall::Avvist);
    EXPECT_TRUE(dialogs.meldinger().isEmpty());  // silent end

    test::Programmappe tom;
    ui::SkriptDialogs d2;
    Form1 uten(tom.mappe(), d2);
    EXPECT_EQ(uten.Command7_Click(), Utfall::Avvist);
    EXPECT_EQ(d2.meldinger(), QStringList{analyse::IngenData});
}

TEST_F(Syklusfinning, TidsvilkarBrukerIndeks)
{
    fyll(Sykluser);
    db::Database& d = vindu().kontekst().tilkobling;
    analyse::sikreVerdiIndeks(d, QStringLiteral("C"));
    const vb::Dato a = vb::Dato::fra(2012, 11, 23, 14, 1, 10), b = vb::Dato::fra(2012, 11, 23, 14, 1, 40);
    for (const QString& setning : {analyse::snuPunktSetning(a, b, true, QStringLiteral("C")),
                                   analyse::snuPunktSetning(a, b, false, QStringLiteral("C")),
                                   analyse::minimumSetning(QStringLiteral("C"), a)}) {
        QString plan;
        for (auto p = d.spor(QStringLiteral("EXPLAIN QUERY PLAN ") + setning); !p.eof(); p.moveNext())
            plan += p.tekst("detail") + QLatin1Char('\n');
        EXPECT_FALSE(plan.contains(QStringLiteral("SCAN TABLE"))) << plan.toStdString();
        EXPECT_TRUE(plan.contains(QStringLiteral("INDEX"))) << plan.toStdString();
    }
}

} // namespace
