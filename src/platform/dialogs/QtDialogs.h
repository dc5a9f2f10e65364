// The real modal dialogs of the window, titled "Tolvik" unless a title is given.
#pragma once

#include "platform/dialogs/Dialogs.h"

class QWidget;

namespace dialogs {

class QtDialogs : public Dialogs {
public:
    explicit QtDialogs(QWidget* eier = nullptr) : eier_(eier) {}
    void settEier(QWidget* eier) { eier_ = eier; }

    Svar melding(const QString& tekst, Knapper knapper, Ikon ikon, const QString& tittel) override;
    QString inndata(const QString& sporsmal, const QString& tittel, const QString& forslag) override;
    QString velgFil(const QString& filter) override;
    void feilGrunn(const QString& grunn) override;

    // "CSV-filer (*.CSV)|*.CSV" as a Qt filter that also shows lower-case names.
    static QString qtFilter(const QString& filter);

private:
    QWidget* eier_;
};

}  // namespace dialogs
