// The chart-title commands rewrite their template in place and nothing else; the template
// probe leaves its template as it was. Checked through openpyxl and the files' bytes.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class Graftittel : public Eksportmappe {};

TEST_F(Graftittel, EnkeltgrafFaarSammeTittelIBeggeDiagrammer)
{
    const QString mal = mappe.sti(exports::MalSykluser);
    const QVariant gammel = lesArbeidsbok(mal).diagrammer(2, "tittel").value(0);
    const QString ny = QStringLiteral("Syklus – CO₂ & H₂O");
    svar({ny});
    EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
    const auto& d = dialogs.dialoger().at(0);
    EXPECT_EQ(QStringList({d.tekst, d.tittel, d.forslag}), QStringList({"Angi tittel", "Tittel", gammel.toString()}));
    const Bok bok = lesArbeidsbok(mal);
    EXPECT_EQ(bok.diagrammer(2, "tittel"), QVariantList({ny, ny}));
    EXPECT_EQ(bok[QStringLiteral("A1")].toString(), QStringLiteral("Time&Date"));

    // Accepting the proposal keeps the title; an empty answer empties it on both charts.
    for (const auto& [svaret, tittel] :
         {std::pair<dialogs::SkriptDialogs::Svaret, QString>{Forslag{}, ny}, {QString(), ""}}) {
        svar({svaret});
        EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
        EXPECT_EQ(lesArbeidsbok(mal).diagrammer(2, "tittel"), QVariantList({tittel, tittel}));
    }
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
}

TEST_F(Graftittel, SamlegrafEndrerBareMalenForValgtRetning)
{
    for (bool adsorpsjon : {true, false}) {
        const QString endret = adsorpsjon ? exports::MalAdsorpsjon : exports::MalDesorpsjon;
        const QString annen = adsorpsjon ? exports::MalDesorpsjon : exports::MalAdsorpsjon;
        auto mal = xlsx::apne(mappe.sti(endret));  // C1 emptied first, to see the command write it
        mal->ark(1).settCelle(1, 3, xlsx::Verdi{});
        mal->lagre();
        mal.reset();
        const QByteArray for_ = mappe.les(annen);
        form().velgAdsorpsjon(adsorpsjon);
        svar({endret});
        EXPECT_EQ(form().Command4_Click(), Utfall::Ferdig);
        const Bok bok = lesArbeidsbok(mappe.sti(endret));
        EXPECT_EQ(bok.diagrammer(2, "tittel").value(0), endret);
        EXPECT_EQ(bok[QStringLiteral("C1")].toString(), QStringLiteral("Cycle nr.1"));
        EXPECT_EQ(mappe.les(annen), for_);
    }
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
}

TEST_F(Graftittel, TestknappenOgManglendeEllerOdelagtMalEndrerIngenting)
{
    // The hidden test button opens the template and leaves it as it was.
    const QByteArray for_ = mappe.les(exports::MalSykluser);
    EXPECT_EQ(form().Command6_Click(), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(exports::MalSykluser), for_);
    EXPECT_TRUE(dialogs.dialoger().empty());

    // Missing templates: refused before anything is opened or asked; the test button shows why.
    QFile::remove(mappe.sti(exports::MalSykluser));
    QFile::remove(mappe.sti(exports::MalDesorpsjon));
    form().velgAdsorpsjon(false);
    EXPECT_EQ(form().Command6_Click(), Utfall::Avvist);
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    form().findChild<QPushButton*>(QStringLiteral("Command4"))->click();
    EXPECT_EQ(dialogs.meldinger().mid(1), QStringList({"Malfila finnes ikke", "Malfila finnes ikke"}));
    EXPECT_EQ(dialogs.dialoger().size(), 3u);

    // A cycle template with a single chart fails at the second one: "Feil" in a plain box,
    // the template as it was.
    QFile::copy(mappe.sti(exports::MalAdsorpsjon), mappe.sti(exports::MalSykluser));
    const QByteArray enGraf = mappe.les(exports::MalSykluser);
    svar({QStringLiteral("Ny")});
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Feil"));
    EXPECT_EQ(dialogs.dialoger().back().ikon, dialogs::Ikon::Ingen);
    EXPECT_EQ(mappe.les(exports::MalSykluser), enGraf);

    // A combined template that is no workbook: the command ends without a message.
    mappe.skriv(exports::MalDesorpsjon, "tull");
    const size_t vist = dialogs.dialoger().size();
    EXPECT_EQ(form().Command4_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.dialoger().size(), vist);
    EXPECT_EQ(mappe.les(exports::MalDesorpsjon), QByteArray("tull"));
}

}  // namespace
