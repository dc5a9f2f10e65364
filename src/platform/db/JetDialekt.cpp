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

}  // namespace

QString tilSqlite(const QString& setning, bool tidFolgerId)
{
    static const QRegularExpression tidsnokkel(
        QStringLiteral(R"(format\s*\(\s*DatoTid\s*,\s*'YYYYMMDDHHNNSS'\s*\)\s*(>=|<=|<>|<|>|=)\s*'(\d{14})')"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression datoLiteral(QStringLiteral(R"('(\d\d)/(\d\d)/(\d{4}) (\d\d):(\d\d):(\d\d)')"));
    static const QRegularExpression enkelSelect(QStringLiteral(R"(^\s*select\s+[^(]*?\s+from\s)"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ordnet(QStringLiteral(R"(\border\s+by\b)"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ekstrem(QStringLiteral(R"(\b(min|max)\s*\(\s*([A-Za-z_]\w*)\s*\))"),
                                            QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression etterId(QStringLiteral(R"(\border\s+by\s+ID\s*$)"),
                                            QRegularExpression::CaseInsensitiveOption);

    bool tidsbetingelse = false;
    QString ut = erstatt(setning, tidsnokkel, [&](const QRegularExpressionMatch& m) {
        tidsbetingelse = true;
        return QStringLiteral("DatoTid %1 '%2'").arg(m.captured(1), isoFraNokkel(m.captured(2)));
    });
    ut = erstatt(ut, datoLiteral, [](const QRegularExpressionMatch& m) {
        const auto dato = vb::Dato::gyldig(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt(),
                                           m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
        if (!dato) throw DbFeil(QStringLiteral("Ugyldig dato og tid: %1").arg(m.captured(0)).toStdString());
        return QLatin1Char('\'') + dato->iso() + QLatin1Char('\'');
    });
    if (enkelSelect.match(ut).hasMatch() && !ordnet.match(ut).hasMatch()) ut += QStringLiteral(" order by ID");
    if (tidsbetingelse) {
        // SQLite's shortcut for min and max of a column walks the time index and looks up every
        // row in the table, even where an index holding the column would serve; as an ordinary
        // aggregate of the same value ("+" changes nothing) it reads the covering index.
        ut = erstatt(ut, ekstrem, [](const QRegularExpressionMatch& m) {
            return m.captured(1) + QStringLiteral("(+") + m.captured(2) + QLatin1Char(')');
        });
        // Where time never goes back from one ID to the next, ID order is (DatoTid, ID) order,
        // which the time indexes hold: the rows come out of the index without a sort.
        if (tidFolgerId) ut.replace(etterId, QStringLiteral("order by DatoTid, ID"));
    }
    return ut;
}

}  // namespace db
