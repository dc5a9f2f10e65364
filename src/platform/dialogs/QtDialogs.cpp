#include "platform/dialogs/QtDialogs.h"

#include <QApplication>
#include <QDebug>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

namespace dialogs {

namespace {

// The normal pointer over a box the user must answer, also in the middle of a busy command;
// the busy pointer comes back when the box closes.
class VanligPeker {
public:
    VanligPeker() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~VanligPeker() { QApplication::restoreOverrideCursor(); }
    VanligPeker(const VanligPeker&) = delete;
    VanligPeker& operator=(const VanligPeker&) = delete;
};

}  // namespace

Svar QtDialogs::melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel)
{
    const VanligPeker peker;
    QMessageBox boks(eier_);
    boks.setWindowTitle(tittel);
    boks.setText(tekst);
    boks.setIcon(ikon == Ikon::Informasjon ? QMessageBox::Information
                 : ikon == Ikon::Sporsmal  ? QMessageBox::Question
                                           : QMessageBox::NoIcon);
    if (knapper == Knapper::JaNei) {
        QAbstractButton* ja = boks.addButton(QStringLiteral("&Ja"), QMessageBox::YesRole);
        boks.addButton(QStringLiteral("&Nei"), QMessageBox::NoRole);
        boks.exec();
        return boks.clickedButton() == ja ? Svar::Ja : Svar::Nei;
    }
    boks.setStandardButtons(QMessageBox::Ok);
    boks.exec();
    return Svar::Ok;
}

QString QtDialogs::inndata(const QString& sporsmal, const QString& tittel, const QString& forslag)
{
    const VanligPeker peker;
    QInputDialog boks(eier_);
    boks.setWindowTitle(tittel);
    boks.setLabelText(sporsmal);
    boks.setTextValue(forslag);
    boks.setOkButtonText(QStringLiteral("OK"));
    boks.setCancelButtonText(QStringLiteral("Avbryt"));
    return boks.exec() == QDialog::Accepted ? boks.textValue() : QString();
}

QString QtDialogs::qtFilter(const QString& filter)
{
    const QString navn = filter.section(QLatin1Char('|'), 0, 0);
    QStringList monstre;
    for (const QString& m : filter.section(QLatin1Char('|'), 1, 1).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        monstre << m.trimmed();
        if (m.trimmed().toLower() != m.trimmed()) monstre << m.trimmed().toLower();
    }
    QString visning = navn;
    visning.replace(QRegularExpression(QStringLiteral(R"(\(.*\))")), QString());
    return visning.trimmed() + QStringLiteral(" (") + monstre.join(QLatin1Char(' ')) + QLatin1Char(')');
}

QString QtDialogs::velgFil(const QString& filter)
{
    const VanligPeker peker;
    return QFileDialog::getOpenFileName(eier_, QStringLiteral("Åpne"), QString(), qtFilter(filter));
}

void QtDialogs::feilGrunn(const QString& grunn) { qWarning().noquote() << grunn; }

}  // namespace dialogs
