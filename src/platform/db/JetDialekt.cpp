#include "platform/db/JetDialekt.h"

#include "platform/db/Database.h"

#include <QRegularExpression>

namespace db {

namespace {

QString isoFraNokkel(const QString& n)
{
    return n.mid(0, 4) + '-' + n.mid(4, 2) + '-' + n.mid(6, 2) + ' ' + n.mid(8, 2) + ':' + n.mid(10, 2) + ':' +
           n.mid(12, 2);
}

// Replaces every match of mønster with what lag makes of it.
template <typename F>
QString erstatt(const QString& tekst, const QRegularExpression& monster, F lag)
{
    QString ut;
    qsizetype forrige = 0;
    for (auto it = monster.globalMatch(tekst); it.hasNext();) {
        const auto m = it.next();
        ut += QStringView(tekst).mid(forrige, m.capturedStart() - forrige);
        ut += lag(m);
        forrige = m.capturedEnd();
    }
    ut += QStringView(tekst).mid(forrige);
    return ut;
}

} // namespace

QString tilSqlite(const QString& setning)
{
    static const QRegularExpression tidsnokkel(
        QStringLiteral(R"(format\s*\(\s*DatoTid\s*,\s*'YYYYMMDDHHNNSS'\s*\)\s*(>=|<=|<>|<|>|=)\s*'(\d{14})')"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression datoLiteral(QStringLiteral(R"('(\d\d)/(\d\d)/(\d{4}) (\d\d):(\d\d):(\d\d)')"));
    static const QRegularExpression enkelSelect(QStringLiteral(R"(^\s*select\s+[^(]*?\s+from\s)"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ordnet(QStringLiteral(R"(\border\s+by\b)"),
                                           QRegularExpression::CaseInsensitiveOption);

    QString ut = erstatt(setning, tidsnokkel, [](const QRegularExpressionMatch& m) {
        return QStringLiteral("DatoTid %1 '%2'").arg(m.captured(1), isoFraNokkel(m.captured(2)));
    });
    ut = erstatt(ut, datoLiteral, [](const QRegularExpressionMatch& m) {
        const auto dato = vb::Dato::gyldig(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt(),
                                           m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
        if (!dato) throw DbFeil(QStringLiteral("Ugyldig dato og tid: %1").arg(m.captured(0)).toStdString());
        return QLatin1Char('\'') + dato->iso() + QLatin1Char('\'');
    });
    if (enkelSelect.match(ut).hasMatch() && !ordnet.match(ut).hasMatch()) ut += QStringLiteral(" order by ID");
    return ut;
}

} // namespace db
