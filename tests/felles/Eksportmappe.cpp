#include "felles/Eksportmappe.h"

#include "app/FrmGraph.h"
#include "files/Oppsett.h"
#include "files/Tekstfil.h"

#include <QChartView>
#include <QFile>
#include <QJsonDocument>
#include <QLabel>
#include <QMouseEvent>
#include <QProcess>
#include <QRegularExpression>
#include <map>

namespace test {

QString tidTekst(int s) { return QString::asprintf("2012/11/23 ,%02d:%02d:%02d,1.", s / 3600, s / 60 % 60, s % 60); }

QString endringer(const Bok& mal, const Bok& bok)
{
    const auto tekst = [](const Bok& b, const QString& a) -> std::optional<QString> {
        if (!b.celler.contains(a)) return std::nullopt;
        return b.formler.contains(a) ? b.formler[a].toString() : b.celler[a].toVariant().toString();
    };
    static const QRegularExpression adresse(u"^([A-Z]+)(\\d+)$"_s);
    std::map<QString, std::map<int, std::optional<QString>>> kolonner;  // column -> row -> text, none when emptied
    for (const QString& a : mal.celler.keys() + bok.celler.keys()) {
        const auto m = adresse.match(a);
        if (tekst(mal, a) != tekst(bok, a)) kolonner[m.captured(1)][m.captured(2).toInt()] = tekst(bok, a);
    }
    QString ut;
    for (const auto& [kolonne, rader] : kolonner) {
        ut += kolonne + ':';
        for (auto r = rader.begin(); r != rader.end(); ++r) {
            if (r->second) {
                ut += u" %1=%2"_s.arg(r->first).arg(*r->second);
                continue;
            }
            const int fra = r->first;
            while (std::next(r) != rader.end() && !std::next(r)->second && std::next(r)->first == r->first + 1) ++r;
            ut += (fra == r->first ? u" %1 tom"_s.arg(fra) : u" %1-%2 tom"_s.arg(fra).arg(r->first));
        }
        ut += '\n';
    }
    for (const char* del : {"ark", "diagrammer"})
        if (bok.json[QLatin1String(del)] != mal.json[QLatin1String(del)])
            ut += QLatin1String(del) + u": "_s +
                  QJsonDocument(bok.json[QLatin1String(del)].toArray()).toJson(QJsonDocument::Compact) + '\n';
    return ut;
}

QList<Bok> lesArbeidsboker(const QStringList& filer, bool bufret)
{
    QStringList argumenter = QStringList{QStringLiteral(TOLVIK_TESTDATA "/felles/les_arbeidsbok.py")} + filer;
    if (bufret) argumenter << QStringLiteral("--bufret");
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"), argumenter);
    p.waitForFinished(120000);
    EXPECT_EQ(p.exitCode(), 0) << filer.join(' ').toStdString() << ": " << p.readAllStandardError().toStdString();
    QList<Bok> boker;
    for (const auto& b : QJsonDocument::fromJson(p.readAllStandardOutput()).array()) {
        const QJsonObject o = b.toObject();
        boker.append({o, o[QStringLiteral("celler")].toObject(), o[QStringLiteral("formler")].toObject()});
    }
    if (boker.size() != filer.size()) boker.resize(filer.size());  // a failed read: empty ones, the test fails
    return boker;
}

Bok lesArbeidsbok(const QString& fil, bool bufret) { return lesArbeidsboker({fil}, bufret).value(0); }

QString forlop(const dialogs::SkriptDialogs& skript, size_t fra)
{
    using dialogs::SkriptDialogs;
    QString ut;
    for (size_t i = fra; i < skript.dialoger().size(); ++i) {
        const SkriptDialogs::Dialog& d = skript.dialoger()[i];
        const QString tekst = QString(d.tekst).replace('\n', u"\\n"_s);
        if (d.type != SkriptDialogs::Type::Melding)
            ut += u"? %1 | %2 | %3\n"_s.arg(tekst, d.tittel, d.forslag);
        else
            ut += u"! "_s + QStringList{{}, u"(i) "_s, u"(?) "_s}[static_cast<int>(d.ikon)] +
                  (d.knapper == dialogs::Knapper::JaNei ? u"[Ja/Nei] "_s : QString()) + tekst +
                  (d.tittel == dialogs::ProgramTittel ? QString() : u" — "_s + d.tittel) + u"\n"_s;
    }
    return ut.replace(vb::dagensDatoTekst(), u"<i dag>"_s);
}

QString vist(const app::FrmGraph& g)
{
    static const QRegularExpression merke(u"<[^>]*>"_s);
    const QPointF t = g.tidsomrade(), v = g.verdiomrade();
    const QString forklaring = g.findChild<QLabel*>(u"Forklaring"_s)->text().remove(merke).replace(u"&nbsp;"_s, u" "_s);
    return u"tid %1 til %2, verdi %3 til %4 | %5| %6\n"_s.arg(t.x())
        .arg(t.y())
        .arg(v.x(), 0, 'g', 4)
        .arg(v.y(), 0, 'g', 4)
        .arg(forklaring.simplified(), g.avlesningTekst());
}

void pek(app::FrmGraph& g, QPointF verdi)
{
    QChartView* visning = g.findChild<QChartView*>(u"MSChart"_s);
    const QPointF p = visning->mapFromScene(g.diagram()->mapToScene(g.diagram()->mapToPosition(verdi)));
    QMouseEvent flytt(QEvent::MouseMove, p, visning->mapToGlobal(p), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(visning->viewport(), &flytt);
}

Eksportmappe::Eksportmappe()
{
    mappe.kopierMaler();
    QStringList linjer;
    for (int k = 3; k <= 11; ++k)
        linjer << files::kolonneLinje(QStringLiteral("Masse %1").arg(k + 9), files::kolonneBokstav(k));
    files::SkrivTilFil(mappe.sti(files::KolonnerFil), linjer.join(QStringLiteral("\r\n")));
}

void Eksportmappe::rad(int sekunder, const Verdier& verdier)
{
    QString kolonner, tall;
    for (int i = 0; i < verdier.size(); ++i) {
        kolonner += QStringLiteral(", ") + files::kolonneBokstav(i + 3);
        tall += QStringLiteral(", ") + (verdier[i] ? vb::sqlTekst(*verdier[i]) : QStringLiteral("Null"));
    }
    form().kontekst().tilkobling.utfor(
        QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst%1) VALUES ('%2', '%3'%4)")
            .arg(kolonner, QStringLiteral("23/11/2012 ") + tidTekst(sekunder).mid(12, 8), tidTekst(sekunder), tall));
}

void Eksportmappe::rader(int fra, int til, int steg, const std::function<Verdier(int)>& verdier)
{
    db::Transaksjon tr(form().kontekst().tilkobling);
    for (int s = fra; s <= til; s += steg) rad(s, verdier(s));
    tr.fullfor();
}

void Eksportmappe::snupunkter(const QList<int>& sekunder)
{
    QStringList tekster;
    for (int s : sekunder) tekster << vb::Dato::fra(2012, 11, 23, s / 3600, s / 60 % 60, s % 60).generellTekst();
    files::SkrivTilFil(mappe.sti(QStringLiteral("SnuPunkter.txt")), tekster.join(QLatin1Char('!')));
}

}  // namespace test
