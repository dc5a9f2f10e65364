#include "files/Tekstfil.h"
#include "felles/Felles.h"
#include "files/Oppsett.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace files;

TEST(HentKode, SisteKlammeparOgKolonnebokstav)
{
    // "]" before "[" gives no code; the code runs to the last "]".
    for (const auto& [linje, kode] : std::initializer_list<std::pair<const char*, const char*>>{
             {"abc", ""}, {"x[]", ""}, {"N2 [E] [F]", "F"}, {"a]b[", ""}, {"[C] x]", "C] x"}})
        EXPECT_EQ(HentKode(QString::fromLatin1(linje)), QString::fromLatin1(kode)) << linje;
    EXPECT_EQ(kolonneLinje(QStringLiteral("N2"), QStringLiteral("D")), QStringLiteral("N2                    [D]"));
    EXPECT_EQ(QStringList(
                  {kolonneBokstav(3), kolonneBokstav(26), kolonneBokstav(27), kolonneBokstav(29), kolonneBokstav(30)}),
              QStringList({"C", "Z", "Æ", "Å", ""}));
}

TEST(Tekstfiler, LinjeslutterOgTelling)
{
    test::Programmappe m;
    // CR, LF, CR LF and an empty line all end a line; a last line without an end counts.
    for (const auto& [innhold, linjer] : std::initializer_list<std::pair<const char*, int>>{
             {"a\r\nb\r\nc", 3}, {"", 0}, {"\r\n", 1}, {"a\rb\nc\r\n\r\nd\n", 5}}) {
        m.skriv("t.txt", innhold);
        EXPECT_EQ(TellLinjer(m.sti("t.txt")), linjer) << innhold;
    }
    EXPECT_THROW(TellLinjer(m.sti("mangler.txt")), FilFeil);
}

TEST(Tekstfiler, LeserLinjerOverBufferGrenser)
{
    // Lines of varying length with every kind of line end, so that ends fall across buffer boundaries.
    test::Programmappe m;
    QByteArray data;
    QStringList ventet, lest;
    for (int i = 0; i < 200000; ++i) {
        ventet << QString::number(i) + QString(i % 37, QLatin1Char('x'));
        data += ventet.last().toLatin1() + (i % 3 == 0 ? "\r\n" : i % 3 == 1 ? "\r" : "\n");
    }
    m.skriv("stor.txt", data);
    Linjeleser leser(m.sti("stor.txt"));
    for (std::string_view linje; leser.neste(linje);) lest << latin1(linje);
    EXPECT_EQ(lest.size(), ventet.size());
    EXPECT_TRUE(lest == ventet);
}

TEST(Tekstfiler, SkrivLatin1MedCrLf)
{
    test::Programmappe m;
    const QString fil = m.sti("Oppsett.txt");
    SkrivTilFil(fil, QStringLiteral("Ø!å"));
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("\xD8!\xE5\r\n"));
    SkrivTilFil(fil, QStringLiteral("ny"));
    SkrivTilFilAppend(fil, QStringLiteral("to"));
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("ny\r\nto\r\n"));
    EXPECT_EQ(HentFraFil(fil), QStringLiteral("ny"));
    EXPECT_EQ(HentFraFil(m.sti("mangler.txt")), QString());
    EXPECT_THROW(SkrivTilFil(m.sti("ingen-mappe/x.txt"), QStringLiteral("x")), FilFeil);
}

TEST(Tekstfiler, FilOgMappeFinnes)
{
    test::Programmappe m;
    m.skriv("a.txt", "x");
    m.skriv(".skjult", "x");
    QDir(m.mappe()).mkdir(QStringLiteral("mappe"));
    EXPECT_TRUE(FilFinnes(m.sti("a.txt")) && MappeFinnes(m.sti("mappe")));
    EXPECT_FALSE(FilFinnes(m.sti(".skjult")) || FilFinnes(m.sti("mappe")) || MappeFinnes(m.sti("a.txt")));
}
