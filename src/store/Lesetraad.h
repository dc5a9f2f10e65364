// The reading side of the import: a thread that reads and interprets the raw-data file
// stretch by stretch, so that the next lines are ready while the store takes the last ones.
#pragma once

#include "files/Tekstfil.h"
#include "platform/db/Masseinnsetting.h"
#include "store/Radata.h"

#include <QStringList>
#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace store {

// A stretch of the file as the reader hands it over: the rows of its data lines and,
// in the first one, the header's fields.
struct Blokk {
    static constexpr int Linjer = 100 * db::Masseinnsetting::Bunt;
    std::array<Rad, Linjer> rader;
    int antall = 0;
    bool tidFolgerId = true;  // no row has an earlier DatoTid than the row before it, in the stretch before too
    QStringList overskrift;   // cleaned header fields, in the stretch that holds the header
    int32_t overskriftLinje = 0;
    int32_t linjeNr = 0;          // lines read up to the end of this stretch, empty ones included
    int64_t behandlet = 0;        // non-empty lines up to here, the header included
    std::optional<QString> feil;  // reading stopped here
    bool slutt = false;
};

// Lines of one kind that the notice after an import names: how many, and the first ones.
struct Merknader {
    int64_t antall = 0;
    std::vector<QString> forste;  // "linje 7: …"

    void noter(int32_t linjeNr, const QString& hva);
    // The notice's paragraph: the introduction, then the lines named; none when there were none.
    std::optional<QString> avsnitt(const QString& innledning) const;
};

// Reads the lines and interprets them, and notes whether the rows' time follows their order;
// it touches neither window nor store.
class Tolker {
public:
    Tolker(files::Linjeleser& leser, const QString& fil) : leser_(leser), fil_(fil) {}

    // The next stretch of the file.
    void fyll(Blokk& b);
    // The notice about data lines left out (for their field count, or a date, time or number
    // the store cannot take) and numbers too small to be stored, stored as 0.
    std::optional<QString> merknad() const;

private:
    void leggTil(Blokk& b);

    files::Linjeleser& leser_;
    const QString fil_;
    Radatalinje linje_;
    int32_t linjeNr_ = 0;
    int64_t behandlet_ = 0;
    Merknader feltAntall_, uleselig_, forLite_;
    char forrigeTid_[sizeof Rad::datoTid] = {};  // below every date-time before the first row
};

// The reader thread and the stretches passed between it and the store: the reader fills
// free stretches, the caller takes them in file order and gives them back.
class Lesetraad {
public:
    explicit Lesetraad(Tolker& tolker);
    // Stops the reader (also half-way through the file) and waits for it.
    ~Lesetraad();
    Lesetraad(const Lesetraad&) = delete;
    Lesetraad& operator=(const Lesetraad&) = delete;

    Blokk& neste();
    void giTilbake(Blokk& b);

private:
    void kjor();

    Tolker& tolker_;
    std::vector<Blokk> blokker_ = std::vector<Blokk>(4);
    std::deque<Blokk*> ledige_, fulle_;
    std::mutex mutex_;
    std::condition_variable endret_;
    bool stopp_ = false;
    std::thread traad_;
};

}  // namespace store
