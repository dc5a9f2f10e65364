// Writes a realistic raw-data file of the lab's mass spectrometer, for trying the program
// and for benchmarks:
//
//   lag_radata [--lines N | --hours H] [--channels C] [--seed S]
//              [--interval SEK] [--startup MIN] OUTFILE
//
// Header "Date,Time,N2,O2,Ar,CO2,...," then one line per logged sample "2013/01/07,08:00:02,
// 4.9981E-09,...," (CR LF, trailing comma) with ion currents in E-notation. CO2 is the fourth
// channel (column F, as the lab's logger has it), the last one in a narrower file.
//
// The rig first runs a start-up period (the chamber pumped down: every signal falls from three
// times its level), then cycles of 200 minutes. In each cycle, counted from its start:
//   - until minute 20 the feed passes the bed and CO2 stands at its feed level; at minute 18
//     the feed line is pressurised before the bed is opened, and every signal surges by 60 %
//     for about a minute and a half;
//   - at minute 20 the valves put the feed on the bed, and from the next sample on CO2 lies on
//     a low plateau 2500 times below the feed level; the plateau rises slowly (to three times
//     its start) as the front moves through the sorbent;
//   - at minute 70 the heating starts: CO2 comes off the sorbent, first steeply (it passes 4 %
//     of the feed level some eight minutes later), then ever faster as the bed warms, up to the
//     desorption peak, about five times the feed level, at minute 150, when the heating stops;
//     it is back at the feed level about half an hour later and stays there until the next
//     cycle. The purge gas of the heating dilutes the other channels a little.
// The analysis relies on this shape. In Adsorpsjon the turning point (a group's smallest value)
// is the plateau's start, and the combined workbook's zero point is counted from the pressure
// surge two minutes before it. In Desorpsjon the turning point (a group's largest value) is the
// plateau's end, where the heating lifts CO2 through the threshold, and the zero point lies ten
// minutes before the desorption peak, some 72 minutes after the turning point. The switch falls
// on a whole second (with a start-up of whole minutes), so even a file of several lines a second
// has no row of the drop in the second of a plateau's first row; a group's first rows are
// plateau rows and never compete with its last ones.
//
// Noise as the lab's spectrometer has it: 0.5 % of the signal plus a floor of 2E-14 A. Samples
// come every SEK seconds (default 2; up to 8, since rows of a plateau must follow within 10
// seconds) with a little jitter; now and then the logger misses 20 to 90 seconds, never between
// the pressure surge and the heating's rise, so a plateau stays one run of rows.
//
// --hours H gives H hours of samples. --lines N gives N lines; when N samples at the interval
// would span more than 30 cycles, the interval shrinks so that the file holds the start-up,
// 30 whole cycles and most of the plateau of a 31st (for 1 000 000 lines about 0.38 s per
// line). The example files are
//   lag_radata --hours 8 --interval 3 --channels 4 --startup 40 --seed 4 examples/eksempel_4_kanaler.csv
//   lag_radata --hours 12 --interval 5 --channels 6 --startup 40 --seed 6 examples/eksempel_6_kanaler.csv
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
// Minutes into a cycle.
constexpr double Trykkstot = 18.0, Ventilskift = 20.0, Oppvarming = 70.0, Toppen = 150.0;
constexpr double RelativStoy = 0.005;   // of the signal
constexpr double StoyGulv = 2.0e-14;    // A, the spectrometer's floor
constexpr double SisteFraSlutt = 10.0;  // a --lines file ends this many minutes before the 31st heating

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

// The pressure surge before the switch, a factor on every signal.
double trykk(double m)
{
    const double u = (m - Trykkstot) / 0.7;
    return std::abs(u) > 8.0 ? 1.0 : 1.0 + 0.6 * std::exp(-0.5 * u * u);
}

// CO2 behind the bed while the sorbent takes it up: the plateau, rising slowly as the front moves on.
double plateau(double m)
{
    const double lav = 4.0e-4;
    return lav * (1.0 + 2.0 * (1.0 - std::exp(-(m - Ventilskift) / 12.0)));
}

// CO2 driven off by the heating, x minutes after it started (0 at x = 0): the release sets in
// steeply (e-folding in 4 minutes, half under way after 15), then grows on by e every 25 minutes
// as the bed warms, up to five times the feed level when the heating stops.
double desorbert(double x)
{
    const auto kurve = [](double x) {
        const double innsats = 1.0 / (1.0 + std::exp(-(x - 15.4) / 4.0));
        return 5.0 * std::exp((x - (Toppen - Oppvarming)) / 25.0) * innsats;
    };
    return kurve(x) - kurve(0.0);
}

// CO2 relative to its feed level at minute m of a cycle.
double co2Syklus(double m)
{
    if (m < Ventilskift) return trykk(m);
    if (m < Oppvarming) return plateau(m);
    if (m < Toppen) return plateau(m) + desorbert(m - Oppvarming);
    const double topp = plateau(Toppen) + desorbert(Toppen - Oppvarming);
    return 1.0 + (topp - 1.0) * std::exp(-(m - Toppen) / 5.0);
}

// Minute of the cycle, or -1 in the start-up.
double syklusMinutt(double minutt, double oppstart)
{
    return minutt < oppstart ? -1.0 : std::fmod(minutt - oppstart, SyklusMin);
}

// From the pressure surge to the heating's rise through every threshold the search might use.
bool iPlateau(double m) { return m >= Trykkstot - 4.0 && m < Oppvarming + 20.0; }

// Relative level of the other channel k (from 1) at minute m of the cycle (-1: start-up).
double annenKanal(int k, double minutt, double m)
{
    double r = 1.0 + 0.02 * std::sin(minutt / (90.0 + 17.0 * k));  // slow drift
    if (m < 0) return r;
    r *= trykk(m);
    if (m >= Oppvarming && m < Toppen)  // the purge gas of the heating
        r *= 1.0 - 0.08 * std::sin((m - Oppvarming) / (Toppen - Oppvarming) * M_PI) / k;
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
        const double lengsteSek = (oppstart + MaksSykluser * SyklusMin + Oppvarming - SisteFraSlutt) * 60.0;
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
    const time_t start = 1357545600;                 // 2013-01-07 08:00:00 (read as UTC)
    const double gapPerSek = 1.0 / (7.0 * 3600.0);   // about one logging gap every seven hours
    const double nedpumping = oppstart / 8.0 + 0.1;  // minutes; settled well before the first cycle

    double t = 0.0;
    char linje[512];
    for (long long n = 0; n < linjer; ++n) {
        t += intervall * (1.0 + 0.1 * std::max(-2.5, std::min(2.5, stoy(tilfeldig))));
        const double minutt = t / 60.0, m = syklusMinutt(minutt, oppstart);
        if (!iPlateau(m) && enhet(tilfeldig) < gapPerSek * intervall) t += 20.0 + 70.0 * enhet(tilfeldig);

        const time_t sek = start + static_cast<time_t>(t);
        std::tm tm{};
        gmtime_r(&sek, &tm);
        int p = std::snprintf(linje, sizeof linje, "%04d/%02d/%02d,%02d:%02d:%02d", tm.tm_year + 1900, tm.tm_mon + 1,
                              tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
        const double pumping = 1.0 + 2.0 * std::exp(-minutt / nedpumping);
        for (int k = 0; k < kanaler; ++k) {
            const int i = kanal(k, kanaler);
            const double r = i == Co2Plass ? (m < 0 ? 1.0 : co2Syklus(m)) : annenKanal(i + 1, minutt, m);
            const double signal = Kanaler[i].niva * r * pumping;
            // The relative noise and the floor are independent, so one draw of their combined spread serves.
            const double spredning = std::sqrt(RelativStoy * RelativStoy * signal * signal + StoyGulv * StoyGulv);
            const double verdi = signal + spredning * stoy(tilfeldig);
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
