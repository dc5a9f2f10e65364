// One failed file operation anywhere in an import, as SQLite tests its own file layers: the k-th
// read, write, flush or truncation of the run fails (a write as a full disk), for k spread over the
// whole run. After each, and after the next start, Data.mdb opens, passes the integrity check and
// holds the old or the new file's rows with that file's column list, and nothing is left behind.
// (That a time index the search cannot write does not stop it is the full-disk test's, disk.sh.)
#include "felles/MedVindu.h"

#include <QDir>
#include <sqlite3.h>

namespace {

// A file layer in front of the system's that fails call number `ved` of the counted kinds.
namespace innskyting {

sqlite3_vfs* system = nullptr;
long teller = 0, ved = 0;  // ved 0: nothing fails

struct Fil {
    sqlite3_file base;
    sqlite3_file* ekte;
};
sqlite3_file* ekte(sqlite3_file* f) { return reinterpret_cast<Fil*>(f)->ekte; }
bool treff() { return ++teller == ved; }

int lukk(sqlite3_file* f) { return ekte(f)->pMethods->xClose(ekte(f)); }
int les(sqlite3_file* f, void* ut, int n, sqlite3_int64 fra)
{
    return treff() ? SQLITE_IOERR_READ : ekte(f)->pMethods->xRead(ekte(f), ut, n, fra);
}
int skriv(sqlite3_file* f, const void* data, int n, sqlite3_int64 fra)
{
    return treff() ? SQLITE_FULL : ekte(f)->pMethods->xWrite(ekte(f), data, n, fra);
}
int kutt(sqlite3_file* f, sqlite3_int64 n)
{
    return treff() ? SQLITE_IOERR_TRUNCATE : ekte(f)->pMethods->xTruncate(ekte(f), n);
}
int synk(sqlite3_file* f, int flagg) { return treff() ? SQLITE_IOERR_FSYNC : ekte(f)->pMethods->xSync(ekte(f), flagg); }
int storrelse(sqlite3_file* f, sqlite3_int64* n) { return ekte(f)->pMethods->xFileSize(ekte(f), n); }
int laas(sqlite3_file* f, int niva) { return ekte(f)->pMethods->xLock(ekte(f), niva); }
int lasOpp(sqlite3_file* f, int niva) { return ekte(f)->pMethods->xUnlock(ekte(f), niva); }
int reservert(sqlite3_file* f, int* ut) { return ekte(f)->pMethods->xCheckReservedLock(ekte(f), ut); }
int kontroll(sqlite3_file* f, int op, void* arg) { return ekte(f)->pMethods->xFileControl(ekte(f), op, arg); }
int sektor(sqlite3_file* f) { return ekte(f)->pMethods->xSectorSize(ekte(f)); }
int egenskaper(sqlite3_file* f) { return ekte(f)->pMethods->xDeviceCharacteristics(ekte(f)); }
const sqlite3_io_methods Metoder = {1,    lukk,   les,       skriv,    kutt,   synk,      storrelse,
                                    laas, lasOpp, reservert, kontroll, sektor, egenskaper};

int apne(sqlite3_vfs*, const char* navn, sqlite3_file* f, int flagg, int* ut)
{
    auto* p = reinterpret_cast<Fil*>(f);
    p->ekte = reinterpret_cast<sqlite3_file*>(p + 1);
    f->pMethods = nullptr;
    const int rc = system->xOpen(system, navn, p->ekte, flagg, ut);
    if (p->ekte->pMethods) f->pMethods = &Metoder;
    return rc;
}

// Registered once as the default layer, so that every connection of the program goes through it.
void installer()
{
    static sqlite3_vfs vfs = [] {
        system = sqlite3_vfs_find(nullptr);
        sqlite3_vfs v = *system;
        v.szOsFile = static_cast<int>(sizeof(Fil)) + system->szOsFile;
        v.zName = "feilinnskyting";
        v.pNext = nullptr;
        v.xOpen = apne;
        return v;
    }();
    static const bool registrert = sqlite3_vfs_register(&vfs, 1) == SQLITE_OK;
    ASSERT_TRUE(registrert);
}

}  // namespace innskyting

class Feilinnskyting : public test::MedVindu {
protected:
    void SetUp() override { innskyting::installer(); }
    void TearDown() override { innskyting::ved = 0; }

    // Imports the test file navn on a new window over the folder with call k of the counted ones
    // failing (0: none); the number of counted calls the import made.
    long importer(const char* navn, long k = 0)
    {
        f.reset();
        vindu({});
        innskyting::teller = 0;
        innskyting::ved = k;
        svar(QStringLiteral(TOLVIK_TESTDATA "/store/") + QLatin1String(navn), dialogs::Svar::Ja);
        f->Command2_Click();
        innskyting::ved = 0;
        return innskyting::teller;
    }
    // Data.mdb and Kolonner.txt (with the suffix fra) copied over those with the suffix til, the window closed.
    void kopier(const QString& fra, const QString& til)
    {
        f.reset();
        for (const QString& navn : {u"Data.mdb"_s, u"Kolonner.txt"_s}) {
            QFile::remove(mappe.sti(navn + til));
            QFile::copy(mappe.sti(navn + fra), mappe.sti(navn + til));
        }
    }
    // The caption and column list that the next start finds; checks what must hold after any run.
    QString tilstand(const QString& hva)
    {
        f.reset();
        vindu({});
        const QString t = f->tittel() + '|' + f->kolonner().join(',');
        f.reset();
        db::Database d(mappe.sti(u"Data.mdb"_s));
        EXPECT_EQ(d.spor(u"PRAGMA integrity_check"_s).tekst(0), u"ok"_s) << hva;
        const QStringList rester =
            QDir(mappe.mappe()).entryList({u"*.import*"_s, u"*.bytt"_s, u"*.tmp*"_s, u"*-journal"_s});
        EXPECT_TRUE(rester.isEmpty()) << hva << rester.join(' ');
        return t;
    }
    // Call numbers spread over a run of n calls: every one up to 40, else 40 evenly apart.
    static std::vector<long> utvalg(long n)
    {
        std::vector<long> k;
        for (long i = 0; i < std::min(n, 40L); ++i) k.push_back(1 + i * n / std::min(n, 40L));
        return k;
    }
};

TEST_F(Feilinnskyting, ImportHarGammelEllerNyFil)
{
    // Small files: a failure anywhere in the build and the swap is met the same way for any size,
    // and the 40 calls sampled lie closer together. The old pair is kept aside and put back before
    // every run.
    importer("eksempel.csv");
    kopier({}, u".kopi"_s);
    const QString gammel = tilstand(u"før"_s);
    const long n = importer("felt.csv");
    const QString ny = tilstand(u"uten feil"_s);
    ASSERT_NE(gammel, ny);
    for (long k : utvalg(n)) {
        kopier(u".kopi"_s, {});
        importer("felt.csv", k);
        const QString melding = dialogs.meldinger().last();
        const QString etter = tilstand(u"kall %1 av %2"_s.arg(k).arg(n));
        // The message tells which: the old pair stays only when it says that nothing is imported.
        EXPECT_EQ(etter, melding.contains(u"Ingenting er importert"_s) ? gammel : ny) << k << melding;
    }
}

}  // namespace
