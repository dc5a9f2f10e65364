#include "files/Tekstfil.h"
#include "felles/Felles.h"
#include "files/Oppsett.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using namespace files;

TEST(HentKode, SisteKlammeparOgKolonnebokstav)
{
    // "]" before "[" gives no code; the code runs to the last "]".
    for (const auto& [linje, kode] : std::initializer_list<std::pair<const char*, const char*>>{
             {"abc", ""}, {"x[]", ""}, {"N2 [E] [F]", "F"}, {"a]b[", ""}, {"[C] x]", "C] x"}})
        EXPECT_EQ(HentKode(QString::fromLatin1(linje)), QString::fromLatin1(kode)) << linje;
    EXPECT_EQ(kolonneLinje(u"N2"_s, u"D"_s), u"N2                    [D]"_s);
    EXPECT_EQ(QStringList(
                  {kolonneBokstav(3), kolonneBokstav(26), kolonneBokstav(27), kolonneBokstav(29), kolonneBokstav(30)}),
              QStringList({"C", "Z", "Æ", "Å", ""}));
}

TEST(Tekstfiler, LinjeslutterTellingOgBuffergrenser)
{
    test::Programmappe m;
    // CR, LF, CR LF and an empty line all end a line; a last line without an end counts.
    for (const auto& [innhold, linjer] : std::initializer_list<std::pair<const char*, int>>{
             {"a\r\nb\r\nc", 3}, {"", 0}, {"\r\n", 1}, {"a\rb\nc\r\n\r\nd\n", 5}}) {
        m.skriv("t.txt", innhold);
        EXPECT_EQ(TellLinjer(m.sti("t.txt")), linjer) << innhold;
    }
    EXPECT_THROW(TellLinjer(m.sti("mangler.txt")), FilFeil);

    // Reads of 1 MB + 1 bytes: the first ends with a CR whose LF begins the next, the second in the
    // middle of a line.
    m.skriv(u"grense.txt"_s, QByteArray("x\r\n").repeated(700000));
    Linjeleser leser(m.sti(u"grense.txt"_s));
    long n = 0;
    for (std::string_view linje; leser.neste(linje); ++n) ASSERT_EQ(linje, "x") << n;
    EXPECT_EQ(n, 700000);

    // A line over 1 MB is named; what is no regular file is refused.
    m.skriv("lang.txt", "kort\n" + QByteArray((1 << 20) + 1, 'x'));
    Linjeleser lang(m.sti("lang.txt"));
    std::string_view linje;
    EXPECT_TRUE(lang.neste(linje));
    try {
        lang.neste(linje);
        ADD_FAILURE() << "ingen feil for en linje over 1 MB";
    } catch (const FilFeil& e) {
        EXPECT_TRUE(QString::fromUtf8(e.what()).startsWith(u"Linje 2 i fila"_s)) << e.what();
    }
    EXPECT_THROW(Linjeleser(u"/dev/zero"_s), FilFeil);
    EXPECT_THROW(Linjeleser(m.mappe()), FilFeil);
}

TEST(Tekstfiler, SkrivLatin1MedCrLfGjennomTmpFil)
{
    test::Programmappe m;
    const QString fil = m.sti("Oppsett.txt");
    SkrivTilFil(fil, u"Ø!å"_s);
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("\xD8!\xE5\r\n"));
    {
        // Until it is put in place, the old file stays; a file never put in place leaves nothing.
        NyTekstfil ny(fil, kolonneLinjer({"Dato", "Tid", "CO2", "", "O2"}));
        EXPECT_EQ(HentFraFil(fil), u"Ø!å"_s);
        ny.erstatt();
        NyTekstfil forlatt(m.sti("annen.txt"), {u"x"_s});
    }
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("CO2                    [C]\r\nO2                    [E]\r\n"));
    EXPECT_EQ(QDir(m.mappe()).entryList(QDir::Files).filter(u".tmp"_s), QStringList());
    EXPECT_TRUE(kolonneLinjer({"Dato", "Tid"}).isEmpty());
    EXPECT_EQ(HentFraFil(m.sti("mangler.txt")), QString());
    EXPECT_THROW(SkrivTilFil(m.sti("ingen-mappe/x.txt"), u"x"_s), FilFeil);
    // A write-protected file is neither replaced nor removed behind the user's back; the files with it
    // are removed only when none of them is protected.
    QFile::setPermissions(fil, QFile::ReadOwner);
    EXPECT_THROW(SkrivTilFil(fil, u"ny"_s), FilFeil);
    EXPECT_EQ(HentFraFil(fil), u"CO2                    [C]"_s);
    m.skriv("SokStart.txt", "x");
    EXPECT_THROW(SlettFiler({m.sti("SokStart.txt"), fil}), FilFeil);
    EXPECT_TRUE(QFile::exists(m.sti("SokStart.txt")) && QFile::exists(fil));
}

TEST(Tekstfiler, ForlatteTmpFilerFjernes)
{
    // A temporary file of a process that no longer runs goes; one of a running process (this one or
    // its parent) stays.
    test::Programmappe m;
    const QString egen = u"Oppsett.txt.tmp%1"_s.arg(QCoreApplication::applicationPid());
    const QString forelder = u"Kolonner.txt.tmp%1"_s.arg(::getppid());
    // Also the zip library's own temporary file of a workbook being saved.
    for (const QString& navn : {u"a.xlsx.tmp999999999_3"_s, u"a.xlsx.tmp999999999_4.Xy9aB1"_s,
                                u"Oppsett.txt.tmp999999998"_s, egen, forelder, u"tmp123.txt"_s})
        m.skriv(navn, "x");
    RyddForlatteTmp(m.mappe());
    EXPECT_EQ(QDir(m.mappe()).entryList({u"*tmp*"_s}, QDir::Files), QStringList({forelder, egen, "tmp123.txt"}));
}
