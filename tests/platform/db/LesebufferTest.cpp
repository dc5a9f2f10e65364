// The program's connections read the database file in stretches and write it behind SQLite's
// back; what another connection writes between two reads must be seen all the same, and the
// pages written behind must land as SQLite wrote them.
#include "platform/db/Lesebuffer.h"
#include "felles/Felles.h"
#include "platform/db/Masseinnsetting.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

// The sum of column C over every row, read in a scan that goes through the stretch buffer.
double sum(db::Database& d) { return d.spor(u"Select total(C) as S from DataLinjer"_s).tall("S"); }

void settInn(db::Database& d, int fra, int antall, double c)
{
    db::Masseinnsetting inn(d, "INSERT INTO DataLinjer (DatoTid, C)", 1, 1);
    std::vector<std::string> tider;
    for (int r = fra; r < fra + antall; ++r)
        tider.push_back(
            QString::asprintf("2012-11-%02d %02d:%02d:%02d", 1 + r / 86400, r / 3600 % 24, r / 60 % 60, r % 60)
                .toStdString());
    std::vector<db::Masseinnsetting::Rad> rader;
    for (const std::string& t : tider) rader.push_back({{t}, &c, 1});
    db::Transaksjon t(d);
    inn.settInn(rader);
    t.fullfor();
}

}  // namespace

TEST(Lesebuffer, AndreTilkoblingersSkrivingSesVedNesteLesing)
{
    test::Programmappe mappe;
    const QString fil = mappe.sti(u"Data.mdb"_s);
    db::Database leser(fil), skriver(fil);
    // A file smaller than a stretch: the reader holds all of it but the first page.
    settInn(skriver, 0, 100, 1.0);
    EXPECT_EQ(sum(leser), 100.0);
    skriver.utforSqlite("UPDATE DataLinjer SET C = 2 WHERE ID = 50");
    EXPECT_EQ(sum(leser), 101.0);
    settInn(skriver, 100, 19900, 1.0);  // some hundred pages, read in stretches
    EXPECT_EQ(sum(leser), 20001.0);
    // Rows changed and added by the other connection, in pages the reader has in its stretch.
    skriver.utforSqlite("UPDATE DataLinjer SET C = 2 WHERE ID % 7 = 0");
    settInn(skriver, 20000, 5000, 3.0);
    EXPECT_EQ(sum(leser), 20001.0 + 20000 / 7 + 15000.0);
    // And its own writes, inside one transaction.
    db::Transaksjon t(leser);
    leser.utforSqlite("UPDATE DataLinjer SET C = 0 WHERE ID <= 10000");
    EXPECT_EQ(sum(leser), 10000.0 + (20000 / 7 - 10000 / 7) + 15000.0);
}

TEST(Lesebuffer, SkrivingBakLanderSomSkrevet)
{
    // The file layer itself: pages written out of order, one written twice, and two writes that
    // overlap unevenly land as the last write left them, seen by a read and in the closed file.
    test::Programmappe mappe;
    const QByteArray sti = QFile::encodeName(mappe.sti(u"ny.mdb"_s));
    sqlite3_vfs* vfs = sqlite3_vfs_find(db::lesebuffer());
    std::vector<char> plass(static_cast<size_t>(vfs->szOsFile));
    auto* f = reinterpret_cast<sqlite3_file*>(plass.data());
    int utFlagg = 0;
    ASSERT_EQ(
        vfs->xOpen(vfs, sti.constData(), f, SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_CREATE | SQLITE_OPEN_READWRITE, &utFlagg),
        SQLITE_OK);
    constexpr int Side = 4096;
    auto skriv = [&](char tegn, int antall, sqlite3_int64 fra) {
        const std::string data(static_cast<size_t>(antall), tegn);
        EXPECT_EQ(f->pMethods->xWrite(f, data.data(), antall, fra), SQLITE_OK);
    };
    auto les = [&](int antall) {
        QByteArray lest(antall, '\0');
        EXPECT_EQ(f->pMethods->xRead(f, lest.data(), antall, 0), SQLITE_OK);
        return lest;
    };
    skriv('b', Side, 2 * Side);
    skriv('a', Side, 0);
    skriv('c', Side, Side);
    EXPECT_EQ(les(3 * Side), QByteArray(Side, 'a') + QByteArray(Side, 'c') + QByteArray(Side, 'b'));
    skriv('d', Side, 0);
    skriv('x', Side, 0);                   // page 0 again
    skriv('e', 100, 3 * Side + 10);        // a piece of page 3 ...
    skriv('f', Side, 3 * Side);            // ... under a whole page written after it
    skriv('g', 10, 3 * Side + Side - 10);  // and its end once more
    const QByteArray forventet = QByteArray(Side, 'x') + QByteArray(Side, 'c') + QByteArray(Side, 'b') +
                                 QByteArray(Side - 10, 'f') + QByteArray(10, 'g');
    EXPECT_EQ(les(static_cast<int>(forventet.size())), forventet);
    skriv('h', Side, Side);
    EXPECT_EQ(f->pMethods->xClose(f), SQLITE_OK);
    EXPECT_EQ(mappe.les(u"ny.mdb"_s), QByteArray(forventet).replace(Side, Side, QByteArray(Side, 'h')));
}
