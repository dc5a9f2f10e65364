/* Writes the five template workbooks of the program folder:
 *   lag_maler MAPPE
 * Mal_Sykluser.xlsx, Mal_Alle_Adsorpsjon.xlsm, Mal_Alle_Desorpsjon.xlsm,
 * Mal_Integrering_desorpsjon_Enkel.xlsx, Mal_desorpsjon_areal_alle.xlsx. */
#include <xlsxwriter.h>
#include <zip.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Rows of the single-cycle data sheet that carry the elapsed-minutes formula. */
#define SYKLUS_RADER 8000
/* Combined workbook: rows 2..2000, one column per cycle from C. */
#define SAMLE_SISTE_RAD 2000
#define SAMLE_SYKLUSER 50
/* Integration sheet: data rows 3..2999. */
#define INTEGRERING_SISTE_RAD 2999
#define AREAL_SYKLUSER 100

/* Minutes from the time text in row forste to the one in row rad ("2012/11/23 ,14:05:31,1."):
 * whole days times 1440 plus the difference of the clock times, so that the result
 * carries no rounding error of a date serial. */
static void minuttdifferanse(char* ut, size_t n, int rad, int forste)
{
    snprintf(ut, n,
             "((DATE(VALUE(MID(A%1$d,1,4)),VALUE(MID(A%1$d,6,2)),VALUE(MID(A%1$d,9,2)))"
             "-DATE(VALUE(MID($A$%2$d,1,4)),VALUE(MID($A$%2$d,6,2)),VALUE(MID($A$%2$d,9,2))))*1440"
             "+((VALUE(MID(A%1$d,13,2))-VALUE(MID($A$%2$d,13,2)))*3600"
             "+(VALUE(MID(A%1$d,16,2))-VALUE(MID($A$%2$d,16,2)))*60"
             "+VALUE(MID(A%1$d,19,2))-VALUE(MID($A$%2$d,19,2)))/60)",
             rad, forste);
}

/* Clock minutes of the time text in row rad, counted from 7 July 2009 (day 40000): a
 * hidden helper column, so that each row's elapsed minutes are one subtraction. At
 * today's dates the value stays below 10^7 minutes, far inside double precision. */
static void klokkeformel(char* ut, size_t n, int rad)
{
    snprintf(ut, n,
             "=(DATE(VALUE(MID(A%1$d,1,4)),VALUE(MID(A%1$d,6,2)),VALUE(MID(A%1$d,9,2)))-40000)*1440"
             "+VALUE(MID(A%1$d,13,2))*60+VALUE(MID(A%1$d,16,2))+VALUE(MID(A%1$d,19,2))/60",
             rad);
}

/* Elapsed minutes from the clock column: the offset cell plus this row's clock minus the
 * first row's; #N/A for a row without time, so charts leave it out. */
static void forlopformel(char* ut, size_t n, int rad, const char* start, char klokke, int forste)
{
    snprintf(ut, n, "=IF(A%d=\"\",NA(),%s+%c%d-$%c$%d)", rad, start, klokke, rad, klokke, forste);
}

/* Minutes of row rad after the time in row forste, plus the offset cell start (NULL for
 * none), in one formula: #N/A for a row without time, so charts leave it out. */
static void minuttformel(char* ut, size_t n, int rad, int forste, const char* start)
{
    char d[1000];
    minuttdifferanse(d, sizeof d, rad, forste);
    snprintf(ut, n, "=IF(A%d=\"\",NA(),%s%s%s)", rad, start ? start : "", start ? "+" : "", d);
}

/* A sheet of charts, printed on one landscape page. */
static lxw_worksheet* grafark(lxw_workbook* bok, const char* navn)
{
    lxw_worksheet* ark = workbook_add_worksheet(bok, navn);
    worksheet_set_landscape(ark);
    worksheet_fit_to_pages(ark, 1, 1);
    return ark;
}

typedef struct {
    lxw_format *overskrift, *tall, *tekst, *minutter, *merke;
} Stiler;

static Stiler lagStiler(lxw_workbook* bok)
{
    Stiler s;
    s.overskrift = workbook_add_format(bok);
    format_set_bold(s.overskrift);
    format_set_bg_color(s.overskrift, 0xDDEBF7);
    format_set_bottom(s.overskrift, LXW_BORDER_THIN);
    format_set_text_wrap(s.overskrift);
    format_set_align(s.overskrift, LXW_ALIGN_VERTICAL_TOP);
    s.tall = workbook_add_format(bok);
    format_set_num_format(s.tall, "0.000E+00");
    s.tekst = workbook_add_format(bok);
    format_set_num_format(s.tekst, "@");
    s.minutter = workbook_add_format(bok);
    format_set_num_format(s.minutter, "0.00");
    format_set_font_color(s.minutter, 0x595959);
    s.merke = workbook_add_format(bok);
    format_set_bold(s.merke);
    format_set_bg_color(s.merke, 0xFFF2CC);
    format_set_border(s.merke, LXW_BORDER_THIN);
    return s;
}

/* Column widths and formats: first and last column (from 0), width, format. */
typedef struct {
    int fra, til;
    double bredde;
    lxw_format* format;
    int skjult;
} Kolonne;

static void kolonner(lxw_worksheet* ark, const Kolonne* k, int antall)
{
    for (int i = 0; i < antall; ++i) {
        lxw_row_col_options o = {.hidden = (uint8_t)k[i].skjult};
        worksheet_set_column_opt(ark, (lxw_col_t)k[i].fra, (lxw_col_t)k[i].til, k[i].bredde, k[i].format, &o);
    }
}

static lxw_chart* spredningsdiagram(lxw_workbook* bok, const char* tittel, const char* xTittel)
{
    lxw_chart* d = workbook_add_chart(bok, LXW_CHART_SCATTER_STRAIGHT);
    chart_title_set_name(d, tittel);
    chart_axis_set_name(d->x_axis, xTittel);
    chart_axis_set_name(d->y_axis, "Ionestrøm (A)");
    chart_axis_set_num_format(d->y_axis, "0.00E+00");
    chart_axis_set_num_format(d->x_axis, "0");
    chart_axis_major_gridlines_set_visible(d->x_axis, LXW_TRUE);
    chart_legend_set_position(d, LXW_CHART_LEGEND_BOTTOM);
    chart_show_blanks_as(d, LXW_CHART_BLANKS_AS_GAP);
    return d;
}

static lxw_chart_series* serie(lxw_chart* d, const char* ark, int forste, int siste, int xKol, int yKol)
{
    lxw_chart_series* s = chart_add_series(d, NULL, NULL);
    chart_series_set_categories(s, ark, forste, xKol, siste, xKol);
    chart_series_set_values(s, ark, forste, yKol, siste, yKol);
    chart_series_set_name_range(s, ark, 0, yKol);
    lxw_chart_line linje = {.width = 1.25};
    chart_series_set_line(s, &linje);
    return s;
}

static void plasser(lxw_worksheet* ark, int rad, int kol, lxw_chart* d, double xSkala, double ySkala)
{
    lxw_chart_options o = {.x_offset = 10, .y_offset = 5, .x_scale = xSkala, .y_scale = ySkala};
    worksheet_insert_chart_opt(ark, (lxw_row_t)rad, (lxw_col_t)kol, d, &o);
}

/* Constant-memory mode: the charts get no cached copy of the data, so a reader
 * takes the series from the cells. Rows must then be written in order. */
static lxw_workbook* ny(const char* fil)
{
    lxw_workbook_options o = {.constant_memory = LXW_TRUE};
    return workbook_new_opt(fil, &o);
}

/* ---------------------------------------------------------------- package edits after writing */

static void stopp(const char* fil, const char* grunn)
{
    fprintf(stderr, "%s: %s\n", fil, grunn);
    exit(1);
}

/* The text of a part of an open package, or NULL when it has no such part. */
static char* lesDel(zip_t* z, const char* navn)
{
    zip_stat_t st;
    zip_file_t* f = NULL;
    if (zip_stat(z, navn, 0, &st) != 0 || !(f = zip_fopen(z, navn, 0))) return NULL;
    char* xml = malloc(st.size + 1);
    zip_fread(f, xml, st.size);
    xml[st.size] = 0;
    zip_fclose(f);
    return xml;
}

/* Replaces the part's text; the package takes the buffer. */
static void skrivDel(zip_t* z, const char* navn, char* xml, const char* fil)
{
    zip_source_t* kilde = zip_source_buffer(z, xml, strlen(xml), 1);
    if (!kilde || zip_file_replace(z, (zip_uint64_t)zip_name_locate(z, navn, 0), kilde, 0) != 0)
        stopp(fil, "kan ikke skrives");
}

static zip_t* apne(const char* fil)
{
    int feil = 0;
    zip_t* z = zip_open(fil, 0, &feil);
    if (!z) stopp(fil, "kan ikke åpnes");
    return z;
}

static void lukk(zip_t* z, const char* fil)
{
    if (zip_close(z) != 0) stopp(fil, "kan ikke skrives");
}

/* The error a template formula gives in an empty prepared row, by its cell ("B", 5); NULL
 * where the formula's 0 is right. */
typedef const char* (*Formelfeil)(const char* kolonne, int rad);

/* libxlsxwriter caches 0 for every formula, also where the formula gives #N/A or #VALUE!
 * in the empty prepared rows. Those cells get their true error value cached instead, so a
 * spreadsheet program that trusts cached values shows what the formula gives. */
static void sannFormelverdi(const char* fil, Formelfeil feil)
{
    zip_t* z = apne(fil);
    char* xml = lesDel(z, "xl/worksheets/sheet1.xml");
    if (!xml) stopp(fil, "mangler ark 1");
    char* ut = malloc(strlen(xml) * 2 + 1);
    char* u = ut;
    const char* p = xml;
    for (const char* c; (c = strstr(p, "<c r=\"")) != NULL;) {
        const char* tagSlutt = strchr(c, '>');
        const char* slutt = strstr(c, "</c>");
        char kolonne[4] = {0};
        int n = 0, rad = 0;
        for (const char* q = c + 6; *q >= 'A' && *q <= 'Z' && n < 3; ++q) kolonne[n++] = *q;
        rad = atoi(c + 6 + n);
        const char* null = slutt ? strstr(tagSlutt, "</f><v>0</v>") : NULL;
        const char* kode = null && null < slutt ? feil(kolonne, rad) : NULL;
        if (!kode) {
            size_t lengde = (size_t)((slutt ? slutt + 4 : tagSlutt + 1) - p);
            memcpy(u, p, lengde);
            u += lengde;
            p += lengde;
            continue;
        }
        u += sprintf(u, "%.*s t=\"e\">%.*s</f><v>%s</v></c>", (int)(tagSlutt - p), p, (int)(null - tagSlutt - 1),
                     tagSlutt + 1, kode);
        p = slutt + 4;
    }
    strcpy(u, p);
    free(xml);
    skrivDel(z, "xl/worksheets/sheet1.xml", ut, fil);
    lukk(z, fil);
}

/* Elapsed minutes (B) give #N/A without a time. */
static const char* minuttfeil(const char* kolonne, int rad)
{
    (void)rad;
    return strcmp(kolonne, "B") == 0 ? "#N/A" : NULL;
}

/* Integration sheet: B and the area elements from row 4 and their sum #N/A, the clock #VALUE!. */
static const char* integreringsfeil(const char* kolonne, int rad)
{
    if (strcmp(kolonne, "H") == 0) return "#VALUE!";
    if (strcmp(kolonne, "B") == 0 || (strcmp(kolonne, "G") == 0 && rad > 3) || strcmp(kolonne, "L") == 0) return "#N/A";
    return NULL;
}

/* A package without a VBA part but with the macro-enabled workbook type, the
 * form a macro-enabled template takes before anyone adds macros to it. */
static void makroType(const char* fil)
{
    zip_t* z = apne(fil);
    const char* navn = "[Content_Types].xml";
    char* xml = lesDel(z, navn);
    if (!xml) stopp(fil, "mangler typer");
    const char* gammel = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
    const char* ny = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
    char* p = strstr(xml, gammel);
    if (!p) stopp(fil, "uventet innholdstype");
    size_t lengde = strlen(xml) - strlen(gammel) + strlen(ny);
    char* ut = malloc(lengde + 1);
    size_t foran = (size_t)(p - xml);
    memcpy(ut, xml, foran);
    strcpy(ut + foran, ny);
    strcat(ut, p + strlen(gammel));
    skrivDel(z, navn, ut, fil);
    lukk(z, fil);
    free(xml);
}

/* Closes the workbook and caches the true values of its formulas (see sannFormelverdi). */
static void ferdig(lxw_workbook* bok, const char* fil, Formelfeil feil)
{
    lxw_error f = workbook_close(bok);
    if (f != LXW_NO_ERROR) stopp(fil, lxw_strerror(f));
    if (feil) sannFormelverdi(fil, feil);
}

/* A data sheet printed in landscape, as wide as one page, with its heading rows on every
 * page. The print area covers the heading rows; an export stretches it down to the rows it
 * writes, so a printed cycle has no empty prepared rows. */
static void utskrift(lxw_worksheet* ark, int overskrifter, int sisteRad, int sisteKol)
{
    worksheet_set_landscape(ark);
    worksheet_fit_to_pages(ark, 1, 0);
    worksheet_repeat_rows(ark, 0, (lxw_row_t)(overskrifter - 1));
    worksheet_print_area(ark, 0, 0, (lxw_row_t)sisteRad, (lxw_col_t)sisteKol);
}

static char* sti(const char* mappe, const char* navn)
{
    static char buf[4096];
    snprintf(buf, sizeof buf, "%s/%s", mappe, navn);
    return buf;
}

/* ---------------------------------------------------------------- Mal_Sykluser.xlsx */

static void lagSykluser(const char* mappe)
{
    lxw_workbook* bok = ny(sti(mappe, "Mal_Sykluser.xlsx"));
    Stiler s = lagStiler(bok);
    lxw_worksheet* data = workbook_add_worksheet(bok, "Data");
    lxw_worksheet* grafer = grafark(bok, "Grafer");

    worksheet_write_string(data, 0, 0, "Dato og tid", s.overskrift);
    worksheet_write_string(data, 0, 1, "Minutter fra datastart", s.overskrift);
    for (int k = 0; k < 9; ++k) {
        char navn[32];
        snprintf(navn, sizeof navn, "Kanal %c", 'C' + k);
        worksheet_write_string(data, 0, 2 + k, navn, s.overskrift);
    }
    worksheet_write_string(data, 0, 11, "Merknad", s.overskrift);
    worksheet_write_string(data, 0, 13, "Start (min fra datastart)", s.overskrift);
    worksheet_write_number(data, 0, 14, 0, s.merke);
    const Kolonne bredder[] = {{0, 0, 24, s.tekst}, {1, 1, 12, s.minutter}, {2, 10, 12, s.tall},
                               {11, 11, 14, NULL},  {13, 13, 16, NULL},     {14, 14, 10, NULL}};
    kolonner(data, bredder, 6);
    worksheet_freeze_panes(data, 1, 1);
    utskrift(data, 1, 1, 14);
    for (int rad = 2; rad <= SYKLUS_RADER + 1; ++rad) {
        char f[1000];
        minuttformel(f, sizeof f, rad, 2, "$O$1");
        worksheet_write_formula(data, (lxw_row_t)(rad - 1), 1, f, s.minutter);
    }

    lxw_chart* co2 = spredningsdiagram(bok, "Syklus – kanal C", "Minutter fra datastart");
    serie(co2, "Data", 1, SYKLUS_RADER, 1, 2);
    plasser(grafer, 1, 1, co2, 1.8, 1.4);
    lxw_chart* andre = spredningsdiagram(bok, "Syklus – kanal D til K", "Minutter fra datastart");
    for (int k = 3; k <= 10; ++k) serie(andre, "Data", 1, SYKLUS_RADER, 1, k);
    plasser(grafer, 24, 1, andre, 1.8, 1.4);
    ferdig(bok, sti(mappe, "Mal_Sykluser.xlsx"), minuttfeil);
}

/* ---------------------------------------------------------------- Mal_Alle_*.xlsm */

static void lagSamlefil(const char* mappe, const char* fil, const char* tittel)
{
    char navn[4096];
    snprintf(navn, sizeof navn, "%s", sti(mappe, fil));
    lxw_workbook* bok = ny(navn);
    Stiler s = lagStiler(bok);
    lxw_worksheet* data = workbook_add_worksheet(bok, "Sykluser");
    lxw_worksheet* graf = grafark(bok, "Samlegraf");

    worksheet_write_string(data, 0, 0, "Dato og tid (syklus 1)", s.overskrift);
    worksheet_write_string(data, 0, 1, "Minutter fra nullpunkt", s.overskrift);
    for (int k = 1; k <= SAMLE_SYKLUSER; ++k) {
        char h[32];
        snprintf(h, sizeof h, "Cycle nr.%d", k);
        worksheet_write_string(data, 0, (lxw_col_t)(k + 1), h, s.overskrift);
    }
    const Kolonne bredder[] = {{0, 0, 24, s.tekst}, {1, 1, 12, s.minutter}, {2, SAMLE_SYKLUSER + 1, 12, s.tall}};
    kolonner(data, bredder, 3);
    worksheet_freeze_panes(data, 1, 2);
    utskrift(data, 1, 1, SAMLE_SYKLUSER + 1);
    for (int rad = 2; rad <= SAMLE_SISTE_RAD; ++rad) {
        char f[1000];
        minuttformel(f, sizeof f, rad, 2, NULL);
        worksheet_write_formula(data, (lxw_row_t)(rad - 1), 1, f, s.minutter);
    }
    lxw_chart* d = spredningsdiagram(bok, tittel, "Minutter fra nullpunkt");
    chart_legend_set_position(d, LXW_CHART_LEGEND_RIGHT);
    for (int k = 1; k <= SAMLE_SYKLUSER; ++k) serie(d, "Sykluser", 1, SAMLE_SISTE_RAD - 1, 1, k + 1);
    plasser(graf, 1, 1, d, 2.2, 1.8);
    ferdig(bok, navn, minuttfeil);
    makroType(navn);
}

/* ---------------------------------------------------------------- Mal_Integrering_desorpsjon_Enkel.xlsx */

static void lagIntegrering(const char* mappe)
{
    lxw_workbook* bok = ny(sti(mappe, "Mal_Integrering_desorpsjon_Enkel.xlsx"));
    Stiler s = lagStiler(bok);
    lxw_worksheet* data = workbook_add_worksheet(bok, "Integrering");
    lxw_worksheet* graf = grafark(bok, "Graf");
    lxw_format* tittel = workbook_add_format(bok);
    format_set_bold(tittel);
    format_set_font_size(tittel, 13);

    worksheet_set_row(data, 1, 30, NULL);
    worksheet_write_string(data, 0, 0, "CO2-integrering av desorpsjonstoppen", tittel);
    const char* overskrifter[] = {
        "Dato og tid",  "Minutter fra datastart", "CO2",         "CO2 over startnivå", "Kutt (0)",
        "Halv endring", "Arealbit (A·min)",       "Klokke (min)"};
    for (int k = 0; k < 8; ++k) worksheet_write_string(data, 1, (lxw_col_t)k, overskrifter[k], s.overskrift);
    worksheet_write_string(data, 1, 9, "Start (min)", s.overskrift);
    worksheet_write_number(data, 1, 10, 0, s.merke);
    const Kolonne bredder[] = {{0, 0, 24, s.tekst}, {1, 1, 12, s.minutter}, {2, 3, 13, s.tall}, {4, 4, 8, NULL},
                               {5, 6, 13, s.tall},  {7, 7, 12, NULL, 1},    {9, 10, 12, NULL},  {11, 11, 18, s.tall}};
    kolonner(data, bredder, 8);
    worksheet_freeze_panes(data, 2, 1);
    utskrift(data, 2, 16, 11);
    for (int rad = 3; rad <= INTEGRERING_SISTE_RAD; ++rad) {
        char f[1000];
        lxw_row_t r = (lxw_row_t)(rad - 1);
        forlopformel(f, sizeof f, rad, "$K$2", 'H', 3);
        worksheet_write_formula(data, r, 1, f, s.minutter);
        snprintf(f, sizeof f, "=IF(C%d=\"\",0,C%d-$C$3)", rad, rad);
        worksheet_write_formula(data, r, 3, f, s.tall);
        if (rad == 3)
            snprintf(f, sizeof f, "=0");
        else
            snprintf(f, sizeof f, "=(D%d+D%d)/2*(B%d-B%d)", rad - 1, rad, rad, rad - 1);
        worksheet_write_formula(data, r, 6, f, s.tall);
        klokkeformel(f, sizeof f, rad);
        worksheet_write_formula(data, r, 7, f, NULL);
        if (rad == 16) worksheet_write_string(data, r, 11, "CO2-areal (A·min)", s.overskrift);
        if (rad == 17) {
            snprintf(f, sizeof f, "=SUM(G3:G%d)", INTEGRERING_SISTE_RAD);
            worksheet_write_formula(data, r, 11, f, s.merke);
        }
    }

    lxw_chart* d = spredningsdiagram(bok, "CO2 – desorpsjonstopp", "Minutter fra datastart");
    chart_series_set_name(serie(d, "Integrering", 2, INTEGRERING_SISTE_RAD - 1, 1, 2), "CO2");
    plasser(graf, 1, 1, d, 1.8, 1.4);
    ferdig(bok, sti(mappe, "Mal_Integrering_desorpsjon_Enkel.xlsx"), integreringsfeil);
}

/* ---------------------------------------------------------------- Mal_desorpsjon_areal_alle.xlsx */

static void lagArealer(const char* mappe)
{
    lxw_workbook* bok = ny(sti(mappe, "Mal_desorpsjon_areal_alle.xlsx"));
    Stiler s = lagStiler(bok);
    lxw_worksheet* ark = workbook_add_worksheet(bok, "Arealer");
    worksheet_write_string(ark, 0, 0, "Syklus", s.overskrift);
    worksheet_write_string(ark, 0, 1, "CO2-areal (A·min)", s.overskrift);
    worksheet_set_column(ark, 0, 0, 8, NULL);
    worksheet_set_column(ark, 1, 1, 18, s.tall);
    worksheet_freeze_panes(ark, 1, 0);
    utskrift(ark, 1, AREAL_SYKLUSER, 15); /* the areas and the chart beside them */
    for (int k = 1; k <= AREAL_SYKLUSER; ++k) worksheet_write_number(ark, (lxw_row_t)k, 0, k, NULL);

    lxw_chart* d = workbook_add_chart(bok, LXW_CHART_COLUMN);
    chart_title_set_name(d, "CO2-areal per syklus");
    chart_axis_set_name(d->x_axis, "Syklus");
    chart_axis_set_name(d->y_axis, "CO2-areal (A·min)");
    chart_axis_set_num_format(d->y_axis, "0.00E+00");
    chart_legend_set_position(d, LXW_CHART_LEGEND_NONE);
    lxw_chart_series* serie = chart_add_series(d, NULL, NULL);
    chart_series_set_categories(serie, "Arealer", 1, 0, AREAL_SYKLUSER, 0);
    chart_series_set_values(serie, "Arealer", 1, 1, AREAL_SYKLUSER, 1);
    chart_series_set_name_range(serie, "Arealer", 0, 1);
    plasser(ark, 1, 3, d, 1.6, 1.4);
    ferdig(bok, sti(mappe, "Mal_desorpsjon_areal_alle.xlsx"), NULL);
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "bruk: lag_maler MAPPE\n");
        return 2;
    }
    lagSykluser(argv[1]);
    lagSamlefil(argv[1], "Mal_Alle_Adsorpsjon.xlsm", "Adsorpsjon – alle sykluser");
    lagSamlefil(argv[1], "Mal_Alle_Desorpsjon.xlsm", "Desorpsjon – alle sykluser");
    lagIntegrering(argv[1]);
    lagArealer(argv[1]);
    return 0;
}
