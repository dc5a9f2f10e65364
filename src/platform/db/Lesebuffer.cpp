#include "platform/db/Lesebuffer.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <sqlite3.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace db {

namespace {

constexpr sqlite3_int64 Strekning = 256 * 1024;
constexpr size_t Samling = 1024 * 1024;
constexpr size_t Skrivebit = 64 * 1024;  // the system's layer writes less than 128 KB at a time
constexpr size_t UtTilDisk = 8 * 1024 * 1024;

sqlite3_vfs* grunnlag = nullptr;  // the system's own layer, which does the work

// Writes behind SQLite: the pages it writes one by one are gathered, Samling at a time, and a
// thread of its own writes them while SQLite goes on, in the order of their place in the file
// and those that follow each other with one request. Every other request on the file first waits
// until all is written (tom), so that it sees the writes as they came; a write that failed is the
// answer to the next request. Every UtTilDisk bytes the thread has the system start writing the
// file to the disk without waiting for it, so that a long transaction's commit finds little left.
class Skriver {
public:
    Skriver(sqlite3_file* ekte, const char* navn) : ekte_(ekte), navn_(navn), traad_([this] { kjor(); }) {}
    ~Skriver()
    {
        tom();
        {
            std::lock_guard laas(mutex_);
            slutt_ = true;
        }
        endret_.notify_all();
        traad_.join();
        if (fd_ >= 0) ::close(fd_);
    }
    Skriver(const Skriver&) = delete;
    Skriver& operator=(const Skriver&) = delete;

    int skriv(const void* data, int antall, sqlite3_int64 fra)
    {
        samlet_.biter.push_back({fra, samlet_.data.size(), static_cast<size_t>(antall)});
        samlet_.data.insert(samlet_.data.end(), static_cast<const char*>(data),
                            static_cast<const char*>(data) + antall);
        if (samlet_.data.size() >= Samling) send();
        std::lock_guard laas(mutex_);
        return feil_;
    }

    // Waits until every write so far is in the file; SQLITE_OK or the first write's error.
    int tom()
    {
        if (!samlet_.biter.empty()) send();
        std::unique_lock laas(mutex_);
        endret_.wait(laas, [this] { return !klar_; });
        return feil_;
    }

private:
    struct Bit {
        sqlite3_int64 fra;  // place in the file
        size_t i, n;        // place and length in data
    };
    struct Samlet {
        std::vector<Bit> biter;  // in the order they came
        std::vector<char> data;
    };

    // Hands what is gathered to the thread, once it has written what came before.
    void send()
    {
        std::unique_lock laas(mutex_);
        endret_.wait(laas, [this] { return !klar_; });
        std::swap(samlet_, skrives_);
        klar_ = true;
        laas.unlock();
        endret_.notify_all();
        samlet_.biter.clear();
        samlet_.data.clear();
    }

    // Writes the pieces by their place in the file; when two overlap, all go in the order they
    // came, which is their order in data.
    int skrivUt(Samlet& s)
    {
        std::vector<Bit>& b = s.biter;
        std::sort(b.begin(), b.end(), [](const Bit& x, const Bit& y) { return x.fra < y.fra; });
        for (size_t i = 1; i < b.size(); ++i)
            if (b[i].fra < b[i - 1].fra + static_cast<sqlite3_int64>(b[i - 1].n)) {
                std::sort(b.begin(), b.end(), [](const Bit& x, const Bit& y) { return x.i < y.i; });
                break;
            }
        for (size_t i = 0; i < b.size();) {
            // A run: the pieces that follow each other in the file, up to Skrivebit. Where they
            // also follow each other in data (mostly), they are written from there.
            const sqlite3_int64 fra = b[i].fra;
            size_t slutt = i + 1, lengde = b[i].n;
            bool iData = true;
            for (; slutt < b.size() && b[slutt].fra == fra + static_cast<sqlite3_int64>(lengde) &&
                   lengde + b[slutt].n <= Skrivebit;
                 ++slutt) {
                iData = iData && b[slutt].i == b[slutt - 1].i + b[slutt - 1].n;
                lengde += b[slutt].n;
            }
            const char* lop = s.data.data() + b[i].i;
            if (!iData) {
                lop_.clear();
                for (; i < slutt; ++i) lop_.insert(lop_.end(), s.data.data() + b[i].i, s.data.data() + b[i].i + b[i].n);
                lop = lop_.data();
            }
            i = slutt;
            if (const int rc = ekte_->pMethods->xWrite(ekte_, lop, static_cast<int>(lengde), fra); rc != SQLITE_OK)
                return rc;
        }
        if ((skrevet_ += s.data.size()) >= UtTilDisk) {
            skrevet_ = 0;
            begynnSkrivingTilDisk();
        }
        return SQLITE_OK;
    }

    void begynnSkrivingTilDisk()
    {
#ifdef __linux__
        if (fd_ < 0) fd_ = ::open(navn_.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd_ >= 0) sync_file_range(fd_, 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
    }

    void kjor()
    {
        std::unique_lock laas(mutex_);
        for (;;) {
            endret_.wait(laas, [this] { return klar_ || slutt_; });
            if (!klar_) return;
            const int tidligere = feil_;
            laas.unlock();
            const int rc = tidligere == SQLITE_OK ? skrivUt(skrives_) : tidligere;
            laas.lock();
            feil_ = rc;
            klar_ = false;
            endret_.notify_all();
        }
    }

    sqlite3_file* ekte_;
    std::string navn_;
    Samlet samlet_;  // gathered by SQLite's thread alone
    std::mutex mutex_;
    std::condition_variable endret_;
    Samlet skrives_;         // handed to the thread
    std::vector<char> lop_;  // a run gathered from pieces apart in data, for one write
    bool klar_ = false;      // skrives_ waits to be written, or is being written
    bool slutt_ = false;
    int feil_ = SQLITE_OK;
    size_t skrevet_ = 0;  // since the system was last asked to start writing
    int fd_ = -1;         // for that request, opened at the first
    std::thread traad_;
};

// An open file: ours in front, the system's file right behind it in the same memory.
struct Fil {
    sqlite3_file base;
    sqlite3_file* ekte;
    char* buffer;               // Strekning bytes for a main database file, else none
    sqlite3_int64 fra, lengde;  // the stretch the buffer holds; lengde 0: none
    sqlite3_int64 sist;         // where the last read ended
    Skriver* skriver;           // from the first write to a main database file
    const char* navn;           // the file's name, SQLite's while the file is open
};

Fil* fil(sqlite3_file* f) { return reinterpret_cast<Fil*>(f); }
const sqlite3_io_methods& ekte(Fil* p) { return *p->ekte->pMethods; }

// Waits for the writes behind; SQLITE_OK or the error of one that failed.
int tom(Fil* p) { return p->skriver ? p->skriver->tom() : SQLITE_OK; }

int lukk(sqlite3_file* f)
{
    Fil* p = fil(f);
    delete p->skriver;  // writes what is left
    p->skriver = nullptr;
    const int rc = ekte(p).xClose(p->ekte);
    delete[] p->buffer;
    p->buffer = nullptr;
    return rc;
}

// A read inside the stretch is served from it; a miss that lies a little after the last read
// (the next leaves of a scan) fetches the stretch from there; any other read goes as asked.
int les(sqlite3_file* f, void* ut, int antall, sqlite3_int64 fra)
{
    Fil* p = fil(f);
    if (const int rc = tom(p); rc != SQLITE_OK) return rc;
    if (!p->buffer) return ekte(p).xRead(p->ekte, ut, antall, fra);
    const sqlite3_int64 slutt = fra + antall;
    const bool naer = p->sist >= 0 && fra >= p->sist && fra - p->sist < Strekning;
    p->sist = slutt;
    if (p->lengde > 0 && fra >= p->fra && slutt <= p->fra + p->lengde) {
        std::memcpy(ut, p->buffer + (fra - p->fra), static_cast<size_t>(antall));
        return SQLITE_OK;
    }
    sqlite3_int64 storrelse = 0;
    if (naer && ekte(p).xFileSize(p->ekte, &storrelse) == SQLITE_OK) {
        const sqlite3_int64 n = std::min(Strekning, storrelse - fra);
        if (n >= antall && ekte(p).xRead(p->ekte, p->buffer, static_cast<int>(n), fra) == SQLITE_OK) {
            p->fra = fra;
            p->lengde = n;
            std::memcpy(ut, p->buffer, static_cast<size_t>(antall));
            return SQLITE_OK;
        }
        p->lengde = 0;
    }
    return ekte(p).xRead(p->ekte, ut, antall, fra);
}

// Whatever may change the file's content forgets the stretch: our own writes, and the locks
// around a read transaction, outside which another program may have written the file. Every
// request but a write waits for the writes behind.
int skriv(sqlite3_file* f, const void* data, int antall, sqlite3_int64 fra)
{
    Fil* p = fil(f);
    p->lengde = 0;
    if (!p->buffer) return ekte(p).xWrite(p->ekte, data, antall, fra);
    if (!p->skriver) {
        try {
            p->skriver = new Skriver(p->ekte, p->navn);
        } catch (...) {  // no memory or thread: written as it comes
        }
    }
    return p->skriver ? p->skriver->skriv(data, antall, fra) : ekte(p).xWrite(p->ekte, data, antall, fra);
}
int kutt(sqlite3_file* f, sqlite3_int64 storrelse)
{
    fil(f)->lengde = 0;
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xTruncate(fil(f)->ekte, storrelse);
}
int laas(sqlite3_file* f, int niva)
{
    if (niva == SQLITE_LOCK_SHARED) fil(f)->lengde = 0;
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xLock(fil(f)->ekte, niva);
}
int lasOpp(sqlite3_file* f, int niva)
{
    if (niva == SQLITE_LOCK_NONE) fil(f)->lengde = 0;
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xUnlock(fil(f)->ekte, niva);
}
int synk(sqlite3_file* f, int flagg)
{
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xSync(fil(f)->ekte, flagg);
}
int storrelse(sqlite3_file* f, sqlite3_int64* s)
{
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xFileSize(fil(f)->ekte, s);
}
int kontroll(sqlite3_file* f, int op, void* arg)
{
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xFileControl(fil(f)->ekte, op, arg);
}

// The rest is the system's.
int reservert(sqlite3_file* f, int* ut) { return ekte(fil(f)).xCheckReservedLock(fil(f)->ekte, ut); }
int sektor(sqlite3_file* f) { return ekte(fil(f)).xSectorSize(fil(f)->ekte); }
int egenskaper(sqlite3_file* f) { return ekte(fil(f)).xDeviceCharacteristics(fil(f)->ekte); }
int shmMap(sqlite3_file* f, int i, int n, int b, void volatile** pp)
{
    return ekte(fil(f)).xShmMap(fil(f)->ekte, i, n, b, pp);
}
int shmLaas(sqlite3_file* f, int a, int n, int flagg) { return ekte(fil(f)).xShmLock(fil(f)->ekte, a, n, flagg); }
void shmBarriere(sqlite3_file* f) { ekte(fil(f)).xShmBarrier(fil(f)->ekte); }
int shmFjern(sqlite3_file* f, int slett) { return ekte(fil(f)).xShmUnmap(fil(f)->ekte, slett); }
int hent(sqlite3_file* f, sqlite3_int64 fra, int n, void** pp)
{
    if (const int rc = tom(fil(f)); rc != SQLITE_OK) return rc;
    return ekte(fil(f)).xFetch(fil(f)->ekte, fra, n, pp);
}
int slipp(sqlite3_file* f, sqlite3_int64 fra, void* p) { return ekte(fil(f)).xUnfetch(fil(f)->ekte, fra, p); }

const sqlite3_io_methods Metoder = {3,       lukk,        les,       skriv,    kutt,   synk,       storrelse,
                                    laas,    lasOpp,      reservert, kontroll, sektor, egenskaper, shmMap,
                                    shmLaas, shmBarriere, shmFjern,  hent,     slipp};

int apne(sqlite3_vfs*, const char* navn, sqlite3_file* f, int flagg, int* utFlagg)
{
    Fil* p = fil(f);
    p->ekte = reinterpret_cast<sqlite3_file*>(p + 1);
    p->buffer = nullptr;
    p->fra = p->lengde = 0;
    p->sist = -1;
    p->skriver = nullptr;
    p->navn = navn;
    f->pMethods = nullptr;
    const int rc = grunnlag->xOpen(grunnlag, navn, p->ekte, flagg, utFlagg);
    if (!p->ekte->pMethods) return rc;  // nothing to close
    f->pMethods = &Metoder;
    if (rc == SQLITE_OK && (flagg & SQLITE_OPEN_MAIN_DB)) p->buffer = new (std::nothrow) char[Strekning];
    return rc;
}

int slett(sqlite3_vfs*, const char* navn, int synk) { return grunnlag->xDelete(grunnlag, navn, synk); }
int finnes(sqlite3_vfs*, const char* navn, int flagg, int* ut) { return grunnlag->xAccess(grunnlag, navn, flagg, ut); }
int fullSti(sqlite3_vfs*, const char* navn, int n, char* ut) { return grunnlag->xFullPathname(grunnlag, navn, n, ut); }
void* dlApne(sqlite3_vfs*, const char* navn) { return grunnlag->xDlOpen(grunnlag, navn); }
void dlFeil(sqlite3_vfs*, int n, char* ut) { grunnlag->xDlError(grunnlag, n, ut); }
void (*dlSym(sqlite3_vfs*, void* h, const char* navn))(void) { return grunnlag->xDlSym(grunnlag, h, navn); }
void dlLukk(sqlite3_vfs*, void* h) { grunnlag->xDlClose(grunnlag, h); }
int tilfeldig(sqlite3_vfs*, int n, char* ut) { return grunnlag->xRandomness(grunnlag, n, ut); }
int sov(sqlite3_vfs*, int mikro) { return grunnlag->xSleep(grunnlag, mikro); }
int tid(sqlite3_vfs*, double* ut) { return grunnlag->xCurrentTime(grunnlag, ut); }
int sisteFeil(sqlite3_vfs*, int n, char* ut) { return grunnlag->xGetLastError(grunnlag, n, ut); }
int tid64(sqlite3_vfs*, sqlite3_int64* ut) { return grunnlag->xCurrentTimeInt64(grunnlag, ut); }

}  // namespace

const char* lesebuffer()
{
    static sqlite3_vfs vfs = [] {
        grunnlag = sqlite3_vfs_find(nullptr);
        return sqlite3_vfs{2,
                           static_cast<int>(sizeof(Fil)) + grunnlag->szOsFile,
                           grunnlag->mxPathname,
                           nullptr,
                           "tolvik-lesebuffer",
                           nullptr,
                           apne,
                           slett,
                           finnes,
                           fullSti,
                           dlApne,
                           dlFeil,
                           dlSym,
                           dlLukk,
                           tilfeldig,
                           sov,
                           tid,
                           sisteFeil,
                           tid64,
                           nullptr,
                           nullptr,
                           nullptr};
    }();
    static const bool registrert = sqlite3_vfs_register(&vfs, 0) == SQLITE_OK;
    return registrert ? vfs.zName : nullptr;
}

}  // namespace db
