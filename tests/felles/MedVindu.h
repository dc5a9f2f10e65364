// The real main window on a fresh program folder with scripted dialogs; used by the analysis, import and export tests.
#pragma once

#include "app/Form1.h"
#include "felles/Felles.h"
#include "platform/dialogs/SkriptDialogs.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QLabel>
#include <gtest/gtest.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace test {

// Every box shown from the fra-th on, one a line: "! text" for a message, with its icon ((i), (?)) and
// [Ja/Nei] before the text and a title other than the program's after " — "; "? prompt | title |
// proposal" for an input box. Line breaks within a text as \n, today's date as <i dag>.
QString forlop(const dialogs::SkriptDialogs& skript, size_t fra = 0);

// Seconds after 23.11.2012 14:00:00 and a value for column C.
using Rad = std::pair<int, double>;

// The first entry (CO2, letter C) is selected, the others are there to choose.
inline const QByteArray Kolonner =
    "CO2                    [C]\r\nAr                    [I]\r\nBred                    [M]\r\nUten bokstav\r\n";

class MedVindu : public ::testing::Test {
protected:
    // Inserts the rows with the import's statement form.
    void fyll(const std::vector<Rad>& rader)
    {
        db::Database d(mappe.sti(u"Data.mdb"_s));
        db::Transaksjon t(d);
        for (const auto& [sek, c] : rader)
            d.utfor(
                u"Insert into DataLinjer (DatoTid, DatoTid_Tekst, C) VALUES ('%1', '%1', %2)"_s
                    .arg(QDateTime(QDate(2012, 11, 23), QTime(14, 0)).addSecs(sek).toString(u"dd/MM/yyyy HH:mm:ss"_s))
                    .arg(c, 0, 'g', 17));
        t.fullfor();
    }
    // Starts the window on this column list (none when empty).
    app::Form1& vindu(const QByteArray& kolonner = Kolonner)
    {
        if (!kolonner.isEmpty()) mappe.skriv(u"Kolonner.txt"_s, kolonner);
        f = std::make_unique<app::Form1>(mappe.mappe(), dialogs);
        return *f;
    }
    // A control of the window by its name.
    template <typename T = QWidget>
    T* kontroll(const char* navn) const
    {
        return f->findChild<T*>(QLatin1String(navn));
    }
    QString label4() const { return kontroll<QLabel>("Label4")->text(); }
    void svar(auto... s) { (dialogs.svar(dialogs::SkriptDialogs::Svaret(s)), ...); }
    // The cycle settings: number of cycles, start minutes, interval.
    QStringList bokser() const
    {
        return {f->tekst(dialogs::Boks::Text6), f->tekst(dialogs::Boks::Text3), f->tekst(dialogs::Boks::Text5)};
    }
    // One search command in one mode, answered with the start minute 1, svaret and ja: "== svaret", the
    // boxes it showed, SnuPunkter.txt and SokStart.txt, and the settings after it.
    QString sok(Utfall (app::Form1::*kommando)(), bool adsorpsjon, const QString& svaret, dialogs::Svar ja)
    {
        const size_t fra = dialogs.dialoger().size();
        f->velgAdsorpsjon(adsorpsjon);
        svar(u"1"_s, svaret, ja);
        EXPECT_EQ(((*f).*kommando)(), Utfall::Ferdig) << svaret;
        return u"\n== "_s + svaret + '\n' + forlop(dialogs, fra) + mappe.les(u"SnuPunkter.txt"_s) +
               mappe.les(u"SokStart.txt"_s) + bokser().join('|') + '\n';
    }
    void TearDown() override
    {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the normal pointer must be back";
        EXPECT_FALSE(dialogs.ubrukteSvar()) << "a queued answer was never asked for";
    }

    Programmappe mappe;
    dialogs::SkriptDialogs dialogs;
    std::unique_ptr<app::Form1> f;
};

}  // namespace test
