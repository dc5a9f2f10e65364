// Every statement form the commands send, answered by the store on a real keyed database file.
#include "store/Setninger.h"
#include "felles/Felles.h"
#include "platform/db/Database.h"
#include "platform/db/JetDialekt.h"

#include <QFile>
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

TEST_F(Setninger, InnsettingMedDagForstOgTall)
{
    store::tomTabell(db);
    rad("23/11/2012 14:05:31", QStringLiteral("1.5, 2, 3"), QStringLiteral("C, D, E"));
    rad("01/02/2013 00:00:00", QStringLiteral(" 1.5E-03"));
    auto p = db.spor(QStringLiteral("Select * from dataLinjer"));
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_EQ(p.tall("c"), 1.5);
    EXPECT_EQ(p.tall("E"), 3);
    EXPECT_TRUE(p.erNull("F"));
    EXPECT_EQ(p.tekst("DatoTid_Tekst"), QStringLiteral("tekst"));
    p.moveNext();
    EXPECT_EQ(p.dato("DatoTid"), vb::Dato::fra(2013, 2, 1));
    EXPECT_DOUBLE_EQ(p.tall("C"), 0.0015);
    p.moveNext();
    EXPECT_TRUE(p.eof());
}

TEST_F(Setninger, UmuligDatoAvvises)
{
    EXPECT_THROW(rad("30/02/2012 10:00:00", QStringLiteral("1")), db::DbFeil);
    EXPECT_THROW(rad("01/13/2012 10:00:00", QStringLiteral("1")), db::DbFeil);
    EXPECT_TRUE(db.spor(QStringLiteral("Select * from dataLinjer")).eof());
}

// Seconds after 23.11.2012 10:00:00.
vb::Dato kl(int sek) { return vb::Dato::fra(2012, 11, 23, 10, sek / 60, sek % 60); }

TEST_F(Setninger, ForsteRadITreFormer)
{
    EXPECT_FALSE(store::forsteRad(db));  // empty table: no row qualifies
    EXPECT_FALSE(store::forsteTid(db));
    EXPECT_FALSE(store::harRader(db));
    rad("23/11/2012 14:05:31", QStringLiteral("1"));
    rad("23/11/2012 14:05:29", QStringLiteral("2"));
    EXPECT_EQ(store::forsteRad(db)->tall("C"), 1);
    EXPECT_EQ(store::forsteTid(db), vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_TRUE(store::harRader(db));
    EXPECT_EQ(store::antallRader(db), 2);
}

TEST_F(Setninger, MinimumIgnorererTommeFeltOgGirAltidEnRad)
{
    rad("23/11/2012 10:00:00", QStringLiteral("5, 1"), QStringLiteral("C, D"));
    rad("23/11/2012 10:00:02", QStringLiteral("3"));
    rad("23/11/2012 10:00:04", QStringLiteral("4, 7"), QStringLiteral("C, D"));
    EXPECT_EQ(store::minimum(db, QStringLiteral("C"), kl(0)), 3);
    EXPECT_EQ(store::minimum(db, QStringLiteral("D"), vb::Dato::fra(2012, 11, 23, 9, 59, 59)), 1);
    EXPECT_EQ(store::minimum(db, QStringLiteral("D"), kl(0)), 7);
    EXPECT_EQ(store::minimum(db, QStringLiteral("C"), kl(4)), std::nullopt);
}

TEST_F(Setninger, TreffUnderTerskelITidsrekkefolge)
{
    for (const char* v : {"1E-10", "2E-10", "3E-10", "1E-10"})
        rad(QStringLiteral("23/11/2012 10:00:0%1").arg(2 * store::antallRader(db)).toLatin1().constData(),
            QLatin1String(v));
    EXPECT_EQ(datoer(store::treff(db, QStringLiteral("C"), QStringLiteral(" 3E-10"), kl(0))),
              (QStringList{QStringLiteral("20121123100002"), QStringLiteral("20121123100006")}));
    EXPECT_EQ(store::treff(db, QStringLiteral("C"), QStringLiteral("2.5E-10"), kl(0)).tall("Verdi"), 2e-10);
}

TEST_F(Setninger, YtterpunktInnenforTidsrom)
{
    for (const char* v : {"9", "5", "7", "7", "8", "9"})  // 10:00:00 and 10:00:10 lie outside the spans
        rad(QStringLiteral("23/11/2012 10:00:%1")
                .arg(2 * store::antallRader(db), 2, 10, QLatin1Char('0'))
                .toLatin1()
                .constData(),
            QLatin1String(v));
    const QString C = QStringLiteral("C");
    // Turning points: from the first key inclusive to the second exclusive; the first of equal ones wins.
    EXPECT_EQ(store::snuPunkt(db, kl(2), kl(8), false, C), kl(4));
    EXPECT_EQ(store::snuPunkt(db, kl(2), kl(8), true, C), kl(2));
    EXPECT_EQ(store::snuPunkt(db, kl(20), kl(30), true, C), vb::Dato());
    // The combined export's maximum: both ends exclusive.
    EXPECT_EQ(store::maksTid(db, C, kl(0), kl(10)), kl(8));
    EXPECT_EQ(store::maksTid(db, C, kl(10), kl(20)), std::nullopt);
}

TEST_F(Setninger, VinduerMedApneOgLukkedeEnder)
{
    for (const char* d : {"23/11/2012 10:00:00", "23/11/2012 10:00:02", "23/11/2012 10:00:04"})
        rad(d, QStringLiteral("1"));
    EXPECT_EQ(datoer(store::vinduRader(db, false, kl(0), kl(4))),
              (QStringList{QStringLiteral("20121123100002"), QStringLiteral("20121123100004")}));
    EXPECT_EQ(datoer(store::vinduRader(db, true, kl(0), kl(2))),
              (QStringList{QStringLiteral("20121123100000"), QStringLiteral("20121123100002")}));
}

TEST_F(Setninger, ResultatIIdRekkefolgeOgsaNarTidenGarTilbake)
{
    rad("23/11/2012 10:00:04", QStringLiteral("1"));
    rad("23/11/2012 10:00:02", QStringLiteral("1"));
    EXPECT_EQ(datoer(store::vinduRader(db, true, kl(0), kl(10))),
              (QStringList{QStringLiteral("20121123100004"), QStringLiteral("20121123100002")}));
    EXPECT_EQ(store::maksTid(db, QStringLiteral("C"), kl(0), kl(10)), kl(4));
    EXPECT_EQ(store::kolonne(db, QStringLiteral("C")).tall("C"), 1);
}

TEST_F(Setninger, TidsnokkelBrukerIndeks)
{
    const QString sql = db::tilSqlite(store::setning::vindu(false, kl(0), kl(4)));
    QString plan;
    for (auto p = db.spor(QStringLiteral("EXPLAIN QUERY PLAN ") + sql); !p.eof(); p.moveNext())
        plan += p.tekst("detail") + QLatin1Char('\n');
    EXPECT_TRUE(plan.contains(QStringLiteral("USING INDEX DataLinjer_DatoTid"))) << plan.toStdString();
}

TEST_F(Setninger, UkjentKolonneErEnFeilFraLageret)
{
    EXPECT_THROW(db.spor(QStringLiteral("Select min(M) as Minimum from DataLinjer")), db::DbFeil);
    EXPECT_THROW(db.spor(QStringLiteral("Select Å from DataLinjer order by ID")), db::DbFeil);
}

TEST(Databasefil, KreverNokkelen)
{
    test::Programmappe mappe;
    mappe.skriv("tull.mdb", "dette er ingen database");
    db::Database db;
    EXPECT_THROW(db.aapne(mappe.sti("tull.mdb")), db::DbFeil);
    EXPECT_FALSE(db.erApen());
    EXPECT_THROW(db.aapne(mappe.sti("finnes-ikke.mdb")), db::DbFeil);
    EXPECT_FALSE(QFile::exists(mappe.sti("finnes-ikke.mdb")));
    // The file on disk is encrypted: the header is not SQLite's plain one.
    EXPECT_FALSE(mappe.les("Data.mdb").startsWith("SQLite format 3"));
}

}  // namespace
