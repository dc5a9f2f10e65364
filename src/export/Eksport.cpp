#include "export/Eksport.h"

#include "files/Tekstfil.h"
#include "store/Maledata.h"

#include <QDir>

namespace eksport {

vb::Dato SnuPunkter::syklus(int k) const
{
    if (k < 1 || k > tekster_.size())
        throw vb::Feil(QStringLiteral("Syklus %1 har ikke noe snupunkt").arg(k).toStdString());
    return vb::Dato::fraGenerellTekst(tekster_[k - 1]);
}

Forberedt forberedEksport(Kontekst& k, const QString& sporsmal)
{
    const QString snupunkter = k.sti(SnuPunktFil);
    if (!filer::FilFinnes(snupunkter)) {
        k.dialogs.info(QStringLiteral("Du må først finne antall sykluser"));
        return {std::nullopt, Utfall::Avvist};
    }
    SnuPunkter liste(filer::HentFraFil(snupunkter).split(QLatin1Char('!')));
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(QStringLiteral("Ingen data importert"));
        return {std::nullopt, Utfall::Avvist};
    }
    const QString ut = k.sti(UtMappe);
    if (!filer::MappeFinnes(ut) && !QDir().mkdir(ut))
        throw vb::Feil(QStringLiteral("Kan ikke lage mappen %1").arg(ut).toStdString());
    const double antall = vb::tall(k.vindu.tekst(ui::Boks::Text6)) - vb::tall(k.vindu.tekst(ui::Boks::Text4)) + 1;
    if (!k.dialogs.sporJaNei(sporsmal + vb::tekst(antall) + QStringLiteral(" run?"))) return {};
    return {std::move(liste), Utfall::Ferdig};
}

QString sporPrefiks(Kontekst& k)
{
    return k.dialogs.inndata(QStringLiteral("Angi filnavn"), QStringLiteral("Filnavn"),
                             vb::dagensDatoTekst() + QLatin1Char('_'));
}

QString utFil(const Kontekst& k, const QString& navn)
{
    static const QString Ulovlige = QStringLiteral("\\/:*?\"<>|");
    for (const QChar c : navn)
        if (c.unicode() < 0x20 || Ulovlige.contains(c))
            throw vb::Feil(QStringLiteral("Ugyldig filnavn: %1").arg(navn).toStdString());
    return k.sti(UtMappe) + QLatin1Char('/') + navn;
}

vb::Dato dataStart(Kontekst& k)
{
    auto poster = k.tilkobling.spor(QStringLiteral("Select * from Datalinjer where ID = (Select Min(ID) from Datalinjer)"));
    if (poster.eof()) throw vb::Feil("Tabellen er tom");
    return poster.dato("DatoTid");
}

db::Recordset vinduRader(Kontekst& k, const char* fraOp, const vb::Dato& fra, const vb::Dato& til)
{
    return k.tilkobling.spor(QStringLiteral("Select * from Datalinjer where ") + store::tidsvilkar(fraOp, fra) +
                             QStringLiteral(" and ") + store::tidsvilkar("<=", til) + QStringLiteral(" order by ID"));
}

QString fremdrift(long long rad, int syklus)
{
    return vb::antallTekst(rad) + QStringLiteral(" (Run ") + QString::number(syklus) + QLatin1Char(')');
}

Fremdrift::Fremdrift(ui::Vindu& vindu, int syklus) : vindu_(vindu), syklus_(syklus) { klokke_.start(); }

Fremdrift::~Fremdrift()
{
    if (rad_ >= 0) vindu_.settLabel4(fremdrift(rad_, syklus_));
}

void Fremdrift::rad(long long rad)
{
    rad_ = rad;
    if (klokke_.elapsed() < 50) return;
    vindu_.settLabel4(fremdrift(rad_, syklus_));
    vindu_.behandleHendelser();
    klokke_.restart();
}

double startForskyvning(const vb::Dato& start, const vb::Dato& t)
{
    return static_cast<double>(vb::sekunderMellom(start, t)) / 60.0;
}

} // namespace eksport
