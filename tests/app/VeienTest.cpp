// The road of a typical experiment on the sample-data generator's file (the one in examples/), twice:
// once through the real window (offscreen, answers by question) and once through tolvik-batch, each in
// a program folder of its own, in both modes: import, find-cycles (start 50, the proposed threshold,
// Ja), the workbooks, the chart titles, Exit. Both roads write the same workbooks, part for part, and
// save the same settings and turning points.
// On the way, what the data must give: every turning point at the same phase of its cycle (the
// plateau's start with Adsorpsjon, its end with Desorpsjon), the combined workbook's curves and the
// graph window's aligned cycles over each other, and every CO2 area positive. Data whose plateau noise
// lets the smallest or largest value land at either end of a plateau, or whose heating lies elsewhere
// than where the desorption zero point is looked for, fail here.
#include "analysis/AutomatiskSoking.h"
#include "analysis/Sykluser.h"
#include "analysis/Syklusvinduer.h"
#include "app/FrmGraph.h"
#include "export/Eksport.h"
#include "export/Graftittel.h"
#include "export/Integrering.h"
#include "export/Samlefil.h"
#include "felles/Eksportmappe.h"
#include "store/Import.h"

#include <QProcess>
#include <QSet>
#include <algorithm>

namespace {

using dialogs::Svar;
using Forslag = dialogs::SkriptDialogs::Forslag;
using Svaret = dialogs::SkriptDialogs::Svaret;

// The generator's cycle: a start-up of this many minutes (given to it), then cycles of 200; three
// closed groups in 12 hours at a row every 5 seconds.
constexpr int Oppstart = 40, SyklusMin = 200, Sykluser = 3, RaderPaTo = 24;
constexpr double FaseSlingring = 1.0;  // minutes

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

// The values of one column (from 1) of a workbook's first sheet, from row 2 down to the first
// cell without a number.
std::vector<double> kolonne(const QString& fil, int k)
{
    const auto bok = xlsx::apne(fil);
    std::vector<double> verdier;
    for (int rad = 2;; ++rad) {
        const xlsx::Verdi v = bok->ark(1).celle(rad, k);
        if (!std::holds_alternative<double>(v)) return verdier;
        verdier.push_back(std::get<double>(v));
    }
}

// The row (from 0) of a cycle's column where the curve shows its landmark: with Adsorpsjon the
// first row below 1 % of the column's first value (the drop onto the plateau), with Desorpsjon
// the largest value (the desorption peak); -1 when there is none.
long merke(const std::vector<double>& v, bool adsorpsjon)
{
    if (v.empty()) return -1;
    const auto i = adsorpsjon ? std::find_if(v.begin(), v.end(), [&](double x) { return x < 0.01 * v.front(); })
                              : std::max_element(v.begin(), v.end());
    return i == v.end() ? -1 : i - v.begin();
}

// The largest difference between the values.
double spenn(const std::vector<double>& v)
{
    const auto [lavest, hoyest] = std::minmax_element(v.begin(), v.end());
    return *hoyest - *lavest;
}

class Veien : public test::MedVindu {
protected:
    // One command of the window with its answers, keyed by the questions they answer.
    Utfall kjor(Utfall (app::Form1::*kommando)(), std::initializer_list<std::pair<dialogs::Sporsmal, Svaret>> svarene)
    {
        for (const auto& [sporsmal, s] : svarene) dialogs.svar(sporsmal, s);
        return ((*f).*kommando)();
    }

    // The window's cycle search in one mode, and what the data must give in it: the turning points at
    // a phase from fra to til (minutes into their cycle), the combined workbook (prefix) and the graph
    // window's aligned cycles with their landmarks on one row and one minute.
    void sykluser(bool adsorpsjon, double fra, double til, const QString& prefiks)
    {
        SCOPED_TRACE(prefiks.toStdString());
        f->velgAdsorpsjon(adsorpsjon);
        EXPECT_EQ(kjor(&app::Form1::Command7_Click, {{analysis::SporStart, u"50"_s},
                                                     {analysis::SporTerskel, Forslag{}},
                                                     {analysis::SporForslag, Svar::Ja}}),
                  Utfall::Ferdig);
        const QStringList snupunkter = QString::fromLatin1(mappe.les(u"SnuPunkter.txt"_s).trimmed()).split('!');
        ASSERT_EQ(snupunkter.size(), Sykluser) << snupunkter.join('!');
        std::vector<double> faser;
        for (const QString& s : snupunkter) {
            const QDateTime t = QDateTime::fromString(s, u"dd.MM.yyyy HH:mm:ss"_s);
            faser.push_back(std::fmod(dataStart.secsTo(t) / 60.0 - Oppstart, SyklusMin));
            EXPECT_TRUE(faser.back() >= fra && faser.back() < til) << s;
        }
        EXPECT_LT(spenn(faser), FaseSlingring) << snupunkter.join('!');

        // With Adsorpsjon each column starts ten minutes before the pressure surge, so the drop onto
        // the plateau comes at the same row in every column; with Desorpsjon ten minutes before the
        // desorption peak, so the peaks share a row.
        if (!adsorpsjon) dialogs.svar(exports::SporPeriode, Forslag{});
        EXPECT_EQ(
            kjor(&app::Form1::Command5_Click, {{exports::SporSamlefil, Svar::Ja}, {exports::SporPrefiks, prefiks}}),
            Utfall::Ferdig);
        std::vector<double> rader, minutter;
        for (int k = 1; k <= Sykluser; ++k) {
            rader.push_back(
                merke(kolonne(mappe.sti(u"Data_Bearbeidet/%1_Samlefil.xlsm"_s.arg(prefiks)), 2 + k), adsorpsjon));
            EXPECT_GE(rader.back(), 0) << "syklus " << k;
        }
        EXPECT_LE(spenn(rader), RaderPaTo);
        if (!adsorpsjon) dialogs.svar(analysis::SporPeriode, u"140"_s);
        const auto bilde = analysis::lesSyklusbilde(f->kontekst());
        ASSERT_TRUE(bilde) << dialogs.meldinger().join('|');
        for (const auto& s : bilde->sykluser) {
            const long i = merke(std::vector<double>(s.verdier.begin(), s.verdier.end()), adsorpsjon);
            ASSERT_GE(i, 0) << "syklus " << s.syklus;
            minutter.push_back(s.minutter[static_cast<size_t>(i)] - s.null);
        }
        EXPECT_LE(spenn(minutter), FaseSlingring);
    }
    // The CO2 areas, 25 minutes before to 25 after each turning point: one positive value a cycle.
    void integrer(const QString& prefiks)
    {
        EXPECT_EQ(kjor(&app::Form1::Command12_Click, {{exports::SporEnkeltfiler, Svar::Ja},
                                                      {exports::SporPrefiks, prefiks},
                                                      {exports::SporMinutterFor, Forslag{}},
                                                      {exports::SporMinutterEtter, Forslag{}}}),
                  Utfall::Ferdig);
        const std::vector<double> a =
            kolonne(mappe.sti(u"Data_Bearbeidet/%1_Samlefil_%2.xlsx"_s.arg(prefiks).arg(Sykluser)), 2);
        EXPECT_EQ(a.size(), size_t{Sykluser});
        for (double areal : a) EXPECT_GT(areal, 0.0) << prefiks;
    }

    QDateTime dataStart;
};

TEST_F(Veien, VinduetOgBatchGarSammeVeiOgSkriverDetSamme)
{
    // The generator's file is the one in examples/.
    const QString radata = mappe.sti(u"radata.csv"_s);
    QProcess generator;
    generator.start(QStringLiteral(TOLVIK_LAG_RADATA), {"--hours", "12", "--interval", "5", "--channels", "6",
                                                        "--startup", QString::number(Oppstart), "--seed", "6", radata});
    ASSERT_TRUE(generator.waitForFinished(60000) && generator.exitCode() == 0);
    const QList<QByteArray> forste = mappe.les(u"radata.csv"_s).left(200).split('\n').at(1).split(',');
    dataStart = QDateTime::fromString(QString::fromLatin1(forste[0] + ' ' + forste[1]), u"yyyy/MM/dd HH:mm:ss"_s);

    // The window's road. The plateau starts at minute 20 of a cycle (the phase is counted from the first
    // row, a few seconds after the generator's minute 0); the heating at minute 70 lifts CO2 through the
    // threshold some eight minutes later.
    mappe.kopierMaler();
    vindu({});
    f->settGrafVisning([](app::FrmGraph& g) { g.close(); });
    EXPECT_EQ(kjor(&app::Form1::Command2_Click, {{store::SporFil, radata}, {store::SporImport, Svar::Ja}}),
              Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command8_Click, {}), Utfall::Ferdig);
    sykluser(true, 19.5, 22.0, u"Ads"_s);
    EXPECT_EQ(
        kjor(&app::Form1::Command3_Click, {{exports::SporEnkeltfiler, Svar::Ja}, {exports::SporPrefiks, u"Vei"_s}}),
        Utfall::Ferdig);
    integrer(u"Int"_s);
    sykluser(false, 70.0, 90.0, u"Des"_s);
    integrer(u"IntD"_s);
    EXPECT_EQ(kjor(&app::Form1::Command9_Click, {{exports::SporTittel, u"Forsøk 12"_s}}), Utfall::Ferdig);
    EXPECT_EQ(kjor(&app::Form1::Command4_Click, {{exports::SporTittel, u"Alle sykluser"_s}}), Utfall::Ferdig);
    EXPECT_TRUE(f->tittel().startsWith(u"Tolvik - "_s + vb::antallTekst(8640))) << f->tittel();
    // Exit saves the settings; that a new start finds them, the column list and the row count is the
    // start-up and package tests' part (Oppstart, pakke/installert.sh).
    EXPECT_EQ(kjor(&app::Form1::Command1_Click, {}), Utfall::Ferdig);

    // The same road through tolvik-batch in a folder of its own; it saves the aligned cycles as a PDF.
    test::Programmappe annen;
    annen.kopierMaler();
    const auto batch = [&](const QStringList& argumenter) { return annen.batch(argumenter, true); };
    batch({"import", radata});
    batch({"graph"});
    for (const bool ads : {true, false}) {
        const QString modus = ads ? u"--adsorption"_s : u"--desorption"_s;
        batch({modus, "--save-settings", "find-cycles", "--start", "50", "--apply"});
        batch({modus, "export-combined", "--prefix", ads ? "Ads" : "Des"});
        if (ads) batch({modus, "export-single", "--prefix", "Vei"});
        batch({modus, "integrate", "--prefix", ads ? "Int" : "IntD"});
    }
    const test::Kjoring graf = batch({"graph", "--cycles", "--aligned", "--pdf", annen.sti(u"v.pdf"_s)});
    EXPECT_TRUE(graf.ut.contains(u"Sykluser i visningen: %1"_s.arg(Sykluser))) << graf.ut;
    EXPECT_TRUE(annen.les(u"v.pdf"_s).startsWith("%PDF"));
    batch({"edit-title", "--single", "--title", "Forsøk 12"});
    batch({"edit-title", "--combined", "--title", "Alle sykluser"});
    EXPECT_EQ(annen.les(u"Oppsett.txt"_s), mappe.les(u"Oppsett.txt"_s));
    EXPECT_EQ(annen.les(u"SnuPunkter.txt"_s), mappe.les(u"SnuPunkter.txt"_s));

    // The same workbooks, part for part.
    const QStringList vinduets = deler(mappe);
    QSet<QString> boker;
    for (const QString& linje : vinduets) boker.insert(linje.section(' ', 0, 0));
    EXPECT_EQ(boker.size(), 5 + 4 * Sykluser + 1);  // the templates, and Vei_k, Int_k, IntD_k with the combined ones
    EXPECT_EQ(vinduets.join('\n').toStdString(), deler(annen).join('\n').toStdString());  // shown as a diff
}

}  // namespace
