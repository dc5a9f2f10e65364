// tolvik-batch export-single, edit-title and test: answers from the arguments, the messages
// printed, the exit status.
#include "Eksportmappe.h"

#include "export/Eksport.h"

#include <QFile>
#include <QJsonArray>

namespace {

class Batch : public Eksportmappe {
protected:
    test::Kjoring kjor(QStringList argumenter)
    {
        argumenter.prepend(mappe.mappe());
        argumenter.prepend(QStringLiteral("--folder"));
        return test::batch(argumenter);
    }
};

TEST_F(Batch, TittelenFolgerMedTilSenereEksport)
{
    rader(0, 30 * 60, 60);
    snupunkter({10 * 60, 20 * 60});
    auto r = kjor({"edit-title", "--single", "--title", "Forsøk 7"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();

    r = kjor({"--set", "Text4=2", "--set", "Text6=2", "export-single", "--prefix", "Lab"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    EXPECT_EQ(r.ut, QStringLiteral("Vil du lage excel-filer for 1 run?\n\nEksporten er ferdig!\n\n"));
    const QJsonObject bok = lesArbeidsbok(ut(QStringLiteral("Lab_2.xlsx")));
    const QJsonArray grafer = bok[QStringLiteral("diagrammer")].toArray()[1].toArray();
    ASSERT_GE(grafer.size(), 2);
    EXPECT_EQ(grafer[0][QStringLiteral("tittel")].toString(), QStringLiteral("Forsøk 7"));
    EXPECT_EQ(grafer[1][QStringLiteral("tittel")].toString(), QStringLiteral("Forsøk 7"));
    EXPECT_DOUBLE_EQ(grafer[0][QStringLiteral("xmin")].toDouble(), 11);  // first row 20:00 − 9 min

    r = kjor({"export-single", "--prefix", "Nei", "--no"});
    EXPECT_EQ(r.status, 0);
    EXPECT_FALSE(QFile::exists(ut(QStringLiteral("Nei_1.xlsx"))));
}

TEST_F(Batch, UtfallOgBruksfeil)
{
    form();
    auto r = kjor({"export-single", "--prefix", "P"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.ut, QStringLiteral("Du må først finne antall sykluser\n\n"));

    const QByteArray ads = innhold(mappe.sti(eksport::MalAdsorpsjon));
    r = kjor({"--desorption", "edit-title", "--combined", "--title", "Des"});
    EXPECT_EQ(r.status, 0) << r.feil.toStdString();
    EXPECT_EQ(innhold(mappe.sti(eksport::MalAdsorpsjon)), ads);

    EXPECT_EQ(kjor({"test"}).status, 0);
    QFile::remove(mappe.sti(eksport::MalSykluser));
    EXPECT_EQ(kjor({"test"}).status, 1);
    EXPECT_EQ(kjor({"edit-title", "--single", "--title", "X"}).status, 1);

    for (const QStringList& galt : {QStringList{"edit-title", "--title", "X"},
                                    QStringList{"edit-title", "--single", "--combined", "--title", "X"},
                                    QStringList{"edit-title", "--single"}, QStringList{"export-single"},
                                    QStringList{"test", "--ekstra"}})
        EXPECT_EQ(kjor(galt).status, 2) << galt.join(' ').toStdString();
}

} // namespace
