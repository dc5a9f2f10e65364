#include "felles/Felles.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <gtest/gtest.h>

namespace test {

Programmappe::Programmappe() : mappe_(dir_.path())
{
    for (const char* navn : {"Template.mdb", "Data.mdb"}) {
        const QString fra = QStringLiteral(TOLVIK_DIST "/Template.mdb");
        if (!QFile::copy(fra, sti(QLatin1String(navn)))) ADD_FAILURE() << "kan ikke kopiere " << fra.toStdString();
    }
}

void Programmappe::kopierMaler() const
{
    for (const QString& mal : QDir(QStringLiteral(TOLVIK_DIST)).entryList({QStringLiteral("Mal_*")}))
        if (!QFile::copy(QStringLiteral(TOLVIK_DIST "/") + mal, sti(mal)))
            ADD_FAILURE() << "kan ikke kopiere " << mal.toStdString();
}

void skriv(const QString& sti, const QByteArray& innhold)
{
    QFile f(sti);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(innhold) == innhold.size()) << sti;
}

QByteArray les(const QString& sti)
{
    QFile f(sti);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void Programmappe::skriv(const QString& navn, const QByteArray& innhold) const { test::skriv(sti(navn), innhold); }
QByteArray Programmappe::les(const QString& navn) const { return test::les(sti(navn)); }

Kjoring Programmappe::batch(const QStringList& argumenter, bool ok) const
{
    const Kjoring k = test::batch(QStringList{QStringLiteral("--folder"), mappe_} + argumenter);
    if (ok && k.status != 0)
        ADD_FAILURE() << argumenter.join(' ').toStdString() << ": status " << k.status << "\n"
                      << k.ut.toStdString() << k.feil.toStdString();
    return k;
}

void sjekkGull(const QString& navn, const QString& tekst)
{
    const QString fil = QStringLiteral(TOLVIK_TESTDATA "/") + navn;
    if (qEnvironmentVariableIsSet("TOLVIK_NY_GULL")) return skriv(fil, tekst.toUtf8());
    EXPECT_TRUE(QFile::exists(fil)) << navn;
    EXPECT_EQ(tekst.toStdString(), les(fil).toStdString()) << navn;  // a failure shows the lines that differ
}

QStringList rader(db::Database& d, const QString& hvor)
{
    QStringList ut;
    for (auto r = d.spor(QStringLiteral("Select * from DataLinjer ") + hvor); !r.eof(); r.moveNext()) {
        QStringList v;
        for (const char* k : {"C", "D", "E", "F", "G", "H", "I", "J", "K", "L"})
            v << (r.erNull(k) ? QStringLiteral("-") : QString::number(r.tall(k), 'g', QLocale::FloatingPointShortest));
        const QString tekst = r.erNull("DatoTid_Tekst") ? QStringLiteral("-") : r.tekst("DatoTid_Tekst");
        ut << r.tekst("DatoTid") + '|' + tekst + '|' + v.join(' ');
    }
    return ut;
}

QString Programmappe::utskrift(const QStringList& argumenter) const
{
    return test::utskrift(argumenter, batch(argumenter)).replace(mappe_, QStringLiteral("<mappe>"));
}

QString utskrift(const QStringList& argumenter, const Kjoring& k)
{
    return QStringLiteral("$ %1\nstatus %2\n").arg(argumenter.join(' ')).arg(k.status) + k.ut +
           (k.status == 0 ? QString() : QStringLiteral("stderr: ") + k.feil);
}

Kjoring batch(const QStringList& argumenter)
{
    QProcess p;
    p.start(QStringLiteral(TOLVIK_DIST "/tolvik-batch"), argumenter);
    const bool ferdig = p.waitForFinished(300000);
    if (!ferdig) p.kill();
    Kjoring k{p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    // A hang, a crash or a sanitizer's report is never one of the program's own outcomes.
    if (!ferdig || p.exitStatus() != QProcess::NormalExit || k.status == Sanitizerstatus) {
        ADD_FAILURE() << "tolvik-batch " << argumenter.join(' ').toStdString()
                      << (ferdig ? " endte unormalt (status " + std::to_string(k.status) + ")" : " ble ikke ferdig")
                      << ":\n"
                      << k.feil.toStdString();
        k.status = -1;
    }
    return k;
}

}  // namespace test

// Every test program runs the real Qt application on the offscreen platform; the programs it
// starts report a sanitizer's finding with test::Sanitizerstatus.
int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QByteArray status = QByteArray::number(test::Sanitizerstatus);
    qputenv("ASAN_OPTIONS", "exitcode=" + status);
    qputenv("UBSAN_OPTIONS", "halt_on_error=1:print_stacktrace=1:exitcode=" + status);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
