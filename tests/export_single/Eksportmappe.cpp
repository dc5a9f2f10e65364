#include "Eksportmappe.h"

#include "files/Oppsett.h"
#include "files/Tekstfil.h"

#include <QFile>
#include <QJsonDocument>
#include <QLabel>
#include <QProcess>

Eksportmappe::Eksportmappe()
{
    for (const char* mal : {"Mal_Sykluser.xlsx", "Mal_Alle_Adsorpsjon.xlsm", "Mal_Alle_Desorpsjon.xlsm"}) {
        const QString fra = QStringLiteral(TOLVIK_DIST "/") + QLatin1String(mal);
        if (!QFile::copy(fra, mappe.sti(QLatin1String(mal)))) ADD_FAILURE() << "kan ikke kopiere " << fra.toStdString();
    }
    QStringList linjer;
    for (char b = 'C'; b <= 'K'; ++b)
        linjer << filer::kolonneLinje(QStringLiteral("Masse %1").arg(b - 'C' + 12), QString(QLatin1Char(b)));
    mappe.skriv(filer::KolonnerFil, linjer.join(QStringLiteral("\r\n")).toLatin1() + "\r\n");
}

Form1& Eksportmappe::form()
{
    if (!form_) form_ = std::make_unique<Form1>(mappe.mappe(), dialogs);
    return *form_;
}

QString Eksportmappe::tidTekst(const vb::Dato& t)
{
    int aar, mnd, dag, time, min, sek;
    t.deler(aar, mnd, dag, time, min, sek);
    return QString::asprintf("%04d/%02d/%02d ,%02d:%02d:%02d,1.", aar, mnd, dag, time, min, sek);
}

void Eksportmappe::rad(const vb::Dato& t, double verdi)
{
    int aar, mnd, dag, time, min, sek;
    t.deler(aar, mnd, dag, time, min, sek);
    QString sql = QString::asprintf("Insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J) VALUES "
                                    "('%02d/%02d/%04d %02d:%02d:%02d', '",
                                    dag, mnd, aar, time, min, sek) +
                  tidTekst(t) + QStringLiteral("', ") + vb::sqlTekst(verdi) + QStringLiteral(", ") +
                  vb::sqlTekst(verdi * 1e-10);
    for (int kolonne = 5; kolonne <= 10; ++kolonne) sql += QStringLiteral(", ") + vb::sqlTekst(verdi + kolonne);
    form().kontekst().tilkobling.utfor(sql + QLatin1Char(')'));
}

vb::Dato Eksportmappe::tid(int sekunder)
{
    int aar, mnd, dag, time, min, sek;
    vb::Dato::fra(2012, 11, 23, 12).leggTilMinutter(sekunder / 60).deler(aar, mnd, dag, time, min, sek);
    return vb::Dato::fra(aar, mnd, dag, time, min, sekunder % 60);
}

void Eksportmappe::rader(int fra, int til, int steg)
{
    db::Transaksjon tr(form().kontekst().tilkobling);
    for (int s = fra; s <= til; s += steg) rad(tid(s), s);
    tr.fullfor();
}

void Eksportmappe::snupunkter(const QList<int>& sekunder)
{
    QStringList tekster;
    for (int s : sekunder) tekster << tid(s).generellTekst();
    filer::SkrivTilFil(mappe.sti(QStringLiteral("SnuPunkter.txt")), tekster.join(QLatin1Char('!')));
}

QString Eksportmappe::label4() const { return form_->findChild<QLabel*>(QStringLiteral("Label4"))->text(); }

QJsonObject lesArbeidsbok(const QString& sti)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral(TOLVIK_TESTDATA "/export_single/les_arbeidsbok.py"), sti});
    p.waitForFinished(120000);
    EXPECT_EQ(p.exitCode(), 0) << sti.toStdString() << ": " << p.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

QByteArray innhold(const QString& sti)
{
    QFile f(sti);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
