/* The same cells as bench_xlsx_skriv, written by libxlsxwriter in constant-memory
 * mode into new workbooks.
 *   bench_xlsxwriter_peer OUTDIR [CYCLES] [ROWS] */
#include <xlsxwriter.h>

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

int main(int argc, char** argv)
{
    if (argc < 2) {
        fprintf(stderr, "bruk: %s UTMAPPE [SYKLUSER] [RADER]\n", argv[0]);
        return 2;
    }
    int sykluser = argc > 2 ? atoi(argv[2]) : 30;
    int rader = argc > 3 ? atoi(argv[3]) : 4000;
    struct timespec t0, t1;
    clock_gettime(CLOCK_MONOTONIC, &t0);
    clock_t cpu = clock();
    for (int s = 1; s <= sykluser; ++s) {
        char navn[4096], tekst[64];
        snprintf(navn, sizeof navn, "%s/peer_%d.xlsx", argv[1], s);
        lxw_workbook_options o = {.constant_memory = LXW_TRUE, .tmpdir = argv[1]};
        lxw_workbook* bok = workbook_new_opt(navn, &o);
        lxw_worksheet* ark = workbook_add_worksheet(bok, NULL);
        worksheet_write_number(ark, 0, 14, 230.5 + s, NULL);
        for (int r = 0; r < rader; ++r) {
            int sek = r * 2;
            snprintf(tekst, sizeof tekst, "2012/11/23 ,%02d:%02d:%02d,1.", 10 + sek / 3600, sek / 60 % 60, sek % 60);
            worksheet_write_string(ark, (lxw_row_t)(r + 1), 0, tekst, NULL);
            for (int k = 3; k <= 11; ++k)
                worksheet_write_number(ark, (lxw_row_t)(r + 1), (lxw_col_t)(k - 1),
                                       1e-10 * (1 + k) + r * 1e-14 + s * 1e-15, NULL);
        }
        if (workbook_close(bok) != LXW_NO_ERROR) return 1;
    }
    clock_gettime(CLOCK_MONOTONIC, &t1);
    printf("%.3f %.3f\n", (t1.tv_sec - t0.tv_sec) + (t1.tv_nsec - t0.tv_nsec) / 1e9,
           (double)(clock() - cpu) / CLOCKS_PER_SEC);
    return 0;
}
