// The main window on the offscreen platform: start-up, controls, settings and Exit.
#include "felles/MedVindu.h"

#include <QAbstractButton>
#include <QDir>
#include <QRadioButton>

namespace {

using dialogs::Boks;

const QStringList Standard = {"1", "30", "200", "230", "10", "120"};

class Oppstart : public test::MedVindu {
protected:
    // All six settings boxes, in the order of Oppsett.txt.
    QStringList alle() const
    {
        QStringList ut;
        for (const auto& i : dialogs::Innstillinger) ut << f->tekst(i.boks);
        return ut;
    }
    // The messages of a new start over the folder as it is.
    QStringList start(const QByteArray& kolonner = {})
    {
        f.reset();
        const qsizetype for_ = dialogs.meldinger().size();
        vindu(kolonner);
        return dialogs.meldinger().mid(for_);
    }
};

TEST_F(Oppstart, OppsettfilaOgKolonnelista)
{
    const std::pair<const char*, QStringList> oppsett[] = {
        {"5!12!150!200!15!90\r\n", {"5", "12", "150", "200", "15", "90"}},
        {"5!12!150!200!15!90!99", {"5", "12", "150", "200", "15", "90"}},
        {"5!12!150!200!15", {"5", "12", "150", "200", "15", "120"}},  // five fields: Text2 keeps its default
        {"5!12!150", Standard},
        {"", Standard},
        {"!!!!!", {"", "", "", "", "", ""}},
    };
    for (const auto& [innhold, ventet] : oppsett) {
        mappe.skriv(u"Oppsett.txt"_s, innhold);
        start();
        EXPECT_EQ(alle(), ventet) << innhold;
    }
    // The list, the selected entry (the first CO2), and the selection after choosing entry 1.
    const std::tuple<QByteArray, int, int> lister[] = {
        {"N2                    [C]\r\nCO2_44                    [D]\r\nCO2                    [E]\r\n", 1, 1},
        {"N2                    [C]\nO2                    [D]", -1, 1},
        {"CO2                    [C]\r\n   \r\nN2                    [E]\r\n", 0,
         0},  // a blank entry moves to the first
    };
    for (const auto& [liste, valgt, etterValg] : lister) {
        start(liste);
        EXPECT_EQ(f->valgtKolonne(), valgt) << liste.toStdString();
        f->velgKolonne(1);
        EXPECT_EQ(f->valgtKolonne(), etterValg) << liste.toStdString();
    }
}

TEST_F(Oppstart, DatabaseSomManglerLagesOdelagtRoresIkkeResterFjernes)
{
    QFile::remove(mappe.sti(u"Data.mdb"_s));
    QStringList meldinger = start();
    EXPECT_TRUE(f->kontekst().tilkobling.erApen());
    ASSERT_EQ(meldinger.size(), 1);
    EXPECT_TRUE(meldinger[0].contains(u"fantes ikke"_s)) << meldinger[0];
    for (const QByteArray& innhold : {QByteArray("ikke en database"), QByteArray()}) {
        mappe.skriv(u"Data.mdb"_s, innhold);
        meldinger = start();
        ASSERT_EQ(meldinger.size(), 1);
        EXPECT_TRUE(meldinger[0].contains(u"Data.mdb"_s)) << meldinger[0];
        EXPECT_FALSE(f->kontekst().tilkobling.erApen());
        EXPECT_EQ(mappe.les(u"Data.mdb"_s), innhold);
    }
    // An import killed half-way left its database and journal; a killed save left a temporary file.
    f.reset();
    QFile::remove(mappe.sti(u"Data.mdb"_s));
    QFile::copy(mappe.sti(u"Template.mdb"_s), mappe.sti(u"Data.mdb"_s));
    const QByteArray data = mappe.les(u"Data.mdb"_s);
    mappe.skriv(u"Data.mdb.import"_s, "halvferdig");
    mappe.skriv(u"Data.mdb.import-journal"_s, "journal");
    mappe.skriv(u"Oppsett.txt.tmp999999999"_s, "halv");
    meldinger = start();
    ASSERT_EQ(meldinger.size(), 1);
    EXPECT_TRUE(meldinger[0].startsWith(u"En import som ikke ble fullført"_s)) << meldinger[0];
    EXPECT_EQ(QDir(mappe.mappe()).entryList({"Data.mdb*", "*.tmp*"}, QDir::Files), QStringList{"Data.mdb"});
    EXPECT_EQ(mappe.les(u"Data.mdb"_s), data);
    EXPECT_TRUE(f->kontekst().tilkobling.erApen());
}

// The first start without any file: no box, the test buttons and lists hidden, Text1 off until
// Adsorpsjon is chosen. (The settings, the caption and the mode then are the batch test's, status.)
TEST_F(Oppstart, ForsteGangAdsorpsjonStyrerText1OgBareExitLagrer)
{
    start();
    EXPECT_TRUE(dialogs.dialoger().empty());
    for (const char* skjult : {"Command12", "Command6", "List1", "Label9", "Label10", "Command11"})
        EXPECT_TRUE(kontroll(skjult)->isHidden()) << skjult;
    EXPECT_FALSE(kontroll("Command3")->isHidden() || kontroll("Text1")->isEnabled());
    f->settTekst(Boks::Text1, u"15"_s);
    kontroll<QRadioButton>("Option1")->click();
    EXPECT_TRUE(kontroll("Text1")->isEnabled() && f->adsorpsjon());
    kontroll<QRadioButton>("Option2")->click();
    EXPECT_FALSE(kontroll("Text1")->isEnabled());

    // Closing the window saves nothing; Exit saves the boxes as they stand, blanks included.
    f->show();
    f->settTekst(Boks::Text6, u"12 "_s);
    f->close();
    EXPECT_FALSE(QFile::exists(mappe.sti(u"Oppsett.txt"_s)));
    f->show();
    kontroll<QAbstractButton>("Command1")->click();
    EXPECT_EQ(mappe.les(u"Oppsett.txt"_s), QByteArray("1!12 !200!230!15!120\r\n"));
    EXPECT_FALSE(f->isVisible());
}

}  // namespace
