// The chart-title commands rewrite their template in place and nothing else; the template
// probe leaves its template as it was. Checked through openpyxl and the files' bytes.
#include "Eksportmappe.h"

#include "export/Eksport.h"

#include <QFile>
#include <QJsonArray>
#include <QPushButton>

using ui::SkriptDialogs;

namespace {

// The titles of the charts on sheet 2.
QStringList titler(const QJsonObject& bok)
{
    QStringList ut;
    for (const auto& d : bok[QStringLiteral("diagrammer")].toArray()[1].toArray())
        ut << d[QStringLiteral("tittel")].toString();
    return ut;
}

class Graftittel : public Eksportmappe {};

TEST_F(Graftittel, EnkeltgrafFaarSammeTittelIBeggeDiagrammer)
{
    const QString mal = mappe.sti(eksport::MalSykluser);
    const QString gammel = titler(lesArbeidsbok(mal)).value(0);

    dialogs.svar(QStringLiteral("Syklus – CO₂ & H₂O"));
    EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
    ASSERT_EQ(dialogs.dialoger().size(), 1u);
    EXPECT_EQ(dialogs.dialoger()[0].tekst, QStringLiteral("Angi tittel"));
    EXPECT_EQ(dialogs.dialoger()[0].tittel, QStringLiteral("Tittel"));
    EXPECT_EQ(dialogs.dialoger()[0].forslag, gammel);

    QJsonObject bok = lesArbeidsbok(mal);
    const QStringList nye = titler(bok);
    ASSERT_GE(nye.size(), 2);
    EXPECT_EQ(nye[0], QStringLiteral("Syklus – CO₂ & H₂O"));
    EXPECT_EQ(nye[1], nye[0]);
    EXPECT_EQ(bok[QStringLiteral("celler")][QStringLiteral("A1")].toString(), QStringLiteral("Time&Date"));

    // Accepting the proposal keeps the title; an empty answer empties it on both charts.
    dialogs.svar(SkriptDialogs::Forslag{});
    EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
    EXPECT_EQ(titler(lesArbeidsbok(mal)).mid(0, 2), nye.mid(0, 2));
    dialogs.svar(QString());
    EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
    EXPECT_EQ(titler(lesArbeidsbok(mal)).mid(0, 2), QStringList({"", ""}));
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
}

TEST_F(Graftittel, SamlegrafEndrerBareMalenForValgtRetning)
{
    const QString ads = mappe.sti(eksport::MalAdsorpsjon);
    const QString des = mappe.sti(eksport::MalDesorpsjon);
    const QByteArray desFor = innhold(des);

    form().velgAdsorpsjon(true);
    dialogs.svar(QStringLiteral("Adsorpsjon 40 °C"));
    EXPECT_EQ(form().Command4_Click(), Utfall::Ferdig);
    QJsonObject bok = lesArbeidsbok(ads);
    EXPECT_EQ(titler(bok).value(0), QStringLiteral("Adsorpsjon 40 °C"));
    EXPECT_EQ(bok[QStringLiteral("celler")][QStringLiteral("C1")].toString(), QStringLiteral("Cycle nr.1"));
    EXPECT_EQ(innhold(des), desFor);

    const QByteArray adsFor = innhold(ads);
    form().velgAdsorpsjon(false);
    dialogs.svar(QStringLiteral("Desorpsjon"));
    EXPECT_EQ(form().Command4_Click(), Utfall::Ferdig);
    EXPECT_EQ(titler(lesArbeidsbok(des)).value(0), QStringLiteral("Desorpsjon"));
    EXPECT_EQ(innhold(ads), adsFor);
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
}

TEST_F(Graftittel, ManglendeEllerOdelagtMalEndrerIngenting)
{
    // Missing templates: refused before anything is opened or asked.
    QFile::remove(mappe.sti(eksport::MalSykluser));
    QFile::remove(mappe.sti(eksport::MalDesorpsjon));
    form().velgAdsorpsjon(false);
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    form().findChild<QPushButton*>(QStringLiteral("Command4"))->click();
    EXPECT_EQ(dialogs.meldinger(), QStringList({"Malfila finnes ikke", "Malfila finnes ikke"}));
    EXPECT_EQ(dialogs.dialoger().size(), 2u);

    // A cycle template with a single chart fails at the second one: "Feil" in a plain box,
    // the template as it was.
    QFile::copy(mappe.sti(eksport::MalAdsorpsjon), mappe.sti(eksport::MalSykluser));
    const QByteArray enGraf = innhold(mappe.sti(eksport::MalSykluser));
    ASSERT_EQ(titler(lesArbeidsbok(mappe.sti(eksport::MalSykluser))).size(), 1);
    dialogs.svar(QStringLiteral("Ny"));
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), QStringLiteral("Feil"));
    EXPECT_EQ(dialogs.dialoger().back().ikon, ui::Ikon::Ingen);
    EXPECT_EQ(dialogs.dialoger().back().knapper, ui::Knapper::Ok);
    EXPECT_EQ(innhold(mappe.sti(eksport::MalSykluser)), enGraf);

    // A combined template that is no workbook: the command ends without a message.
    mappe.skriv(eksport::MalDesorpsjon, "tull");
    const size_t for_ = dialogs.dialoger().size();
    EXPECT_EQ(form().Command4_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.dialoger().size(), for_);
    EXPECT_EQ(mappe.les(eksport::MalDesorpsjon), QByteArray("tull"));
}

TEST_F(Graftittel, TestknappenLarMalenVaereUrort)
{
    const QString mal = mappe.sti(eksport::MalSykluser);
    const QByteArray for_ = innhold(mal);
    EXPECT_TRUE(form().findChild<QPushButton*>(QStringLiteral("Command6"))->isHidden());
    EXPECT_EQ(form().Command6_Click(), Utfall::Ferdig);
    EXPECT_EQ(form().Command6_Click(), Utfall::Ferdig);
    EXPECT_EQ(innhold(mal), for_);
    EXPECT_TRUE(dialogs.dialoger().empty());

    // Without the template the reason is shown and the command ends there.
    QFile::remove(mal);
    EXPECT_EQ(form().Command6_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().size(), 1);
}

} // namespace
