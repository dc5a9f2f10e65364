// Data for the export benchmarks, and the peer they are measured against.
//   bench_eksport_data data MAPPE      fills MAPPE/Data.mdb with 30 cycles of 4 000 rows at
//                                      2 s steps and writes SnuPunkter.txt and Kolonner.txt
//   bench_eksport_data samle FIL       the peer of the combined workbook: the same cells
//                                      (times + 30 columns of 4 050 rows) written by libxlsxwriter
//   bench_eksport_data integrering MAPPE  the peer of the integration: 31 workbooks of 1 500 rows
//                                      (time, CO2, formula) written by libxlsxwriter
#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "platform/db/Masseinnsetting.h"

#include <QCoreApplication>
#include <QStringList>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>
#include <xlsxwriter.h>

namespace {

constexpr int Sykluser = 30;
constexpr int RaderPerSyklus = 4000;
constexpr int Steg = 2;            // seconds between rows
constexpr int SnuEtter = 60 * 60;  // turning point, seconds into its cycle

// Column C: a slow wave with a sharp maximum 5 minutes before each turning point.
double kanalC(int sekIsyklus)
{
    const double fraMaks = (sekIsyklus - (SnuEtter - 300)) / 60.0;
    return 1e-10 + 4e-9 * std::exp(-fraMaks * fraMaks / 4.0) + 1e-11 * std::sin(sekIsyklus / 97.0);
}

// Column F, CO2: a base that sinks slowly through the cycle and a peak that rises just before
// the turning point and decays, so that it falls below its level 25 minutes earlier.
double kanalF(int sekIsyklus)
{
    const double d = sekIsyklus - SnuEtter;
    const double etter = d / 60.0 + 2.0;  // the peak rises two minutes before the turning point
    return 2e-10 - 2e-11 * d / 1500.0 + (etter >= 0 ? 3e-9 * etter / 2.0 * std::exp(-etter / 2.0) : 0.0);
}

// Date-time a number of seconds after 23.11.2012 08:00:00 (the data stay within November).
vb::Dato tidspunkt(int64_t sek)
{
    sek += 8 * 3600;
    return vb::Dato::fra(2012, 11, 23 + static_cast<int>(sek / 86400), static_cast<int>(sek / 3600 % 24),
                         static_cast<int>(sek / 60 % 60), static_cast<int>(sek % 60));
}

int lagData(const QString& mappe)
{
    db::Database d(mappe + QStringLiteral("/Data.mdb"));
    db::Transaksjon t(d);
    db::Masseinnsetting inn(d, "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H)", 2, 6);
    QStringList snupunkter;
    for (int s = 0; s < Sykluser; ++s) {
        const int64_t syklusStart = static_cast<int64_t>(s) * RaderPerSyklus * Steg;
        snupunkter << tidspunkt(syklusStart + SnuEtter).generellTekst();
        std::vector<std::string> tekster;
        std::vector<std::array<double, 6>> verdier;
        for (int r = 0; r < RaderPerSyklus; ++r) {
            const int sek = r * Steg;
            const vb::Dato tid = tidspunkt(syklusStart + sek);
            int aar, mnd, dag, time, min, sekund;
            tid.deler(aar, mnd, dag, time, min, sekund);
            tekster.push_back(tid.iso().toStdString());
            tekster.push_back(
                QString::asprintf("%04d/%02d/%02d ,%02d:%02d:%02d,1.", aar, mnd, dag, time, min, sekund).toStdString());
            verdier.push_back({kanalC(sek), 1e-12 * r, 3e-11, kanalF(sek), 5e-12, 7e-13});
        }
        std::vector<db::Masseinnsetting::Rad> rader;
        for (size_t r = 0; r < verdier.size(); ++r)
            rader.push_back({{tekster[2 * r], tekster[2 * r + 1]}, verdier[r].data(), 6});
        inn.settInn(rader);
    }
    d.settRadorden(true, true);  // as an import states it: the rows in time order, their IDs without a gap
    t.fullfor();
    files::SkrivTilFil(mappe + QStringLiteral("/SnuPunkter.txt"), snupunkter.join(QLatin1Char('!')));
    const char* const navn[] = {"Argon", "Nitrogen", "Oksygen", "CO2", "Vann", "Helium"};
    QStringList linjer;
    for (int i = 0; i < 6; ++i) linjer << files::kolonneLinje(QLatin1String(navn[i]), files::kolonneBokstav(i + 3));
    files::SkrivTilFil(mappe + QStringLiteral("/Kolonner.txt"), linjer.join(QStringLiteral("\r\n")));
    return 0;
}

bool sjekk(lxw_error e)
{
    if (e == LXW_NO_ERROR) return true;
    std::fprintf(stderr, "%s\n", lxw_strerror(e));
    return false;
}

int samle(const char* fil)
{
    lxw_workbook* bok = workbook_new(fil);
    lxw_worksheet* ark = workbook_add_worksheet(bok, nullptr);
    for (int r = 1; r <= 4050; ++r) {
        worksheet_write_string(ark, r, 0, "2012/11/23 ,14:05:31,1.", nullptr);
        for (int k = 0; k < Sykluser; ++k) worksheet_write_number(ark, r, 2 + k, kanalC(r * Steg + k), nullptr);
    }
    return sjekk(workbook_close(bok)) ? 0 : 1;
}

int integrering(const QString& mappe)
{
    for (int s = 1; s <= Sykluser + 1; ++s) {
        const QByteArray fil = (mappe + QStringLiteral("/peer_%1.xlsx").arg(s)).toLocal8Bit();
        lxw_workbook* bok = workbook_new(fil.constData());
        lxw_worksheet* ark = workbook_add_worksheet(bok, nullptr);
        for (int r = 2; r < 1502; ++r) {
            worksheet_write_string(ark, r, 0, "2012/11/23 ,14:05:31,1.", nullptr);
            worksheet_write_number(ark, r, 2, kanalF(r * Steg), nullptr);
            const QByteArray formel = QStringLiteral("=ABS((D%1-D%2)/2)").arg(r + 1).arg(r).toLatin1();
            worksheet_write_formula(ark, r, 5, formel.constData(), nullptr);
        }
        if (!sjekk(workbook_close(bok))) return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString hva = argc == 3 ? QString::fromLocal8Bit(argv[1]) : QString();
    try {
        if (hva == QLatin1String("data")) return lagData(QString::fromLocal8Bit(argv[2]));
        if (hva == QLatin1String("samle")) return samle(argv[2]);
        if (hva == QLatin1String("integrering")) return integrering(QString::fromLocal8Bit(argv[2]));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    std::fputs("Bruk: bench_eksport_data (data MAPPE | samle FIL | integrering MAPPE)\n", stderr);
    return 2;
}
