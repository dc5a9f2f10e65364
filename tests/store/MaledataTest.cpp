#include "store/Maledata.h"
#include "felles/Felles.h"

#include <gtest/gtest.h>

TEST(HentVerdi, BareCTilHMedStorBokstav)
{
    test::Programmappe mappe;
    db::Database db(mappe.sti("Data.mdb"));
    db.utfor(QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I) VALUES "
                            "('23/11/2012 14:05:31', 't', 0.1, 2, 3, 4, 5, 6, 7)"));
    db.utfor(
        QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst, C) VALUES ('23/11/2012 14:05:33', 't', 1)"));
    auto p = db.spor(QStringLiteral("Select * from dataLinjer"));
    EXPECT_EQ(store::HentVerdi(QStringLiteral("C"), p), 0.1f);
    EXPECT_EQ(store::HentVerdi(QStringLiteral("H"), p), 6.0f);
    EXPECT_EQ(store::HentVerdi(QStringLiteral("I"), p), 0.0f);
    EXPECT_EQ(store::HentVerdi(QStringLiteral("c"), p), 0.0f);
    EXPECT_EQ(store::HentVerdi(QString(), p), 0.0f);
    p.moveNext();
    EXPECT_EQ(store::HentVerdi(QStringLiteral("D"), p), 0.0f);  // empty field
}
