// The chart-title commands rewrite their template in place and nothing else; the template
// probe leaves its template as it was. Checked through openpyxl and the files' bytes.
#include "felles/Eksportmappe.h"

using namespace test;

namespace {

class Graftittel : public Eksportmappe {};

// The single-cycle template: a new title, the proposal accepted (kept), an empty answer (both charts
// emptied); each time the proposal is the title the last answer left. The combined templates: the
// one of the chosen direction gets its title and C1 (emptied first, to see the command write it), the
// other is left byte for byte. Each template is copied aside before and after each answer; the known-
// good file holds the boxes shown and what each answer changed.
TEST_F(Graftittel, TittelkommandoeneEndrerBareSinMal)
{
    const QString maler[] = {exports::MalAdsorpsjon, exports::MalDesorpsjon};
    for (const QString& mal : maler) {
        auto bok = xlsx::apne(mappe.sti(mal));
        bok->ark(1).settCelle(1, 3, xlsx::Verdi{});
        bok->lagre();
    }
    QStringList kopier;
    const auto kopier_ = [&](const QString& mal) {
        kopier << mappe.sti(u"%1.xlsx"_s.arg(kopier.size()));
        QFile::copy(mappe.sti(mal), kopier.last());
    };
    kopier_(exports::MalSykluser);
    for (const auto& svaret : {dialogs::SkriptDialogs::Svaret(u"Syklus – CO₂ & H₂O"_s), {Forslag{}}, {QString()}}) {
        svar(svaret);
        EXPECT_EQ(form().Command9_Click(), Utfall::Ferdig);
        kopier_(exports::MalSykluser);
    }
    for (bool adsorpsjon : {true, false}) {
        const QString &mal = maler[adsorpsjon ? 0 : 1], &annen = maler[adsorpsjon ? 1 : 0];
        const QByteArray for_ = mappe.les(annen);
        kopier_(mal);
        form().velgAdsorpsjon(adsorpsjon);
        svar(mal);
        EXPECT_EQ(form().Command4_Click(), Utfall::Ferdig);
        kopier_(mal);
        EXPECT_EQ(mappe.les(annen), for_);
    }
    const QList<Bok> b = lesArbeidsboker(kopier);
    QString logg = forlop(dialogs);
    for (int i : {1, 2, 3}) logg += u"== svar %1\n"_s.arg(i) + endringer(b[0], b[i]);
    for (int i : {4, 6}) logg += u"== %1\n"_s.arg(maler[i / 6]) + endringer(b[i], b[i + 1]);
    sjekkGull(u"export/gull/Graftittel.txt"_s, logg);
}

// The boxes shown are in the known-good transcript.
TEST_F(Graftittel, TestknappenOgManglendeEllerOdelagtMalEndrerIngenting)
{
    // The hidden test button opens the template and leaves it as it was, silently.
    const QByteArray for_ = mappe.les(exports::MalSykluser);
    EXPECT_EQ(form().Command6_Click(), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(exports::MalSykluser), for_);

    // Missing templates: refused before anything is opened or asked; the test button shows why.
    QFile::remove(mappe.sti(exports::MalSykluser));
    QFile::remove(mappe.sti(exports::MalDesorpsjon));
    form().velgAdsorpsjon(false);
    EXPECT_EQ(form().Command6_Click(), Utfall::Avvist);
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    form().findChild<QPushButton*>(u"Command4"_s)->click();

    // A cycle template with a single chart fails at the second one: "Feil" in a plain box,
    // the template as it was.
    QFile::copy(mappe.sti(exports::MalAdsorpsjon), mappe.sti(exports::MalSykluser));
    const QByteArray enGraf = mappe.les(exports::MalSykluser);
    svar(u"Ny"_s);
    EXPECT_EQ(form().Command9_Click(), Utfall::Avvist);
    EXPECT_EQ(mappe.les(exports::MalSykluser), enGraf);

    // A combined template that is no workbook: the command ends without a message.
    mappe.skriv(exports::MalDesorpsjon, "tull");
    EXPECT_EQ(form().Command4_Click(), Utfall::Avvist);
    EXPECT_EQ(mappe.les(exports::MalDesorpsjon), QByteArray("tull"));
    sjekkGull(u"export/gull/Graftittel.Avvist.txt"_s, forlop(dialogs).replace(mappe.sti({}), u"<mappe>/"_s));
}

}  // namespace
