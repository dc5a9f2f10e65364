#include "platform/dialogs/QtDialogs.h"

#include <QDebug>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

namespace dialogs {

Svar QtDialogs::melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel)
{
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
    return QFileDialog::getOpenFileName(eier_, QStringLiteral("Åpne"), QString(), qtFilter(filter));
}

void QtDialogs::feilGrunn(const QString& grunn) { qWarning().noquote() << grunn; }

}  // namespace dialogs
