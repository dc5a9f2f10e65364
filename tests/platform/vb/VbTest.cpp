#include "platform/vb/Vb.h"

#include "felles/Felles.h"

#include <QLocale>
#include <functional>
#include <gtest/gtest.h>
#include <map>

using namespace Qt::StringLiterals;

using namespace vb;

namespace {

QString vis(double x) { return QString::number(x, 'g', QLocale::FloatingPointShortest); }

Dato dato(const QString& tekst) { return Dato::fraGenerellTekst(tekst); }

// The functions in gull/tilfeller.txt, each giving its result for its arguments as text.
const std::map<QString, std::function<QString(const QStringList&)>> Funksjoner = {
    {u"heltall16"_s, [](const QStringList& a) { return vis(heltall16(a[0].toDouble())); }},
    {u"heltall16-tekst"_s, [](const QStringList& a) { return vis(heltall16(a[0])); }},
    {u"pluss16"_s, [](const QStringList& a) { return vis(pluss16(static_cast<int16_t>(a[0].toInt()))); }},
    {u"tall"_s, [](const QStringList& a) { return vis(tall(a[0])); }},
    {u"valLagret"_s,
     [](const QStringList& a) {
         bool forLite = false;
         const double x = valLagret(a[0].toStdString(), &forLite);
         return vis(x) + (forLite ? u" (for lite)"_s : QString());
     }},
    {u"antallTekst"_s, [](const QStringList& a) { return u"\""_s + antallTekst(a[0].toLongLong()) + '"'; }},
    {u"tekst"_s, [](const QStringList& a) { return tekst(a[0].toFloat()); }},
    {u"tekst-dobbel"_s, [](const QStringList& a) { return tekst(a[0].toDouble()); }},
    {u"sqlTekst"_s, [](const QStringList& a) { return sqlTekst(a[0].toFloat()); }},
    {u"fraGenerellTekst"_s, [](const QStringList& a) { return dato(a[0]).generellTekst(); }},
    {u"fraFastePlasser"_s,
     [](const QStringList& a) {
         const auto d = Dato::fraFastePlasser(a[0].toStdString());
         return d ? d->fullTekst() : u"ingen"_s;
     }},
    {u"fullTekst"_s, [](const QStringList& a) { return dato(a[0]).fullTekst(); }},
    {u"tidsnokkel"_s, [](const QStringList& a) { return dato(a[0]).tidsnokkel(); }},
    {u"minutterMellom"_s, [](const QStringList& a) { return vis(minutterMellom(dato(a[0]), dato(a.value(1)))); }},
    {u"sekunderMellom"_s, [](const QStringList& a) { return vis(sekunderMellom(dato(a[0]), dato(a.value(1)))); }},
    {u"leggTilMinutter"_s,
     [](const QStringList& a) { return dato(a[0]).leggTilMinutter(a.value(1).toDouble()).generellTekst(); }},
};

}  // namespace

// The rules of the platform's values and date-times, case by case in gull/tilfeller.txt with why each is there.
TEST(Vb, VerdierOgDatoerSomITabellen)
{
    QString ut;
    for (const QString& linje : QString::fromUtf8(test::les(u"" TOLVIK_TESTDATA "/platform/vb/gull/tilfeller.txt"_s))
                                    .split('\n', Qt::SkipEmptyParts)) {
        const qsizetype a = linje.indexOf('"'), b = linje.lastIndexOf(u"\" =>"_s);
        if (linje.startsWith('#') || a < 0 || b <= a) {
            ut += linje + '\n';
            continue;
        }
        const QString funksjon = linje.left(a - 1), argument = linje.mid(a + 1, b - a - 1);
        QString svar;
        try {
            svar = Funksjoner.at(funksjon)(QString(argument)
                                               .replace(u"\\t"_s, u"\t"_s)
                                               .replace(u"\\r"_s, u"\r"_s)
                                               .replace(u"\\n"_s, u"\n"_s)
                                               .split(u"\" \""_s));
        } catch (const Feil& e) {
            svar = u"Feil: "_s + QString::fromUtf8(e.what());
        }
        ut += linje.left(b + 4) + ' ' + svar + '\n';
    }
    test::sjekkGull(u"platform/vb/gull/tilfeller.txt"_s, ut);
}
