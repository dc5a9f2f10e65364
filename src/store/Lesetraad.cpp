#include "store/Lesetraad.h"

#include <cstring>

namespace store {

namespace {

constexpr size_t VisteHopp = 10;  // skipped lines named in the notice

}  // namespace

void Tolker::fyll(Blokk& b)
{
    b.antall = 0;
    b.tidFolgerId = true;
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
            linje_.les(raa);
            if (behandlet_++ == 0) {
                for (std::string_view f : linje_.felt()) b.overskrift << files::latin1(f);
                b.overskriftLinje = linjeNr_;
            } else if (!linje_.erDatalinje()) {
                feltAntall_.noter(linjeNr_, QStringLiteral("%1 felt").arg(linje_.felt().size()));
            } else if (const auto hopp = linje_.tolk(b.rader[static_cast<size_t>(b.antall)])) {
                uleselig_.noter(linjeNr_, hoppTekst(*hopp));
            } else {
                if (!linje_.forLite().empty())
                    forLite_.noter(linjeNr_, QStringLiteral("«%1»").arg(files::latin1(linje_.forLite())));
                leggTil(b);
            }
        }
    } catch (const files::FilFeil& e) {
        b.feil = QStringLiteral("Importen stoppet ved linje %1 i fila %2: %3.")
                     .arg(QString::number(linjeNr_ + 1), fil_, QString::fromStdString(e.what()));
    }
    b.linjeNr = linjeNr_;
    b.behandlet = behandlet_;
}

void Merknader::noter(int32_t linjeNr, const QString& hva)
{
    if (forste.size() < VisteHopp) forste.push_back(QStringLiteral("linje %1: ").arg(linjeNr) + hva);
    ++antall;
}

std::optional<QString> Merknader::avsnitt(const QString& innledning) const
{
    if (antall == 0) return std::nullopt;
    QString t = innledning;
    for (const QString& linje : forste) t += QLatin1Char('\n') + linje;
    if (antall > static_cast<int64_t>(forste.size()))
        t += QStringLiteral("\n(bare de første %1 er vist)").arg(forste.size());
    return t;
}

std::optional<QString> Tolker::merknad() const
{
    QStringList avsnitt;
    // The introduction in the singular for one line (en), else in the plural (flere).
    const auto legg = [&](const Merknader& m, const QString& en, const QString& flere) {
        if (auto a = m.avsnitt((m.antall == 1 ? en : flere).arg(QString::number(m.antall), fil_))) avsnitt << *a;
    };
    legg(feltAntall_, QStringLiteral("%1 datalinje i fila %2 er hoppet over fordi den ikke har 4 til 13 felt:"),
         QStringLiteral("%1 datalinjer i fila %2 er hoppet over fordi de ikke har 4 til 13 felt:"));
    legg(
        uleselig_,
        QStringLiteral("%1 datalinje i fila %2 er hoppet over fordi dato, klokkeslett eller et tall ikke kan leses:"),
        QStringLiteral("%1 datalinjer i fila %2 er hoppet over fordi dato, klokkeslett eller et tall ikke kan leses:"));
    legg(forLite_, QStringLiteral("%1 datalinje i fila %2 har tall som er for små til å lagres; de er lagret som 0:"),
         QStringLiteral("%1 datalinjer i fila %2 har tall som er for små til å lagres; de er lagret som 0:"));
    if (avsnitt.isEmpty()) return std::nullopt;
    return avsnitt.join(QStringLiteral("\n\n"));
}

// Takes the row just read into the stretch.
void Tolker::leggTil(Blokk& b)
{
    const Rad& rad = b.rader[static_cast<size_t>(b.antall++)];
    if (std::memcmp(rad.datoTid, forrigeTid_, sizeof forrigeTid_) < 0) b.tidFolgerId = false;
    std::memcpy(forrigeTid_, rad.datoTid, sizeof forrigeTid_);
}

Lesetraad::Lesetraad(Tolker& tolker) : tolker_(tolker)
{
    for (auto& b : blokker_) ledige_.push_back(&b);
    traad_ = std::thread([this] { kjor(); });
}

Lesetraad::~Lesetraad()
{
    {
        std::lock_guard laas(mutex_);
        stopp_ = true;
    }
    endret_.notify_all();
    traad_.join();
}

Blokk& Lesetraad::neste()
{
    std::unique_lock laas(mutex_);
    endret_.wait(laas, [this] { return !fulle_.empty(); });
    Blokk* b = fulle_.front();
    fulle_.pop_front();
    return *b;
}

void Lesetraad::giTilbake(Blokk& b)
{
    {
        std::lock_guard laas(mutex_);
        ledige_.push_back(&b);
    }
    endret_.notify_all();
}

void Lesetraad::kjor()
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

}  // namespace store
