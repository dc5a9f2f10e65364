// Times the analysis commands on a large measurement database.
//
//   bench_analyse fyll DIR [LINJER]   fills DIR/Data.mdb with LINJER rows (default 1 000 000) of a
//                                     cycling CO2 signal (30 cycles) and writes DIR/Kolonner.txt
//   bench_analyse mal DIR             times cycle finding through the real command against one full
//                                     scan of the column, the graph window until it is drawn, and its
//                                     zooms and moves each with the redraw of the chart
#include "app/Form1.h"
#include "app/FrmGraph.h"
#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "platform/db/Masseinnsetting.h"
#include "platform/dialogs/SkriptDialogs.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

constexpr int Sykluser = 30;
const char* const Kanaler[] = {"N2", "O2", "Ar", "CO2", "H2O", "He"};

// One logged row a second: a start-up hour, then 30 cycles in which CO2 falls from its high level
// to a low one for about a third of the cycle and climbs back.
void fyll(const QString& mappe, long long linjer)
{
    const QString data = mappe + QStringLiteral("/Data.mdb");
    QFile::remove(data);
    store::lagTomDatabase(data);
    db::Database d(data);
    db::Transaksjon t(d);
    db::Masseinnsetting inn(d, "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H)", 2, 6);
    std::vector<std::string> tekster;
    std::vector<std::array<double, 6>> verdier;
    auto send = [&] {
        std::vector<db::Masseinnsetting::Rad> rader;
        for (size_t r = 0; r < verdier.size(); ++r)
            rader.push_back({{tekster[2 * r], tekster[2 * r + 1]}, verdier[r].data(), 6});
        inn.settInn(rader);
        tekster.clear();
        verdier.clear();
    };
    std::mt19937 tilfeldig(7);
    std::normal_distribution<double> stoy(1.0, 0.005);
    const std::time_t start = 1353679531;  // 23.11.2012 14:05:31
    const long long oppstart = 3600;
    const double periode = static_cast<double>(linjer - oppstart) / Sykluser;
    const double grunn[] = {7.5e-9, 2.0e-9, 9.0e-11, 0.0, 4.0e-10, 3.0e-12};
    for (long long i = 0; i < linjer; ++i) {
        double co2 = 2e-9;
        if (i >= oppstart) {
            const double fase = std::fmod(static_cast<double>(i - oppstart), periode) / periode;
            constexpr double tau = 0.004;
            if (fase > 0.55 && fase < 0.9)
                co2 = 1e-12 + 2e-9 * std::exp(-(fase - 0.55) / tau);
            else if (fase >= 0.9)
                co2 = 2e-9 - (2e-9 - 1e-12) * std::exp(-(fase - 0.9) / tau);
        }
        const std::time_t naa = start + i;
        std::tm tm{};
        gmtime_r(&naa, &tm);
        char iso[32], egen[32];
        std::strftime(iso, sizeof iso, "%Y-%m-%d %H:%M:%S", &tm);
        std::strftime(egen, sizeof egen, "%d.%m.%Y %H:%M:%S.000", &tm);
        tekster.insert(tekster.end(), {iso, egen});
        auto& v = verdier.emplace_back();
        for (int k = 0; k < 6; ++k) v[static_cast<size_t>(k)] = (k == 3 ? co2 : grunn[k]) * stoy(tilfeldig);
        if (verdier.size() == 10000) send();
    }
    send();
    t.fullfor();
    QString kolonner;
    for (int k = 0; k < 6; ++k)
        kolonner += files::kolonneLinje(QString::fromLatin1(Kanaler[k]), files::kolonneBokstav(3 + k)) + "\r\n";
    QFile f(mappe + QStringLiteral("/Kolonner.txt"));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) throw files::FilFeil("kan ikke skrive Kolonner.txt");
    f.write(kolonner.toLatin1());
}

double sekunder(const QElapsedTimer& t) { return static_cast<double>(t.nsecsElapsed()) / 1e9; }

// Processor time of the whole process (every thread) in seconds.
double cpuSekunder()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// Wall and processor time of a piece of work, in seconds.
struct Maling {
    double vegg = 0, cpu = 0;
};
class Stoppeklokke {
public:
    Stoppeklokke() : cpu_(cpuSekunder()) { vegg_.start(); }
    Maling les() const { return {sekunder(vegg_), cpuSekunder() - cpu_}; }

private:
    QElapsedTimer vegg_;
    double cpu_;
};

// One full read of the column in ID order, as plain SQLite on a connection of its own
// (keyed as the program's), so that the figure is SQLite's and not the program's.
Maling fullLesing(const QString& data, const QString& K, long long& rader)
{
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(data).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        throw db::DbFeil(sqlite3_errmsg(db));
    sqlite3_key(db, db::Database::Passord, static_cast<int>(std::strlen(db::Database::Passord)));
    // The key is worked out at the first read, which is left out of the time as it is for the program.
    sqlite3_exec(db, "PRAGMA cipher_page_size = 4096; PRAGMA cache_size = -8000; SELECT count(*) FROM sqlite_master",
                 nullptr, nullptr, nullptr);
    const Stoppeklokke t;
    sqlite3_stmt* s = nullptr;
    sqlite3_prepare_v2(db, ("SELECT " + K + " FROM DataLinjer ORDER BY ID").toLatin1().constData(), -1, &s, nullptr);
    rader = 0;
    while (sqlite3_step(s) == SQLITE_ROW) {
        sqlite3_column_double(s, 0);
        ++rader;
    }
    sqlite3_finalize(s);
    const Maling tid = t.les();
    sqlite3_close(db);
    return tid;
}

using Steg = std::vector<std::pair<const char*, std::function<void()>>>;

// The slowest of five rounds of each view change, each with the chart drawn again; in ms.
std::vector<std::pair<const char*, double>> visningsendringer(app::FrmGraph& g, const Steg& steg)
{
    QChartView* visning = g.findChild<QChartView*>(QStringLiteral("MSChart"));
    std::vector<std::pair<const char*, double>> verst;
    for (const auto& [navn, gjor] : steg) verst.emplace_back(navn, 0.0);
    for (int runde = 0; runde < 5; ++runde) {
        for (size_t i = 0; i < steg.size(); ++i) {
            QElapsedTimer t;
            t.start();
            steg[i].second();
            visning->grab();
            verst[i].second = std::max(verst[i].second, sekunder(t) * 1000);
        }
    }
    return verst;
}

// The whole file's view: 200 minutes, the wheel, a move, the log axis and back, the whole file.
Steg oversiktSteg(app::FrmGraph& g)
{
    const QPointF hel = g.tidsomrade();
    const double midt = (hel.x() + hel.y()) / 2;
    return {
        {"utsnitt av 200 minutter", [&g, midt] { g.visUtsnitt(midt, midt + 200); }},
        {"hjul inn", [&g, midt] { g.zoomTid(midt + 100, 0.8); }},
        {"flytt", [&g] { g.diagram()->scroll(40, 0); }},
        {"hele fila", [&g] { g.tilbakestill(); }},
        {"flytt hele fila", [&g] { g.diagram()->scroll(40, 0); }},
        {"logaritmisk akse", [&g] { g.settLogaritmisk(true); }},
        {"lineær akse", [&g] { g.settLogaritmisk(false); }},
    };
}

// The cycles over each other: 20 minutes, the wheel, a move, the whole window, aligned and back,
// the log axis and back, and the switch to the whole file and back.
Steg syklusSteg(app::FrmGraph& g)
{
    return {
        {"utsnitt av 20 minutter", [&g] { g.visUtsnitt(-5, 15); }},
        {"hjul inn", [&g] { g.zoomTid(5, 0.8); }},
        {"flytt", [&g] { g.diagram()->scroll(40, 0); }},
        {"hele vinduet", [&g] { g.tilbakestill(); }},
        {"justert på nullpunktene", [&g] { g.settJustert(true); }},
        {"flytt justert", [&g] { g.diagram()->scroll(40, 0); }},
        {"fra snupunktene", [&g] { g.settJustert(false); }},
        {"logaritmisk akse", [&g] { g.settLogaritmisk(true); }},
        {"lineær akse", [&g] { g.settLogaritmisk(false); }},
        {"til hele fila", [&g] { g.visSykluser(false); }},
        {"til syklusene", [&g] { g.visSykluser(true); }},
    };
}

// The same points drawn as one path into an image of the chart view's size, in ms: what any
// redraw of the curve costs at least.
double somEnSti(app::FrmGraph& g)
{
    QChartView* visning = g.findChild<QChartView*>(QStringLiteral("MSChart"));
    const auto& graf = g.graf();
    QImage bilde(visning->size(), QImage::Format_ARGB32_Premultiplied);
    QElapsedTimer t;
    t.start();
    QPainterPath sti;
    const double bredde = bilde.width(), hoyde = bilde.height();
    for (size_t i = 0; i < graf.verdier.size(); ++i) {
        const QPointF p(graf.minutter[i] / graf.minutter.back() * bredde, hoyde - graf.verdier[i] * 1e8 * hoyde);
        if (i == 0)
            sti.moveTo(p);
        else
            sti.lineTo(p);
    }
    bilde.fill(Qt::white);
    QPainter maler(&bilde);
    maler.drawPath(sti);
    return sekunder(t) * 1000;
}

// Cycle finding through the real command: start 50 minutes, the proposed threshold, answer No.
Maling syklusfinning(app::Form1& f, dialogs::SkriptDialogs& d, QString& resultat)
{
    d.svar(QStringLiteral("50"));
    d.svar(dialogs::SkriptDialogs::Forslag{});
    d.svar(dialogs::Svar::Nei);
    const Stoppeklokke t;
    f.Command7_Click();
    const Maling tid = t.les();
    resultat = d.meldinger().value(d.meldinger().size() - 1).section(QLatin1Char('.'), 0, 0);
    return tid;
}

int mal(const QString& mappe)
{
    const QString data = mappe + QStringLiteral("/Data.mdb");
    // The database is as the import left it: the first search below is the user's first after it.
    dialogs::SkriptDialogs dialogs;
    app::Form1 f(mappe, dialogs);
    f.velgAdsorpsjon(true);
    const QString K = files::HentKode(f.kolonneTekst());

    long long rader = 0;
    fullLesing(data, K, rader);  // warms the file cache
    const Maling full1 = fullLesing(data, K, rader);
    QString resultat;
    const Maling forste = syklusfinning(f, dialogs, resultat);
    // Later searches: the middle of three.
    std::array<double, 3> senere{};
    for (double& tid : senere) tid = syklusfinning(f, dialogs, resultat).vegg;
    std::sort(senere.begin(), senere.end());
    const double andre = senere[1];
    const Maling full2 = fullLesing(data, K, rader);
    const Maling full{(full1.vegg + full2.vegg) / 2, (full1.cpu + full2.cpu) / 2};

    // The search above left its marks, so the window draws them too.
    double lasting = 0, vist = 0, sti = 0, bygget = 0, syklusVist = 0;
    std::vector<std::pair<const char*, double>> endringer, syklusEndringer;
    size_t sykluser = 0, syklusRader = 0;
    QElapsedTimer t;
    f.settGrafVisning([&](app::FrmGraph& g) {
        lasting = sekunder(t);
        g.show();
        QCoreApplication::processEvents();
        g.grab();
        vist = sekunder(t);
        QElapsedTimer b;
        b.start();
        app::FrmGraph ny(g.graf());
        bygget = sekunder(b);
        endringer = visningsendringer(g, oversiktSteg(g));
        sti = somEnSti(g);

        // The second tab, read from the database as the user opens it.
        g.tilbakestill();
        QElapsedTimer s;
        s.start();
        g.visSykluser(true);
        QCoreApplication::processEvents();
        g.grab();
        syklusVist = sekunder(s);
        if (!g.syklusbilde()) return;
        sykluser = g.syklusbilde()->sykluser.size();
        for (const auto& syklus : g.syklusbilde()->sykluser) syklusRader += syklus.minutter.size();
        syklusEndringer = visningsendringer(g, syklusSteg(g));
    });
    t.start();
    f.Command8_Click();
    double verst = 0;
    for (const auto& e : endringer) verst = std::max(verst, e.second);

    std::printf("rader %lld, kolonne %s, %s\n", rader, qPrintable(K), qPrintable(resultat));
    std::printf("full lesing av kolonnen (SELECT %s FROM DataLinjer ORDER BY ID): %.3f s (CPU %.3f s)\n", qPrintable(K),
                full.vegg, full.cpu);
    std::printf("syklusfinning, første gang etter importen: %.3f s (CPU %.3f s, på to tråder)  (forhold %.2f, CPU "
                "%.2f), krav forhold <= 0,9\n",
                forste.vegg, forste.cpu, forste.vegg / full.vegg, forste.cpu / full.cpu);
    std::printf("syklusfinning med indeks: %.3f s (%.3f-%.3f)  (forhold %.2f), krav < 0,5 s\n", andre, senere[0],
                senere[2], andre / full.vegg);
    std::printf(
        "graf, innlasting: %.3f s (av det vinduet bygget: %.3f s); vinduet vist og tegnet: %.3f s, krav < 1 s\n",
        lasting, bygget, vist);
    for (const auto& [navn, ms] : endringer) std::printf("graf, %s med ny tegning: %.1f ms (verst av 5)\n", navn, ms);
    std::printf("graf, verste visningsendring: %.1f ms, krav < 100 ms  (de samme punktene som én sti: %.1f ms)\n",
                verst, sti);
    double syklusVerst = 0;
    for (const auto& [navn, ms] : syklusEndringer) {
        std::printf("sykluser over hverandre, %s med ny tegning: %.1f ms (verst av 5)\n", navn, ms);
        syklusVerst = std::max(syklusVerst, ms);
    }
    std::printf("sykluser over hverandre (%zu sykluser, %zu rader): åpnet og tegnet %.3f s, krav < 0,5 s; "
                "verste visningsendring %.1f ms, krav < 50 ms\n",
                sykluser, syklusRader, syklusVist, syklusVerst);
    if (forste.vegg > 0.9 * full.vegg || andre >= 0.5 || vist >= 1.0 || verst >= 100 || sykluser == 0 ||
        syklusVist >= 0.5 || syklusVerst >= 50) {
        std::puts("FOR TREG");
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList a = QCoreApplication::arguments();
    if (a.size() >= 3 && a[1] == QLatin1String("fyll")) {
        fyll(a[2], a.size() > 3 ? a[3].toLongLong() : 1000000);
        return 0;
    }
    if (a.size() >= 3 && a[1] == QLatin1String("mal")) return mal(a[2]);
    std::fputs("Bruk: bench_analyse fyll MAPPE [LINJER] | mal MAPPE\n", stderr);
    return 2;
}
