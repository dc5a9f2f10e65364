// The chart-title commands rewrite their template in place and nothing else; the template
// probe leaves its template as it was. Checked through openpyxl and the files' bytes.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class Graftittel : public Eksportmappe {};

TEST_F(Graftittel, EnkeltgrafFaarSammeTittelIBeggeDiagrammer)
{
    // A new title, then the proposal accepted (kept), then an empty answer (both charts emptied); the
    // template is copied aside before and after each answer and all copies are read at the end.
    const QString mal = mappe.sti(exports::MalSykluser), ny = u"Syklus – CO₂ & H₂O"_s;
    QStringList kopier = {mappe.sti(u"0.xlsx"_s)};
    QFile::copy(mal, kopier[0]);
    for (const dialogs::SkriptDialogs::Svaret& svaret : {dialogs::SkriptDialogs::Svaret(ny), {Forslag{}}, {QString()}}) {
        svar(svaret);
        EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
        kopier << mappe.sti(u"%1.xlsx"_s.arg(kopier.size()));
        QFile::copy(mal, kopier.last());
    }
    const QList<Bok> b = lesArbeidsboker(kopier);
    const QString gammel = b[0].diagrammer(2, "tittel").value(0).toString();
    const auto& d = dialogs.dialoger();
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(QStringList({d[0].tekst, d[0].tittel, d[0].forslag, d[1].forslag, d[2].forslag}),
              QStringList({"Angi tittel", "Tittel", gammel, ny, ny}));
    EXPECT_EQ(b[1].diagrammer(2, "tittel"), QVariantList({ny, ny}));
    EXPECT_EQ(b[2].diagrammer(2, "tittel"), QVariantList({ny, ny}));
    EXPECT_EQ(b[3].diagrammer(2, "tittel"), QVariantList({"", ""}));
    EXPECT_EQ(b[1][u"A1"_s].toString(), u"Time&Date"_s);
    EXPECT_TRUE(dialogs.meldinger().isEmpty());
}

TEST_F(Graftittel, SamlegrafEndrerBareMalenForValgtRetning)
{
    const QString maler[] = {exports::MalAdsorpsjon, exports::MalDesorpsjon};
    for (const QString& mal : maler) {  // C1 emptied first, to see the command write it
        auto bok = xlsx::apne(mappe.sti(mal));
        bok->ark(1).settCelle(1, 3, xlsx::Verdi{});
        bok->lagre();
    }
    for (bool adsorpsjon : {true, false}) {
        const QString annen = maler[adsorpsjon ? 1 : 0];
        const QByteArray for_ = mappe.les(annen);
        form().velgAdsorpsjon(adsorpsjon);
        svar(maler[adsorpsjon ? 0 : 1]);
        EXPECT_EQ(form().Command4_Click(), Utfall::Ferdig);
        EXPECT_EQ(mappe.les(annen), for_);
    }
    // Each template got its own name as title.
    const QList<Bok> b = lesArbeidsboker({mappe.sti(maler[0]), mappe.sti(maler[1])});
    for (int i : {0, 1}) {
        EXPECT_EQ(b[i].diagrammer(2, "tittel").value(0), maler[i]);
        EXPECT_EQ(b[i][u"C1"_s].toString(), u"Cycle nr.1"_s);
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
    svar(u"Ny"_s);
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
