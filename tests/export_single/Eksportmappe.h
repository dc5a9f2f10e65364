// A program folder for the export tests: the built templates, a column list, measurement
// rows in the store, turning points, the real main window with scripted dialogs, and
// workbooks read back with openpyxl.
#pragma once

#include "app/Form1.h"
#include "felles/Felles.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QJsonObject>
#include <gtest/gtest.h>
#include <memory>

class Eksportmappe : public ::testing::Test {
protected:
    Eksportmappe();

    // The window, opened on the folder as it is now (the chooser reads Kolonner.txt).
    Form1& form();
    void sett(ui::Boks boks, const QString& tekst) { form().settTekst(boks, tekst); }

    // The time sekunder after the start of the test data, 23.11.2012 12:00:00.
    static vb::Dato tid(int sekunder);
    // One measurement row: C = verdi, D = verdi * 1e-10, E..J = verdi + column number, K empty.
    void rad(const vb::Dato& t, double verdi);
    // Rows every steg seconds from fra up to and including til (seconds after the start);
    // the values are the seconds.
    void rader(int fra, int til, int steg);
    // SnuPunkter.txt with turning points given as seconds after the start.
    void snupunkter(const QList<int>& sekunder);

    // DatoTid_Tekst as the import stores it.
    static QString tidTekst(const vb::Dato& t);
    QString ut(const QString& navn) const { return mappe.sti(QStringLiteral("Data_Bearbeidet/") + navn); }
    QString label4() const;

    test::Programmappe mappe;
    ui::SkriptDialogs dialogs;

private:
    std::unique_ptr<Form1> form_;
};

// The workbook as openpyxl reads it (keys "ark", "celler", "diagrammer"); a failing read fails the test.
QJsonObject lesArbeidsbok(const QString& sti);
// The bytes of a file.
QByteArray innhold(const QString& sti);
