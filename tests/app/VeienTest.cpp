// The road of a typical experiment, twice: once through the real window (offscreen, answers by
// question) and once through tolvik-batch, each in a program folder of its own. Both roads write
// the same workbooks, part for part, and the window starts again with its settings, its column
// list and its row count.
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

#include <QProcess>
#include <QSet>

namespace {

using dialogs::Svar;
using Forslag = dialogs::SkriptDialogs::Forslag;
using Svaret = dialogs::SkriptDialogs::Svaret;

const QString Radata = QStringLiteral(TOLVIK_KILDE "/examples/eksempel_6_kanaler.csv");

// Every part of every workbook a road wrote and of the templates it changed: workbook, part and
// a digest of its bytes, a line each (the zip's own timestamps left out).
QStringList deler(const test::Programmappe& mappe)
{
    QProcess p;
    p.start(u"/usr/bin/python3"_s, {u"-c"_s,
                                    u"import hashlib, pathlib, sys, zipfile\n"
                                    "rot = pathlib.Path(sys.argv[1])\n"
                                    "for f in sorted(rot.rglob('*.xls[xm]')):\n"
                                    "    z = zipfile.ZipFile(f)\n"
                                    "    for n in sorted(z.namelist()):\n"
                                    "        print(f.relative_to(rot), n, hashlib.sha1(z.read(n)).hexdigest())"_s,
                                    mappe.mappe()});
    p.waitForFinished();
    return QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
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
    mappe.kopierMaler();
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
    annen.kopierMaler();
    const auto batch = [&](const QStringList& argumenter) { annen.batch(argumenter, true); };
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

    // The same workbooks, part for part.
    const QStringList vinduets = deler(mappe);
    QSet<QString> boker;
    for (const QString& linje : vinduets) boker.insert(linje.section(' ', 0, 0));
    EXPECT_GE(boker.size(), 5 + 2 * settinger[0].toInt());
    EXPECT_EQ(vinduets.join('\n').toStdString(), deler(annen).join('\n').toStdString());  // shown as a diff
}

}  // namespace
