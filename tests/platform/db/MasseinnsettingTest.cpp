// Rows in bulk through db::Masseinnsetting, read back through the store's own select.
#include "platform/db/Masseinnsetting.h"
#include "felles/Felles.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Rad = db::Masseinnsetting::Rad;

TEST(Masseinnsetting, RaderMedTommeFeltIBunterOgRest)
{
    test::Programmappe mappe;
    db::Database d(mappe.sti(u"Data.mdb"_s));
    db::Masseinnsetting inn(d, "INSERT INTO DataLinjer (DatoTid, DatoTid_Tekst, C, D, E, F, G, H, I, J, K, L)", 2, 10);
    const double tall[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    // Two full statements and a rest of 7, then one full and the rest again: a row that has fewer
    // numbers than the row before it in the same place of a statement gets NULL, not the old value.
    const int runder[][2] = {{2 * db::Masseinnsetting::Bunt + 7, 10}, {db::Masseinnsetting::Bunt + 7, 0}};
    QStringList ventet;
    for (const auto& [antall, bredde] : runder) {
        std::vector<std::string> tider(static_cast<size_t>(antall));  // the rows hold views of them
        std::vector<Rad> rader;
        for (size_t r = 0; r < tider.size(); ++r) {
            tider[r] = QString::asprintf("2012-11-23 14:%02zu:%02zu", r / 60, r % 60).toStdString();
            const int n = static_cast<int>(r + bredde) % 11;  // 0 to 10 numbers, in turn
            rader.push_back({{tider[r], r % 2 ? "tekst" : std::string_view()}, tall, n});
            QStringList v;
            for (int i = 0; i < 10; ++i) v << (i < n ? QString::number(tall[i]) : u"-"_s);
            ventet << QString::fromStdString(tider[r]) + (r % 2 ? u"|tekst|"_s : u"|-|"_s) + v.join(' ');
        }
        inn.settInn(rader);
    }
    EXPECT_EQ(inn.lagret(), 164);
    EXPECT_EQ(test::rader(d, u"order by ID"_s), ventet);
}

}  // namespace
