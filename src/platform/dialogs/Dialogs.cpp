#include "platform/dialogs/Dialogs.h"

#include <QRegularExpression>

namespace dialogs {

bool Sporsmal::stilles(Art a, const QString& t, const QString& tt) const
{
    if (a != art || tt != tittel) return false;
    // The fixed parts of the text must stand as they are; each %N stands for any text.
    static const QRegularExpression plass(QStringLiteral("%[1-9]"));
    QString monster;
    qsizetype fra = 0;
    for (auto it = plass.globalMatch(tekst); it.hasNext();) {
        const auto m = it.next();
        monster += QRegularExpression::escape(tekst.mid(fra, m.capturedStart() - fra)) + QStringLiteral("(.*)");
        fra = m.capturedEnd();
    }
    monster += QRegularExpression::escape(tekst.mid(fra));
    return QRegularExpression(QRegularExpression::anchoredPattern(monster),
                              QRegularExpression::DotMatchesEverythingOption)
        .match(t)
        .hasMatch();
}

}  // namespace dialogs
