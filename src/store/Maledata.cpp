#include "store/Maledata.h"

namespace store {

void lagTomDatabase(const QString& fil)
{
    db::Database d;
    d.lag(fil);
    d.utforSqlite("CREATE TABLE DataLinjer ("
                  " ID INTEGER PRIMARY KEY, DatoTid TEXT, DatoTid_Tekst TEXT,"
                  " C REAL, D REAL, E REAL, F REAL, G REAL, H REAL, I REAL, J REAL, K REAL, L REAL);"
                  "CREATE INDEX DataLinjer_DatoTid ON DataLinjer (DatoTid);");
}

void apneMaledata(db::Database& tilkobling, const QString& fil)
{
    tilkobling.aapne(fil);
    try {
        tilkobling.utforSqlite("SELECT ID, DatoTid, DatoTid_Tekst, C, L FROM DataLinjer LIMIT 0");
    } catch (const db::DbFeil&) {
        tilkobling.lukk();
        throw db::DbFeil(QStringLiteral("Kan ikke åpne databasen %1: den har ingen tabell DataLinjer").arg(fil).toStdString());
    }
}

QString tidsvilkar(const char* op, const vb::Dato& tid)
{
    return QStringLiteral("format(DatoTid, 'YYYYMMDDHHNNSS') ") + QLatin1String(op) + QStringLiteral(" '") +
           tid.tidsnokkel() + QLatin1Char('\'');
}

QString tittel(long long antall, const QString& versjon)
{
    return QStringLiteral("Tolvik - ") + vb::antallTekst(antall) + QStringLiteral(" poster i databasen  [Versjon: ") +
           versjon + QLatin1Char(']');
}

long long antallRader(db::Database& d)
{
    return static_cast<long long>(d.spor(QStringLiteral("Select count(*) as Antall from dataLinjer")).tall("Antall"));
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

} // namespace store
