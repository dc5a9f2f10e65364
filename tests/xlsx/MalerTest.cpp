#include "Zipfiler.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace xlsx;

namespace {

QString mal(const char* navn) { return QStringLiteral(TOLVIK_DIST "/") + QLatin1String(navn); }
double tallAv(const Verdi& v) { return std::holds_alternative<double>(v) ? std::get<double>(v) : NAN; }
QString tekstAv(const Verdi& v) { return std::holds_alternative<QString>(v) ? std::get<QString>(v) : QString(); }

QString tid(int sekunder) {
    return QStringLiteral("2012/11/23 ,%1:%2:%3,1.")
        .arg(12 + sekunder / 3600, 2, 10, QLatin1Char('0'))
        .arg(sekunder / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(sekunder % 60, 2, 10, QLatin1Char('0'));
}

// What openpyxl (Debian's Python) reads from sheet 1: the cached values of the listed
// cells, and the formula texts when formler is set.
QJsonArray openpyxl(const QString& fil, const QStringList& celler, bool formler) {
    const char* skript =
        "import json, sys, openpyxl\n"
        "wb = openpyxl.load_workbook(sys.argv[1], data_only=sys.argv[2] == '0')\n"
        "ws = wb.worksheets[0]\n"
        "print(json.dumps([ws[c].value for c in sys.argv[3:]]))\n";
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            QStringList{QStringLiteral("-c"), QString::fromUtf8(skript), fil, formler ? QStringLiteral("1") : QStringLiteral("0")} + celler);
    EXPECT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(p.readAllStandardOutput()).array();
}

} // namespace

TEST(Maler, SyklusmalenRegnerMinutterOgFlytterAksene)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Sykluser.xlsx"));
    Arbeidsark& data = bok->ark(1);
    data.settCelle(1, 15, 230.5);
    const int sek[] = {0, 30, 45, 3600};
    for (int i = 0; i < 4; ++i) {
        data.settCelle(2 + i, 1, tid(sek[i]));
        for (int k = 3; k <= 11; ++k) data.settCelle(2 + i, k, 1e-10 * k + i * 1e-12);
    }
    EXPECT_DOUBLE_EQ(tallAv(data.celle(2, 2)), 230.5);
    EXPECT_DOUBLE_EQ(tallAv(data.celle(4, 2)), 231.25);
    EXPECT_DOUBLE_EQ(tallAv(data.celle(5, 2)), 290.5);
    EXPECT_EQ(tekstAv(data.celle(6, 2)), QStringLiteral("#N/A")); // no time: left out of the charts
    Arbeidsark& grafer = bok->ark(2);
    for (int nr : {1, 2}) {
        EXPECT_FALSE(grafer.diagram(nr).tittel().isEmpty());
        grafer.diagram(nr).settKategoriMinimum(230);
    }
    EXPECT_THROW(grafer.diagram(3), XlsxFeil);
    const QString ut = dir.filePath(QStringLiteral("Forsok_1.xlsx"));
    bok->lagreSom(ut);

    QJsonArray v = openpyxl(ut, {"O1", "A2", "B2", "B4", "C4", "K5", "B6", "L2"}, false);
    ASSERT_EQ(v.size(), 8);
    EXPECT_EQ(v[0].toDouble(), 230.5);
    EXPECT_EQ(v[1].toString(), tid(0));
    EXPECT_EQ(v[2].toDouble(), 230.5);
    EXPECT_EQ(v[3].toDouble(), 231.25);
    EXPECT_DOUBLE_EQ(v[4].toDouble(), 3e-10 + 2e-12);
    EXPECT_DOUBLE_EQ(v[5].toDouble(), 1.1e-9 + 3e-12);
    EXPECT_EQ(v[6].toString(), QStringLiteral("#N/A"));
    EXPECT_TRUE(v[7].isNull());
    EXPECT_TRUE(openpyxl(ut, {"B3"}, true)[0].toString().startsWith(QStringLiteral("=IF(A3=\"\",NA(),$O$1+")));
    std::string diagram = test::lesZip(ut.toStdString())["xl/charts/chart2.xml"].innhold;
    EXPECT_NE(diagram.find("<c:min val=\"230\"/>"), std::string::npos);
}

TEST(Maler, IntegreringsmalenGirTrapesarealet)
{
    QTemporaryDir dir;
    auto bok = apne(mal("Mal_Integrering_desorpsjon_Enkel.xlsx"));
    Arbeidsark& a = bok->ark(1);
    // Twenty rows 30 s apart: a peak on a level of 1e-10, written as the integration export does.
    std::vector<double> co2 = {1e-10, 1e-10, 3e-10, 7e-10, 9e-10, 6e-10, 4e-10, 2e-10, 1.5e-10, 1.2e-10};
    for (int i = 0; i < 10; ++i) co2.push_back(1.1e-10 - i * 1e-12);
    const int siste = 22;
    a.settCelle(2, 11, 100.5);
    for (int i = 0; i < 20; ++i) {
        int n = 3 + i;
        a.settCelle(n, 1, tid(30 * i));
        a.settCelle(n, 3, co2[i]);
        a.settFormel(QStringLiteral("F%1").arg(n), n == 3 ? QStringLiteral("= abs((D3-D3)/2)")
                                                           : QStringLiteral("= abs((D%1-D%2)/2)").arg(n).arg(n - 1));
    }
    a.settCelle(siste, 5, 0.0);
    a.settFormel(QStringLiteral("L17"), QStringLiteral("= sum(G3:G%1)").arg(siste));
    // The trapezoid area above the level of the first row, in ion current x minutes.
    double areal = 0;
    for (int i = 1; i < 20; ++i) areal += ((co2[i] - co2[0]) + (co2[i - 1] - co2[0])) / 2 * 0.5;
    EXPECT_NEAR(tallAv(a.celle(17, 12)), areal, 1e-22);
    EXPECT_DOUBLE_EQ(tallAv(a.celle(12, 2)), 100.5 + 4.5);
    EXPECT_DOUBLE_EQ(tallAv(a.celle(5, 6)), 1e-10); // |D5-D4|/2
    for (int r = siste + 1; r <= 2999; ++r) a.tomRad(r);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(a.celle(siste + 1, 4)));
    const QString ut = dir.filePath(QStringLiteral("Forsok_1.xlsx"));
    bok->lagreSom(ut);

    QJsonArray v = openpyxl(ut, {"L17", "F5", "D22", "G23", "K2"}, false);
    EXPECT_NEAR(v[0].toDouble(), areal, 1e-22);
    EXPECT_DOUBLE_EQ(v[1].toDouble(), 1e-10);
    EXPECT_DOUBLE_EQ(v[2].toDouble(), co2[19] - co2[0]);
    EXPECT_TRUE(v[3].isNull());
    EXPECT_EQ(v[4].toDouble(), 100.5);
    // F4..F22 share one formula text in the file; a reader sees each row's own.
    EXPECT_EQ(openpyxl(ut, {"L17", "F4", "F10", "G22"}, true),
              (QJsonArray{"=SUM(G3:G22)", "=ABS((D4-D3)/2)", "=ABS((D10-D9)/2)", "=(D21+D22)/2*(B22-B21)"}));
}

TEST(Maler, SamlemalerErMakroaktiverte)
{
    QTemporaryDir dir;
    for (const char* navn : {"Mal_Alle_Adsorpsjon.xlsm", "Mal_Alle_Desorpsjon.xlsm"}) {
        std::string typer = test::lesZip(mal(navn).toStdString())["[Content_Types].xml"].innhold;
        EXPECT_NE(typer.find("application/vnd.ms-excel.sheet.macroEnabled.main+xml"), std::string::npos) << navn;
        auto bok = apne(mal(navn));
        EXPECT_EQ(tekstAv(bok->ark(1).celle(1, 3)), QStringLiteral("Cycle nr.1"));
        EXPECT_EQ(tekstAv(bok->ark(1).celle(1, 52)), QStringLiteral("Cycle nr.50"));
        EXPECT_TRUE(bok->ark(2).diagram(1).tittel().endsWith(QStringLiteral("alle sykluser")));
        bok->ark(1).settCelle(2, 1, tid(0));
        bok->ark(1).settCelle(3, 1, tid(90));
        bok->ark(1).tomCelle(3, 4);
        EXPECT_DOUBLE_EQ(tallAv(bok->ark(1).celle(3, 2)), 1.5); // minutes from the zero point
        const QString ut = dir.filePath(QStringLiteral("x_Samlefil.xlsm"));
        bok->lagreSom(ut);
        EXPECT_EQ(openpyxl(ut, {"B3"}, false)[0].toDouble(), 1.5);
    }
}

TEST(Maler, ArealmalenOgTittelredigering)
{
    QTemporaryDir dir;
    const QString kopi = dir.filePath(QStringLiteral("Mal_desorpsjon_areal_alle.xlsx"));
    ASSERT_TRUE(QFile::copy(mal("Mal_desorpsjon_areal_alle.xlsx"), kopi));
    {
        auto bok = apne(kopi);
        EXPECT_EQ(tallAv(bok->ark(1).celle(31, 1)), 30);
        EXPECT_EQ(bok->ark(1).diagram(1).tittel(), QStringLiteral("CO2-areal per syklus"));
        bok->ark(1).settCelle(2, 2, 4.5e-9);
        bok->ark(1).settCelle(3, 2, 5e-9);
        bok->lagre();
    }
    auto bok = apne(kopi);
    EXPECT_EQ(tallAv(bok->ark(1).celle(3, 2)), 5e-9);
    EXPECT_EQ(openpyxl(kopi, {"A2", "B2", "B4"}, false), (QJsonArray{1, 4.5e-9, QJsonValue()}));

    // Chart-title editing of the single-cycle template: both charts get the first one's title.
    const QString sykluser = dir.filePath(QStringLiteral("Mal_Sykluser.xlsx"));
    ASSERT_TRUE(QFile::copy(mal("Mal_Sykluser.xlsx"), sykluser));
    {
        auto b = apne(sykluser);
        b->ark(2).diagram(1).settTittel(QStringLiteral("Forsøk 7"));
        b->ark(2).diagram(2).settTittel(b->ark(2).diagram(1).tittel());
        b->ark(1).settCelle(1, 1, QStringLiteral("Time&Date"));
        b->lagre();
    }
    auto b = apne(sykluser);
    EXPECT_EQ(b->ark(2).diagram(2).tittel(), QStringLiteral("Forsøk 7"));
    EXPECT_EQ(openpyxl(sykluser, {"A1", "B1"}, false), (QJsonArray{"Time&Date", "Minutter fra datastart"}));
}
