// The sample-data generator's file through the quick start, in both modes, by tolvik-batch:
// import, find-cycles (start 50, the proposed threshold, Ja), the combined workbook and the
// CO2 integration. Every turning point must fall at the same phase of its cycle (the plateau's
// start with Adsorpsjon, its end with Desorpsjon), the combined workbook's curves must lie over
// each other, and every CO2 area must be positive. Data whose plateau noise lets the smallest
// or largest value land at either end of a plateau, or whose heating lies elsewhere than where
// the desorption zero point is looked for, fail here.
#include "analysis/Syklusvinduer.h"
#include "felles/MedVindu.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QProcess>
#include <algorithm>

namespace {

// The generator's cycle: a start-up of this many minutes (given to it), then cycles of 200.
constexpr int Oppstart = 40, SyklusMin = 200;
constexpr int Sykluser = 3;            // closed groups in 14 hours: plateaus at 60, 260, 460 and 660 minutes
constexpr int RaderPaTo = 60;          // rows in two minutes at a sample every two seconds
constexpr double FaseSlingring = 1.0;  // minutes

struct Modus {
    QString valg, prefiks;
    double fra, til;  // where in its cycle (minutes) every turning point must lie
};

// Minutes from the data start into the cycle.
double fase(const QDateTime& dataStart, const QDateTime& t)
{
    return std::fmod(dataStart.secsTo(t) / 60.0 - Oppstart, SyklusMin);
}

// The values of one column (from 1) of a workbook's first sheet, from row 2 down to the first
// cell without a number.
std::vector<double> kolonne(xlsx::Arbeidsbok& bok, int k)
{
    std::vector<double> verdier;
    for (int rad = 2;; ++rad) {
        const xlsx::Verdi v = bok.ark(1).celle(rad, k);
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

class Provedata : public ::testing::Test {
protected:
    void SetUp() override
    {
        mappe.kopierMaler();
        const QString radata = mappe.sti(u"radata.csv"_s);
        QProcess generator;
        generator.start(QStringLiteral(TOLVIK_LAG_RADATA),
                        {"--hours", "14", "--interval", "2", "--channels", "6", "--startup", QString::number(Oppstart),
                         "--seed", "3", radata});
        ASSERT_TRUE(generator.waitForFinished(60000));
        ASSERT_EQ(generator.exitCode(), 0) << generator.readAllStandardError().toStdString();
        batch({"import", radata});
        const QList<QByteArray> forste = mappe.les(u"radata.csv"_s).left(200).split('\n').at(1).split(',');
        dataStart = QDateTime::fromString(QString::fromLatin1(forste[0] + ' ' + forste[1]), u"yyyy/MM/dd HH:mm:ss"_s);
        ASSERT_TRUE(dataStart.isValid());
    }

    test::Kjoring batch(const QStringList& argumenter) { return mappe.batch(argumenter, true); }

    // The quick start in one mode and what it must give.
    void hurtigstart(const Modus& modus)
    {
        SCOPED_TRACE(modus.valg.toStdString());
        const test::Kjoring funnet = batch({modus.valg, "--save-settings", "find-cycles", "--start", "50", "--apply"});
        EXPECT_TRUE(funnet.ut.startsWith(u"Det ble funnet %1 sykluser."_s.arg(Sykluser))) << funnet.ut;

        const QStringList snupunkter = QString::fromLatin1(mappe.les(u"SnuPunkter.txt"_s).trimmed()).split('!');
        ASSERT_EQ(snupunkter.size(), Sykluser) << snupunkter.join('!');
        std::vector<double> faser;
        for (const QString& s : snupunkter) {
            const QDateTime t = QDateTime::fromString(s, u"dd.MM.yyyy HH:mm:ss"_s);
            ASSERT_TRUE(t.isValid()) << s;
            faser.push_back(fase(dataStart, t));
            EXPECT_GE(faser.back(), modus.fra) << s;
            EXPECT_LT(faser.back(), modus.til) << s;
        }
        const auto [lavest, hoyest] = std::minmax_element(faser.begin(), faser.end());
        EXPECT_LT(*hoyest - *lavest, FaseSlingring) << snupunkter.join('!');

        // The combined workbook: with Adsorpsjon each column starts ten minutes before the
        // pressure surge, so the drop onto the plateau comes at the same row in every column;
        // with Desorpsjon ten minutes before the desorption peak, so the peaks share a row.
        batch({modus.valg, "export-combined", "--prefix", modus.prefiks});
        const auto samle = xlsx::apne(mappe.sti(u"Data_Bearbeidet/%1_Samlefil.xlsm"_s.arg(modus.prefiks)));
        std::vector<long> merker;
        for (int k = 1; k <= Sykluser; ++k) {
            merker.push_back(merke(kolonne(*samle, 2 + k), modus.valg == u"--adsorption"_s));
            EXPECT_GE(merker.back(), 0) << "syklus " << k;
        }
        const auto [forst, sist] = std::minmax_element(merker.begin(), merker.end());
        EXPECT_LE(*sist - *forst, RaderPaTo) << "rader " << merker[0] << ", " << merker[1] << ", " << merker[2];

        // The graph window's cycles, aligned on the same zero points: the landmarks share a minute,
        // and tolvik-batch saves the view as a PDF.
        {
            dialogs::SkriptDialogs dialogs;
            app::Form1 f(mappe.mappe(), dialogs);
            f.velgAdsorpsjon(modus.valg == u"--adsorption"_s);
            dialogs.svar(analysis::SporPeriode, u"140"_s);
            const auto bilde = analysis::lesSyklusbilde(f.kontekst());
            ASSERT_TRUE(bilde) << dialogs.meldinger().join('|');
            std::vector<double> minutter;
            for (const auto& s : bilde->sykluser) {
                const long i =
                    merke(std::vector<double>(s.verdier.begin(), s.verdier.end()), modus.valg == u"--adsorption"_s);
                ASSERT_GE(i, 0) << "syklus " << s.syklus;
                minutter.push_back(s.minutter[static_cast<size_t>(i)] - s.null);
            }
            const auto [forst, sist] = std::minmax_element(minutter.begin(), minutter.end());
            EXPECT_LE(*sist - *forst, FaseSlingring) << minutter[0] << ", " << minutter[1] << ", " << minutter[2];
        }
        const test::Kjoring graf =
            batch({modus.valg, "graph", "--cycles", "--aligned", "--pdf", mappe.sti(u"v.pdf"_s)});
        EXPECT_TRUE(graf.ut.contains(u"Sykluser i visningen: %1"_s.arg(Sykluser))) << graf.ut;
        EXPECT_TRUE(mappe.les(u"v.pdf"_s).startsWith("%PDF"));

        // The CO2 areas, 25 minutes before to 25 after each turning point.
        batch({modus.valg, "integrate", "--prefix", modus.prefiks});
        const auto arealer =
            xlsx::apne(mappe.sti(u"Data_Bearbeidet/%1_Samlefil_%2.xlsx"_s.arg(modus.prefiks).arg(Sykluser)));
        const std::vector<double> a = kolonne(*arealer, 2);
        ASSERT_EQ(a.size(), size_t{Sykluser});
        for (int k = 0; k < Sykluser; ++k) EXPECT_GT(a[k], 0.0) << "syklus " << k + 1;
    }

    test::Programmappe mappe;
    QDateTime dataStart;
};

// The plateau starts at minute 20 of a cycle (the phase is counted from the first row, a few
// seconds after the generator's minute 0); the heating at minute 70 lifts CO2 through the
// threshold some eight minutes later.
TEST_F(Provedata, HurtigstartenGirSammeFaseKurverOverHverandreOgPositiveArealerIBeggeModi)
{
    hurtigstart({u"--adsorption"_s, u"Ads"_s, 19.5, 22.0});
    hurtigstart({u"--desorption"_s, u"Des"_s, 70.0, 90.0});
}

}  // namespace
