#include "store/Import.h"

#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "store/Maledata.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <thread>
#include <vector>

namespace store {

namespace {

using Klokke = std::chrono::steady_clock;
constexpr auto Fremdriftsintervall = std::chrono::milliseconds(50);
constexpr int MaksOverskriftsfelt = 29;  // one column letter each, A to Å
constexpr size_t VisteHopp = 10;  // skipped lines named in the notice

const QString Uendret = QStringLiteral(" Ingenting er importert, og databasen er uendret.");

QString tekst(const std::exception& e) { return QString::fromStdString(e.what()); }

// A first pass over the file, before anything is changed: its line count (as TellLinjer
// counts) and what the command needs to know to refuse a file that cannot be imported.
struct Oversikt {
    int32_t linjer = 0;
    int32_t overskriftLinje = 0;  // 0: the file holds no non-empty line
    qsizetype overskriftFelt = 0;
    bool harData = false;
    int32_t nullLinje = 0;  // first line holding a NUL character: no text file
};

Oversikt sePaa(const QString& fil)
{
    filer::Linjeleser leser(fil);
    Oversikt o;
    for (std::string_view linje; leser.neste(linje);) {
        ++o.linjer;
        if (o.nullLinje == 0 && linje.find('\0') != std::string_view::npos) o.nullLinje = o.linjer;
        if (linje.empty()) continue;
        if (o.overskriftLinje == 0) {
            o.overskriftLinje = o.linjer;
            o.overskriftFelt = std::count(linje.begin(), linje.end(), ',') + 1;
        } else {
            o.harData = true;
        }
    }
    return o;
}

std::optional<QString> innvending(const Oversikt& o, const QString& fil)
{
    if (o.nullLinje > 0)
        return QStringLiteral("Fila %1 er ikke en tekstfil: linje %2 inneholder nulltegn.").arg(fil).arg(o.nullLinje);
    if (o.overskriftLinje == 0) return QStringLiteral("Fila %1 er tom (%2 linjer uten tekst).").arg(fil).arg(o.linjer);
    if (o.overskriftFelt > MaksOverskriftsfelt)
        return QStringLiteral("Overskriftslinja (linje %1) i fila %2 har %3 felt, men bare %4 felt kan få en "
                              "kolonnebokstav (A til Å).")
            .arg(o.overskriftLinje)
            .arg(fil)
            .arg(o.overskriftFelt)
            .arg(MaksOverskriftsfelt);
    if (!o.harData)
        return QStringLiteral("Fila %1 har bare overskriftslinja (linje %2) og ingen datalinjer.")
            .arg(fil)
            .arg(o.overskriftLinje);
    return std::nullopt;
}

// Replaces Data.mdb by an empty copy of Template.mdb and opens the connection on it.
// The copy is made and tried beside Data.mdb and then renamed over it in one step, so
// Data.mdb is at every moment either the old database or the new empty one. On failure
// the old database stays and is opened again; the result is the message to show.
std::optional<QString> erstattDatabase(Kontekst& k)
{
    const QString mal = k.sti(MalFil);
    const QString data = k.sti(DataFil);
    const QString ny = data + QStringLiteral(".import");
    if (!filer::FilFinnes(mal)) return QStringLiteral("Finner ikke databasemalen %1.").arg(mal) + Uendret;
    QFile::remove(ny);
    QFile kopi(mal);
    if (!kopi.copy(ny))
        return QStringLiteral("Kan ikke kopiere databasemalen %1 til %2: %3.").arg(mal, ny, kopi.errorString()) + Uendret;
    QFile::setPermissions(ny, QFile::permissions(ny) | QFileDevice::WriteOwner);
    try {
        db::Database tom(ny);
        tom.utfor(QStringLiteral("Delete from Datalinjer"));
    } catch (const db::DbFeil& e) {
        QFile::remove(ny);
        return QStringLiteral("Databasemalen %1 kan ikke brukes: %2.").arg(mal, tekst(e)) + Uendret;
    }
    k.tilkobling.lukk();
    std::error_code feil;
    std::filesystem::rename(QFile::encodeName(ny).toStdString(), QFile::encodeName(data).toStdString(), feil);
    if (feil) {
        QFile::remove(ny);
        try {
            k.tilkobling.aapne(data);
        } catch (const db::DbFeil&) {
            // it could not be opened before the import either; the start-up message said so
        }
        return QStringLiteral("Kan ikke erstatte databasen %1: %2.").arg(data, QString::fromLocal8Bit(feil.message())) +
               Uendret;
    }
    try {
        k.tilkobling.aapne(data);
    } catch (const db::DbFeil& e) {
        return tekst(e) + QStringLiteral(". Databasen er erstattet med en tom kopi av malen, men ingenting er importert.");
    }
    return std::nullopt;
}

bool siffer(char c) { return c >= '0' && c <= '9'; }
int tosiffer(std::string_view s, size_t p) { return (s[p] - '0') * 10 + (s[p + 1] - '0'); }

// DatoTid of a cleaned data line as the store keeps it, "YYYY-MM-DD HH:MM:SS", from
// characters 1 to 19 (year, month, day, time of day); false when they hold no valid date-time.
bool lesDatoTid(std::string_view L, char (&iso)[19])
{
    if (L.size() < 19 || L[13] != ':' || L[16] != ':') return false;
    for (size_t p : {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18})
        if (!siffer(L[p])) return false;
    if (!vb::Dato::gyldig(tosiffer(L, 0) * 100 + tosiffer(L, 2), tosiffer(L, 5), tosiffer(L, 8), tosiffer(L, 11),
                          tosiffer(L, 14), tosiffer(L, 17)))
        return false;
    std::memcpy(iso, L.data(), sizeof iso);
    iso[4] = iso[7] = '-';
    iso[10] = ' ';
    return true;
}

constexpr int Verdier = 10;  // value columns C to L

// A measurement row ready for the store.
struct Rad {
    char datoTid[19];
    char datoTekst[45];  // up to 22 characters, as UTF-8
    int datoTekstLengde = 0;
    int antall = 0;  // values in C and on; the rest stay NULL
    double verdier[Verdier];
};

// DatoTid_Tekst: characters 1 to 10 with "." back to "/", a blank, characters 11 to 22.
void lagDatoTekst(std::string_view L, Rad& rad)
{
    char* ut = rad.datoTekst;
    auto leggTil = [&ut](char c) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            *ut++ = c;
        } else {
            *ut++ = static_cast<char>(0xC0 | (b >> 6));
            *ut++ = static_cast<char>(0x80 | (b & 0x3F));
        }
    };
    for (char c : L.substr(0, 10)) leggTil(c == '.' ? '/' : c);
    leggTil(' ');
    for (char c : L.substr(10, 12)) leggTil(c);
    rad.datoTekstLengde = static_cast<int>(ut - rad.datoTekst);
}

// The prepared inserts: DatoTid, DatoTid_Tekst and C to L, NULL where a line has no value.
// Rows go Bunt at a time in one statement of as many rows, which spares SQLite a statement
// run per row; a shorter rest uses a statement of its own length, prepared when first needed.
class Innsetting {
public:
    static constexpr int Bunt = 50;  // 600 parameters, well below SQLite's 999

    explicit Innsetting(db::Database& d) : db_(d) {}
    ~Innsetting()
    {
        for (auto& s : setninger_) sqlite3_finalize(s.stmt);
    }
    Innsetting(const Innsetting&) = delete;
    Innsetting& operator=(const Innsetting&) = delete;

    void settInn(const Rad* rader, int antall)
    {
        for (; antall > 0; rader += Bunt, antall -= Bunt) send(rader, std::min(antall, Bunt));
    }
    int64_t lagret() const { return lagret_; }
    // Whether no stored row has an earlier DatoTid than the row before it.
    bool tidFolgerId() const { return tidFolgerId_; }

private:
    struct Setning {
        sqlite3_stmt* stmt = nullptr;
        std::vector<int> tallBundet;  // per row: values bound as numbers last time; the rest are NULL
    };

    Setning& setning(int rader)
    {
        Setning& s = setninger_[static_cast<size_t>(rader)];
        if (!s.stmt) {
            std::string sql = "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K, L) VALUES ";
            for (int i = 0; i < rader; ++i)
                sql += i ? ", (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)" : "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
            s.stmt = db_.forbered(sql.c_str());
            s.tallBundet.assign(static_cast<size_t>(rader), 0);  // a new statement has every parameter NULL
        }
        return s;
    }

    void send(const Rad* rader, int antall)
    {
        Setning& s = setning(antall);
        for (int r = 0; r < antall; ++r) {
            const Rad& rad = rader[r];
            if (lagret_ + r > 0 && std::memcmp(rad.datoTid, forrigeTid_, sizeof forrigeTid_) < 0) tidFolgerId_ = false;
            std::memcpy(forrigeTid_, rad.datoTid, sizeof forrigeTid_);
            const int p = r * (Verdier + 2) + 1;
            sqlite3_bind_text(s.stmt, p, rad.datoTid, sizeof rad.datoTid, SQLITE_STATIC);
            sqlite3_bind_text(s.stmt, p + 1, rad.datoTekst, rad.datoTekstLengde, SQLITE_STATIC);
            for (int i = 0; i < rad.antall; ++i) sqlite3_bind_double(s.stmt, p + 2 + i, rad.verdier[i]);
            int& bundet = s.tallBundet[static_cast<size_t>(r)];
            for (int i = rad.antall; i < bundet; ++i) sqlite3_bind_null(s.stmt, p + 2 + i);
            bundet = rad.antall;
        }
        const int rc = sqlite3_step(s.stmt);
        sqlite3_reset(s.stmt);
        if (rc != SQLITE_DONE)
            throw db::DbFeil(QStringLiteral("Databasen %1 avviste raden: %2")
                                 .arg(db_.fil(), QString::fromUtf8(sqlite3_errmsg(db_.handle())))
                                 .toStdString());
        lagret_ += antall;
    }

    db::Database& db_;
    std::array<Setning, Bunt + 1> setninger_;
    int64_t lagret_ = 0;
    char forrigeTid_[sizeof Rad::datoTid] = {};
    bool tidFolgerId_ = true;
};

// A stretch of the file as the reader hands it over: the rows of its data lines and,
// in the first one, the header's fields.
struct Blokk {
    static constexpr int Linjer = 20 * Innsetting::Bunt;
    std::array<Rad, Linjer> rader;
    int antall = 0;
    QStringList overskrift;  // cleaned header fields, in the stretch that holds the header
    int32_t overskriftLinje = 0;
    int32_t linjeNr = 0;     // lines read up to the end of this stretch, empty ones included
    int64_t behandlet = 0;   // non-empty lines up to here, the header included
    std::optional<QString> feil;  // reading stopped here
    bool slutt = false;
};

// Reads and interprets the lines. It runs on a thread of its own so that the next lines
// are ready while the store takes the last ones; it touches neither window nor store.
class Tolker {
public:
    Tolker(filer::Linjeleser& leser, const QString& fil) : leser_(leser), fil_(fil) {}

    void fyll(Blokk& b)
    {
        b.antall = 0;
        b.overskrift.clear();
        b.feil.reset();
        b.slutt = false;
        try {
            for (int n = 0; n < Blokk::Linjer; ++n) {
                std::string_view raa;
                if (!leser_.neste(raa)) {
                    b.slutt = true;
                    break;
                }
                ++linjeNr_;
                if (raa.empty()) continue;
                rensOgDel(raa);
                if (behandlet_++ == 0) {
                    for (std::string_view f : felt_) b.overskrift << filer::latin1(f);
                    b.overskriftLinje = linjeNr_;
                } else if (felt_.size() >= 4 && felt_.size() <= 13 && tolk(b.rader[static_cast<size_t>(b.antall)])) {
                    ++b.antall;
                }
            }
        } catch (const filer::FilFeil& e) {
            b.feil = QStringLiteral("Importen stoppet ved linje %1 i fila %2: %3.").arg(linjeNr_ + 1).arg(fil_, tekst(e));
        }
        b.linjeNr = linjeNr_;
        b.behandlet = behandlet_;
    }

    // The notice about data lines left out for a date, time or number the store cannot take.
    std::optional<QString> hoppetOver() const
    {
        if (hopp_.empty()) return std::nullopt;
        QString t = QStringLiteral("%1 datalinjer i fila %2 er hoppet over fordi dato, klokkeslett eller et tall "
                                   "ikke kan leses:")
                        .arg(antallHopp_)
                        .arg(fil_);
        for (const QString& h : hopp_) t += QLatin1Char('\n') + h;
        if (antallHopp_ > static_cast<int64_t>(hopp_.size()))
            t += QStringLiteral("\n(bare de første %1 er vist)").arg(hopp_.size());
        return t;
    }

private:
    // Double quotes removed, every "/" turned into ".", then split at every ",".
    void rensOgDel(std::string_view raa)
    {
        linje_.resize(raa.size());
        char* ut = linje_.data();
        for (char c : raa)
            if (c != '"') *ut++ = c == '/' ? '.' : c;
        linje_.resize(static_cast<size_t>(ut - linje_.data()));
        felt_.clear();
        const std::string_view L(linje_);
        size_t start = 0;
        for (size_t komma; (komma = L.find(',', start)) != std::string_view::npos; start = komma + 1)
            felt_.push_back(L.substr(start, komma - start));
        felt_.push_back(L.substr(start));
    }

    // The row of a data line of 4 to 13 fields: false (and noted) when the store cannot take it.
    bool tolk(Rad& rad)
    {
        const std::string_view L(linje_);
        if (L.substr(0, 22).find('\'') != std::string_view::npos)
            return hopp(QStringLiteral("apostrof i dato og tid «%1»").arg(filer::latin1(L.substr(0, 22))));
        if (!lesDatoTid(L, rad.datoTid))
            return hopp(QStringLiteral("ugyldig dato eller klokkeslett «%1»").arg(filer::latin1(L.substr(0, 19))));
        rad.antall = static_cast<int>(felt_.size()) - 3;
        for (int i = 0; i < rad.antall; ++i) {
            const std::string_view felt = felt_[static_cast<size_t>(i) + 2];
            try {
                rad.verdier[i] = vb::valLagret(felt);
            } catch (const vb::Feil&) {
                return hopp(QStringLiteral("tallet «%1» er for stort").arg(filer::latin1(felt)));
            }
        }
        lagDatoTekst(L, rad);
        return true;
    }

    bool hopp(const QString& grunn)
    {
        ++antallHopp_;
        if (hopp_.size() < VisteHopp) hopp_.push_back(QStringLiteral("linje %1: ").arg(linjeNr_) + grunn);
        return false;
    }

    filer::Linjeleser& leser_;
    const QString fil_;
    int32_t linjeNr_ = 0;
    int64_t behandlet_ = 0;
    int64_t antallHopp_ = 0;
    std::vector<QString> hopp_;
    std::string linje_;
    std::vector<std::string_view> felt_;
};

// The reader thread and the stretches passed between it and the command: the reader
// fills free stretches, the command takes them in file order and gives them back.
class Lesetraad {
public:
    explicit Lesetraad(Tolker& tolker) : tolker_(tolker)
    {
        for (auto& b : blokker_) ledige_.push_back(&b);
        traad_ = std::thread([this] { kjor(); });
    }
    // Stops the reader (also half-way through the file) and waits for it.
    ~Lesetraad()
    {
        {
            std::lock_guard laas(mutex_);
            stopp_ = true;
        }
        endret_.notify_all();
        traad_.join();
    }
    Lesetraad(const Lesetraad&) = delete;
    Lesetraad& operator=(const Lesetraad&) = delete;

    Blokk& neste()
    {
        std::unique_lock laas(mutex_);
        endret_.wait(laas, [this] { return !fulle_.empty(); });
        Blokk* b = fulle_.front();
        fulle_.pop_front();
        return *b;
    }
    void giTilbake(Blokk& b)
    {
        {
            std::lock_guard laas(mutex_);
            ledige_.push_back(&b);
        }
        endret_.notify_all();
    }

private:
    void kjor()
    {
        for (;;) {
            Blokk* b = nullptr;
            {
                std::unique_lock laas(mutex_);
                endret_.wait(laas, [this] { return stopp_ || !ledige_.empty(); });
                if (stopp_) return;
                b = ledige_.front();
                ledige_.pop_front();
            }
            tolker_.fyll(*b);
            {
                std::lock_guard laas(mutex_);
                fulle_.push_back(b);
            }
            endret_.notify_all();
            if (b->slutt || b->feil) return;
        }
    }

    Tolker& tolker_;
    std::vector<Blokk> blokker_ = std::vector<Blokk>(4);
    std::deque<Blokk*> ledige_, fulle_;
    std::mutex mutex_;
    std::condition_variable endret_;
    bool stopp_ = false;
    std::thread traad_;
};

// One run through the file: the header to Kolonner.txt, the data lines into the store.
class Innlesing {
public:
    Innlesing(Kontekst& k, filer::Linjeleser& leser, const QString& fil) : k_(k), tolker_(leser, fil), fil_(fil) {}

    // Reads the file to its end inside one transaction. Returns the reason when the import
    // had to stop early; the rows read until then are kept. A program that is being ended
    // keeps them too.
    std::optional<QString> les()
    {
        std::optional<QString> stopp;
        db::Transaksjon transaksjon(k_.tilkobling);
        Innsetting innsetting(k_.tilkobling);
        {
            Lesetraad leser(tolker_);
            try {
                for (bool ferdig = false; !ferdig;) {
                    Blokk& b = leser.neste();
                    if (!b.overskrift.isEmpty()) skrivKolonner(b.overskrift, b.overskriftLinje);
                    innsetting.settInn(b.rader.data(), b.antall);
                    linjeNr_ = b.linjeNr;
                    behandlet_ = b.behandlet;
                    stopp = b.feil;
                    ferdig = b.slutt || b.feil;
                    leser.giTilbake(b);
                    if (Klokke::now() >= nesteVisning_) visFremdrift();
                }
            } catch (const ui::Avbrutt&) {
                try {
                    lagre(transaksjon, innsetting);
                } catch (const db::DbFeil&) {
                    // the program is ending; the store keeps the database as it was before the transaction
                }
                throw;
            } catch (const std::exception& e) {
                stopp = QStringLiteral("Importen stoppet ved linje %1 i fila %2: %3.").arg(linjeNr_).arg(fil_, tekst(e));
            }
        }
        k_.vindu.settLabel4(vb::antallTekst(behandlet_));
        try {
            lagre(transaksjon, innsetting);
        } catch (const db::DbFeil& e) {
            return QStringLiteral("Radene fra fila %1 kunne ikke lagres: %2. Databasen er tom.").arg(fil_, tekst(e));
        }
        if (stopp) *stopp += QStringLiteral(" De %1 radene som var lest inn før, er lagret.").arg(innsetting.lagret());
        return stopp;
    }

    int32_t linjer() const { return linjeNr_; }
    // Read once the reader has ended.
    std::optional<QString> hoppetOver() const { return tolker_.hoppetOver(); }

private:
    // Commits the rows, with the store told whether their time follows their order.
    void lagre(db::Transaksjon& transaksjon, const Innsetting& innsetting)
    {
        k_.tilkobling.settTidFolgerId(innsetting.tidFolgerId());
        transaksjon.fullfor();
    }

    void visFremdrift()
    {
        k_.vindu.settLabel4(vb::antallTekst(behandlet_));
        k_.vindu.behandleHendelser();
        nesteVisning_ = Klokke::now() + Fremdriftsintervall;
    }

    // Field 3 always gets its line (replacing the file); later fields only when named.
    void skrivKolonner(const QStringList& felt, int32_t overskriftLinje)
    {
        linjeNr_ = overskriftLinje;
        const QString fil = k_.sti(filer::KolonnerFil);
        for (qsizetype i = 2; i < felt.size(); ++i) {
            const QString linje = filer::kolonneLinje(felt[i], filer::kolonneBokstav(static_cast<int>(i) + 1));
            if (i == 2)
                filer::SkrivTilFil(fil, linje);
            else if (!felt[i].isEmpty())
                filer::SkrivTilFilAppend(fil, linje);
        }
    }

    Kontekst& k_;
    Tolker tolker_;
    const QString fil_;
    int32_t linjeNr_ = 0;    // every line, empty ones included
    int64_t behandlet_ = 0;  // non-empty lines, header included
    Klokke::time_point nesteVisning_ = Klokke::now() + Fremdriftsintervall;
};

Utfall avvis(Kontekst& k, const QString& grunn)
{
    k.dialogs.info(grunn);
    return Utfall::Avvist;
}

} // namespace

Utfall Command2_Click(Kontekst& k)
{
    const QString fil = k.dialogs.velgFil(CsvFilter);
    k.vindu.behandleHendelser();
    if (fil.isEmpty()) {
        VisAntallPoster(k);
        return Utfall::Ferdig;
    }

    std::optional<ui::Opptatt> opptatt(std::in_place, k.vindu);
    std::optional<QString> nei;
    Oversikt oversikt;
    try {
        oversikt = sePaa(fil);
        nei = innvending(oversikt, fil);
    } catch (const filer::FilFeil& e) {
        nei = tekst(e) + QLatin1Char('.');
    }
    if (nei) {
        opptatt.reset();
        return avvis(k, *nei + Uendret);
    }
    if (!k.dialogs.sporJaNei(QStringLiteral("Fila ") + fil + QStringLiteral(" består av ") +
                             vb::antallTekst(oversikt.linjer) + QStringLiteral(" linjer. Vil du starte importen?")))
        return Utfall::Ferdig;

    std::optional<filer::Linjeleser> leser;
    try {
        leser.emplace(fil);
    } catch (const filer::FilFeil& e) {
        nei = tekst(e) + QLatin1Char('.') + Uendret;
    }
    if (!nei) nei = erstattDatabase(k);
    if (nei) {
        opptatt.reset();
        return avvis(k, *nei);
    }

    Innlesing innlesing(k, *leser, fil);
    const std::optional<QString> stopp = innlesing.les();
    leser.reset();
    opptatt.reset();

    filer::LesKolonner(k);
    if (stopp)
        k.dialogs.info(*stopp);
    else
        k.dialogs.melding(QStringLiteral("Antall linjer importert: ") + vb::antallTekst(innlesing.linjer()));
    if (auto hoppet = innlesing.hoppetOver()) k.dialogs.info(*hoppet);
    VisAntallPoster(k);
    return stopp ? Utfall::Avvist : Utfall::Ferdig;
}

} // namespace store
