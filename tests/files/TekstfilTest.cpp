#include "files/Tekstfil.h"
#include "felles/Felles.h"
#include "files/Oppsett.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace files;

TEST(HentKode, SisteKlammepar)
{
    EXPECT_EQ(HentKode(QStringLiteral("abc")), QString());
    EXPECT_EQ(HentKode(QStringLiteral("x[]")), QString());
    EXPECT_EQ(HentKode(QStringLiteral("a[B]c[D]")), QStringLiteral("D"));
    EXPECT_EQ(HentKode(QStringLiteral("N2 [E] [F]")), QStringLiteral("F"));
    EXPECT_EQ(HentKode(kolonneLinje(QStringLiteral("CO2"), QStringLiteral("C"))), QStringLiteral("C"));
    EXPECT_EQ(HentKode(QStringLiteral("a]b[")), QString());  // "]" before "[": no code
    EXPECT_EQ(HentKode(QStringLiteral("[C] x]")), QStringLiteral("C] x"));
}

TEST(Kolonnebokstav, AtilAaOgIkkeLenger)
{
    EXPECT_EQ(kolonneBokstav(3), QStringLiteral("C"));
    EXPECT_EQ(kolonneBokstav(26), QStringLiteral("Z"));
    EXPECT_EQ(kolonneBokstav(27), QStringLiteral("Æ"));
    EXPECT_EQ(kolonneBokstav(29), QStringLiteral("Å"));
    EXPECT_EQ(kolonneBokstav(30), QString());
    EXPECT_EQ(kolonneLinje(QStringLiteral("N2"), QStringLiteral("D")), QStringLiteral("N2                    [D]"));
}

TEST(Tekstfiler, LinjeslutterOgTelling)
{
    test::Programmappe m;
    m.skriv("tre.txt", "a\r\nb\r\nc");
    EXPECT_EQ(TellLinjer(m.sti("tre.txt")), 3);
    m.skriv("tom.txt", "");
    EXPECT_EQ(TellLinjer(m.sti("tom.txt")), 0);
    m.skriv("en.txt", "\r\n");
    EXPECT_EQ(TellLinjer(m.sti("en.txt")), 1);
    m.skriv("blandet.txt", "a\rb\nc\r\n\r\nd\n");  // CR, LF, CR LF, an empty line
    EXPECT_EQ(TellLinjer(m.sti("blandet.txt")), 5);
    EXPECT_THROW(TellLinjer(m.sti("mangler.txt")), FilFeil);
}

TEST(Tekstfiler, LeserLinjerOverBufferGrenser)
{
    test::Programmappe m;
    QByteArray data;
    QStringList ventet;
    for (int i = 0; i < 200000; ++i) {
        const QByteArray linje = QByteArray::number(i) + QByteArray(i % 37, 'x');
        data += linje + (i % 3 == 0 ? "\r\n" : i % 3 == 1 ? "\r" : "\n");
        if (i < 5 || i % 50000 == 0) ventet << QString::fromLatin1(linje);
    }
    m.skriv("stor.txt", data);
    Linjeleser leser(m.sti("stor.txt"));
    int antall = 0;
    QStringList sett;
    for (std::string_view linje; leser.neste(linje); ++antall)
        if (antall < 5 || antall % 50000 == 0) sett << latin1(linje);
    EXPECT_EQ(antall, 200000);
    EXPECT_EQ(sett, ventet);
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
    SkrivTilFilAppend(m.sti("ny.txt"), QStringLiteral("en"));
    EXPECT_EQ(m.les("ny.txt"), QByteArray("en\r\n"));
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
    EXPECT_TRUE(FilFinnes(m.sti("a.txt")));
    EXPECT_FALSE(FilFinnes(m.sti(".skjult")));
    EXPECT_FALSE(FilFinnes(m.sti("mappe")));
    EXPECT_TRUE(MappeFinnes(m.sti("mappe")));
    EXPECT_FALSE(MappeFinnes(m.sti("a.txt")));
}
