// tolvik-batch as a script outside the program drives it: usage errors (status 2, the usage on
// stderr, nothing saved), the settings and the chooser as status prints them and as --save-settings
// saves them, help and version; the runs in the known-good transcript.
#include "felles/Felles.h"

#include <QFile>
#include <gtest/gtest.h>

TEST(Batch, StatusValgBruksfeilHjelpOgVersjon)
{
    test::Programmappe m;
    QString logg;
    for (const QStringList& args : {QStringList{},
                                    {"tull"},
                                    {"--set", "Text9=1", "status"},
                                    {"--column", "Q", "status"},
                                    {"status", "ekstra"},
                                    {"--adsorption", "--desorption", "status"}})
        logg += m.utskrift(QStringList{"--save-settings"} + args);
    EXPECT_FALSE(QFile::exists(m.sti("Oppsett.txt")));

    const QByteArray kjoremappe = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("XDG_RUNTIME_DIR");  // as outside a desktop session: still nothing on stderr
    const test::Kjoring k = m.batch({"status"});
    if (!kjoremappe.isEmpty()) qputenv("XDG_RUNTIME_DIR", kjoremappe);
    EXPECT_EQ(k.feil.toStdString(), "");
    logg += test::utskrift({"status"}, k);
    m.skriv("Kolonner.txt", "CO2                    [C]\r\nN2                    [D]\r\n");
    logg += m.utskrift({"--set", "Text6=12", "--column", "D", "--adsorption", "--save-settings", "status"});
    EXPECT_EQ(m.les("Oppsett.txt"), QByteArray("1!12!200!230!10!120\r\n"));
    // Messages at start-up are printed: ImportBatch (a damaged database).
    logg += test::utskrift({"--help"}) + test::utskrift({"--folder", "/finnes/ikke", "--version"});
    test::sjekkGull(QStringLiteral("app/gull/Batch.txt"), logg);
}
