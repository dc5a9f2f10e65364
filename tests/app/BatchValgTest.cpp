// tolvik-batch as a script outside the program drives it.
#include "felles/Felles.h"

#include <QFile>
#include <gtest/gtest.h>

TEST(Batch, StatusValgOgBruksfeil)
{
    test::Programmappe m;
    // A usage error gives status 2 and the usage, and saves nothing.
    for (const QStringList& args : {QStringList{},
                                    {"tull"},
                                    {"--set", "Text9=1", "status"},
                                    {"--column", "Q", "status"},
                                    {"status", "ekstra"},
                                    {"--adsorption", "--desorption", "status"}}) {
        const auto k = m.batch(QStringList{"--save-settings"} + args);
        EXPECT_EQ(k.status, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(k.feil.contains(QStringLiteral("Bruk: tolvik-batch"))) << k.feil.toStdString();
    }
    EXPECT_FALSE(QFile::exists(m.sti("Oppsett.txt")));

    const QByteArray kjoremappe = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("XDG_RUNTIME_DIR");  // as outside a desktop session: still nothing on stderr
    auto k = m.batch({"status"});
    if (!kjoremappe.isEmpty()) qputenv("XDG_RUNTIME_DIR", kjoremappe);
    EXPECT_EQ(k.status, 0) << k.feil.toStdString();
    EXPECT_EQ(k.ut, QStringLiteral("Tolvik -    poster i databasen  [Versjon: 1.6 (06.01.2013)]\n"
                                   "Text4=1\nText6=30\nText5=200\nText3=230\nText1=10\nText2=120\nDesorpsjon\n"));
    EXPECT_EQ(k.feil, QString());

    m.skriv("Kolonner.txt", "CO2                    [C]\r\nN2                    [D]\r\n");
    k = m.batch({"--set", "Text6=12", "--column", "D", "--adsorption", "--save-settings", "status"}, true);
    EXPECT_TRUE(k.ut.contains(QStringLiteral("Text6=12\n")));
    EXPECT_TRUE(k.ut.contains(QStringLiteral("  CO2                    [C]\n* N2                    [D]\n")));
    EXPECT_TRUE(k.ut.endsWith(QStringLiteral("Adsorpsjon\n")));
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("1!12!200!230!10!120\r\n"));
    // Messages at start-up are printed: ImportBatch (a damaged database).
}

TEST(Batch, HjelpOgVersjon)
{
    const auto h = test::batch({"--help"});
    EXPECT_EQ(h.status, 0);
    EXPECT_TRUE(h.ut.startsWith(QStringLiteral("Bruk: tolvik-batch"))) << h.ut.toStdString();
    EXPECT_TRUE(h.ut.contains(QStringLiteral("status, find-cycles"))) << h.ut.toStdString();
    const auto v = test::batch({"--folder", "/finnes/ikke", "--version"});
    EXPECT_EQ(v.status, 0);
    EXPECT_EQ(v.ut, QStringLiteral("tolvik-batch 1.6 (06.01.2013)\n"));
    EXPECT_EQ(v.feil, QString());
}
