// The import command on the real window (offscreen) with scripted dialogs and real database files.
#include "felles/Eksportmappe.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>
#include <optional>
#include <sqlite3.h>

namespace {

using dialogs::Svar;

QString testfil(const char* navn) { return QStringLiteral(TOLVIK_TESTDATA "/store/") + QLatin1String(navn); }

// A file layer over the system's in which call number `ved` of the reads, writes, flushes and
// truncations fails (a write as a full disk): the system's own file methods, four of them wrapped.
namespace innskyting {
sqlite3_vfs* system = nullptr;
const sqlite3_io_methods* ekte = nullptr;
sqlite3_io_methods metoder;
long teller = 0, ved = 0;  // ved 0: nothing fails

bool treff() { return ++teller == ved; }
int les(sqlite3_file* f, void* ut, int n, sqlite3_int64 fra)
{
    return treff() ? SQLITE_IOERR_READ : ekte->xRead(f, ut, n, fra);
}
int skriv(sqlite3_file* f, const void* data, int n, sqlite3_int64 fra)
{
    return treff() ? SQLITE_FULL : ekte->xWrite(f, data, n, fra);
}
int kutt(sqlite3_file* f, sqlite3_int64 n) { return treff() ? SQLITE_IOERR_TRUNCATE : ekte->xTruncate(f, n); }
int synk(sqlite3_file* f, int flagg) { return treff() ? SQLITE_IOERR_FSYNC : ekte->xSync(f, flagg); }
int apne(sqlite3_vfs*, const char* navn, sqlite3_file* f, int flagg, int* ut)
{
    const int rc = system->xOpen(system, navn, f, flagg, ut);
    if (f->pMethods && !ekte) {
        ekte = f->pMethods;
        metoder = *ekte;
        metoder.xRead = les, metoder.xWrite = skriv, metoder.xTruncate = kutt, metoder.xSync = synk;
    }
    if (f->pMethods == ekte) f->pMethods = &metoder;
    return rc;
}
// Made the default layer, once, so that every connection of the program goes through it.
void installer()
{
    static sqlite3_vfs vfs = [] {
        system = sqlite3_vfs_find(nullptr);
        sqlite3_vfs v = *system;
        v.zName = "feilinnskyting";
        v.pNext = nullptr;
        v.xOpen = apne;
        return v;
    }();
    static const int rc = sqlite3_vfs_register(&vfs, 1);
    ASSERT_EQ(rc, SQLITE_OK);
}
}  // namespace innskyting

const QByteArray GamleKolonner = "Gammel                    [C]\r\n";
const QString Data = u"Data.mdb"_s, Kolonnefil = u"Kolonner.txt"_s;

class Import : public test::MedVindu {
protected:
    void SetUp() override { vindu(GamleKolonner); }

    // Chooses fil and answers the start question (no answer: a file refused before the question).
    Utfall importer(const QString& fil, std::optional<Svar> svar = Svar::Ja)
    {
        dialogs.svar(fil);
        if (svar) dialogs.svar(*svar);
        return f->Command2_Click();
    }
    // A CSV file of exactly these bytes in the program folder.
    QString csv(const QByteArray& innhold, const QString& navn = u"radata.csv"_s)
    {
        mappe.skriv(navn, innhold);
        return mappe.sti(navn);
    }
    // What the imports left, for a known-good transcript: the boxes shown from the fra-th on,
    // Kolonner.txt, and the rows stored (hvor narrows them).
    QString utfall(size_t fra, const QString& hvor = {})
    {
        const QString t = test::forlop(dialogs, fra) + QString::fromLatin1(mappe.les(Kolonnefil)).remove('\r') +
                          test::rader(f->kontekst().tilkobling, hvor).join('\n') + '\n';
        return QString(t).replace(mappe.mappe(), u"<mappe>"_s).replace(u"" TOLVIK_TESTDATA ""_s, u"<tester>"_s);
    }
    // The user's files before a refused import, to compare with afterwards.
    void husk() { foer = {mappe.les(Data), mappe.les(Kolonnefil)}; }
    void forventUendret()
    {
        EXPECT_EQ(std::pair(mappe.les(Data), mappe.les(Kolonnefil)), foer);
        EXPECT_EQ(f->kolonner(), QStringList{QString::fromLatin1(GamleKolonner.trimmed())});
        db::Database kontroll(mappe.sti(Data));  // still a database the program opens
        EXPECT_FALSE(QFile::exists(mappe.sti(u"Data.mdb.import"_s)));
    }

    std::pair<QByteArray, QByteArray> foer;
};

TEST_F(Import, EksempellinjaGirRadKolonnelisteOgMeldinger)
{
    std::optional<Utfall> underveis;  // a click while the import runs: not started, asks nothing
    QTimer::singleShot(0, f.get(), [&] { underveis = f->Command2_Click(); });
    ASSERT_EQ(importer(testfil("eksempel.csv")), Utfall::Ferdig);
    EXPECT_EQ(underveis, Utfall::Avvist);
    test::sjekkGull(u"store/gull/Import.Eksempellinja.txt"_s, utfall(0));
    EXPECT_EQ(f->kolonneTekst(), u"CO2"_s + QString(20, ' ') + u"[C]"_s);
    EXPECT_EQ(label4(), u"  2"_s);
    // The time index of the CO2 column (C) is made with the import, not left to the first search.
    EXPECT_EQ(
        f->kontekst().tilkobling.spor(u"Select count(*) from sqlite_master where name = 'DataLinjer_Tid_C'"_s).tall(0),
        1);
    EXPECT_TRUE(f->tittel().startsWith(u"Tolvik -   1 poster i databasen"_s));
    // A database of its own: the salt in its first 16 bytes is not the template's; neither has SQLite's
    // plain header (that a file without the key is refused is the start-up test's, Oppstart).
    EXPECT_NE(mappe.les(Data).left(16), mappe.les(u"Template.mdb"_s).left(16));
    EXPECT_FALSE(mappe.les(Data).startsWith("SQLite") || mappe.les(u"Template.mdb"_s).startsWith("SQLite"));
}

// In the known-good transcript: an empty header field after the third gets no line but keeps its
// letter, and "/" became "."; the six data lines of felt.csv are stored, and its line of 14 fields is
// passed over and named afterwards. In the second file every line end counts, empty lines too; a
// narrower line after a wider one leaves the rest empty; a number too small for the store is kept
// as 0 and named.
TEST_F(Import, KolonnelisteOgLinjeslutt)
{
    ASSERT_EQ(importer(testfil("felt.csv")), Utfall::Ferdig);
    QString logg = utfall(0);
    const size_t fra = dialogs.dialoger().size();
    ASSERT_EQ(importer(csv("Date,Time,CO2,N2,\r\n2012/11/23,14:00:01,1,2,\r2012/11/23,14:00:02,1E-400,\n"
                           "2012/11/23,14:00:03,4,5,\r\n\r\n\n")),
              Utfall::Ferdig);
    test::sjekkGull(u"store/gull/Import.Kolonneliste.txt"_s,
                    logg + u"==\n"_s + utfall(fra, u"where format(DatoTid, 'YYYYMMDDHHNNSS') > '20121123140001'"_s));
}

// The database keeps whether time follows the rows' order and whether their IDs have a gap;
// either way a time-bounded select answers in ID order, rows of the same second included.
TEST_F(Import, TidSomGarTilbakeMerkesIDatabasen)
{
    const struct {
        QByteArray linjer;
        bool tidFolgerId;
    } tilfeller[] = {
        {"2012/11/23,14:05:31,3,\r\n2012/11/23,14:05:31,1,\r\n2012/11/23,14:05:32,2,\r\n", true},
        {"2012/11/23,14:05:31,3,\r\n2012/11/23,14:05:30,1,\r\n2012/11/23,14:05:32,2,\r\n", false},
    };
    for (const auto& t : tilfeller) {
        ASSERT_EQ(importer(csv("Date,Time,CO2,\r\n" + t.linjer)), Utfall::Ferdig);
        // Bit 1: time follows the IDs; bit 2: the IDs have no gap, so the title's count is read off their ends.
        EXPECT_EQ(db::Database(mappe.sti(Data)).spor(u"PRAGMA user_version"_s).tall(0), t.tidFolgerId ? 3 : 2);
        EXPECT_TRUE(f->tittel().startsWith(u"Tolvik -   3 poster i databasen"_s)) << f->tittel();
        QStringList c;
        for (const QString& rad :
             test::rader(f->kontekst().tilkobling, u"where format(DatoTid, 'YYYYMMDDHHNNSS') >= '20121123140000'"_s))
            c << rad.section('|', 2).section(' ', 0, 0);
        EXPECT_EQ(c, (QStringList{u"3"_s, u"1"_s, u"2"_s})) << t.tidFolgerId;
    }
}

TEST_F(Import, NeiIngenFilOgToFeltsOverskriftEndrerIkkeKolonnelista)
{
    husk();
    EXPECT_EQ(importer(testfil("felt.csv"), Svar::Nei), Utfall::Ferdig);
    EXPECT_EQ(importer(QString(), std::nullopt), Utfall::Ferdig);
    forventUendret();
    // A header of two fields keeps the old column list.
    ASSERT_EQ(importer(csv("Date,Time\r\n2012/11/23,14:05:31,7,\r\n")), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(Kolonnefil), GamleKolonner);
}

// The notice names the first ten lines left out, counted with the empty ones, and the number of
// all (each reason's text is the raw-data line format's).
TEST_F(Import, UgyldigeDatalinjerHoppesOverOgNevnes)
{
    ASSERT_EQ(importer(testfil("datofeil.csv")), Utfall::Ferdig);
    test::sjekkGull(u"store/gull/Import.Ugyldige.txt"_s, utfall(0));
}

// Ending the program while the file is read leaves the old database as it was.
TEST_F(Import, AvsluttetUnderveisLarDatabasenVaere)
{
    ASSERT_EQ(importer(testfil("eksempel.csv")), Utfall::Ferdig);
    husk();
    // Closed while the question is open: the import stops at its first progress report.
    const QByteArray innhold = "Date,Time,CO2,\r\n" + QByteArray("2012/11/23,14:05:31,1,\r\n").repeated(1000);
    dialogs.vedMelding = [&](const QString&) { f->close(); };
    EXPECT_EQ(importer(csv(innhold)), Utfall::Avvist);
    EXPECT_EQ(mappe.les(Data), foer.first);
    EXPECT_EQ(db::Database(mappe.sti(Data)).spor(u"Select count(*) as n from DataLinjer"_s).tall("n"), 1);
    EXPECT_FALSE(QFile::exists(mappe.sti(u"Data.mdb.import"_s)));
}

// Every refusal of a file, in the known-good transcript (the boxes shown): each leaves the files as
// they were. A file name holding the blanks of the messages' texts is shown as it is.
TEST_F(Import, AvvisningerEndrerIngenting)
{
    husk();
    const QByteArray gyldig = "Date,Time,CO2,\r\n2012/11/23,14:05:31,1,\r\n";
    const QString navn = u"h%2x%1%3.csv"_s, mal = mappe.sti(u"Template.mdb"_s), fil = mappe.sti(navn);
    // The file's bytes, and what happens after the question (none: refused before it).
    const std::pair<QByteArray, std::function<void()>> tilfeller[] = {
        {"", {}},
        {"\r\n", {}},
        {"\r\nDate,Time,CO2,\r\n", {}},
        {QByteArray("PK\x03\x04\x00\x00,\n", 8) + "2012/11/23,14:05:31,1,\n", {}},
        {"Date,Time" + QByteArray(",X").repeated(28) + "\r\n2012/11/23,14:05:31,1,\r\n", {}},
        {"Date,Time,CO2" + QByteArray(300, 'x') + ",\r\n2012/11/23,14:05:31,1,\r\n", {}},
        {"Date,Time,CO2,\r\n2012/11/23,14:05:31,1,\r\n" + QByteArray(2 << 20, '1'), {}},
        {"Date,Time,C,D,E,F,G,H,I,J,K,L,M,\r\n" +
             QByteArray("2012/11/23,14:05:31,1,2,3,4,5,6,7,8,9,10,11,\r\n").repeated(3),
         {}},
        {"Date,Time,CO2,\r\n2012/11/23,14:05:61,1,\r\n", {}},
        {gyldig, [&] { QFile::remove(fil); }},
        {gyldig, [&] { QFile::remove(mal); }},
        {gyldig, [&] { mappe.skriv(u"Template.mdb"_s, "ikke en database"); }},
    };
    QString logg;
    for (const auto& [innhold, etterSporsmal] : tilfeller) {
        const size_t fra = dialogs.dialoger().size();
        dialogs.vedMelding = [e = etterSporsmal](const QString&) {
            if (e) e();
        };
        EXPECT_EQ(importer(csv(innhold, navn), etterSporsmal ? std::optional(Svar::Ja) : std::nullopt), Utfall::Avvist);
        logg += test::forlop(dialogs, fra);
        forventUendret();
    }
    // What is no regular file is refused before it is read.
    for (const QString& ikkeFil : {u"/dev/zero"_s, mappe.mappe()}) {
        const size_t fra = dialogs.dialoger().size();
        EXPECT_EQ(importer(ikkeFil, std::nullopt), Utfall::Avvist);
        logg += test::forlop(dialogs, fra);
        forventUendret();
    }
    test::sjekkGull(u"store/gull/Import.Avvist.txt"_s, logg.replace(mappe.mappe(), u"<mappe>"_s));
}

// A file that fails once the import has begun: the reading stops with a message, and the old
// database stays as it was.
TEST_F(Import, LesefeilUnderveisStopperMedMelding)
{
    husk();
    const QString lenke = mappe.sti(u"lenke.csv"_s);
    ASSERT_TRUE(QFile::link(testfil("eksempel.csv"), lenke));
    dialogs.vedMelding = [&](const QString&) {  // after the question it opens, but cannot be read
        QFile::remove(lenke), QFile::link(u"/proc/self/mem"_s, lenke);
    };
    EXPECT_EQ(importer(lenke), Utfall::Avvist);
    const QString m = dialogs.meldinger().last();
    EXPECT_TRUE(m.startsWith(u"Importen stoppet ved linje 1 i fila "_s + lenke + u": Kan ikke lese fila"_s) &&
                m.endsWith(u"Ingenting er importert, og databasen er uendret."_s))
        << m;
    forventUendret();
}

// A Data.mdb that cannot be replaced (here a folder) stays as it was.
TEST_F(Import, DatabaseSomIkkeKanErstattesGirMelding)
{
    f.reset();
    QFile::remove(mappe.sti(Data));
    QDir(mappe.mappe()).mkpath(u"Data.mdb/opptatt"_s);
    vindu(GamleKolonner);
    EXPECT_EQ(importer(testfil("eksempel.csv")), Utfall::Avvist);
    EXPECT_TRUE(dialogs.meldinger().last().startsWith(u"Kan ikke erstatte fila "_s + mappe.sti(Data)));
    EXPECT_EQ(mappe.les(Kolonnefil), GamleKolonner);
    EXPECT_TRUE(QFileInfo(mappe.sti(u"Data.mdb/opptatt"_s)).isDir());
}

// One failed file operation anywhere in an import, as SQLite tests its own file layers: the k-th
// read, write, flush or truncation fails, for 40 k spread over the run. After each, at the next
// start, Data.mdb passes the integrity check and holds the old file's rows and column list, or
// the new file's (the message says which), and nothing is left behind.
TEST_F(Import, EnFeiletFiloperasjonGirGammelEllerNyFil)
{
    innskyting::installer();
    ASSERT_EQ(importer(testfil("eksempel.csv")), Utfall::Ferdig);
    auto kopier = [&](const QString& fra, const QString& til) {
        f.reset();
        for (const QString& navn : {Data, Kolonnefil}) {
            QFile::remove(mappe.sti(navn + til));
            QFile::copy(mappe.sti(navn + fra), mappe.sti(navn + til));
        }
    };
    auto tilstand = [&](const QString& hva) {  // the caption and column list of the next start
        f.reset();
        vindu({});
        const QString t = f->tittel() + '|' + f->kolonner().join(',');
        f.reset();
        EXPECT_EQ(db::Database(mappe.sti(Data)).spor(u"PRAGMA integrity_check"_s).tekst(0), u"ok"_s) << hva;
        const QStringList rester = {u"*.import*"_s, u"*.bytt"_s, u"*.tmp*"_s, u"*-journal"_s};
        EXPECT_EQ(QDir(mappe.mappe()).entryList(rester), QStringList{}) << hva;
        return t;
    };
    auto kjor = [&](long k) {  // felt.csv imported over the old pair with call k failing; the calls counted
        kopier(u".kopi"_s, {});
        vindu({});
        innskyting::teller = 0;
        innskyting::ved = k;
        importer(testfil("felt.csv"));
        innskyting::ved = 0;
        return innskyting::teller;
    };
    kopier({}, u".kopi"_s);
    const QString gammel = tilstand(u"før"_s);
    const long n = kjor(0);
    const QString ny = tilstand(u"uten feil"_s);
    ASSERT_NE(gammel, ny);
    for (long i = 0; i < 40; ++i) {
        const long k = 1 + i * n / 40;
        kjor(k);
        const QString melding = dialogs.meldinger().last();
        EXPECT_EQ(tilstand(u"kall %1 av %2"_s.arg(k).arg(n)),
                  melding.contains(u"Ingenting er importert"_s) ? gammel : ny)
            << k << melding;
    }
}

// What only tolvik-batch shows: the missing file argument, and a damaged database said at the start.
// (That the file is keyed as the sqlcipher shell opens it is the swap test's check, tests/store/bytte.sh.)
TEST(ImportBatch, SkadetDatabaseSiesVedStartOgErstattes)
{
    test::Programmappe p;
    const QString fil = testfil("eksempel.csv");
    EXPECT_EQ(p.batch({"import"}).status, 2);
    EXPECT_EQ(p.batch({"import", fil}).status, 0);
    // A damaged Data.mdb (its key and first page whole, the table's root page not) is said so
    // at the start, and a new import replaces it.
    {
        QFile data(p.sti(u"Data.mdb"_s));
        ASSERT_TRUE(data.open(QIODevice::ReadWrite) && data.seek(4096) && data.write(QByteArray(4096, 'x')) == 4096);
    }
    const auto k = p.batch({"status"});
    EXPECT_EQ(k.status, 1);
    EXPECT_TRUE(k.ut.startsWith(u"Databasen "_s + p.sti(u"Data.mdb"_s) + u" er skadet ("_s) &&
                k.ut.contains(u"Importer rådatafila på nytt."_s))
        << k.ut;
    EXPECT_EQ(p.batch({"import", fil}).status, 0);
}

}  // namespace
