// Every statement form the commands send, answered by the store on a real keyed database file.
#include "store/Setninger.h"
#include "felles/Felles.h"
#include "platform/db/Database.h"
#include "store/Maledata.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Setninger : public ::testing::Test {
protected:
    void SetUp() override { db.aapne(mappe.sti("Data.mdb")); }

    // One row through the import's text form: day-first date literal, values with exponent and blank.
    void rad(const char* dato, const QString& verdier, const QString& kolonner = u"C"_s)
    {
        db.utfor(u"Insert into DataLinjer (DatoTid, DatoTid_Tekst, %1) VALUES ('%2', 'tekst', %3)"_s.arg(
            kolonner, QLatin1String(dato), verdier));
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
    rad("23/11/2012 14:05:31", u"0.1, 2, 3, 4, 5, 6, 7"_s, u"C, D, E, F, G, H, I"_s);
    rad("01/02/2013 00:00:00", u" 1.5E-03"_s);
    EXPECT_THROW(rad("30/02/2012 10:00:00", u"1"_s), db::DbFeil);
    EXPECT_THROW(rad("01/13/2012 10:00:00", u"1"_s), db::DbFeil);
    auto p = db.spor(u"Select * from dataLinjer"_s);
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_TRUE(p.erNull("J"));
    // A measured value by its column letter: C to H only, in capitals; an empty field gives 0.
    const std::pair<const char*, float> verdier[] = {{"C", 0.1f}, {"H", 6}, {"I", 0}, {"c", 0}, {"", 0}};
    for (const auto& [K, v] : verdier) EXPECT_EQ(store::HentVerdi(QString::fromLatin1(K), p), v) << K;
    p.moveNext();
    EXPECT_EQ(store::HentVerdi(u"D"_s, p), 0.0f);
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2013, 2, 1));
    EXPECT_DOUBLE_EQ(p.tall("C"), 0.0015);
    EXPECT_EQ(store::antallRader(db), 2);
}

TEST_F(Setninger, MinimumOgMaksimumHopperOverTommeFelt)
{
    rad("23/11/2012 10:00:00", u"5, 1"_s, u"C, D"_s);
    rad("23/11/2012 10:00:02", u"3"_s);
    rad("23/11/2012 10:00:04", u"4, 7"_s, u"C, D"_s);
    EXPECT_EQ(store::minimum(db, u"C"_s, kl(0)), 3);
    EXPECT_EQ(store::minimum(db, u"D"_s, kl(0)), 7);
    EXPECT_EQ(store::minimum(db, u"C"_s, kl(4)), std::nullopt);
    EXPECT_EQ(store::maksTid(db, u"D"_s, kl(0), kl(10)), kl(4));
    EXPECT_EQ(store::snuPunkt(db, kl(0), kl(6), true, u"D"_s), kl(0));
    // A "letter" from an edited Kolonner.txt that is none never reaches a statement.
    for (const char* K : {"C) from DataLinjer; --", "", "c", "1"})
        EXPECT_THROW(store::minimum(db, QString::fromUtf8(K), kl(0)), db::DbFeil) << K;
    // Over more than a day the span is read in two halves: the smaller of their minimums, or the
    // one half's when the other has none.
    rad("25/11/2012 10:00:00", u"2, 9, 8"_s, u"C, D, E"_s);
    EXPECT_EQ(store::minimum(db, u"C"_s, kl(0)), 2);
    EXPECT_EQ(store::minimum(db, u"D"_s, kl(0)), 7);
    EXPECT_EQ(store::minimum(db, u"E"_s, kl(0)), 8);
    // So are the hit rows where time follows the IDs: the earlier half's first.
    db.settRadorden(true, true);
    EXPECT_EQ(store::treffTider(db, u"C"_s, u"4.5"_s, kl(0)),
              (std::vector{kl(2), kl(4), vb::Dato::fra(2012, 11, 25, 10)}));
}

TEST_F(Setninger, ResultatIIdRekkefolgeOgsaNarTidenGarTilbake)
{
    EXPECT_FALSE(store::harRader(db) || store::forsteRad(db) || store::forsteTid(db) ||
                 store::sisteTid(db));  // an empty table
    rad("23/11/2012 10:00:04", u"1"_s);
    rad("23/11/2012 10:00:02", u"1"_s);
    for (const QString& K : {QString(), u"C"_s})
        EXPECT_EQ(datoer(store::vinduRader(db, true, kl(0), kl(10), K)),
                  (QStringList{u"20121123100004"_s, u"20121123100002"_s}));
    EXPECT_EQ(store::sisteTid(db), kl(2));
    EXPECT_EQ(store::maksTid(db, u"C"_s, kl(0), kl(10)), kl(4));
    EXPECT_EQ(store::forsteTid(db), kl(4));
    EXPECT_TRUE(store::harRader(db) && store::forsteRad(db));
}

// A window over all columns reads the table's time index. Once a column's time index is made and time
// follows the IDs, the search's statements and a window of that column read it alone, in its order,
// without a sort.
TEST_F(Setninger, TidsnokkelBrukerIndeks)
{
    const auto plan = [&](const QString& setning) {
        QStringList trinn;
        for (auto p = db.spor(u"EXPLAIN QUERY PLAN "_s + setning); !p.eof(); p.moveNext())
            trinn << p.tekst("detail");
        return trinn;
    };
    const QStringList alle = plan(store::setning::vindu(false, kl(0), kl(4)));
    EXPECT_TRUE(alle.join('\n').contains(u"USING INDEX DataLinjer_DatoTid"_s)) << alle.join('\n');
    store::forberedSok(db, u"C"_s);
    db.settRadorden(true, false);
    using namespace store::setning;
    for (const QString& s : {vindu(false, kl(0), kl(4), u"C"_s), snuPunkt(kl(0), kl(4), true, u"C"_s),
                             snuPunkt(kl(0), kl(4), false, u"C"_s), minimum(u"C"_s, kl(0)),
                             treff(u"C"_s, u"0.5"_s, kl(0))})
        for (const QString& trinn : plan(s))
            EXPECT_TRUE(trinn.startsWith(u"EXECUTE"_s) ||
                        trinn.contains(u"USING COVERING INDEX DataLinjer_Tid_C (DatoTid>"_s))
                << trinn << s;
}

}  // namespace
