#include "files/Oppsett.h"

#include "files/Tekstfil.h"

namespace files {

void LesOppsett(Kontekst& k)
{
    const QString fil = k.sti(OppsettFil);
    if (!FilFinnes(fil)) return;
    const QStringList felt = HentFraFil(fil).split(QLatin1Char('!'));
    if (felt.size() < 5) return;
    for (int i = 0; i < 6 && i < felt.size(); ++i) k.vindu.settTekst(dialogs::Innstillinger[i].boks, felt[i]);
}

QString oppsettLinje(const dialogs::Vindu& vindu)
{
    QStringList felt;
    for (const dialogs::Innstilling& i : dialogs::Innstillinger) felt << vindu.tekst(i.boks);
    return felt.join(QLatin1Char('!'));
}

void LesKolonner(Kontekst& k)
{
    k.vindu.settKolonner({});
    const QString fil = k.sti(KolonnerFil);
    if (!FilFinnes(fil)) return;
    QStringList linjer;
    try {
        Linjeleser leser(fil);
        for (std::string_view linje; leser.neste(linje);) linjer << latin1(linje);
    } catch (const FilFeil&) {
        return;  // an unreadable column list leaves the chooser empty, as a missing one does
    }
    k.vindu.settKolonner(linjer);
    if (const qsizetype i = forsteCo2(linjer); i >= 0) k.vindu.velgKolonne(static_cast<int>(i));
}

qsizetype forsteCo2(const QStringList& linjer)
{
    for (qsizetype i = 0; i < linjer.size(); ++i)
        if (linjer[i].contains(QStringLiteral("CO2"))) return i;
    return -1;
}

QString kolonneBokstav(int posisjon)
{
    static const QString Bokstaver = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZÆØÅ");
    return posisjon >= 1 && posisjon <= Bokstaver.size() ? QString(Bokstaver[posisjon - 1]) : QString();
}

QString kolonneLinje(const QString& navn, const QString& bokstav)
{
    return navn + QString(20, QLatin1Char(' ')) + QLatin1Char('[') + bokstav + QLatin1Char(']');
}

QStringList kolonneLinjer(const QStringList& overskrift)
{
    QStringList linjer;
    for (qsizetype i = 2; i < overskrift.size(); ++i)
        if (i == 2 || !overskrift[i].isEmpty())
            linjer << kolonneLinje(overskrift[i], kolonneBokstav(static_cast<int>(i) + 1));
    return linjer;
}

}  // namespace files
