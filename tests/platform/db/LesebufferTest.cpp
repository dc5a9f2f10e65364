// The program's connections read the database file in stretches; what another connection
// writes between two reads must be seen all the same.
#include "felles/Felles.h"
#include "platform/db/Masseinnsetting.h"

#include <gtest/gtest.h>

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
