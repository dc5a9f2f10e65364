#include "analysis/Sykluser.h"

#include "files/Tekstfil.h"
#include "store/Maledata.h"

#include <QFile>

namespace analyse
{

namespace
{

const QString Feilmelding = QStringLiteral("Det oppstod en feil i denne rutinen");

void sikreTidsindeks(db::Database& d, const QString& K)
{
    static const QStringList Verdikolonner = {"C", "D", "E", "F", "G", "H", "I", "J", "K", "L"};
    if (!Verdikolonner.contains(K)) return;
    try {
        d.utforSqlite(QStringLiteral("CREATE INDEX IF NOT EXISTS DataLinjer_Tid_%1 ON DataLinjer (DatoTid, ID, %1)")
                          .arg(K)
                          .toLatin1()
                          .constData());
    } catch (const db::DbFeil&) {
        // A database that cannot take the index (write-protected, disk full) is searched without it, only slower.
    }
}

} // namespace

std::optional<db::Recordset> dataStart(db::Database& d)
{
    auto poster = d.spor(QStringLiteral("Select * from datalinjer where (Select min(ID) from datalinjer)"));
    if (poster.eof()) return std::nullopt;
    return poster;
}

db::StortMellomlager forberedSok(db::Database& d, const QString& K)
{
    sikreTidsindeks(d, K);
    return db::StortMellomlager(d);
}

QString minimumSetning(const QString& K, const vb::Dato& sokStart)
{
    return QStringLiteral("Select min(") + K + QStringLiteral(") as Minimum from DataLinjer where ") +
           store::tidsvilkar(">", sokStart);
}

std::optional<double> minimum(db::Database& d, const QString& K, const vb::Dato& sokStart)
{
    auto poster = d.spor(minimumSetning(K, sokStart));
    if (poster.eof() || poster.erNull("Minimum")) return std::nullopt;
    return poster.tall("Minimum");
}

QString treffSetning(const QString& K, const QString& terskel, const vb::Dato& sokStart)
{
    return QStringLiteral("Select DatoTid, ") + K + QStringLiteral(" as Verdi from Datalinjer where ") + K +
           QStringLiteral(" < ") + terskel + QStringLiteral(" and ") + store::tidsvilkar(">", sokStart) +
           QStringLiteral(" order by ID");
}

db::Recordset treff(db::Database& d, const QString& K, const QString& terskel, const vb::Dato& sokStart)
{
    return d.spor(treffSetning(K, terskel, sokStart));
}

bool erGap(const vb::Dato& forrige, const vb::Dato& neste) { return std::abs(vb::sekunderMellom(forrige, neste)) > 10; }

QString snuPunktSetning(const vb::Dato& FraTid, const vb::Dato& TilTid, bool Valg, const QString& Kolonne)
{
    const QString spenn =
        store::tidsvilkar(">=", FraTid) + QStringLiteral(" and ") + store::tidsvilkar("<", TilTid);
    return QStringLiteral("Select DatoTid from Datalinjer where ") + Kolonne +
           (Valg ? QStringLiteral(" = (Select min(") : QStringLiteral(" = (Select max(")) + Kolonne +
           QStringLiteral(") from DataLinjer where ") + spenn + QStringLiteral(") and ") + spenn;
}

vb::Dato FinnSnuPunkt(db::Database& d, const vb::Dato& FraTid, const vb::Dato& TilTid, bool Valg,
                      const QString& Kolonne)
{
    auto poster = d.spor(snuPunktSetning(FraTid, TilTid, Valg, Kolonne));
    return poster.eof() ? vb::Dato() : poster.dato("DatoTid");
}

bool foreslaVerdier(Kontekst& k, int N, const QString& W, const QString& terskel, const vb::Dato& F, int64_t M,
                    int64_t I)
{
    const QString tekst = QStringLiteral("Det ble funnet %1 sykluser. Den første syklusen med en verdi %2 enn %3 er ved tidspunktet "
                          "%4 (%5 minutter etter oppstart).\nIntervallet mellom den første og andre syklusen er ca. "
                          "%6 minutter. Vil du sette inn disse verdiene som valg i oppsettet?")
        .arg(N)
        .arg(W, terskel, F.generellTekst())
        .arg(M)
        .arg(I);
    if (!k.dialogs.sporJaNei(tekst)) return false;
    k.vindu.settTekst(ui::Boks::Text6, QString::number(N));
    k.vindu.settTekst(ui::Boks::Text3, QString::number(M - 15));
    k.vindu.settTekst(ui::Boks::Text5, QString::number(I));
    return true;
}

namespace
{

// The search itself; every failure leaves it with the busy pointer already restored.
Utfall finnSykluser(Kontekst& k)
{
    const float X = vb::enkel(k.dialogs.inndata(QStringLiteral("Start søking etter X minutter"),
                                                QStringLiteral("Start søking"), QStringLiteral("50")));
    const ui::Opptatt opptatt(k.vindu);
    k.vindu.behandleHendelser();

    const auto start = dataStart(k.tilkobling);
    if (!start) return Utfall::Avvist;
    const vb::Dato dataStartTid = start->dato("DatoTid");
    const vb::Dato sokStart = dataStartTid.leggTilMinutter(X);
    const QString K = filer::HentKode(k.vindu.kolonneTekst());
    const auto lager = forberedSok(k.tilkobling, K);
    const std::optional<double> Minimum = minimum(k.tilkobling, K, sokStart);

    const QString snuPunkter = k.sti(SnuPunktFil);
    if (filer::FilFinnes(snuPunkter)) QFile::remove(snuPunkter);

    // Without a row after the search start there is no minimum to show or to propose.
    const QString minTekst = Minimum ? vb::tekst(*Minimum) : QString();
    const QString forslag = Minimum ? vb::tekst(100.0 * *Minimum) : QString();
    const float V = vb::enkel(k.dialogs.inndata(QStringLiteral("Den minste verdien er ") + minTekst +
                                                    QStringLiteral(". Oppgi søkeverdien som skal brukes under:"),
                                                QStringLiteral("Minste verdi"), forslag));

    auto poster = treff(k.tilkobling, K, vb::sqlTekst(V), sokStart);
    if (poster.eof()) {
        k.dialogs.info(QStringLiteral("Ingen datapunkter er lavere enn den angitte verdien (") + vb::tekst(V) +
                       QLatin1Char(')'));
        return Utfall::Avvist;
    }

    const bool ads = k.vindu.adsorpsjon();
    QString S;
    int16_t N = 0;
    int32_t I = 0;
    const vb::Dato F = poster.dato("DatoTid");
    vb::Dato G = F, P = F;
    const int tid = poster.kolonne("DatoTid");
    for (; !poster.eof(); poster.moveNext()) {
        const vb::Dato t = poster.dato(tid);
        if (erGap(P, t)) {
            const vb::Dato E = P;
            if (N == 0) I = vb::heltall32(static_cast<double>(vb::minutterMellom(E, t)));
            S += QLatin1Char('!') + FinnSnuPunkt(k.tilkobling, G, E, ads, K).generellTekst();
            N = vb::pluss16(N);
            G = t;
        }
        P = t;
    }

    const QString W = ads ? QStringLiteral("mindre") : QStringLiteral("større");
    const int64_t M = vb::minutterMellom(dataStartTid, F);
    foreslaVerdier(k, N, W, vb::tekst(V), F, M, I);
    filer::SkrivTilFil(snuPunkter, S.mid(1));
    return Utfall::Ferdig;
}

} // namespace

Utfall Command7_Click(Kontekst& k)
{
    if (k.vindu.kolonner().isEmpty()) {
        k.dialogs.info(IngenData);
        return Utfall::Avvist;
    }
    try {
        return finnSykluser(k);
    } catch (const std::exception&) {
        k.dialogs.info(Feilmelding);
        return Utfall::Avvist;
    }
}

} // namespace analyse
