// Writes a realistic raw-data file of the lab's mass spectrometer, for trying the program
// and for benchmarks:
//
//   lag_radata [--lines N | --hours H] [--channels C] [--seed S]
//              [--interval SEK] [--startup MIN] OUTFILE
//
// Header "Date,Time,N2,O2,Ar,CO2,...," then one line per logged sample "2013/01/07,08:00:02,
// 4.9981E-09,...," (CR LF, trailing comma) with ion currents in E-notation. The rig first runs
// a start-up period (pump-down, signals settling), then cycles of 200 minutes: CO2 (the fourth
// channel, column F as the lab's logger has it; the last one in a narrower file) falls to a low plateau about 2500
// times below its feed level while the sorbent takes it up, then rises again through breakthrough into the desorption
// peak and settles back to the feed level. Samples come every SEK seconds (default 2) with a little jitter; now and
// then the logger misses 20 to 90 seconds, never inside a plateau, so a plateau stays one run of rows.
//
// --hours H gives H hours of samples. --lines N gives N lines; when N samples at the interval
// would span more than 30 cycles, the interval shrinks so that the file holds the start-up,
// 30 whole cycles and the plateau of a 31st (for 1 000 000 lines about 0.38 s per line).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double SyklusMin = 200.0;
constexpr int MaksSykluser = 30;
constexpr double PlateauFra = 25.0, PlateauTil = 110.0;  // minutes into a cycle

struct Kanal {
    const char* navn;
    double niva;  // feed level, A
};

const Kanal Kanaler[] = {{"N2", 1.2e-8},  {"O2", 3.1e-9},   {"Ar", 1.4e-10}, {"CO2", 5.0e-9}, {"H2O", 6.0e-11},
                         {"He", 2.2e-11}, {"CH4", 8.5e-12}, {"CO", 4.0e-12}, {"H2", 2.5e-12}, {"NO", 9.0e-13}};
constexpr int Co2Plass = 3;

// Table entry of the file's channel k: CO2 stands fourth, or last in a narrower file.
int kanal(int k, int kanaler)
{
    const int co2 = std::min(Co2Plass, kanaler - 1);
    if (k == co2) return Co2Plass;
    const int annen = k < co2 ? k : k - 1;
    return annen < Co2Plass ? annen : annen + 1;
}
constexpr int MaksKanaler = sizeof Kanaler / sizeof Kanaler[0];

// CO2 relative to its feed level at minute m of a cycle.
double co2Syklus(double m)
{
    const double lav = 4.0e-4;
    if (m < 20.0) return 1.0;
    if (m < PlateauFra) return std::exp(std::log(lav) * (m - 20.0) / 5.0);  // sorbent takes the CO2
    if (m < PlateauTil) return lav;
    // breakthrough, then heating: the desorption peak, six times the feed level at minute 135
    const double gjennom = lav + (1.0 - lav) / (1.0 + std::exp(-(m - 118.0) / 2.0));
    const double topp = 5.0 * std::exp(-0.5 * std::pow((m - 135.0) / 7.0, 2));
    return gjennom + topp;
}

bool iPlateau(double minutt, double oppstart)
{
    if (minutt < oppstart) return false;
    const double m = std::fmod(minutt - oppstart, SyklusMin);
    return m >= PlateauFra - 6.0 && m < PlateauTil + 8.0;
}

// Relative level of the other channel k (from 1) at minute m of the experiment.
double annenKanal(int k, double minutt, double oppstart)
{
    const double m = minutt < oppstart ? -1.0 : std::fmod(minutt - oppstart, SyklusMin);
    double r = 1.0 + 0.02 * std::sin(minutt / (90.0 + 17.0 * k));                            // slow drift
    if (m >= 120.0 && m < 150.0) r *= 1.0 - 0.08 * std::sin((m - 120.0) / 30.0 * M_PI) / k;  // purge during heating
    return r;
}

int bruk()
{
    std::fputs("Bruk: lag_radata [--lines N | --hours H] [--channels C] [--seed S] [--interval SEK] "
               "[--startup MIN] UTFIL\n",
               stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv)
{
    long long linjer = -1;
    double timer = -1, intervall = 2.0, oppstart = 240.0;
    int kanaler = 6;
    unsigned long seed = 1;
    const char* utfil = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool harVerdi = i + 1 < argc;
        if (a == "--lines" && harVerdi)
            linjer = std::atoll(argv[++i]);
        else if (a == "--hours" && harVerdi)
            timer = std::atof(argv[++i]);
        else if (a == "--channels" && harVerdi)
            kanaler = std::atoi(argv[++i]);
        else if (a == "--seed" && harVerdi)
            seed = std::strtoul(argv[++i], nullptr, 10);
        else if (a == "--interval" && harVerdi)
            intervall = std::atof(argv[++i]);
        else if (a == "--startup" && harVerdi)
            oppstart = std::atof(argv[++i]);
        else if (a.rfind("--", 0) != 0 && !utfil)
            utfil = argv[i];
        else
            return bruk();
    }
    if (!utfil || (linjer >= 0 && timer >= 0) || kanaler < 1 || kanaler > MaksKanaler || !(intervall > 0) ||
        oppstart < 0)
        return bruk();
    if (linjer < 0)
        linjer = static_cast<long long>((timer >= 0 ? timer : 6.0) * 3600.0 / intervall);
    else {
        const double lengsteSek = (oppstart + MaksSykluser * SyklusMin + PlateauTil) * 60.0;
        if (linjer * intervall > lengsteSek) intervall = lengsteSek / static_cast<double>(linjer);
    }

    std::FILE* ut = std::fopen(utfil, "wb");
    if (!ut) {
        std::perror(utfil);
        return 1;
    }
    std::vector<char> buffer(1 << 20);
    std::setvbuf(ut, buffer.data(), _IOFBF, buffer.size());

    std::string overskrift = "Date,Time";
    for (int k = 0; k < kanaler; ++k) overskrift += std::string(",") + Kanaler[kanal(k, kanaler)].navn;
    std::fprintf(ut, "%s,\r\n", overskrift.c_str());

    std::mt19937_64 tilfeldig(seed);
    std::normal_distribution<double> stoy(0.0, 1.0);
    std::uniform_real_distribution<double> enhet(0.0, 1.0);
    const time_t start = 1357545600;                // 2013-01-07 08:00:00 (read as UTC)
    const double gapPerSek = 1.0 / (7.0 * 3600.0);  // about one logging gap every seven hours

    double t = 0.0;
    char linje[512];
    for (long long n = 0; n < linjer; ++n) {
        t += intervall * (1.0 + 0.1 * std::max(-2.5, std::min(2.5, stoy(tilfeldig))));
        const double minutt = t / 60.0;
        if (!iPlateau(minutt, oppstart) && enhet(tilfeldig) < gapPerSek * intervall)
            t += 20.0 + 70.0 * enhet(tilfeldig);

        const time_t sek = start + static_cast<time_t>(t);
        std::tm tm{};
        gmtime_r(&sek, &tm);
        int p = std::snprintf(linje, sizeof linje, "%04d/%02d/%02d,%02d:%02d:%02d", tm.tm_year + 1900, tm.tm_mon + 1,
                              tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
        // Start-up: every signal falls from a higher level as the chamber is pumped down.
        const double oppstartFaktor = minutt < oppstart ? 1.0 + 2.0 * std::exp(-minutt / (oppstart / 4.0 + 1.0)) : 1.0;
        for (int k = 0; k < kanaler; ++k) {
            const int i = kanal(k, kanaler);
            double r = i == Co2Plass ? (minutt < oppstart ? 1.0 : co2Syklus(std::fmod(minutt - oppstart, SyklusMin)))
                                     : annenKanal(i + 1, minutt, oppstart);
            const double verdi = Kanaler[i].niva * r * oppstartFaktor * (1.0 + 0.03 * stoy(tilfeldig));
            p += std::snprintf(linje + p, sizeof linje - static_cast<size_t>(p), ",%.4E", verdi);
        }
        std::memcpy(linje + p, ",\r\n", 3);
        std::fwrite(linje, 1, static_cast<size_t>(p) + 3, ut);
    }
    if (std::fclose(ut) != 0) {
        std::perror(utfil);
        return 1;
    }
    return 0;
}
