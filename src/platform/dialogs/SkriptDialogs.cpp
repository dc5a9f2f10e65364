#include "platform/dialogs/SkriptDialogs.h"

namespace ui {

QStringList SkriptDialogs::meldinger() const
{
    QStringList ut;
    for (const auto& d : dialoger_)
        if (d.type == Type::Melding) ut << d.tekst;
    return ut;
}

SkriptDialogs::Svaret SkriptDialogs::neste(const QString& sporsmal)
{
    if (svar_.empty()) throw UbesvartSporsmal{sporsmal};
    Svaret s = std::move(svar_.front());
    svar_.pop_front();
    return s;
}

Svar SkriptDialogs::melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel)
{
    dialoger_.push_back({Type::Melding, tekst, tittel, {}, knapper, ikon});
    if (vedMelding) vedMelding(tekst);
    if (knapper == Knapper::Ok) return Svar::Ok;
    const Svaret s = neste(tekst);
    const auto* svar = std::get_if<Svar>(&s);
    if (!svar || *svar == Svar::Ok) throw UbesvartSporsmal{tekst};
    return *svar;
}

QString SkriptDialogs::inndata(const QString& sporsmal, const QString& tittel, const QString& forslag)
{
    dialoger_.push_back({Type::Inndata, sporsmal, tittel, forslag});
    const Svaret s = neste(sporsmal);
    if (std::holds_alternative<Forslag>(s)) return forslag;
    if (const auto* tekst = std::get_if<QString>(&s)) return *tekst;
    throw UbesvartSporsmal{sporsmal};
}

QString SkriptDialogs::velgFil(const QString& filter)
{
    dialoger_.push_back({Type::Fil, filter, {}, {}});
    const Svaret s = neste(filter);
    if (const auto* sti = std::get_if<QString>(&s)) return *sti;
    throw UbesvartSporsmal{filter};
}

} // namespace ui
