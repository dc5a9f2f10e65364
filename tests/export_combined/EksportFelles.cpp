#include "export_combined/EksportFelles.h"

#include "files/Oppsett.h"
#include "files/Tekstfil.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QProcess>

namespace test {

vb::Dato klokka(int minutter) { return vb::Dato::fra(2012, 11, 23).leggTilMinutter(minutter); }

Lest lesMedOpenpyxl(const QString& fil)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral(TOLVIK_TESTDATA "/export_combined/les_arbeidsbok.py"), fil});
    p.waitForFinished(120000);
    const QByteArray ut = p.readAllStandardOutput();
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    const QJsonObject o = QJsonDocument::fromJson(ut).object();
    Lest l;
    l.celler = o.value(QStringLiteral("celler")).toObject();
    l.formler = o.value(QStringLiteral("formler")).toObject();
    for (const auto& a : o.value(QStringLiteral("ark")).toArray()) l.ark << a.toString();
    l.makro = o.value(QStringLiteral("makro")).toBool();
    l.vba = o.value(QStringLiteral("vba")).toBool();
    return l;
}

void EksportTest::SetUp()
{
    for (const QString& mal : QDir(QStringLiteral(TOLVIK_DIST)).entryList({QStringLiteral("Mal_*")}))
        ASSERT_TRUE(QFile::copy(QStringLiteral(TOLVIK_DIST "/") + mal, mappe.sti(mal)));
    QStringList linjer;
    const char* const navn[] = {"Argon", "Nitrogen", "Oksygen", "CO2", "Vann", "Helium", "Neon"};
    for (int i = 0; i < 7; ++i) linjer << filer::kolonneLinje(QLatin1String(navn[i]), filer::kolonneBokstav(i + 3));
    filer::SkrivTilFil(mappe.sti(filer::KolonnerFil), linjer.join(QStringLiteral("\r\n")));
}

void EksportTest::rad(int minutt, double c, std::optional<double> f)
{
    int aar, mnd, dag, time, min, sek;
    klokka(minutt).deler(aar, mnd, dag, time, min, sek);
    const QString tid = QString::asprintf("%02d:%02d:%02d", time, min, sek);
    rader_ << QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, I) VALUES ('%1/%2/%3 %4', "
                             "'%3/%2/%1 ,%4,1.', %5, 2, 3, %6, %5)")
                  .arg(dag, 2, 10, QLatin1Char('0'))
                  .arg(mnd, 2, 10, QLatin1Char('0'))
                  .arg(aar)
                  .arg(tid, vb::sqlTekst(c), f ? vb::sqlTekst(*f) : QStringLiteral("Null"));
}

void EksportTest::snupunkter(std::initializer_list<int> minutter)
{
    QStringList t;
    for (int m : minutter) t << klokka(m).generellTekst();
    filer::SkrivTilFil(mappe.sti(QStringLiteral("SnuPunkter.txt")), t.join(QLatin1Char('!')));
}

Form1& EksportTest::vindu()
{
    if (!vindu_) {
        lagreRader();
        vindu_ = std::make_unique<Form1>(mappe.mappe(), dialogs);
    }
    return *vindu_;
}

void EksportTest::lagreRader()
{
    db::Database d(mappe.sti(QStringLiteral("Data.mdb")));
    db::Transaksjon t(d);
    for (const QString& r : rader_) d.utfor(r);
    t.fullfor();
    rader_.clear();
}

QString EksportTest::label4() { return vindu().findChild<QLabel*>(QStringLiteral("Label4"))->text(); }

} // namespace test
