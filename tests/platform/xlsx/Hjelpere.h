// Test helpers for workbook files: packages written and read entry by entry, the data files
// beside the tests, and cell values.
#pragma once

#include "felles/Felles.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QFile>
#include <gtest/gtest.h>
#include <zip.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace test {

// Whether the XML text holds this piece; a failure shows the whole text.
inline ::testing::AssertionResult har(const std::string& xml, const std::string& bit)
{
    if (xml.find(bit) != std::string::npos) return ::testing::AssertionSuccess() << bit << " found in " << xml;
    return ::testing::AssertionFailure() << bit << " not in " << xml;
}

using Deler = std::vector<std::pair<std::string, std::string>>;

// Writes the entries in this order; .bin parts are stored without compression, the others with the
// fastest deflate (compressing the large parts of the hostile workbooks is much of their time).
inline void skrivZip(const QString& sti, const Deler& deler)
{
    int feil = 0;
    zip_t* z = zip_open(sti.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, &feil);
    ASSERT_NE(z, nullptr);
    for (auto& [navn, innhold] : deler) {
        zip_int64_t i =
            zip_file_add(z, navn.c_str(), zip_source_buffer(z, innhold.data(), innhold.size(), 0), ZIP_FL_ENC_UTF_8);
        ASSERT_GE(i, 0) << navn;
        zip_set_file_compression(z, static_cast<zip_uint64_t>(i),
                                 navn.ends_with(".bin") ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 1);
    }
    ASSERT_EQ(zip_close(z), 0);
}

struct Oppforing {
    std::string innhold;
    int metode = 0;
    unsigned long long komprimert = 0;
    zip_int64_t nr = 0;  // position in the package
};

inline std::map<std::string, Oppforing> lesZip(const QString& sti)
{
    std::map<std::string, Oppforing> ut;
    int feil = 0;
    zip_t* z = zip_open(sti.toUtf8().constData(), ZIP_RDONLY, &feil);
    if (!z) {
        ADD_FAILURE() << "kan ikke åpne " << sti.toStdString();
        return ut;
    }
    for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(z, static_cast<zip_uint64_t>(i), 0, &st);
        Oppforing o{std::string(st.size, '\0'), st.comp_method, st.comp_size, i};
        zip_file_t* f = zip_fopen_index(z, static_cast<zip_uint64_t>(i), 0);
        zip_fread(f, o.innhold.data(), st.size);
        zip_fclose(f);
        ut[st.name] = std::move(o);
    }
    zip_discard(z);
    return ut;
}

// A data file beside these tests, as stored there: a part of the hand-made workbook in handlaget/,
// a part to read in inn/, or the known-good XML a change writes in gull/.
inline std::string data(const std::string& navn)
{
    const QString sti = QStringLiteral(TOLVIK_TESTDATA "/platform/xlsx/") + QString::fromStdString(navn);
    EXPECT_TRUE(QFile::exists(sti)) << navn;
    return les(sti).toStdString();
}

// The workbook a spreadsheet application would write, parts in the order it writes them:
// shared strings (one of them rich text), styles, a calculation chain, a shared formula,
// a VBA part, and on sheet 2 a picture followed by a line chart with a rich title, a
// scatter chart without a title and a bar chart whose title is a cell reference.
// The given parts replace those of their names, or are added at the end.
inline Deler handlagetBok(const Deler& endret = {})
{
    Deler ut;
    for (const char* navn :
         {"[Content_Types].xml", "_rels/.rels", "xl/workbook.xml", "xl/_rels/workbook.xml.rels",
          "xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml", "xl/worksheets/_rels/sheet2.xml.rels",
          "xl/drawings/drawing1.xml", "xl/drawings/_rels/drawing1.xml.rels", "xl/charts/chart1.xml",
          "xl/charts/chart2.xml", "xl/charts/chart3.xml", "xl/sharedStrings.xml", "xl/styles.xml", "xl/calcChain.xml",
          "xl/vbaProject.bin"})
        ut.emplace_back(navn, data(std::string("handlaget/") + navn));
    for (const auto& del : endret) {
        auto it = std::find_if(ut.begin(), ut.end(), [&](const auto& d) { return d.first == del.first; });
        if (it == ut.end())
            ut.push_back(del);
        else
            it->second = del.second;
    }
    return ut;
}

}  // namespace test
