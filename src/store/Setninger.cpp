#include "store/Setninger.h"

#include <QStringList>
#include <algorithm>
#include <future>
#include <type_traits>

namespace store {

namespace {

// K as it goes into a statement: one column letter, A to Å, or DbFeil. The letter comes from
// Kolonner.txt, which anyone can edit.
const QString& bokstav(const QString& K)
{
    static const QString Bokstaver = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZÆØÅ");
    if (K.size() != 1 || !Bokstaver.contains(K[0]))
        throw db::DbFeil(
            QStringLiteral("Kolonnen «%1» i Kolonner.txt er ingen kolonnebokstav (A til Å)").arg(K).toStdString());
    return K;
}

// "format(DatoTid, 'YYYYMMDDHHNNSS') " + op + " '" + time key + "'".
QString tidsvilkar(const char* op, const vb::Dato& tid)
{
    return QStringLiteral("format(DatoTid, 'YYYYMMDDHHNNSS') ") + QLatin1String(op) + QStringLiteral(" '") +
           tid.tidsnokkel() + QLatin1Char('\'');
}

// The rows of a span whose value in K equals the span's extreme (funksjon "min" or "max"); the
// span runs from fra (fraOp ">=" or ">") to til exclusive, inside and outside the subquery.
QString ytterpunkt(const QString& K, const char* funksjon, const char* fraOp, const vb::Dato& fra, const vb::Dato& til)
{
    const QString spenn = tidsvilkar(fraOp, fra) + QStringLiteral(" and ") + tidsvilkar("<", til);
    return QStringLiteral("Select DatoTid from Datalinjer where ") + bokstav(K) + QStringLiteral(" = (Select ") +
           QLatin1String(funksjon) + QLatin1Char('(') + K + QStringLiteral(") from DataLinjer where ") + spenn +
           QStringLiteral(") and ") + spenn;
}

// The time index of column K: (DatoTid, ID, K), which answers every time-bounded statement on K
// without reading the table. Nothing for a letter that is no value column.
QByteArray tidsindeks(const QString& K)
{
    static const QStringList Verdikolonner = {"C", "D", "E", "F", "G", "H", "I", "J", "K", "L"};
    if (!Verdikolonner.contains(K)) return {};
    return QStringLiteral("CREATE INDEX IF NOT EXISTS DataLinjer_Tid_%1 ON DataLinjer (DatoTid, ID, %1)")
        .arg(K)
        .toLatin1();
}

}  // namespace

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
        throw db::DbFeil(
            QStringLiteral("Kan ikke åpne databasen %1: den har ingen tabell DataLinjer").arg(fil).toStdString());
    }
}

void tomTabell(db::Database& d) { d.utfor(QStringLiteral("Delete from Datalinjer")); }

void tidsindeksVedImport(db::Database& d, const QString& K)
{
    const QByteArray indeks = tidsindeks(K);
    if (indeks.isEmpty()) return;
    d.utforSqlite("DROP INDEX IF EXISTS DataLinjer_DatoTid");
    d.utforSqlite(indeks.constData());
}

QString setning::minimum(const QString& K, const vb::Dato& sokStart, const std::optional<vb::Dato>& til)
{
    return QStringLiteral("Select min(") + bokstav(K) + QStringLiteral(") as Minimum from DataLinjer where ") +
           tidsvilkar(">", sokStart) + (til ? QStringLiteral(" and ") + tidsvilkar("<=", *til) : QString());
}

QString setning::treff(const QString& K, const QString& terskel, const vb::Dato& sokStart,
                       const std::optional<vb::Dato>& til)
{
    return QStringLiteral("Select DatoTid from Datalinjer where ") + bokstav(K) + QStringLiteral(" < ") + terskel +
           QStringLiteral(" and ") + tidsvilkar(">", sokStart) +
           (til ? QStringLiteral(" and ") + tidsvilkar("<=", *til) : QString()) + QStringLiteral(" order by ID");
}

QString setning::snuPunkt(const vb::Dato& fra, const vb::Dato& til, bool minste, const QString& K)
{
    return ytterpunkt(K, minste ? "min" : "max", ">=", fra, til);
}

QString setning::maksTid(const QString& K, const vb::Dato& fra, const vb::Dato& til)
{
    return ytterpunkt(K, "max", ">", fra, til);
}

QString setning::vindu(bool medStart, const vb::Dato& fra, const vb::Dato& til, const QString& K)
{
    const QString felt = K.isEmpty() ? QStringLiteral("*") : QStringLiteral("DatoTid, ") + bokstav(K);
    return QStringLiteral("Select ") + felt + QStringLiteral(" from Datalinjer where ") +
           tidsvilkar(medStart ? ">=" : ">", fra) + QStringLiteral(" and ") + tidsvilkar("<=", til) +
           QStringLiteral(" order by ID");
}

long long antallRader(db::Database& d)
{
    if (d.idUtenHull()) return idSpenn(d);
    return static_cast<long long>(d.spor(QStringLiteral("Select count(*) as Antall from dataLinjer")).tall("Antall"));
}

long long idSpenn(db::Database& d)
{
    return static_cast<long long>(
        d.spor(
             QStringLiteral("Select (Select max(ID) from DataLinjer) - (Select min(ID) from DataLinjer) + 1 as Antall"))
            .tall("Antall"));
}

db::Recordset kolonneMedTid(db::Database& d, const QString& K)
{
    return d.spor(QStringLiteral("Select DatoTid, DatoTid_Tekst, ") + bokstav(K) +
                  QStringLiteral(" from DataLinjer order by ID"));
}

std::optional<db::Recordset> forsteRad(db::Database& d)
{
    auto poster = d.spor(QStringLiteral("Select * from datalinjer where (Select min(ID) from datalinjer)"));
    if (poster.eof()) return std::nullopt;
    return poster;
}

std::optional<vb::Dato> forsteTid(db::Database& d)
{
    auto poster = d.spor(QStringLiteral("Select * from Datalinjer where ID = (Select Min(ID) from Datalinjer)"));
    if (poster.eof()) return std::nullopt;
    return poster.dato("DatoTid");
}

std::optional<vb::Dato> sisteTid(db::Database& d)
{
    auto poster = d.spor(QStringLiteral("Select DatoTid from Datalinjer where ID = (Select Max(ID) from Datalinjer)"));
    if (poster.eof()) return std::nullopt;
    return poster.dato("DatoTid");
}

bool harRader(db::Database& d)
{
    return !d.spor(QStringLiteral("Select DatoTid from Datalinjer where (Select min(ID) from Datalinjer)")).eof();
}

void forberedSok(db::Database& d, const QString& K)
{
    const QByteArray indeks = tidsindeks(K);
    if (indeks.isEmpty()) return;
    try {
        d.utforSqlite(indeks.constData());
    } catch (const db::DbFeil&) {
        // A database that cannot take the index (write-protected, disk full) is searched without it, only slower.
    }
}

namespace {

std::optional<double> minimumMellom(db::Database& d, const QString& K, const vb::Dato& fra,
                                    const std::optional<vb::Dato>& til)
{
    auto poster = d.spor(setning::minimum(K, fra, til));
    if (poster.eof() || poster.erNull("Minimum")) return std::nullopt;
    return poster.tall("Minimum");
}

std::vector<vb::Dato> treffMellom(db::Database& d, const QString& K, const QString& terskel, const vb::Dato& fra,
                                  const std::optional<vb::Dato>& til)
{
    std::vector<vb::Dato> tider;
    auto poster = d.spor(setning::treff(K, terskel, fra, til));
    for (const int tid = poster.kolonne("DatoTid"); !poster.eof(); poster.moveNext()) tider.push_back(poster.dato(tid));
    return tider;
}

// A search reads the whole span after its start. A span of more than a day is read in two halves
// at once, the later one on a connection of its own (the key is derived once per file), each as
// les(database, fra, til) gives it; the halves meet at a time, so they never overlap and miss
// nothing. Without delt, or for a shorter span, the whole span is the first half.
using Til = std::optional<vb::Dato>;
template <class Les, class Del = std::invoke_result_t<const Les&, db::Database&, const vb::Dato&, const Til&>>
std::pair<Del, std::optional<Del>> todelt(db::Database& d, const vb::Dato& fra, bool delt, const Les& les)
{
    constexpr int64_t Dag = 24 * 60;
    const Til siste = delt ? sisteTid(d) : std::nullopt;
    const int64_t spenn = siste ? vb::minutterMellom(fra, *siste) : 0;
    if (spenn <= Dag) return {les(d, fra, {}), std::nullopt};
    const vb::Dato midt = fra.leggTilMinutter(static_cast<double>(spenn / 2));
    auto senere = std::async(std::launch::async, [&les, fil = d.fil(), midt] {
        db::Database andre(fil);
        return les(andre, midt, {});
    });
    Del forst = les(d, fra, midt);
    return {std::move(forst), senere.get()};
}

}  // namespace

std::optional<double> minimum(db::Database& d, const QString& K, const vb::Dato& sokStart)
{
    bokstav(K);  // a letter that is none fails here, before a second connection is opened
    auto [forst, sist] = todelt(d, sokStart, true, [&K](db::Database& db, const vb::Dato& fra, const Til& til) {
        return minimumMellom(db, K, fra, til);
    });
    if (!sist || !*sist) return forst;
    return forst ? std::min(*forst, **sist) : *sist;
}

std::vector<vb::Dato> treffTider(db::Database& d, const QString& K, const QString& terskel, const vb::Dato& sokStart)
{
    bokstav(K);  // as in minimum
    // The halves follow each other in ID order only when time does.
    auto [forst, sist] =
        todelt(d, sokStart, d.tidFolgerId(), [&](db::Database& db, const vb::Dato& fra, const Til& til) {
            return treffMellom(db, K, terskel, fra, til);
        });
    if (sist) forst.insert(forst.end(), sist->begin(), sist->end());
    return forst;
}

vb::Dato snuPunkt(db::Database& d, const vb::Dato& fra, const vb::Dato& til, bool minste, const QString& K)
{
    auto poster = d.spor(setning::snuPunkt(fra, til, minste, K));
    return poster.eof() ? vb::Dato() : poster.dato("DatoTid");
}

std::optional<vb::Dato> maksTid(db::Database& d, const QString& K, const vb::Dato& fra, const vb::Dato& til)
{
    auto poster = d.spor(setning::maksTid(K, fra, til));
    if (poster.eof()) return std::nullopt;
    return poster.dato("DatoTid");
}

db::Recordset vinduRader(db::Database& d, bool medStart, const vb::Dato& fra, const vb::Dato& til, const QString& K)
{
    return d.spor(setning::vindu(medStart, fra, til, K));
}

}  // namespace store
