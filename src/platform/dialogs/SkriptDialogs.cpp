#include "platform/dialogs/SkriptDialogs.h"

#include <algorithm>

namespace dialogs {

QStringList SkriptDialogs::meldinger() const
{
    QStringList ut;
    for (const auto& d : dialoger_)
        if (d.type == Type::Melding) ut << d.tekst;
    return ut;
}

SkriptDialogs::Svaret SkriptDialogs::neste(Sporsmal::Art art, const QString& tekst, const QString& tittel)
{
    auto it = std::find_if(svar_.begin(), svar_.end(),
                           [&](const Oppfort& o) { return o.sporsmal && o.sporsmal->stilles(art, tekst, tittel); });
    if (it == svar_.end()) it = std::find_if(svar_.begin(), svar_.end(), [](const Oppfort& o) { return !o.sporsmal; });
    if (it == svar_.end()) throw UbesvartSporsmal{tekst};
    Svaret s = std::move(it->svar);
    svar_.erase(it);
    return s;
}

Svar SkriptDialogs::melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel)
{
    dialoger_.push_back({Type::Melding, tekst, tittel, {}, knapper, ikon});
    if (vedMelding) vedMelding(tekst);
    if (knapper == Knapper::Ok) return Svar::Ok;
    const Svaret s = neste(Sporsmal::Art::JaNei, tekst, tittel);
    const auto* svar = std::get_if<Svar>(&s);
    if (!svar || *svar == Svar::Ok) throw UbesvartSporsmal{tekst};
    return *svar;
}

QString SkriptDialogs::inndata(const QString& sporsmal, const QString& tittel, const QString& forslag)
{
    dialoger_.push_back({Type::Inndata, sporsmal, tittel, forslag});
    const Svaret s = neste(Sporsmal::Art::Inndata, sporsmal, tittel);
    if (std::holds_alternative<Forslag>(s)) return forslag;
    if (const auto* tekst = std::get_if<QString>(&s)) return *tekst;
    throw UbesvartSporsmal{sporsmal};
}

QString SkriptDialogs::velgFil(const QString& filter)
{
    dialoger_.push_back({Type::Fil, filter, {}, {}});
    const Svaret s = neste(Sporsmal::Art::Fil, filter, ProgramTittel);
    if (const auto* sti = std::get_if<QString>(&s)) return *sti;
    throw UbesvartSporsmal{filter};
}

void SkriptDialogs::feilGrunn(const QString& grunn)
{
    grunner_ << grunn;
    if (vedGrunn) vedGrunn(grunn);
}

}  // namespace dialogs
