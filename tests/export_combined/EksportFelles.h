// A program folder with measurement rows, turning points, the column list and the
// workbook templates, the real main window over it, and openpyxl reading the results.
#pragma once

#include "app/Form1.h"
#include "felles/Felles.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QJsonObject>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace test {

// Minutes after 23.11.2012 00:00 as a date-time.
vb::Dato klokka(int minutter);

// What openpyxl reads from worksheet 1 of a workbook.
struct Lest {
    QJsonObject celler;   // address -> cached value
    QJsonObject formler;  // address -> formula text
    QStringList ark;
    bool makro = false;
    bool vba = false;
    QJsonValue operator[](const QString& adresse) const { return celler.value(adresse); }
};
Lest lesMedOpenpyxl(const QString& fil);

class EksportTest : public ::testing::Test {
protected:
    void SetUp() override;
    // One measurement row at a whole minute: c in C and I, f in F (empty when not given).
    void rad(int minutt, double c, std::optional<double> f = 0.0);
    void snupunkter(std::initializer_list<int> minutter);
    // Writes the rows given so far into Data.mdb.
    void lagreRader();
    // The main window over the folder, made on first use after the rows are stored.
    Form1& vindu();
    QString ut(const QString& navn) const { return mappe.sti(QStringLiteral("Data_Bearbeidet/") + navn); }
    QString label4();
    // Message boxes shown, in order.
    QStringList meldinger() const { return dialogs.meldinger(); }

    Programmappe mappe;
    ui::SkriptDialogs dialogs;

private:
    std::unique_ptr<Form1> vindu_;
    QStringList rader_;
};

} // namespace test
