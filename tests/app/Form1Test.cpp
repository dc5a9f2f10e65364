// The main window on the offscreen platform: start-up, controls, settings, Exit and About.
#include "app/Form1.h"
#include "felles/Felles.h"
#include "files/Oppsett.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QRadioButton>
#include <gtest/gtest.h>

namespace {

using dialogs::Boks;

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
    template <typename T = QWidget>
    T* kontroll(const char* navn) const
    {
        return vindu->findChild<T*>(QLatin1String(navn));
    }
    QStringList bokser() const
    {
        QStringList ut;
        for (const auto& i : dialogs::Innstillinger) ut << vindu->tekst(i.boks);
        return ut;
    }
};

TEST(Oppstart, ForsteGangUtenFiler)
{
    Start s;
    app::Form1& f = s.start();
    EXPECT_EQ(s.bokser(), Standard);
    EXPECT_TRUE(f.kolonner().isEmpty());
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Tolvik -    poster i databasen  [Versjon: 1.6 (06.01.2013)]"));
    EXPECT_FALSE(f.adsorpsjon());
    EXPECT_FALSE(s.kontroll("Text1")->isEnabled());
    EXPECT_TRUE(s.dialogs.dialoger().empty());
    for (const char* skjult : {"Command12", "Command6", "List1", "Label9", "Label10", "Command11"})
        EXPECT_TRUE(s.kontroll(skjult)->isHidden()) << skjult;
    EXPECT_FALSE(s.kontroll("Command3")->isHidden());
    // Twips to pixels: the Exit button's frame stands at 3480/15 = 232 px at 96 dpi.
    const double skala = f.logicalDpiX() / 96.0;
    EXPECT_NEAR(s.kontroll("Frame4")->x(), 232 * skala, 1);
    EXPECT_NEAR(f.width(), 665 * skala, 1);

    // About: two lines in an information box titled with the program's name.
    s.kontroll<QAbstractButton>("Command10")->click();
    ASSERT_EQ(s.dialogs.dialoger().size(), 1u);
    const auto& d = s.dialogs.dialoger()[0];
    EXPECT_TRUE(d.ikon == dialogs::Ikon::Informasjon && d.tittel == QStringLiteral("Tolvik"));
    EXPECT_EQ(d.tekst.count(QLatin1Char('\n')), 1);

    // Files are found whatever the case of their names.
    s.mappe.skriv("Snupunkter.txt", "x");
    EXPECT_EQ(f.kontekst().sti(QStringLiteral("SnuPunkter.txt")), s.mappe.sti("Snupunkter.txt"));
    EXPECT_EQ(f.kontekst().sti(QStringLiteral("Ny.txt")), s.mappe.sti("Ny.txt"));
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
        s.start();
        EXPECT_EQ(s.bokser(), ventet) << innhold;
    }
}

TEST(Oppstart, KolonnelistaVelgerForsteCo2)
{
    // The list, the selected entry, and the selection after choosing entry 1.
    const std::tuple<QByteArray, int, int> tilfeller[] = {
        {"N2                    [C]\r\nCO2_44                    [D]\r\nCO2                    [E]\r\n", 1, 1},
        {"N2                    [C]\nO2                    [D]", -1, 1},
        {"CO2                    [C]\r\n   \r\nN2                    [E]\r\n", 0,
         0},  // a blank entry moves to the first
    };
    for (const auto& [liste, valgt, etterValg] : tilfeller) {
        Start s;
        s.mappe.skriv("Kolonner.txt", liste);
        app::Form1& f = s.start();
        EXPECT_EQ(f.valgtKolonne(), valgt) << liste.toStdString();
        f.velgKolonne(1);
        EXPECT_EQ(f.valgtKolonne(), etterValg) << liste.toStdString();
    }
}

TEST(Oppstart, ManglendeDatabaseLagesOdelagtRoresIkke)
{
    Start s;
    QFile::remove(s.mappe.sti("Data.mdb"));
    EXPECT_TRUE(s.start().kontekst().tilkobling.erApen());
    ASSERT_EQ(s.dialogs.meldinger().size(), 1);
    EXPECT_TRUE(s.dialogs.meldinger()[0].contains(QStringLiteral("fantes ikke")));

    for (const QByteArray& innhold : {QByteArray("ikke en database"), QByteArray()}) {
        Start s;
        s.mappe.skriv("Data.mdb", innhold);
        app::Form1& f = s.start();
        ASSERT_EQ(s.dialogs.meldinger().size(), 1);
        EXPECT_TRUE(s.dialogs.meldinger()[0].contains(QStringLiteral("Data.mdb")));
        EXPECT_FALSE(f.kontekst().tilkobling.erApen());
        EXPECT_EQ(s.mappe.les("Data.mdb"), innhold);
    }
}

TEST(Oppstart, ResterEtterEtDrepProgramFjernes)
{
    // An import killed half-way left its database and journal; a killed save left a temporary file.
    Start s;
    const QByteArray data = s.mappe.les("Data.mdb");
    s.mappe.skriv("Data.mdb.import", "halvferdig");
    s.mappe.skriv("Data.mdb.import-journal", "journal");
    s.mappe.skriv("Oppsett.txt.tmp999999999", "halv");
    app::Form1& f = s.start();
    ASSERT_EQ(s.dialogs.meldinger().size(), 1);
    EXPECT_TRUE(s.dialogs.meldinger()[0].startsWith(QStringLiteral("En import som ikke ble fullført")));
    EXPECT_EQ(QDir(s.mappe.mappe()).entryList({"Data.mdb*", "*.tmp*"}, QDir::Files), QStringList{"Data.mdb"});
    EXPECT_EQ(s.mappe.les("Data.mdb"), data);
    EXPECT_TRUE(f.kontekst().tilkobling.erApen());
}

TEST(Vinduet, AdsorpsjonStyrerText1OgBareExitLagrer)
{
    Start s;
    app::Form1& f = s.start();
    f.settTekst(Boks::Text1, QStringLiteral("15"));
    s.kontroll<QRadioButton>("Option1")->click();
    EXPECT_TRUE(s.kontroll("Text1")->isEnabled() && f.adsorpsjon());
    s.kontroll<QRadioButton>("Option2")->click();
    EXPECT_FALSE(s.kontroll("Text1")->isEnabled());

    // Closing the window saves nothing; Exit saves the boxes as they stand, blanks included.
    f.show();
    f.settTekst(Boks::Text6, QStringLiteral("12 "));
    f.close();
    EXPECT_FALSE(QFile::exists(s.mappe.sti("Oppsett.txt")));
    f.show();
    s.kontroll<QAbstractButton>("Command1")->click();
    EXPECT_EQ(s.mappe.les("Oppsett.txt"), QByteArray("1!12 !200!230!15!120\r\n"));
    EXPECT_FALSE(f.isVisible());
}

}  // namespace
