// The import command on the real window (offscreen) with scripted dialogs, a real
// program folder and real database files.
#include "app/Form1.h"
#include "files/Oppsett.h"
#include "felles/Felles.h"
#include "platform/dialogs/SkriptDialogs.h"
#include "store/Import.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

// Texts in failure messages as text.
void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace {

using ui::Svar;

QString testfil(const char* navn) { return QStringLiteral(TOLVIK_TESTDATA "/import/") + QLatin1String(navn); }

const QByteArray GamleKolonner = "Gammel                    [C]\r\n";

class Import : public ::testing::Test {
protected:
    void SetUp() override
    {
        p.skriv(QStringLiteral("Kolonner.txt"), GamleKolonner);
        f = std::make_unique<Form1>(p.mappe(), d);
    }

    // Chooses fil and answers the start question (no answer: a file refused before the question).
    Utfall importer(const QString& fil, std::optional<Svar> svar = Svar::Ja)
    {
        d.svar(fil);
        if (svar) d.svar(*svar);
        return f->Command2_Click();
    }

    // A CSV file of exactly these bytes in the program folder.
    QString csv(const QByteArray& innhold)
    {
        p.skriv(QStringLiteral("radata.csv"), innhold);
        return p.sti(QStringLiteral("radata.csv"));
    }

    db::Recordset rader() { return f->kontekst().tilkobling.spor(QStringLiteral("Select * from DataLinjer")); }
    long long antallRader()
    {
        return static_cast<long long>(
            f->kontekst().tilkobling.spor(QStringLiteral("Select count(*) as n from DataLinjer")).tall("n"));
    }
    QString label4() const { return f->findChild<QLabel*>(QStringLiteral("Label4"))->text(); }

    // The user's files before a refused import, to compare with afterwards.
    void husk() { foer = {p.les(QStringLiteral("Data.mdb")), p.les(QStringLiteral("Kolonner.txt"))}; }
    void forventUendret()
    {
        EXPECT_EQ(p.les(QStringLiteral("Data.mdb")), foer.first);
        EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")), foer.second);
        EXPECT_EQ(f->kolonner(), QStringList{QString::fromLatin1(GamleKolonner.trimmed())});
        db::Database kontroll(p.sti(QStringLiteral("Data.mdb")));  // still a database the program opens
        EXPECT_FALSE(QFile::exists(p.sti(QStringLiteral("Data.mdb.import"))));
    }

    test::Programmappe p;
    ui::SkriptDialogs d;
    std::unique_ptr<Form1> f;
    std::pair<QByteArray, QByteArray> foer;
};

TEST_F(Import, EksempellinjaGirRadKolonnelisteOgMeldinger)
{
    const QString fil = testfil("eksempel.csv");
    ASSERT_EQ(importer(fil), Utfall::Ferdig);

    const QByteArray blanke(20, ' ');
    EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")),
              "CO2" + blanke + "[C]\r\nN2" + blanke + "[D]\r\nO2" + blanke + "[E]\r\n");
    EXPECT_EQ(f->kolonneTekst(), QStringLiteral("CO2") + QString(20, ' ') + QStringLiteral("[C]"));

    auto r = rader();
    ASSERT_FALSE(r.eof());
    EXPECT_EQ(r.dato("DatoTid"), vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_EQ(r.tekst("DatoTid_Tekst"), QStringLiteral("2012/11/23 ,14:05:31,1."));
    EXPECT_EQ(r.tall("C"), 1.5);
    EXPECT_EQ(r.tall("D"), 2);
    EXPECT_EQ(r.tall("E"), 3);
    for (const char* tom : {"F", "G", "H", "I", "J", "K", "L"}) EXPECT_TRUE(r.erNull(tom)) << tom;
    r.moveNext();
    EXPECT_TRUE(r.eof());

    const auto& dialoger = d.dialoger();
    ASSERT_EQ(dialoger.size(), 3u);
    EXPECT_EQ(dialoger[0].type, ui::SkriptDialogs::Type::Fil);
    EXPECT_EQ(dialoger[0].tekst, QStringLiteral("CSV-filer (*.CSV)|*.CSV"));
    EXPECT_EQ(dialoger[1].tekst, QStringLiteral("Fila ") + fil + QStringLiteral(" består av   2 linjer. Vil du starte importen?"));
    EXPECT_EQ(dialoger[1].knapper, ui::Knapper::JaNei);
    EXPECT_EQ(dialoger[1].ikon, ui::Ikon::Sporsmal);
    EXPECT_EQ(dialoger[2].tekst, QStringLiteral("Antall linjer importert:   2"));
    EXPECT_EQ(dialoger[2].ikon, ui::Ikon::Ingen);
    EXPECT_EQ(label4(), QStringLiteral("  2"));
    EXPECT_TRUE(f->tittel().startsWith(QStringLiteral("Tolvik -   1 poster i databasen")));
}

TEST_F(Import, FeltOgVerdierSomDeLagres)
{
    ASSERT_EQ(importer(testfil("felt.csv")), Utfall::Ferdig);
    // An empty header field after the third gets no line but keeps its letter; "/" became ".".
    EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")),
              "CO2" + QByteArray(20, ' ') + "[C]\r\nN2.O2" + QByteArray(20, ' ') + "[E]\r\n");

    auto r = rader();
    auto verdier = [&r] {
        QStringList ut;
        for (const char* k : {"C", "D", "E", "F", "G", "H", "I", "J", "K", "L"})
            ut << (r.erNull(k) ? QStringLiteral("-") : QString::number(r.tall(k), 'g', QLocale::FloatingPointShortest));
        return ut.join(' ');
    };
    EXPECT_EQ(verdier(), "1.5 - - - - - - - - -");  // no trailing comma: the last value is lost
    r.moveNext();
    const QString sitert = verdier();  // quotes removed before splitting
    EXPECT_EQ(r.tekst("DatoTid_Tekst"), QStringLiteral("2012/11/23 ,14:05:32,1."));
    r.moveNext();
    EXPECT_EQ(verdier(), sitert);
    EXPECT_EQ(verdier(), "1.5 2 3 - - - - - - -");
    r.moveNext();
    EXPECT_EQ(verdier(), "0 0.0015 12.5 - - - - - - -");
    r.moveNext();
    EXPECT_EQ(verdier(), "1 2 3 4 5 6 7 8 9 10");  // 13 fields; the line of 14 is not stored
    r.moveNext();
    EXPECT_EQ(r.dato("DatoTid"), vb::Dato::fra(2012, 11, 23, 14, 5, 36));
    EXPECT_EQ(verdier(), "0.123456789012346 -4.2e-10 - - - - - - - -");
    r.moveNext();
    EXPECT_TRUE(r.eof());
}

// The rows the import stores mean the same as the insert statements the store answers.
TEST_F(Import, RadErLikInsertSetningen)
{
    ASSERT_EQ(importer(testfil("felt.csv")), Utfall::Ferdig);
    f->kontekst().tilkobling.utfor(QStringLiteral(
        "Insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D) VALUES ('23/11/2012 14:05:36', "
        "'2012/11/23 ,14:05:36,0.', ") + vb::sqlTekst(0.12345678901234567) + ", " + vb::sqlTekst(-4.2e-10) + ")");
    auto r = f->kontekst().tilkobling.spor(QStringLiteral("Select * from DataLinjer where ID >= 6"));
    QStringList felt[2];
    for (auto& rad : felt) {
        ASSERT_FALSE(r.eof());
        rad << r.tekst("DatoTid") << r.tekst("DatoTid_Tekst") << QString::number(r.tall("C"), 'g', 17)
            << QString::number(r.tall("D"), 'g', 17) << QString::number(r.erNull("E"));
        r.moveNext();
    }
    EXPECT_EQ(felt[0], felt[1]);
}

TEST_F(Import, TellerLinjerMedAlleLinjeslutt)
{
    QByteArray innhold = "Date,Time,CO2,\r\n";
    const char* slutt[] = {"\r\n", "\r", "\n"};
    for (int i = 0; i < 1000; ++i)
        innhold += QStringLiteral("2012/11/23,14:%1:%2,%3,").arg(i / 60 % 60, 2, 10, QChar('0')).arg(i % 60, 2, 10, QChar('0')).arg(i).toLatin1() +
                   slutt[i % 3];
    innhold += "\r\n\n";
    ASSERT_EQ(importer(csv(innhold)), Utfall::Ferdig);
    EXPECT_EQ(label4(), QStringLiteral(" 1 001"));
    EXPECT_EQ(d.meldinger().last(), QStringLiteral("Antall linjer importert:  1 003"));
    EXPECT_EQ(antallRader(), 1000);
    EXPECT_TRUE(f->tittel().startsWith(QStringLiteral("Tolvik -  1 000 poster")));
    // The rows came in file order, and the new database answers time conditions.
    auto r = f->kontekst().tilkobling.spor(QStringLiteral(
        "Select * from Datalinjer where format(DatoTid, 'YYYYMMDDHHNNSS') > '20121123141638' order by ID"));
    EXPECT_EQ(r.tall("C"), 999);
}

// Lines of changing width, many of them: every row has exactly its own values, the rest empty.
TEST_F(Import, SkiftendeBreddeGirRiktigeTommeFelt)
{
    QByteArray innhold = "Date,Time,A,B,C,\r\n";
    for (int i = 0; i < 160; ++i) {
        innhold += QStringLiteral("2012/11/23,15:%1:%2").arg(i / 60, 2, 10, QChar('0')).arg(i % 60, 2, 10, QChar('0')).toLatin1();
        for (int v = 0; v <= i % 3; ++v) innhold += "," + QByteArray::number(i * 10 + v);
        innhold += ",\r\n";
    }
    ASSERT_EQ(importer(csv(innhold)), Utfall::Ferdig);
    int i = 0;
    for (auto r = rader(); !r.eof(); r.moveNext(), ++i) {
        const char* kolonner[] = {"C", "D", "E"};
        for (int v = 0; v < 3; ++v) {
            if (v <= i % 3)
                EXPECT_EQ(r.tall(kolonner[v]), i * 10 + v) << i;
            else
                EXPECT_TRUE(r.erNull(kolonner[v])) << i;
        }
    }
    EXPECT_EQ(i, 160);
}

TEST_F(Import, NeiEllerIngenFilEndrerIngenting)
{
    ASSERT_EQ(importer(testfil("eksempel.csv")), Utfall::Ferdig);
    p.skriv(QStringLiteral("Kolonner.txt"), GamleKolonner);
    filer::LesKolonner(f->kontekst());
    husk();
    EXPECT_EQ(importer(testfil("felt.csv"), Svar::Nei), Utfall::Ferdig);
    d.svar(QString());
    EXPECT_EQ(f->Command2_Click(), Utfall::Ferdig);
    forventUendret();
    EXPECT_EQ(antallRader(), 1);
    EXPECT_EQ(d.meldinger().size(), 3);  // the first import's two boxes and the declined question
}

TEST_F(Import, ToFeltsOverskriftBeholderKolonnelista)
{
    ASSERT_EQ(importer(csv("Date,Time\r\n2012/11/23,14:05:31,7,\r\n")), Utfall::Ferdig);
    EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")), GamleKolonner);
    EXPECT_EQ(antallRader(), 1);
}

TEST_F(Import, UgyldigeDatalinjerHoppesOverOgNevnes)
{
    const QString fil = testfil("datofeil.csv");
    ASSERT_EQ(importer(fil), Utfall::Ferdig);
    EXPECT_EQ(antallRader(), 2);
    const QStringList m = d.meldinger();
    ASSERT_EQ(m.size(), 3);
    EXPECT_EQ(m[1], QStringLiteral("Antall linjer importert:   9"));
    EXPECT_EQ(m[2], QStringLiteral("5 datalinjer i fila ") + fil +
                        QStringLiteral(" er hoppet over fordi dato, klokkeslett eller et tall ikke kan leses:\n"
                                       "linje 3: ugyldig dato eller klokkeslett «2013.02.29,14:05:31»\n"
                                       "linje 4: ugyldig dato eller klokkeslett «2012.11.23,24:00:00»\n"
                                       "linje 6: apostrof i dato og tid «2012.11.23,14:05'31,1,»\n"
                                       "linje 7: tallet «1E999» er for stort\n"
                                       "linje 9: ugyldig dato eller klokkeslett «xx,yy,1,2,»"));
}

TEST_F(Import, UbrukeligFilAvvisesForNoeEndres)
{
    husk();
    const std::pair<QByteArray, const char*> tilfeller[] = {
        {"", "er tom (0 linjer uten tekst)"},
        {"\r\n\r\n", "er tom (2 linjer uten tekst)"},
        {"\r\nDate,Time,CO2,\r\n", "har bare overskriftslinja (linje 2) og ingen datalinjer"},
        {QByteArray("PK\x03\x04\x00\x00,\n", 8) + "2012/11/23,14:05:31,1,\n", "er ikke en tekstfil: linje 1 inneholder nulltegn"},
        {"Date,Time" + QByteArray(",X").repeated(28) + "\r\n2012/11/23,14:05:31,1,\r\n",
         "har 30 felt, men bare 29 felt kan få en kolonnebokstav (A til Å)"},
    };
    for (const auto& [innhold, grunn] : tilfeller) {
        EXPECT_EQ(importer(csv(innhold), std::nullopt), Utfall::Avvist);
        EXPECT_TRUE(d.meldinger().last().contains(QString::fromUtf8(grunn))) << d.meldinger().last().toStdString();
        EXPECT_TRUE(d.meldinger().last().endsWith(QStringLiteral("Ingenting er importert, og databasen er uendret.")));
        forventUendret();
    }
}

TEST_F(Import, FilSomForsvinnerEtterSporsmaletAvvises)
{
    husk();
    const QString fil = csv("Date,Time,CO2,\r\n2012/11/23,14:05:31,1,\r\n");
    d.vedMelding = [&](const QString&) { QFile::remove(fil); };
    EXPECT_EQ(importer(fil), Utfall::Avvist);
    EXPECT_TRUE(d.meldinger().last().startsWith(QStringLiteral("Kan ikke åpne fila ") + fil));
    forventUendret();
}

// A file that fails once the import has begun: the reading stops with a message, and the new
// (here empty) database stays one that the program opens.
TEST_F(Import, LesefeilUnderveisStopperMedMelding)
{
    const QString lenke = p.sti(QStringLiteral("lenke.csv"));
    ASSERT_TRUE(QFile::link(testfil("eksempel.csv"), lenke));
    d.vedMelding = [&](const QString& tekst) {
        if (!tekst.startsWith(QStringLiteral("Fila "))) return;
        QFile::remove(lenke);
        QFile::link(QStringLiteral("/proc/self/mem"), lenke);  // opens, but cannot be read
    };
    EXPECT_EQ(importer(lenke), Utfall::Avvist);
    const QString melding = d.meldinger().last();
    EXPECT_TRUE(melding.startsWith(QStringLiteral("Importen stoppet ved linje 1 i fila ") + lenke + QStringLiteral(": Kan ikke lese fila")))
        << melding.toStdString();
    EXPECT_TRUE(melding.endsWith(QStringLiteral("De 0 radene som var lest inn før, er lagret.")));
    EXPECT_EQ(antallRader(), 0);
    EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")), GamleKolonner);
    db::Database kontroll(p.sti(QStringLiteral("Data.mdb")));
}

TEST_F(Import, DatabasefeilLaterDenGamleDatabasenStaa)
{
    const QString fil = testfil("eksempel.csv");
    husk();
    QFile::remove(p.sti(QStringLiteral("Template.mdb")));
    EXPECT_EQ(importer(fil), Utfall::Avvist);
    EXPECT_EQ(d.meldinger().last(), QStringLiteral("Finner ikke databasemalen ") + p.sti(QStringLiteral("Template.mdb")) +
                                         QStringLiteral(". Ingenting er importert, og databasen er uendret."));
    forventUendret();

    p.skriv(QStringLiteral("Template.mdb"), "ikke en database");
    EXPECT_EQ(importer(fil), Utfall::Avvist);
    EXPECT_TRUE(d.meldinger().last().startsWith(QStringLiteral("Databasemalen ")));
    forventUendret();
}

TEST_F(Import, DatabaseSomIkkeKanErstattesGirMelding)
{
    f.reset();
    QFile::remove(p.sti(QStringLiteral("Data.mdb")));
    QDir(p.mappe()).mkpath(QStringLiteral("Data.mdb/opptatt"));
    f = std::make_unique<Form1>(p.mappe(), d);
    EXPECT_EQ(importer(testfil("eksempel.csv")), Utfall::Avvist);
    EXPECT_TRUE(d.meldinger().last().startsWith(QStringLiteral("Kan ikke erstatte databasen ") +
                                                p.sti(QStringLiteral("Data.mdb"))));
    EXPECT_EQ(p.les(QStringLiteral("Kolonner.txt")), GamleKolonner);
    EXPECT_TRUE(QFileInfo(p.sti(QStringLiteral("Data.mdb/opptatt"))).isDir());
}

TEST_F(Import, AndreKommandoerStarterIkkeMensImportenGaar)
{
    std::optional<Utfall> underveis;
    QTimer::singleShot(0, f.get(), [&] { underveis = f->Command2_Click(); });
    ASSERT_EQ(importer(testfil("eksempel.csv")), Utfall::Ferdig);
    EXPECT_EQ(underveis, Utfall::Avvist);  // clicked while the import ran: not started, asked nothing
    EXPECT_EQ(d.dialoger().size(), 3u);
}

TEST(ImportBatch, ImportererOgSvarerNei)
{
    test::Programmappe p;
    const QString fil = testfil("eksempel.csv");
    auto nei = test::batch({"--folder", p.mappe(), "import", fil, "--no"});
    EXPECT_EQ(nei.status, 0) << nei.feil.toStdString();
    EXPECT_EQ(nei.ut, QStringLiteral("Fila ") + fil + QStringLiteral(" består av   2 linjer. Vil du starte importen?\n\n"));
    EXPECT_FALSE(QFile::exists(p.sti(QStringLiteral("Kolonner.txt"))));

    auto ja = test::batch({"--folder", p.mappe(), "import", fil});
    EXPECT_EQ(ja.status, 0) << ja.feil.toStdString();
    EXPECT_TRUE(ja.ut.endsWith(QStringLiteral("Antall linjer importert:   2\n\n")));
    EXPECT_TRUE(test::batch({"--folder", p.mappe(), "status"}).ut.startsWith(QStringLiteral("Tolvik -   1 poster")));

    p.skriv(QStringLiteral("tom.csv"), "");
    EXPECT_EQ(test::batch({"--folder", p.mappe(), "import", p.sti(QStringLiteral("tom.csv"))}).status, 1);
    EXPECT_EQ(test::batch({"--folder", p.mappe(), "import"}).status, 2);
}

// The shipped example files import completely.
TEST(ImportEksempler, ImportererUtenHopp)
{
    const QStringList filer = QDir(QStringLiteral(TOLVIK_KILDE "/examples")).entryList({"*.csv"}, QDir::Files);
    ASSERT_EQ(filer.size(), 2);
    for (const QString& navn : filer) {
        test::Programmappe p;
        auto k = test::batch({"--folder", p.mappe(), "import", QStringLiteral(TOLVIK_KILDE "/examples/") + navn});
        EXPECT_EQ(k.status, 0);
        EXPECT_EQ(k.ut.count(QStringLiteral("\n\n")), 2) << k.ut.toStdString();  // the question and the count only
        EXPECT_TRUE(p.les(QStringLiteral("Kolonner.txt")).contains("CO2                    [F]"));
    }
}

} // namespace
