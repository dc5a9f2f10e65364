// Builds the program folder for the single-cycle export bench: a Data.mdb with CYCLES cycles
// of ROWS rows each at 2 s steps, SnuPunkter.txt, Kolonner.txt and Oppsett.txt, and the same
// rows as rader.csv (cycle;A;C..K) for the openpyxl peer, which writes the same cells.
//   bench_enkeltgraf_data FOLDER [CYCLES ROWS]
#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "platform/db/Masseinnsetting.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

#include <QCoreApplication>
#include <QFile>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// Cycle k's rows fill the 2 s steps after its window start: turning point − 10 minutes.
// Cycles lie 150 minutes apart, so a window of 10 minutes before and 124 after holds
// exactly the rows of its own cycle.
constexpr int Foran = 10, Etter = 124, Avstand = 150;

vb::Dato tid(const vb::Dato& start, long long sekunder)
{
    int aar, mnd, dag, time, min, sek;
    start.leggTilMinutter(static_cast<double>(sekunder / 60)).deler(aar, mnd, dag, time, min, sek);
    return vb::Dato::fra(aar, mnd, dag, time, min, static_cast<int>(sekunder % 60));
}

QString tidTekst(const vb::Dato& t)
{
    int aar, mnd, dag, time, min, sek;
    t.deler(aar, mnd, dag, time, min, sek);
    return QString::asprintf("%04d/%02d/%02d ,%02d:%02d:%02d,1.", aar, mnd, dag, time, min, sek);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 4) {
        std::fputs("Bruk: bench_enkeltgraf_data MAPPE [SYKLUSER RADER]\n", stderr);
        return 2;
    }
    const QString mappe = QString::fromLocal8Bit(argv[1]);
    const int sykluser = argc == 4 ? std::atoi(argv[2]) : 30;
    const int rader = argc == 4 ? std::atoi(argv[3]) : 4000;
    const QString data = mappe + QStringLiteral("/Data.mdb");
    QFile::remove(data);
    store::lagTomDatabase(data);
    db::Database db(data);

    QFile csv(mappe + QStringLiteral("/rader.csv"));
    if (!csv.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 1;
    const vb::Dato start = vb::Dato::fra(2012, 11, 23, 8);
    QStringList snupunkter;
    db::Transaksjon tr(db);
    db::Masseinnsetting inn(db, "insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K)", 2, 9);
    for (int k = 0; k < sykluser; ++k) {
        const long long vindu = static_cast<long long>(k) * Avstand * 60;
        snupunkter << tid(start, vindu + Foran * 60).generellTekst();
        std::vector<std::string> tekster;
        std::vector<std::array<double, 9>> verdier;
        for (int r = 1; r <= rader; ++r) {
            const vb::Dato t = tid(start, vindu + 2LL * r);
            tekster.push_back(t.iso().toStdString());
            tekster.push_back(tidTekst(t).toStdString());
            QByteArray linje = QByteArray::number(k + 1) + ';' + QByteArray::fromStdString(tekster.back());
            auto& v = verdier.emplace_back();
            for (int c = 0; c < 9; ++c) {
                // Ion currents as the logger writes them: four significant digits.
                char tall[32];
                std::snprintf(tall, sizeof tall, "%.3E", (c + 1) * 1e-11 * (1.0 + 0.5 * ((r * (c + 3)) % 97) / 97.0));
                v[static_cast<size_t>(c)] = std::strtod(tall, nullptr);
                linje += ';';
                linje += tall;
            }
            csv.write(linje + '\n');
        }
        std::vector<db::Masseinnsetting::Rad> radene;
        for (size_t r = 0; r < verdier.size(); ++r)
            radene.push_back({{tekster[2 * r], tekster[2 * r + 1]}, verdier[r].data(), 9});
        inn.settInn(radene);
    }
    tr.fullfor();

    files::SkrivTilFil(mappe + QStringLiteral("/SnuPunkter.txt"), snupunkter.join(QLatin1Char('!')));
    QStringList kolonner;
    for (int c = 0; c < 9; ++c)
        kolonner << files::kolonneLinje(QStringLiteral("Masse %1").arg(c + 12), QString(QLatin1Char('C' + c)));
    QFile kol(mappe + QLatin1Char('/') + files::KolonnerFil);
    if (!kol.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 1;
    kol.write(kolonner.join(QStringLiteral("\r\n")).toLatin1() + "\r\n");
    files::SkrivTilFil(mappe + QLatin1Char('/') + files::OppsettFil,
                       QStringLiteral("1!%1!150!10!%2!%3").arg(sykluser).arg(Foran).arg(Etter));
    return 0;
}
