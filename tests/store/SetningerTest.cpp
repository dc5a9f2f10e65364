// Every statement form the commands send, answered by the store on a real keyed database file.
#include "felles/Felles.h"
#include "platform/db/Database.h"
#include "platform/db/JetDialekt.h"
#include "store/Maledata.h"

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

    QStringList datoer(const QString& sql)
    {
        QStringList ut;
        for (auto p = db.spor(sql); !p.eof(); p.moveNext()) ut << p.dato("DatoTid").tidsnokkel();
        return ut;
    }

    test::Programmappe mappe;
    db::Database db;
};

TEST_F(Setninger, InnsettingMedDagForstOgTall)
{
    db.utfor(QStringLiteral("Delete from Datalinjer"));
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

TEST_F(Setninger, MinsteIdSomBetingelse)
{
    const QString forste = QStringLiteral("Select * from datalinjer where (Select min(ID) from datalinjer)");
    EXPECT_TRUE(db.spor(forste).eof());  // empty table: no row qualifies
    rad("23/11/2012 14:05:31", QStringLiteral("1"));
    rad("23/11/2012 14:05:29", QStringLiteral("2"));
    EXPECT_EQ(db.spor(forste).tall("C"), 1);
    EXPECT_EQ(db.spor(QStringLiteral("Select DatoTid from Datalinjer where (Select min(ID) from Datalinjer)"))
                  .dato("DatoTid"),
              vb::Dato::fra(2012, 11, 23, 14, 5, 31));
    EXPECT_EQ(db.spor(QStringLiteral("Select * from Datalinjer where ID = (Select Min(ID) from Datalinjer)")).tall("C"), 1);
}

TEST_F(Setninger, MinimumIgnorererTommeFeltOgGirAltidEnRad)
{
    rad("23/11/2012 10:00:00", QStringLiteral("5, 1"), QStringLiteral("C, D"));
    rad("23/11/2012 10:00:02", QStringLiteral("3"));
    rad("23/11/2012 10:00:04", QStringLiteral("4, 7"), QStringLiteral("C, D"));
    auto min = [&](const char* bokstav, const char* nokkel) {
        return db.spor(QStringLiteral("Select min(%1) as Minimum from DataLinjer where format(DatoTid, "
                                      "'YYYYMMDDHHNNSS') > '%2'")
                           .arg(QLatin1String(bokstav), QLatin1String(nokkel)));
    };
    EXPECT_EQ(min("C", "20121123100000").tall("Minimum"), 3);
    EXPECT_EQ(min("D", "20121123095959").tall("minimum"), 1);
    EXPECT_EQ(min("D", "20121123100000").tall("Minimum"), 7);
    auto etter = min("C", "20121123100004");
    ASSERT_FALSE(etter.eof());
    EXPECT_TRUE(etter.erNull("Minimum"));
}

TEST_F(Setninger, TreffUnderTerskelITidsrekkefolge)
{
    rad("23/11/2012 10:00:00", QStringLiteral("1E-10"));
    rad("23/11/2012 10:00:02", QStringLiteral("2E-10"));
    rad("23/11/2012 10:00:04", QStringLiteral("3E-10"));
    rad("23/11/2012 10:00:06", QStringLiteral("1E-10"));
    const QString sql = QStringLiteral("Select DatoTid, C as Verdi from Datalinjer where C < %1 and format(DatoTid, "
                                       "'YYYYMMDDHHNNSS') > '20121123100000' order by ID");
    EXPECT_EQ(datoer(sql.arg(QStringLiteral(" 3E-10"))),
              (QStringList{QStringLiteral("20121123100002"), QStringLiteral("20121123100006")}));
    EXPECT_EQ(db.spor(sql.arg(QStringLiteral("2.5E-10"))).tall("Verdi"), 2e-10);
}

TEST_F(Setninger, YtterpunktInnenforTidsrom)
{
    rad("23/11/2012 10:00:00", QStringLiteral("9"));  // larger, but outside the span
    rad("23/11/2012 10:00:02", QStringLiteral("5"));
    rad("23/11/2012 10:00:04", QStringLiteral("7"));
    rad("23/11/2012 10:00:06", QStringLiteral("7"));
    rad("23/11/2012 10:00:08", QStringLiteral("8"));  // at the exclusive upper bound
    rad("23/11/2012 10:00:10", QStringLiteral("9"));
    const QString tid = QStringLiteral("format(DatoTid, 'YYYYMMDDHHNNSS')");
    const QString snu = QStringLiteral("Select DatoTid from Datalinjer where C = (Select %1(C) from DataLinjer where "
                                       "%2 >= '20121123100002' and %2 < '20121123100008') and %2 >= '20121123100002' "
                                       "and %2 < '20121123100008'");
    EXPECT_EQ(datoer(snu.arg(QStringLiteral("max"), tid)),
              (QStringList{QStringLiteral("20121123100004"), QStringLiteral("20121123100006")}));
    EXPECT_EQ(datoer(snu.arg(QStringLiteral("Min"), tid)), QStringList{QStringLiteral("20121123100002")});
    const QString samle = QStringLiteral("Select DatoTid from Datalinjer where C = (Select max(C) from DataLinjer where "
                                         "%1 > '20121123100000' and %1 < '20121123100010') and %1 > '20121123100000' "
                                         "and %1 < '20121123100010'");
    EXPECT_EQ(datoer(samle.arg(tid)), QStringList{QStringLiteral("20121123100008")});
}

TEST_F(Setninger, VinduerMedApneOgLukkedeEnder)
{
    for (const char* d : {"23/11/2012 10:00:00", "23/11/2012 10:00:02", "23/11/2012 10:00:04"})
        rad(d, QStringLiteral("1"));
    const QString tid = QStringLiteral("format(DatoTid, 'YYYYMMDDHHNNSS')");
    EXPECT_EQ(datoer(QStringLiteral("Select * from Datalinjer where %1 > '20121123100000' and %1 <= '20121123100004' "
                                    "order by ID")
                         .arg(tid)),
              (QStringList{QStringLiteral("20121123100002"), QStringLiteral("20121123100004")}));
    EXPECT_EQ(datoer(QStringLiteral("Select * from Datalinjer where %1 >= '20121123100000' and %1 <= '20121123100002' "
                                    "order by ID")
                         .arg(tid)),
              (QStringList{QStringLiteral("20121123100000"), QStringLiteral("20121123100002")}));
}

TEST_F(Setninger, ResultatIIdRekkefolgeUtenOrderBy)
{
    // Rows out of time order: the answer still follows ID, as the callers expect.
    rad("23/11/2012 10:00:04", QStringLiteral("1"));
    rad("23/11/2012 10:00:02", QStringLiteral("1"));
    EXPECT_EQ(datoer(QStringLiteral("Select DatoTid from Datalinjer where C = (Select max(C) from DataLinjer where "
                                    "format(DatoTid, 'YYYYMMDDHHNNSS') > '20121123100000' and format(DatoTid, "
                                    "'YYYYMMDDHHNNSS') < '20121123100010') and format(DatoTid, 'YYYYMMDDHHNNSS') > "
                                    "'20121123100000' and format(DatoTid, 'YYYYMMDDHHNNSS') < '20121123100010'")),
              (QStringList{QStringLiteral("20121123100004"), QStringLiteral("20121123100002")}));
    EXPECT_EQ(db.spor(QStringLiteral("Select C from DataLinjer order by ID")).tall("C"), 1);
}

TEST_F(Setninger, TidsnokkelBrukerIndeks)
{
    const QString sql = db::tilSqlite(QStringLiteral(
        "Select * from Datalinjer where format(DatoTid, 'YYYYMMDDHHNNSS') > '20121123100000' and format(DatoTid, "
        "'YYYYMMDDHHNNSS') <= '20121123100004' order by ID"));
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

} // namespace
