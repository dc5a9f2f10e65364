#include "export/Graftittel.h"

#include "export/Eksport.h"
#include "files/Tekstfil.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <functional>

namespace exports {

namespace {

// Opens a template, lets endre work on it and saves it in place. When anything fails on the
// way the workbook is dropped unsaved, so the template stays as it was; feil (when given) is
// then shown in a plain box.
Utfall redigerMal(Kontekst& k, const QString& navn, const std::function<void(xlsx::Arbeidsbok&)>& endre,
                  const QString& feil)
{
    const QString mal = k.sti(navn);
    if (!files::FilFinnes(mal)) {
        k.dialogs.info(QStringLiteral("Malfila finnes ikke"));
        return Utfall::Avvist;
    }
    try {
        dialogs::Opptatt opptatt(k.vindu);
        const auto bok = xlsx::apne(mal);
        endre(*bok);
        bok->lagre();
        return Utfall::Ferdig;
    } catch (const std::exception& e) {
        if (!feil.isEmpty()) k.dialogs.melding(feil, dialogs::Knapper::Ok, dialogs::Ikon::Ingen);
        k.dialogs.feilGrunn(e);
        return Utfall::Avvist;
    }
}

// Asks for the chart's new title, proposing the current one, and sets it (empty as given).
void sporOgSettTittel(Kontekst& k, xlsx::Diagram& diagram)
{
    diagram.settTittel(k.dialogs.inndata(SporTittel, diagram.tittel()));
}

}  // namespace

Utfall Command4_Click(Kontekst& k)
{
    return redigerMal(
        k, samleMal(k.vindu),
        [&k](xlsx::Arbeidsbok& bok) {
            sporOgSettTittel(k, bok.ark(2).diagram(1));
            bok.ark(1).settCelle(1, 3, QStringLiteral("Cycle nr.1"));
        },
        QString());
}

Utfall Command9_Click(Kontekst& k)
{
    return redigerMal(
        k, MalSykluser,
        [&k](xlsx::Arbeidsbok& bok) {
            xlsx::Arbeidsark& grafer = bok.ark(2);
            xlsx::Diagram& forste = grafer.diagram(1);
            sporOgSettTittel(k, forste);
            grafer.diagram(2).settTittel(forste.tittel());
            bok.ark(1).settCelle(1, 1, QStringLiteral("Time&Date"));
        },
        QStringLiteral("Feil"));
}

}  // namespace exports
