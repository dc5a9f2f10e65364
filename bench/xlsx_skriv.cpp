// Fills the single-cycle template the way the export does: ROWS rows of a time text
// and nine channel values, the start offset and both chart axes, saved CYCLES times.
//   bench_xlsx_skriv TEMPLATE OUTDIR [CYCLES] [ROWS]
#include "platform/xlsx/Arbeidsbok.h"

#include <QString>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "bruk: %s MAL UTMAPPE [SYKLUSER] [RADER]\n", argv[0]);
        return 2;
    }
    const QString mal = QString::fromLocal8Bit(argv[1]);
    const QString ut = QString::fromLocal8Bit(argv[2]);
    const int sykluser = argc > 3 ? std::atoi(argv[3]) : 30;
    const int rader = argc > 4 ? std::atoi(argv[4]) : 4000;
    auto start = std::chrono::steady_clock::now();
    std::clock_t cpu = std::clock();
    for (int s = 1; s <= sykluser; ++s) {
        auto bok = xlsx::apne(mal);
        auto& ark = bok->ark(1);
        ark.settCelle(1, 15, 230.5 + s);
        for (int r = 0; r < rader; ++r) {
            int sek = r * 2;
            ark.settCelle(r + 2, 1,
                          QString::asprintf("2012/11/23 ,%02d:%02d:%02d,1.", 10 + sek / 3600, sek / 60 % 60, sek % 60));
            for (int k = 3; k <= 11; ++k) ark.settCelle(r + 2, k, 1e-10 * (1 + k) + r * 1e-14 + s * 1e-15);
        }
        auto& grafer = bok->ark(2);
        grafer.diagram(1).settKategoriMinimum(230 + s);
        grafer.diagram(2).settKategoriMinimum(230 + s);
        bok->lagreSom(ut + QStringLiteral("/tolvik_%1.xlsx").arg(s));
    }
    double sek = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    // Wall time and processor time: on a shared machine the second is the steadier figure.
    std::printf("%.3f %.3f\n", sek, double(std::clock() - cpu) / CLOCKS_PER_SEC);
    return 0;
}
