#include "export/Eksport.h"

#include "files/Tekstfil.h"

#include <QDir>

namespace eksport {

vb::Dato SnuPunkter::syklus(int k) const
{
    if (k < 1 || k > tekster_.size())
        throw vb::Feil(QStringLiteral("Syklus %1 har ikke noe snupunkt").arg(k).toStdString());
    return vb::Dato::fraGenerellTekst(tekster_[k - 1]);
}

std::optional<SnuPunkter> forberedEksport(Kontekst& k)
{
    const QString snupunkter = k.sti(SnuPunktFil);
    if (!filer::FilFinnes(snupunkter)) {
        k.dialogs.info(QStringLiteral("Du må først finne antall sykluser"));
        return std::nullopt;
    }
    SnuPunkter liste(filer::HentFraFil(snupunkter).split(QLatin1Char('!')));
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(QStringLiteral("Ingen data importert"));
        return std::nullopt;
    }
    const QString ut = k.sti(UtMappe);
    if (!filer::MappeFinnes(ut) && !QDir().mkdir(ut))
        throw vb::Feil(QStringLiteral("Kan ikke lage mappen %1").arg(ut).toStdString());
    return liste;
}

QString antallRun(const ui::Vindu& vindu)
{
    return vb::tekst(vb::tall(vindu.tekst(ui::Boks::Text6)) - vb::tall(vindu.tekst(ui::Boks::Text4)) + 1);
}

QString sporPrefiks(Kontekst& k)
{
    return k.dialogs.inndata(QStringLiteral("Angi filnavn"), QStringLiteral("Filnavn"),
                             vb::dagensDatoTekst() + QLatin1Char('_'));
}

QString utFil(const Kontekst& k, const QString& navn) { return k.sti(UtMappe) + QLatin1Char('/') + navn; }

vb::Dato dataStart(Kontekst& k)
{
    auto poster = k.tilkobling.spor(QStringLiteral("Select * from Datalinjer where ID = (Select Min(ID) from Datalinjer)"));
    if (poster.eof()) throw vb::Feil("Tabellen er tom");
    return poster.dato("DatoTid");
}

QString fremdrift(long long rad, int syklus)
{
    return vb::antallTekst(rad) + QStringLiteral(" (Run ") + QString::number(syklus) + QLatin1Char(')');
}

double startForskyvning(const vb::Dato& start, const vb::Dato& t)
{
    return static_cast<double>(vb::sekunderMellom(start, t)) / 60.0;
}

} // namespace eksport
