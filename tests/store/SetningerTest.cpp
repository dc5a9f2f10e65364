// Every statement form the commands send, answered by the store on a real keyed database file.
#include "store/Setninger.h"
#include "felles/Felles.h"
#include "platform/db/Database.h"
#include "platform/db/JetDialekt.h"
#include "store/Maledata.h"

#include <gtest/gtest.h>

namespace {

class Setninger : public ::testing::Test {
protected:
    void SetUp() override { db.aapne(mappe.sti("Data.mdb")); }

    // One row through the import's text form: day-first date literal, values with exponent and blank.
    void rad(const char* dato, const QString& verdier, const QString& kolonner = QStringLiteral("C"))
    {
        db.utfor(QStringLiteral("Insert into DataLinjer (DatoTid, DatoTid_Tekst, %1) VALUES ('%2', 'tekst', %3)")
                     .arg(kolonner, QLatin1String(dato), verdier));
    }

    static QStringList datoer(db::Recordset p)
    {
        QStringList ut;
        for (; !p.eof(); p.moveNext()) ut << p.dato("DatoTid").tidsnokkel();
        return ut;
    }

    test::Programmappe mappe;
    db::Database db;
};

// Seconds after 23.11.2012 10:00:00.
vb::Dato kl(int sek) { return vb::Dato::fra(2012, 11, 23, 10, sek / 60, sek % 60); }

TEST_F(Setninger, DagForstUmuligDatoOgVerdiPerBokstav)
{
    rad("23/11/2012 14:05:31", QStringLiteral("0.1, 2, 3, 4, 5, 6, 7"), QStringLiteral("C, D, E, F, G, H, I"));
    rad("01/02/2013 00:00:00", QStringLiteral(" 1.5E-03"));
    EXPECT_THROW(rad("30/02/2012 10:00:00", QStringLiteral("1")), db::DbFeil);
    EXPECT_THROW(rad("01/13/2012 10:00:00", QStringLiteral("1")), db::DbFeil);
    auto p = db.spor(QStringLiteral("Select * from dataLinjer"));
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_TRUE(p.erNull("J"));
    // A measured value by its column letter: C to H only, in capitals; an empty field gives 0.
    const std::pair<const char*, float> verdier[] = {{"C", 0.1f}, {"H", 6}, {"I", 0}, {"c", 0}, {"", 0}};
    for (const auto& [K, v] : verdier) EXPECT_EQ(store::HentVerdi(QString::fromLatin1(K), p), v) << K;
    p.moveNext();
    EXPECT_EQ(store::HentVerdi(QStringLiteral("D"), p), 0.0f);
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2013, 2, 1));
    EXPECT_DOUBLE_EQ(p.tall("C"), 0.0015);
    EXPECT_EQ(store::antallRader(db), 2);
}

TEST_F(Setninger, MinimumOgMaksimumHopperOverTommeFelt)
{
    rad("23/11/2012 10:00:00", QStringLiteral("5, 1"), QStringLiteral("C, D"));
    rad("23/11/2012 10:00:02", QStringLiteral("3"));
    rad("23/11/2012 10:00:04", QStringLiteral("4, 7"), QStringLiteral("C, D"));
    EXPECT_EQ(store::minimum(db, QStringLiteral("C"), kl(0)), 3);
    EXPECT_EQ(store::minimum(db, QStringLiteral("D"), kl(0)), 7);
    EXPECT_EQ(store::minimum(db, QStringLiteral("C"), kl(4)), std::nullopt);
    EXPECT_EQ(store::maksTid(db, QStringLiteral("D"), kl(0), kl(10)), kl(4));
    EXPECT_EQ(store::snuPunkt(db, kl(0), kl(6), true, QStringLiteral("D")), kl(0));
    // A "letter" from an edited Kolonner.txt that is none never reaches a statement.
    for (const char* K : {"C) from DataLinjer; --", "", "c", "1"})
        EXPECT_THROW(store::minimum(db, QString::fromUtf8(K), kl(0)), db::DbFeil) << K;
    // Over more than a day the span is read in two halves: the smaller of their minimums, or the
    // one half's when the other has none.
    rad("25/11/2012 10:00:00", QStringLiteral("2, 9, 8"), QStringLiteral("C, D, E"));
    EXPECT_EQ(store::minimum(db, QStringLiteral("C"), kl(0)), 2);
    EXPECT_EQ(store::minimum(db, QStringLiteral("D"), kl(0)), 7);
    EXPECT_EQ(store::minimum(db, QStringLiteral("E"), kl(0)), 8);
    // So are the hit rows where time follows the IDs: the earlier half's first.
    db.settRadorden(true, true);
    EXPECT_EQ(store::treffTider(db, QStringLiteral("C"), QStringLiteral("4.5"), kl(0)),
              (std::vector{kl(2), kl(4), vb::Dato::fra(2012, 11, 25, 10)}));
}

TEST_F(Setninger, ResultatIIdRekkefolgeOgsaNarTidenGarTilbake)
{
    EXPECT_FALSE(store::harRader(db) || store::forsteRad(db) || store::forsteTid(db) ||
                 store::sisteTid(db));  // an empty table
    rad("23/11/2012 10:00:04", QStringLiteral("1"));
    rad("23/11/2012 10:00:02", QStringLiteral("1"));
    for (const QString& K : {QString(), QStringLiteral("C")})
        EXPECT_EQ(datoer(store::vinduRader(db, true, kl(0), kl(10), K)),
                  (QStringList{QStringLiteral("20121123100004"), QStringLiteral("20121123100002")}));
    EXPECT_EQ(store::sisteTid(db), kl(2));
    EXPECT_EQ(store::maksTid(db, QStringLiteral("C"), kl(0), kl(10)), kl(4));
    EXPECT_EQ(store::forsteTid(db), kl(4));
    EXPECT_TRUE(store::harRader(db) && store::forsteRad(db));
}

TEST_F(Setninger, TidsnokkelBrukerIndeks)
{
    const auto plan = [&](const QString& setning) {
        QString plan;
        for (auto p = db.spor(QStringLiteral("EXPLAIN QUERY PLAN ") + db::tilSqlite(setning)); !p.eof(); p.moveNext())
            plan += p.tekst("detail") + QLatin1Char('\n');
        return plan;
    };
    const QString alle = plan(store::setning::vindu(false, kl(0), kl(4)));
    EXPECT_TRUE(alle.contains(QStringLiteral("USING INDEX DataLinjer_DatoTid"))) << alle.toStdString();
    // A window of one column is read from that column's time index alone.
    store::forberedSok(db, QStringLiteral("C"));
    const QString en = plan(store::setning::vindu(false, kl(0), kl(4), QStringLiteral("C")));
    EXPECT_TRUE(en.contains(QStringLiteral("USING COVERING INDEX DataLinjer_Tid_C"))) << en.toStdString();
}

}  // namespace
