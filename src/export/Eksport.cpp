#include "export/Eksport.h"

#include "files/Tekstfil.h"
#include "store/Setninger.h"

#include <QDir>
#include <QFile>

namespace exports {

Forberedt forberedEksport(Kontekst& k, const dialogs::Sporsmal& sporsmal)
{
    std::optional<files::SnuPunkter> liste = analysis::lesSnupunkter(k);
    if (!liste) return {std::nullopt, Utfall::Avvist};
    const QString ut = k.sti(UtMappe);
    if (!files::MappeFinnes(ut) && !QDir().mkdir(ut))
        throw vb::Feil(QStringLiteral("Kan ikke lage mappen %1").arg(ut).toStdString());
    const double antall = vb::tall(k.vindu.sisteSyklus()) - vb::tall(k.vindu.forsteSyklus()) + 1;
    if (!k.dialogs.sporJaNei(sporsmal.tekst.arg(vb::tekst(antall)))) return {};
    return {std::move(liste), Utfall::Ferdig};
}

namespace {

// Feil unless navn can name a file in Data_Bearbeidet: no path or reserved characters, and room
// left in the file system's 255 bytes of a name for what an export puts after a prefix.
void kontrollerFilnavn(const QString& navn, qsizetype plassEtter)
{
    static const QString Ulovlige = QStringLiteral("\\/:*?\"<>|");
    for (const QChar c : navn)
        if (c.unicode() < 0x20 || Ulovlige.contains(c))
            throw vb::Feil(QStringLiteral("Ugyldig filnavn: %1 (tegnet «%2» kan ikke stå i et filnavn)")
                               .arg(navn, c.unicode() < 0x20
                                              ? QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'))
                                              : QString(c))
                               .toStdString());
    if (QFile::encodeName(navn).size() + plassEtter > 255)
        throw vb::Feil(QStringLiteral("Ugyldig filnavn: %1 (for langt)").arg(navn).toStdString());
}

// The longest ending an export puts after the prefix: "_Samlefil_32767.xlsx".
constexpr qsizetype LengsteEtterPrefiks = 20;

}  // namespace

QString sporPrefiks(Kontekst& k)
{
    const QString prefiks = k.dialogs.inndata(SporPrefiks, vb::dagensDatoTekst() + QLatin1Char('_'));
    kontrollerFilnavn(prefiks, LengsteEtterPrefiks);
    return prefiks;
}

QString utFil(const Kontekst& k, const QString& navn)
{
    kontrollerFilnavn(navn, 0);
    return iMappe(k.sti(UtMappe), navn);
}

vb::Dato dataStart(Kontekst& k)
{
    const std::optional<vb::Dato> start = store::forsteTid(k.tilkobling);
    if (!start) throw vb::Feil("Tabellen er tom");
    return *start;
}

Utfall eksportFeil(Kontekst& k, const std::exception& e)
{
    k.dialogs.info(FeilMelding);
    k.dialogs.feilGrunn(e);
    return Utfall::Avvist;
}

QString fremdrift(long long rad, int syklus)
{
    return vb::antallTekst(rad) + QStringLiteral(" (Run ") + QString::number(syklus) + QLatin1Char(')');
}

Fremdrift::Fremdrift(dialogs::Vindu& vindu, int syklus) : vindu_(vindu), syklus_(syklus) {}

Fremdrift::~Fremdrift()
{
    if (rad_ >= 0) vindu_.settLabel4(fremdrift(rad_, syklus_));
}

bool Fremdrift::rad(long long rad)
{
    rad_ = rad;
    // The clock is read at every 32nd row only: an export writes rows by the hundred thousand.
    if (klokke_.isValid() && (++rader_ % 32 != 0 || klokke_.elapsed() < 50)) return false;
    vindu_.settLabel4(fremdrift(rad_, syklus_));
    vindu_.behandleHendelser();
    klokke_.start();
    return true;
}

void Udekket::merk(int syklus, int sisteRad, int dekket, const QString& fil)
{
    if (sisteRad <= dekket) return;
    linjer_ << QStringLiteral("Syklus %1: rad %2–%3 i %4")
                   .arg(QString::number(syklus), QString::number(dekket + 1), QString::number(sisteRad), fil);
}

void Udekket::vis(dialogs::Dialogs& dialogs) const
{
    if (linjer_.isEmpty()) return;
    dialogs.info(QStringLiteral("Malens diagrammer viser ikke alle radene som ble skrevet (diagramområdet er "
                                "ikke én sammenhengende blokk og kan ikke utvides):\n") +
                 linjer_.join(QLatin1Char('\n')));
}

double startForskyvning(const vb::Dato& start, const vb::Dato& t)
{
    return static_cast<double>(vb::sekunderMellom(start, t)) / 60.0;
}

Bakgrunnslagring::Bakgrunnslagring() : traad_([this] { kjor(); }) {}

Bakgrunnslagring::~Bakgrunnslagring()
{
    {
        std::lock_guard laas(mutex_);
        slutt_ = true;
    }
    endret_.notify_all();
    traad_.join();
}

void Bakgrunnslagring::kjor()
{
    std::unique_lock laas(mutex_);
    for (;;) {
        endret_.wait(laas, [this] { return slutt_ || !ko_.empty(); });
        if (ko_.empty()) return;
        Bok& neste = ko_.front();
        laas.unlock();
        std::exception_ptr feil;
        try {
            neste.bok->lagreSom(neste.sti);
        } catch (...) {
            feil = std::current_exception();
        }
        laas.lock();
        // A failed save gives up the ones after it, which may depend on it.
        do {
            ferdige_.push_back(std::move(ko_.front()));
            ko_.pop_front();
        } while (feil && !ko_.empty());
        if (feil) feil_ = feil;
        endret_.notify_all();
    }
}

void Bakgrunnslagring::lagreSom(std::unique_ptr<xlsx::Arbeidsbok> bok, const QString& sti)
{
    vent();
    lagreDeretter(std::move(bok), sti);
}

void Bakgrunnslagring::lagreDeretter(std::unique_ptr<xlsx::Arbeidsbok> bok, const QString& sti)
{
    // The formulas are computed here, by the thread that fills the workbooks: it waits for the
    // saves more than they wait for it.
    bok->beregn();
    {
        std::lock_guard laas(mutex_);
        if (feil_) return;  // an earlier save failed: vent() says so
        ko_.push_back({std::move(bok), sti});
    }
    endret_.notify_all();
}

void Bakgrunnslagring::vent()
{
    std::vector<Bok> lagret;
    std::exception_ptr feil;
    {
        std::unique_lock laas(mutex_);
        endret_.wait(laas, [this] { return ko_.empty(); });
        lagret = std::move(ferdige_);
        ferdige_.clear();
        feil = std::exchange(feil_, nullptr);
    }
    // The workbooks are freed here, by the thread that made them: freeing their many small pieces
    // from the other thread made both threads wait on the memory allocator.
    lagret.clear();
    if (feil) std::rethrow_exception(feil);
}

Utfall Bakgrunnslagring::stoppet(const std::exception& e, const std::function<Utfall(const std::exception&)>& vis)
{
    try {
        vent();
    } catch (const std::exception& forst) {
        return vis(forst);
    }
    return vis(e);
}

}  // namespace exports
