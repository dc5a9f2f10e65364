// Scripted dialogs: answers found by the question they answer, whatever order the command asks in;
// and the real boxes: a box asked in the middle of a busy command shows the normal pointer.
#include "platform/dialogs/QtDialogs.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

using namespace dialogs;
using Art = Sporsmal::Art;

TEST(Sporsmal, KjennerIgjenTekstMedVerdierFyltInn)
{
    const Sporsmal import{Art::JaNei, QStringLiteral("Fila %1 består av %2 linjer. Vil du starte importen?")};
    const QString a = QStringLiteral("Fila a.csv består av 3 linjer. Vil du starte importen?");
    const struct {
        Art art;
        QString tekst, tittel;
        bool stilles;
    } tilfeller[] = {
        {Art::JaNei, QStringLiteral("Fila C:\\a (1)+[x].csv består av  54 001 linjer. Vil du starte importen?"),
         ProgramTittel, true},
        {Art::JaNei, QStringLiteral("Fila %1 består av 3 linjer. Vil du starte importen?"), ProgramTittel, true},
        {Art::JaNei, a, ProgramTittel, true},
        // Only the values may differ: not the line breaks, the kind of box, the title or a character more.
        {Art::JaNei, QString(a).replace(QStringLiteral(". "), QStringLiteral(".\n")), ProgramTittel, false},
        {Art::Inndata, a, ProgramTittel, false},
        {Art::JaNei, a, QStringLiteral("Import"), false},
        {Art::JaNei, a + ' ', ProgramTittel, false},
    };
    for (const auto& t : tilfeller)
        EXPECT_EQ(import.stilles(t.art, t.tekst, t.tittel), t.stilles) << t.tekst.toStdString();
}

TEST(SkriptDialogs, SvarGarTilSporsmaletDeGjelder)
{
    const Sporsmal start{Art::Inndata, QStringLiteral("Start søking etter X minutter"), QStringLiteral("Start søking")};
    const Sporsmal terskel{Art::Inndata, QStringLiteral("Den minste verdien er %1. Oppgi:"),
                           QStringLiteral("Minste verdi")};
    const Sporsmal ja{Art::JaNei, QStringLiteral("Det ble funnet %1 sykluser.")};
    SkriptDialogs d;
    Dialogs& boks = d;  // the boxes as a command shows them
    // Given in another order than asked, and with an answer for what is next whatever it asks.
    d.svar(ja, Svar::Nei);
    d.svar(terskel, SkriptDialogs::Forslag{});
    d.svar(QStringLiteral("neste"));
    d.svar(start, QStringLiteral("50"));
    EXPECT_EQ(d.inndata(QStringLiteral("Start søking etter X minutter"), QStringLiteral("Start søking"),
                        QStringLiteral("230")),
              QStringLiteral("50"));
    EXPECT_EQ(d.inndata(QStringLiteral("Den minste verdien er 0,5. Oppgi:"), QStringLiteral("Minste verdi"),
                        QStringLiteral("7")),
              QStringLiteral("7"));
    EXPECT_EQ(d.inndata(QStringLiteral("Noe annet"), QStringLiteral("Tittel"), QString()), QStringLiteral("neste"));
    EXPECT_EQ(boks.melding(QStringLiteral("Det ble funnet 3 sykluser."), Knapper::JaNei, Ikon::Sporsmal), Svar::Nei);
    EXPECT_FALSE(d.ubrukteSvar());

    // A question nobody answered, or an answer of the wrong kind, fails loudly; an OK box needs none.
    EXPECT_EQ(boks.melding(QStringLiteral("Ferdig")), Svar::Ok);
    EXPECT_THROW(boks.melding(QStringLiteral("Det ble funnet 3 sykluser."), Knapper::JaNei, Ikon::Sporsmal),
                 UbesvartSporsmal);
    d.svar(ja, QStringLiteral("tekst"));
    EXPECT_THROW(boks.melding(QStringLiteral("Det ble funnet 4 sykluser."), Knapper::JaNei, Ikon::Sporsmal),
                 UbesvartSporsmal);
    d.svar(start, Svar::Ja);
    EXPECT_THROW(d.inndata(start.tekst, start.tittel, QString()), UbesvartSporsmal);
    EXPECT_THROW(d.velgFil(QStringLiteral("CSV-filer (*.CSV)|*.CSV")), UbesvartSporsmal);
    EXPECT_EQ(d.meldinger().size(), 4);
}

TEST(QtDialogs, BoksSomMaBesvaresHarVanligPeker)
{
    QWidget eier;
    QtDialogs dialogs(&eier);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    std::vector<Qt::CursorShape> underBoksen;
    const auto lukkNesteBoks = [&] {
        QTimer::singleShot(0, [&] {
            underBoksen.push_back(QApplication::overrideCursor()->shape());
            QApplication::activeModalWidget()->close();
        });
    };
    lukkNesteBoks();
    dialogs.sporJaNei(QStringLiteral("Vil du starte importen?"));
    lukkNesteBoks();
    dialogs.inndata(QStringLiteral("Minste verdi"), ProgramTittel, QStringLiteral("1"));
    EXPECT_EQ(underBoksen, (std::vector{Qt::ArrowCursor, Qt::ArrowCursor}));
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QApplication::restoreOverrideCursor();
}
