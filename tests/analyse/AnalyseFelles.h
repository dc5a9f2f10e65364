// A program folder with measurement rows and a column list, and the real main window on it.
#pragma once

#include "app/Form1.h"
#include "felles/Felles.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QApplication>
#include <QDateTime>
#include <gtest/gtest.h>
#include <memory>

namespace test {

// Seconds after 23.11.2012 14:00:00 and a value for column C.
struct Rad {
    int sek;
    double c;
};

inline QString tid(int sek)
{
    return QDateTime(QDate(2012, 11, 23), QTime(14, 0)).addSecs(sek).toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

class MedVindu : public ::testing::Test {
protected:
    // Inserts the rows with the import's statement form.
    void fyll(const std::vector<Rad>& rader)
    {
        db::Database d(mappe.sti(QStringLiteral("Data.mdb")));
        db::Transaksjon t(d);
        for (const Rad& r : rader)
            d.utfor(QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst, C) VALUES ('%1', '%1', %2)")
                        .arg(tid(r.sek))
                        .arg(r.c, 0, 'g', 17));
        t.fullfor();
    }
    // Starts the window; the first entry (CO2, letter C) is selected, the others are there to choose.
    Form1& vindu(bool medKolonner = true)
    {
        if (medKolonner)
            mappe.skriv(QStringLiteral("Kolonner.txt"), "CO2                    [C]\r\n"
                                                        "Ar                    [I]\r\n"
                                                        "Bred                    [M]\r\n"
                                                        "Uten bokstav\r\n");
        f = std::make_unique<Form1>(mappe.mappe(), dialogs);
        return *f;
    }
    void svar(std::initializer_list<ui::SkriptDialogs::Svaret> s)
    {
        for (const auto& x : s) dialogs.svar(x);
    }
    void TearDown() override
    {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the normal pointer must be back";
        EXPECT_FALSE(dialogs.ubrukteSvar()) << "a queued answer was never asked for";
    }

    Programmappe mappe;
    ui::SkriptDialogs dialogs;
    std::unique_ptr<Form1> f;
};

} // namespace test
