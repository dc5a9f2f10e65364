// The road of a typical experiment, twice: once through the real window (offscreen, answers by
// question) and once through tolvik-batch, each in a program folder of its own. Both roads write
// the same workbooks (cells, formulas, chart titles and axes), and the window starts again with
// its settings, its column list and its row count.
#include "analysis/AutomatiskSoking.h"
#include "analysis/Sykluser.h"
#include "app/FrmGraph.h"
#include "export/Eksport.h"
#include "export/Graftittel.h"
#include "export/Integrering.h"
#include "export/Samlefil.h"
#include "felles/Eksportmappe.h"
#include "files/Oppsett.h"
#include "store/Import.h"

#include <QDirIterator>

namespace {

using dialogs::Svar;
using Forslag = dialogs::SkriptDialogs::Forslag;
using Svaret = dialogs::SkriptDialogs::Svaret;

const QString Radata = QStringLiteral(TOLVIK_KILDE "/examples/eksempel_6_kanaler.csv");

// The built templates into a program folder.
void kopierMaler(const test::Programmappe& mappe)
{
    for (const QString& mal : QDir(QStringLiteral(TOLVIK_DIST)).entryList({u"Mal_*"_s}))
        ASSERT_TRUE(QFile::copy(QStringLiteral(TOLVIK_DIST "/") + mal, mappe.sti(mal))) << mal;
}

// Every workbook a road wrote, and the templates it changed, as openpyxl reads them.
std::map<QString, QJsonObject> arbeidsboker(const test::Programmappe& mappe)
{
    std::map<QString, QJsonObject> boker;
    for (QDirIterator it(mappe.mappe(), {"*.xlsx", "*.xlsm"}, QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();) {
        const QString fil = it.next();
        const test::Bok bok = test::lesArbeidsbok(fil, true);
        QJsonObject alt = bok.json;
        alt.insert(u"celler"_s, bok.celler);
        alt.insert(u"formler"_s, bok.formler);
        boker[QDir(mappe.mappe()).relativeFilePath(fil)] = alt;
    }
    return boker;
}

class Veien : public test::MedVindu {
protected:
    // One command of the window with its answers, keyed by the questions they answer.
    Utfall kjor(Utfall (app::Form1::*kommando)(), std::initializer_list<std::pair<dialogs::Sporsmal, Svaret>> svarene)
    {
        for (const auto& [sporsmal, s] : svarene) dialogs.svar(sporsmal, s);
        return ((*f).*kommando)();
    }
};

TEST_F(Veien, VinduetOgBatchGarSammeVeiOgSkriverDetSamme)
{
    // The window's road.
    kopierMaler(mappe);
    vindu({});
    f->settGrafVisning([](app::FrmGraph& g) { g.close(); });
    EXPECT_EQ(kjor(&app::Form1::Command2_Click, {{store::SporFil, Radata}, {store::SporImport, Svar::Ja}}),
              Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command8_Click, {}), Utfall::Ferdig);
    f->velgAdsorpsjon(true);
    EXPECT_EQ(
        kjor(&app::Form1::Command7_Click,
             {{analysis::SporStart, u"50"_s}, {analysis::SporTerskel, Forslag{}}, {analysis::SporForslag, Svar::Ja}}),
        Utfall::Ferdig);
    const QStringList settinger = bokser();
    EXPECT_EQ(
        kjor(&app::Form1::Command3_Click, {{exports::SporEnkeltfiler, Svar::Ja}, {exports::SporPrefiks, u"Vei"_s}}),
        Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command5_Click, {{exports::SporSamlefil, Svar::Ja}, {exports::SporPrefiks, u"Ads"_s}}),
              Utfall::Ferdig);
    f->velgAdsorpsjon(false);
    EXPECT_EQ(
        kjor(&app::Form1::Command5_Click,
             {{exports::SporSamlefil, Svar::Ja}, {exports::SporPrefiks, u"Des"_s}, {exports::SporPeriode, Forslag{}}}),
        Utfall::Ferdig);
    f->velgAdsorpsjon(true);
    EXPECT_EQ(kjor(&app::Form1::Command12_Click, {{exports::SporEnkeltfiler, Svar::Ja},
                                                  {exports::SporPrefiks, u"Int"_s},
                                                  {exports::SporMinutterFor, Forslag{}},
                                                  {exports::SporMinutterEtter, Forslag{}}}),
              Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command9_Click, {{exports::SporTittel, u"Forsøk 12"_s}}), Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command4_Click, {{exports::SporTittel, u"Alle sykluser"_s}}), Utfall::Ferdig);
    const QString tittel = f->tittel();
    const QStringList kolonner = f->kolonner();
    EXPECT_EQ(kjor(&app::Form1::Command1_Click, {}), Utfall::Ferdig);
    EXPECT_TRUE(tittel.startsWith(u"Tolvik - "_s + vb::antallTekst(8640))) << tittel;

    // Started again: the settings, the column list (CO2 selected) and the row count are back.
    f.reset();
    vindu({});
    EXPECT_EQ(bokser(), settinger);
    EXPECT_EQ(f->kolonner(), kolonner);
    EXPECT_TRUE(f->kolonneTekst().contains(u"CO2"_s));
    EXPECT_EQ(f->tittel(), tittel);
    EXPECT_TRUE(dialogs.meldinger().isEmpty() || !dialogs.meldinger().last().contains(u"feil"_s));

    // The same road through tolvik-batch in a folder of its own.
    test::Programmappe annen;
    kopierMaler(annen);
    const auto batch = [&](const QStringList& argumenter) {
        const test::Kjoring k = test::batch(QStringList{u"--folder"_s, annen.mappe()} + argumenter);
        EXPECT_EQ(k.status, 0) << argumenter.join(' ') << k.ut << k.feil;
        return k;
    };
    batch({"import", Radata});
    batch({"graph"});
    batch({"--adsorption", "--save-settings", "find-cycles", "--start", "50", "--apply"});
    batch({"--adsorption", "export-single", "--prefix", "Vei"});
    batch({"--adsorption", "export-combined", "--prefix", "Ads"});
    batch({"--desorption", "export-combined", "--prefix", "Des"});
    batch({"--adsorption", "integrate", "--prefix", "Int"});
    batch({"edit-title", "--single", "--title", "Forsøk 12"});
    batch({"--adsorption", "edit-title", "--combined", "--title", "Alle sykluser"});
    EXPECT_EQ(annen.les(u"Oppsett.txt"_s), mappe.les(u"Oppsett.txt"_s));
    EXPECT_EQ(annen.les(u"SnuPunkter.txt"_s), mappe.les(u"SnuPunkter.txt"_s));

    const auto vinduets = arbeidsboker(mappe), batchens = arbeidsboker(annen);
    EXPECT_GE(vinduets.size(), 5u + 2u * static_cast<size_t>(settinger[0].toInt()));
    ASSERT_EQ(vinduets.size(), batchens.size());
    for (const auto& [navn, bok] : vinduets) {
        ASSERT_TRUE(batchens.count(navn)) << navn;
        EXPECT_TRUE(bok == batchens.at(navn)) << navn;
    }
}

}  // namespace
