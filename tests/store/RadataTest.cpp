// The raw-data line format on single lines: fields, row or the reason a line is left out.
#include "store/Radata.h"

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

TEST(Radata, LinjerSomTolkes)
{
    const struct {
        const char* linje;
        QString ventet;
    } tilfeller[] = {
        // Quotes go, "/" becomes "." everywhere; the field after the last comma gives no value.
        {R"("2012/11/23","14:05:32","1.5","2","3/4",)",
         u"2012.11.23|14:05:32|1.5|2|3.4| => 2012-11-23 14:05:32 / 2012/11/23 ,14:05:32,1. / 1.5 2 3.4"_s},
        {"2012/11/23,14:05:31,1.5,2",
         u"2012.11.23|14:05:31|1.5|2 => 2012-11-23 14:05:31 / 2012/11/23 ,14:05:31,1. / 1.5"_s},
        // Val of each field; 13 fields fill C to L. Characters 11 to 22 of the text are taken as they are.
        {"2012/11/23,14:05:33,abc,1.5E-03, 1 2 .5,,7,8,9,10,11,-4.2e-10xyz,",
         u"2012.11.23|14:05:33|abc|1.5E-03| 1 2 .5||7|8|9|10|11|-4.2e-10xyz| => "
         "2012-11-23 14:05:33 / 2012/11/23 ,14:05:33,ab / 0 0.0015 12.5 0 7 8 9 10 11 -4.2e-10"_s},
        // Latin-1 in DatoTid_Tekst becomes UTF-8; the date-time reads only characters 1 to 19.
        {"2012/11/23,14:05:31\xB5s,7,",
         u"2012.11.23|14:05:31µs|7| => 2012-11-23 14:05:31 / 2012/11/23 ,14:05:31µs, / 7"_s},
        {"2012/11/23,14:05:31,", u"2012.11.23|14:05:31| => ingen datalinje"_s},
        {"2012/11/23,14:05:31,1,2,3,4,5,6,7,8,9,10,11,",
         u"2012.11.23|14:05:31|1|2|3|4|5|6|7|8|9|10|11| => ingen datalinje"_s},
        {"", u" => ingen datalinje"_s},
        // Each reason a data line is left out, with the characters it names.
        {"2012/11/23,14:05'31\xE5,1,", u"2012.11.23|14:05'31å|1| => apostrof i dato og tid «2012.11.23,14:05'31å,1»"_s},
        {"2013/02/29,14:05:31,1,2,",
         u"2013.02.29|14:05:31|1|2| => ugyldig dato eller klokkeslett «2013.02.29,14:05:31»"_s},
        {"2012/11/23,14:05.31,1,2,",
         u"2012.11.23|14:05.31|1|2| => ugyldig dato eller klokkeslett «2012.11.23,14:05.31»"_s},
        {"12/11/23,14:05:31,1,2,", u"12.11.23|14:05:31|1|2| => ugyldig dato eller klokkeslett «12.11.23,14:05:31,1»"_s},
        {"xx,yy,1,2,", u"xx|yy|1|2| => ugyldig dato eller klokkeslett «xx,yy,1,2,»"_s},
        {"2012/11/23,14:05:31,1,1E999,", u"2012.11.23|14:05:31|1|1E999| => tallet «1E999» er for stort"_s},
    };
    store::Radatalinje linje;  // one for all lines, as the import keeps it
    for (const auto& t : tilfeller) EXPECT_EQ(tolket(linje, t.linje), t.ventet) << t.linje;
}

}  // namespace
