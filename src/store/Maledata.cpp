#include "store/Maledata.h"

#include "store/Setninger.h"

namespace store {

QString tittel(long long antall, const QString& versjon)
{
    return QStringLiteral("Tolvik - ") + vb::antallTekst(antall) + QStringLiteral(" poster i databasen  [Versjon: ") +
           versjon + QLatin1Char(']');
}

void VisAntallPoster(Kontekst& k)
{
    long long antall = 0;
    if (k.tilkobling.erApen()) {
        try {
            antall = antallRader(k.tilkobling);  // the count of "Select * from dataLinjer"
        } catch (const db::DbFeil&) {
            antall = 0;  // the start-up message has already said what is wrong with the database
        }
    }
    k.vindu.settTittel(tittel(antall, k.versjon));
}

float HentVerdi(const QString& Kolonne, const db::Recordset& Poster)
{
    static const QStringList Lest = {QStringLiteral("C"), QStringLiteral("D"), QStringLiteral("E"),
                                     QStringLiteral("F"), QStringLiteral("G"), QStringLiteral("H")};
    if (!Lest.contains(Kolonne, Qt::CaseSensitive)) return 0.0f;
    const QByteArray navn = Kolonne.toLatin1();
    const int k = Poster.kolonne(std::string_view(navn.constData(), static_cast<size_t>(navn.size())));
    return Poster.erNull(k) ? 0.0f : vb::enkel(Poster.tall(k));
}

}  // namespace store
