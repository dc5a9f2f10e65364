/* Peer of the single-cycle export bench: writes the same cells (O1, then A and C..K per row)
 * into one new workbook per cycle with libxlsxwriter in constant-memory mode, with two
 * scatter charts on a second sheet like the template's.
 *   bench_enkeltgraf_xlsxwriter rader.csv OUTFOLDER */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xlsxwriter.h>

static lxw_workbook* bok;
static lxw_worksheet* ark;
static int rad;

static void avslutt(int syklus)
{
    if (!bok) return;
    char omrade[64];
    lxw_worksheet* grafer = workbook_add_worksheet(bok, "Grafer");
    for (int i = 0; i < 2; ++i) {
        lxw_chart* graf = workbook_add_chart(bok, LXW_CHART_SCATTER_STRAIGHT);
        snprintf(omrade, sizeof omrade, "=Data!$%c$2:$%c$%d", 'C' + i, 'C' + i, rad);
        chart_add_series(graf, "=Data!$C$2:$C$2", omrade);
        chart_title_set_name(graf, "Syklus");
        chart_axis_set_min(graf->x_axis, syklus);
        worksheet_insert_chart(grafer, (lxw_row_t)(1 + 20 * i), 1, graf);
    }
    if (workbook_close(bok) != LXW_NO_ERROR) exit(1);
    bok = NULL;
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        fputs("Bruk: bench_enkeltgraf_xlsxwriter rader.csv UTMAPPE\n", stderr);
        return 2;
    }
    FILE* inn = fopen(argv[1], "r");
    if (!inn) return 1;
    char linje[1024], navn[4096];
    int forrige = 0;
    lxw_workbook_options valg = {.constant_memory = LXW_TRUE, .tmpdir = NULL};
    while (fgets(linje, sizeof linje, inn)) {
        char* p = linje;
        const int syklus = (int)strtol(p, &p, 10);
        if (syklus != forrige) {
            avslutt(forrige);
            snprintf(navn, sizeof navn, "%s/Peer_%d.xlsx", argv[2], syklus);
            bok = workbook_new_opt(navn, &valg);
            ark = workbook_add_worksheet(bok, "Data");
            worksheet_write_number(ark, 0, 14, syklus * 150.0, NULL);
            rad = 1;
            forrige = syklus;
        }
        char* tekst = p + 1;
        p = strchr(tekst, ';');
        *p = '\0';
        worksheet_write_string(ark, (lxw_row_t)rad, 0, tekst, NULL);
        for (int c = 0; c < 9; ++c) worksheet_write_number(ark, (lxw_row_t)rad, (lxw_col_t)(2 + c), strtod(p + 1, &p), NULL);
        ++rad;
    }
    avslutt(forrige);
    fclose(inn);
    return 0;
}
