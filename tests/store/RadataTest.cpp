// The raw-data line format on single lines: fields, row or the reason a line is left out.
#include "store/Radata.h"
#include "felles/Felles.h"

#include <QLocale>
#include <QStringList>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// "fields => what the line gives": the row as "DatoTid / DatoTid_Tekst / values", the notice
// text of a line left out, or "ingen datalinje".
QString tolket(store::Radatalinje& linje, std::string_view raa)
{
    linje.les(raa);
    QStringList felt;
    for (std::string_view f : linje.felt()) felt << QString::fromLatin1(f.data(), static_cast<qsizetype>(f.size()));
    QString ut = felt.join('|') + u" => "_s;
    if (!linje.erDatalinje()) return ut + u"ingen datalinje"_s;
    store::Rad rad;
    if (const auto hopp = linje.tolk(rad)) return ut + store::hoppTekst(*hopp);
    QStringList verdier;
    for (int i = 0; i < rad.antall; ++i)
        verdier << QString::number(rad.verdier[i], 'g', QLocale::FloatingPointShortest);
    const std::string_view tid = rad.tid(), tekst = rad.tekst();
    return ut + QString::fromLatin1(tid.data(), static_cast<qsizetype>(tid.size())) + u" / "_s +
           QString::fromUtf8(tekst.data(), static_cast<qsizetype>(tekst.size())) + u" / "_s + verdier.join(' ');
}

// The lines of linjer.csv (its comments say why each is there), as gull/Radata.txt shows them.
TEST(Radata, LinjerSomTolkes)
{
    QList<QByteArray> linjer = test::les(QStringLiteral(TOLVIK_TESTDATA "/store/linjer.csv")).split('\n');
    linjer.removeLast();       // after the last line end
    store::Radatalinje linje;  // one for all lines, as the import keeps it
    QString ut;
    for (const QByteArray& raa : linjer)
        ut += (raa.startsWith('#') ? QString::fromUtf8(raa) : tolket(linje, raa.toStdString())) + '\n';
    test::sjekkGull(u"store/gull/Radata.txt"_s, ut);
}

}  // namespace
