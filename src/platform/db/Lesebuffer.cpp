#include "platform/db/Lesebuffer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sqlite3.h>

namespace db {

namespace {

constexpr sqlite3_int64 Strekning = 256 * 1024;

sqlite3_vfs* grunnlag = nullptr;  // the system's own layer, which does the work

// An open file: ours in front, the system's file right behind it in the same memory.
struct Fil {
    sqlite3_file base;
    sqlite3_file* ekte;
    char* buffer;               // Strekning bytes for a main database file, else none
    sqlite3_int64 fra, lengde;  // the stretch the buffer holds; lengde 0: none
    sqlite3_int64 sist;         // where the last read ended
};

Fil* fil(sqlite3_file* f) { return reinterpret_cast<Fil*>(f); }
const sqlite3_io_methods& ekte(Fil* p) { return *p->ekte->pMethods; }

int lukk(sqlite3_file* f)
{
    Fil* p = fil(f);
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
// around a read transaction, outside which another program may have written the file.
int skriv(sqlite3_file* f, const void* data, int antall, sqlite3_int64 fra)
{
    fil(f)->lengde = 0;
    return ekte(fil(f)).xWrite(fil(f)->ekte, data, antall, fra);
}
int kutt(sqlite3_file* f, sqlite3_int64 storrelse)
{
    fil(f)->lengde = 0;
    return ekte(fil(f)).xTruncate(fil(f)->ekte, storrelse);
}
int laas(sqlite3_file* f, int niva)
{
    if (niva == SQLITE_LOCK_SHARED) fil(f)->lengde = 0;
    return ekte(fil(f)).xLock(fil(f)->ekte, niva);
}
int lasOpp(sqlite3_file* f, int niva)
{
    if (niva == SQLITE_LOCK_NONE) fil(f)->lengde = 0;
    return ekte(fil(f)).xUnlock(fil(f)->ekte, niva);
}

// The rest is the system's.
int synk(sqlite3_file* f, int flagg) { return ekte(fil(f)).xSync(fil(f)->ekte, flagg); }
int storrelse(sqlite3_file* f, sqlite3_int64* s) { return ekte(fil(f)).xFileSize(fil(f)->ekte, s); }
int reservert(sqlite3_file* f, int* ut) { return ekte(fil(f)).xCheckReservedLock(fil(f)->ekte, ut); }
int kontroll(sqlite3_file* f, int op, void* arg) { return ekte(fil(f)).xFileControl(fil(f)->ekte, op, arg); }
int sektor(sqlite3_file* f) { return ekte(fil(f)).xSectorSize(fil(f)->ekte); }
int egenskaper(sqlite3_file* f) { return ekte(fil(f)).xDeviceCharacteristics(fil(f)->ekte); }
int shmMap(sqlite3_file* f, int i, int n, int b, void volatile** pp)
{
    return ekte(fil(f)).xShmMap(fil(f)->ekte, i, n, b, pp);
}
int shmLaas(sqlite3_file* f, int a, int n, int flagg) { return ekte(fil(f)).xShmLock(fil(f)->ekte, a, n, flagg); }
void shmBarriere(sqlite3_file* f) { ekte(fil(f)).xShmBarrier(fil(f)->ekte); }
int shmFjern(sqlite3_file* f, int slett) { return ekte(fil(f)).xShmUnmap(fil(f)->ekte, slett); }
int hent(sqlite3_file* f, sqlite3_int64 fra, int n, void** pp) { return ekte(fil(f)).xFetch(fil(f)->ekte, fra, n, pp); }
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
