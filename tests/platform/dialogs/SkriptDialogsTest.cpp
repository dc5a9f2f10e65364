// Scripted dialogs: answers found by the question they answer, whatever order the command asks in.
#include "platform/dialogs/SkriptDialogs.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace dialogs;
using Art = Sporsmal::Art;

TEST(Sporsmal, KjennerIgjenTekstMedVerdierFyltInn)
{
    const Sporsmal import{Art::JaNei, u"Fila %1 består av %2 linjer. Vil du starte importen?"_s};
    const QString a = u"Fila a.csv består av 3 linjer. Vil du starte importen?"_s;
    const struct {
        Art art;
        QString tekst, tittel;
        bool stilles;
    } tilfeller[] = {
        {Art::JaNei, u"Fila C:\\a (1)+[x].csv består av  54 001 linjer. Vil du starte importen?"_s, ProgramTittel,
         true},
        {Art::JaNei, u"Fila %1 består av 3 linjer. Vil du starte importen?"_s, ProgramTittel, true},
        {Art::JaNei, a, ProgramTittel, true},
        // Only the values may differ: not the line breaks, the kind of box, the title or a character more.
        {Art::JaNei, QString(a).replace(u". "_s, u".\n"_s), ProgramTittel, false},
        {Art::Inndata, a, ProgramTittel, false},
        {Art::JaNei, a, u"Import"_s, false},
        {Art::JaNei, a + ' ', ProgramTittel, false},
    };
    for (const auto& t : tilfeller)
        EXPECT_EQ(import.stilles(t.art, t.tekst, t.tittel), t.stilles) << t.tekst.toStdString();
}

TEST(SkriptDialogs, SvarGarTilSporsmaletDeGjelder)
{
    const Sporsmal start{Art::Inndata, u"Start søking etter X minutter"_s, u"Start søking"_s};
    const Sporsmal terskel{Art::Inndata, u"Den minste verdien er %1. Oppgi:"_s, u"Minste verdi"_s};
    const Sporsmal ja{Art::JaNei, u"Det ble funnet %1 sykluser."_s};
    SkriptDialogs d;
    Dialogs& boks = d;  // the boxes as a command shows them
    // Given in another order than asked, and with an answer for what is next whatever it asks.
    d.svar(ja, Svar::Nei);
    d.svar(terskel, SkriptDialogs::Forslag{});
    d.svar(u"neste"_s);
    d.svar(start, u"50"_s);
    EXPECT_EQ(d.inndata(u"Start søking etter X minutter"_s, u"Start søking"_s, u"230"_s), u"50"_s);
    EXPECT_EQ(d.inndata(u"Den minste verdien er 0,5. Oppgi:"_s, u"Minste verdi"_s, u"7"_s), u"7"_s);
    EXPECT_EQ(d.inndata(u"Noe annet"_s, u"Tittel"_s, QString()), u"neste"_s);
    EXPECT_EQ(boks.melding(u"Det ble funnet 3 sykluser."_s, Knapper::JaNei, Ikon::Sporsmal), Svar::Nei);
    EXPECT_FALSE(d.ubrukteSvar());

    // A question nobody answered, or an answer of the wrong kind, fails loudly; an OK box needs none.
    EXPECT_EQ(boks.melding(u"Ferdig"_s), Svar::Ok);
    EXPECT_THROW(boks.melding(u"Det ble funnet 3 sykluser."_s, Knapper::JaNei, Ikon::Sporsmal), UbesvartSporsmal);
    d.svar(ja, u"tekst"_s);
    EXPECT_THROW(boks.melding(u"Det ble funnet 4 sykluser."_s, Knapper::JaNei, Ikon::Sporsmal), UbesvartSporsmal);
    d.svar(start, Svar::Ja);
    EXPECT_THROW(d.inndata(start.tekst, start.tittel, QString()), UbesvartSporsmal);
    EXPECT_THROW(d.velgFil(u"CSV-filer (*.CSV)|*.CSV"_s), UbesvartSporsmal);
    EXPECT_EQ(d.meldinger().size(), 4);
}
