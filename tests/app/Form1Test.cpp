// The main window on the offscreen platform: start-up, controls, settings, Exit and About.
#include "app/Form1.h"
#include "felles/Felles.h"
#include "files/Oppsett.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <gtest/gtest.h>

namespace {

using dialogs::Boks;

QStringList bokser(const app::Form1& f)
{
    QStringList ut;
    for (const auto& i : dialogs::Innstillinger) ut << f.tekst(i.boks);
    return ut;
}

const QStringList Standard = {"1", "30", "200", "230", "10", "120"};

struct Start {
    test::Programmappe mappe;
    dialogs::SkriptDialogs dialogs;
    std::unique_ptr<app::Form1> vindu;
    app::Form1& start()
    {
        vindu = std::make_unique<app::Form1>(mappe.mappe(), dialogs);
        return *vindu;
    }
    template <typename T>
    T* kontroll(const char* navn) const
    {
        return vindu->findChild<T*>(QLatin1String(navn));
    }
};

TEST(Oppstart, ForsteGangUtenFiler)
{
    Start s;
    app::Form1& f = s.start();
    EXPECT_EQ(bokser(f), Standard);
    EXPECT_TRUE(f.kolonner().isEmpty());
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Tolvik -    poster i databasen  [Versjon: 1.6 (06.01.2013)]"));
    EXPECT_FALSE(f.adsorpsjon());
    EXPECT_FALSE(s.kontroll<QLineEdit>("Text1")->isEnabled());
    EXPECT_FALSE(s.kontroll<QLineEdit>("Text5")->isEnabled());
    EXPECT_TRUE(s.dialogs.dialoger().empty());
}

TEST(Oppstart, Oppsettfila)
{
    const std::pair<const char*, QStringList> tilfeller[] = {
        {"5!12!150!200!15!90\r\n", {"5", "12", "150", "200", "15", "90"}},
        {"5!12!150!200!15!90!99", {"5", "12", "150", "200", "15", "90"}},
        {"5!12!150!200!15", {"5", "12", "150", "200", "15", "120"}},  // five fields: Text2 keeps its default
        {"5!12!150", Standard},
        {"", Standard},
        {"!!!!!", {"", "", "", "", "", ""}},
    };
    for (const auto& [innhold, ventet] : tilfeller) {
        Start s;
        s.mappe.skriv("Oppsett.txt", innhold);
        EXPECT_EQ(bokser(s.start()), ventet) << innhold;
    }
}

TEST(Oppstart, KolonnelistaVelgerForsteCo2)
{
    Start s;
    s.mappe.skriv("Kolonner.txt", (files::kolonneLinje("N2", "C") + "\r\n" + files::kolonneLinje("CO2_44", "D") +
                                   "\r\n" + files::kolonneLinje("CO2", "E") + "\r\n")
                                      .toLatin1());
    app::Form1& f = s.start();
    EXPECT_EQ(f.kolonner().size(), 3);
    EXPECT_EQ(f.valgtKolonne(), 1);
    EXPECT_EQ(f.kolonneTekst(), files::kolonneLinje("CO2_44", "D"));
}

TEST(Oppstart, UtenCo2ErIngenValgt)
{
    Start s;
    s.mappe.skriv("Kolonner.txt", "N2                    [C]\nO2                    [D]");
    app::Form1& f = s.start();
    EXPECT_EQ(f.kolonner().size(), 2);
    EXPECT_EQ(f.valgtKolonne(), -1);
}

TEST(Oppstart, BlankOppforingFlytterValgetTilForste)
{
    Start s;
    s.mappe.skriv("Kolonner.txt", "CO2                    [C]\r\n   \r\nN2                    [E]\r\n");
    app::Form1& f = s.start();
    f.velgKolonne(1);
    EXPECT_EQ(f.valgtKolonne(), 0);
}

TEST(Oppstart, ManglendeDatabaseLagesFraMalen)
{
    Start s;
    QFile::remove(s.mappe.sti("Data.mdb"));
    app::Form1& f = s.start();
    EXPECT_TRUE(QFile::exists(s.mappe.sti("Data.mdb")));
    ASSERT_EQ(s.dialogs.meldinger().size(), 1);
    EXPECT_TRUE(s.dialogs.meldinger()[0].contains(QStringLiteral("fantes ikke")));
    EXPECT_TRUE(f.kontekst().tilkobling.erApen());
}

TEST(Oppstart, OdelagtDatabaseRoresIkke)
{
    for (const QByteArray& innhold : {QByteArray("ikke en database"), QByteArray()}) {
        Start s;
        s.mappe.skriv("Data.mdb", innhold);
        app::Form1& f = s.start();
        ASSERT_EQ(s.dialogs.meldinger().size(), 1);
        EXPECT_TRUE(s.dialogs.meldinger()[0].contains(QStringLiteral("Data.mdb")));
        EXPECT_FALSE(f.kontekst().tilkobling.erApen());
        EXPECT_EQ(s.mappe.les("Data.mdb"), innhold);
        EXPECT_TRUE(f.windowTitle().startsWith(QStringLiteral("Tolvik -    poster")));
    }
}

TEST(Vinduet, KontrollerMedTeksterOgTips)
{
    Start s;
    s.start();
    const std::tuple<const char*, const char*, const char*> knapper[] = {
        {"Command2", "1.  &Velg og importer fil", "Orginal rådata-fil (.csv)"},
        {"Command8", "3.  Graf (viser hele fila)", "Lager en graf (oversikt) over hele fila"},
        {"Command7", "4.  Finn antall sykluser",
         "Finner antall sykluser og tiden mellom dem, samt  startpkt. for første syklus"},
        {"Command4", "6.  Rediger samlegraf",
         "Skriv inn ønsket tekst i graf. Exel-arket må lagres med data synlig (ikke grafen)"},
        {"Command5", "7.  Lag samlegraf", "Alle syklusene legges opp-på hverandre med tilnærmetlikt 0-punkt"},
        {"Command9", "8.  Rediger enkeltgraf",
         "Skriv inn ønsket tekst. Exel-arket må lagres med data synlig (ikke grafen)."},
        {"Command3", "9.  Lag enkeltgraf", "Lager engraf for hver enkelt syklus"},
        {"Command10", "Om programmet", ""},
        {"Command1", "&Exit", ""},
    };
    for (const auto& [navn, tekst, tips] : knapper) {
        auto* k = s.kontroll<QAbstractButton>(navn);
        ASSERT_NE(k, nullptr) << navn;
        EXPECT_EQ(k->text(), QString::fromUtf8(tekst)) << navn;
        EXPECT_EQ(k->toolTip(), QString::fromUtf8(tips)) << navn;
        EXPECT_FALSE(k->isHidden()) << navn;
    }
    for (const char* skjult : {"Command12", "Command6", "List1", "Label9", "Label10", "Command11"})
        EXPECT_TRUE(s.kontroll<QWidget>(skjult)->isHidden()) << skjult;
    EXPECT_EQ(s.kontroll<QRadioButton>("Option1")->toolTip(), QStringLiteral("Minimum"));
    EXPECT_EQ(s.kontroll<QRadioButton>("Option2")->toolTip(), QStringLiteral("Maximum"));
    EXPECT_EQ(s.kontroll<QWidget>("Frame2")->toolTip(),
              QStringLiteral("Velg den kolonnen med massetallet du ønsker å søke på"));
    EXPECT_EQ(s.kontroll<QLabel>("Label3")->text(), QStringLiteral("Antall behandlede linjer:"));
    EXPECT_TRUE(s.kontroll<QLabel>("Label4")->font().bold());
    EXPECT_EQ(s.kontroll<QLineEdit>("Text4")->alignment(), Qt::AlignCenter);
    // Twips to pixels: the Exit button's frame stands at 3480/15 = 232 px at 96 dpi.
    const double skala = s.vindu->logicalDpiX() / 96.0;
    EXPECT_NEAR(s.kontroll<QWidget>("Frame4")->x(), 232 * skala, 1);
    EXPECT_NEAR(s.vindu->width(), 665 * skala, 1);
    EXPECT_NEAR(s.kontroll<QWidget>("Command2")->height(), 25 * skala, 1);
}

TEST(Vinduet, ValgAvAdsorpsjonStyrerText1)
{
    Start s;
    app::Form1& f = s.start();
    f.settTekst(Boks::Text1, QStringLiteral("15"));
    s.kontroll<QRadioButton>("Option1")->click();
    EXPECT_TRUE(s.kontroll<QLineEdit>("Text1")->isEnabled());
    EXPECT_TRUE(f.adsorpsjon());
    s.kontroll<QRadioButton>("Option2")->click();
    EXPECT_FALSE(s.kontroll<QLineEdit>("Text1")->isEnabled());
    EXPECT_EQ(f.tekst(Boks::Text1), QStringLiteral("15"));
}

TEST(Vinduet, ExitLagrerInnstillingene)
{
    Start s;
    app::Form1& f = s.start();
    f.show();
    s.kontroll<QAbstractButton>("Command1")->click();
    EXPECT_EQ(s.mappe.les("Oppsett.txt"), QByteArray("1!30!200!230!10!120\r\n"));
    EXPECT_FALSE(f.isVisible());

    Start t;
    app::Form1& g = t.start();
    g.settTekst(Boks::Text6, QStringLiteral("12 "));
    g.Command1_Click();
    EXPECT_EQ(t.mappe.les("Oppsett.txt"), QByteArray("1!12 !200!230!10!120\r\n"));
}

TEST(Vinduet, LukkingUtenExitLagrerIngenting)
{
    Start s;
    app::Form1& f = s.start();
    f.show();
    f.settTekst(Boks::Text4, QStringLiteral("7"));
    f.close();
    EXPECT_FALSE(QFile::exists(s.mappe.sti("Oppsett.txt")));
}

TEST(Vinduet, OmProgrammetHarToLinjer)
{
    Start s;
    s.start();
    s.kontroll<QAbstractButton>("Command10")->click();
    ASSERT_EQ(s.dialogs.dialoger().size(), 1u);
    const auto& d = s.dialogs.dialoger()[0];
    EXPECT_EQ(d.ikon, dialogs::Ikon::Informasjon);
    EXPECT_EQ(d.tittel, QStringLiteral("Tolvik"));
    EXPECT_EQ(d.tekst.count(QLatin1Char('\n')), 1);
}

TEST(Vinduet, TegnesSomBilde)
{
    Start s;
    s.mappe.skriv("Kolonner.txt", "CO2                    [C]\r\n");
    app::Form1& f = s.start();
    f.show();
    const QImage bilde = f.grab().toImage();
    EXPECT_EQ(bilde.size(), f.size() * f.devicePixelRatio());
    EXPECT_TRUE(bilde.save(QStringLiteral(TOLVIK_DIST "/../Form1.png")));
}

TEST(Kontekst, SammeFilUansettStorOgSmaBokstaver)
{
    Start s;
    app::Form1& f = s.start();
    s.mappe.skriv("Snupunkter.txt", "x");
    EXPECT_EQ(f.kontekst().sti(QStringLiteral("SnuPunkter.txt")), s.mappe.sti("Snupunkter.txt"));
    EXPECT_EQ(f.kontekst().sti(QStringLiteral("Ny.txt")), s.mappe.sti("Ny.txt"));
}

}  // namespace
