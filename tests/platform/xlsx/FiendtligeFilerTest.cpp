// Hostile workbooks, built here: formula chains as long as a sheet, zip bombs, zip directories
// that lie, parts named outside the package, and entities in a DTD.
#include "Hjelpere.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

using namespace xlsx;

namespace {

class FiendtligBok : public ::testing::Test {
protected:
    // The hand-made workbook with a part replaced or added, or with sheet 1 holding these rows.
    QString med(const std::string& del, const std::string& innhold)
    {
        test::skrivZip(fil, test::handlagetBok({{del, innhold}}));
        return fil;
    }
    QString medRader(const std::string& rader)
    {
        return med("xl/worksheets/sheet1.xml",
                   "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>" +
                       rader + "</sheetData></worksheet>");
    }
    // The message the workbook layer refuses with (naming the limit it stopped at); "godtatt" if
    // it does not refuse.
    std::string avvisning(const std::function<void()>& gjor)
    {
        try {
            gjor();
        } catch (const XlsxFeil& e) {
            return e.what();
        }
        return "godtatt";
    }
    std::string avvisning(const QString& sti)
    {
        return avvisning([&] { apne(sti); });
    }
    QTemporaryDir dir;
    const QString fil = dir.filePath(u"mal.xlsx"_s);
};

// A cell of column P refers to the one below it over 8 000 rows, a time-remaining column; in
// column Q the same chain closes a circle.
TEST_F(FiendtligBok, FormelkjederSaLangeSomArket)
{
    std::string rader;
    for (int r = 1; r <= 8000; ++r) {
        const std::string neste = std::to_string(r < 8000 ? r + 1 : 1);
        rader += "<row r=\"" + std::to_string(r) + "\"><c r=\"P" + std::to_string(r) + "\"><f>" +
                 (r < 8000 ? "P" + neste + "+1" : "1") + "</f></c><c r=\"Q" + std::to_string(r) + "\"><f>Q" + neste +
                 "</f></c></row>";
    }
    auto bok = apne(medRader(rader));
    EXPECT_EQ(bok->ark(1).celle(1, 16), Verdi(8000.0));
    EXPECT_EQ(bok->ark(1).celle(7999, 16), Verdi(2.0));
    EXPECT_EQ(bok->ark(1).celle(4000, 17), Verdi(u"#REF!"_s));
    bok->ark(1).settCelle(8001, 1, 1.0);
    bok->lagreSom(dir.filePath(u"ut.xlsx"_s));
    EXPECT_TRUE(test::har(test::lesZip(dir.filePath(u"ut.xlsx"_s))["xl/worksheets/sheet1.xml"].innhold,
                          "P2+1</f><v>8000</v></c>"));
}

// Parts that unpack past the limits are refused while they are unpacked, whatever the directory says.
TEST_F(FiendtligBok, ZipbomberOgLyvendeKatalog)
{
    const std::string stor((16 << 20) + 1, ' ');
    EXPECT_EQ(avvisning(med("xl/worksheets/sheet1.xml", stor)),
              "Delen xl/worksheets/sheet1.xml er større enn 16 MB pakket ut");
    const std::string del(13 << 20, 'x');
    test::skrivZip(
        fil, test::handlagetBok(
                 {{"xl/media/a.bin", del}, {"xl/media/b.bin", del}, {"xl/media/c.bin", del}, {"xl/media/d.bin", del}}));
    EXPECT_EQ(avvisning(fil), "Arbeidsboka er større enn 48 MB pakket ut");
    // Half a million cells and more are refused before they are read.
    std::string celler;
    for (int i = 0; i < 500001; ++i) celler += "<c/>";
    const auto bok = apne(medRader("<row>" + celler + "</row>"));
    EXPECT_EQ(avvisning([&] { bok->ark(1).celle(1, 1); }),
              "Delen xl/worksheets/sheet1.xml har mer enn 500 000 XML-elementer");

    // The sizes of sheet 1 in the local header and the directory changed: 4 GB, 10 bytes, refused
    // on opening or when the sheet is read.
    med("xl/worksheets/sheet1.xml", std::string(1 << 20, ' '));
    QByteArray zip = test::les(fil);
    for (uint32_t logn : {0xFFFFFFF0u, 10u}) {
        for (auto [signatur, felt] : {std::pair{"PK\1\2", 24}, {"PK\3\4", 22}})
            for (qsizetype p = zip.indexOf(signatur); p >= 0; p = zip.indexOf(signatur, p + 1))
                if (zip.mid(p + (signatur[2] == 1 ? 46 : 30), 24) == "xl/worksheets/sheet1.xml")
                    for (int i = 0; i < 4; ++i) zip[p + felt + i] = static_cast<char>(logn >> (8 * i));
        test::skriv(fil, zip);
        EXPECT_NE(avvisning([&] { apne(fil)->ark(1).celle(1, 1); }), "godtatt") << logn;
    }
}

// Parts named outside the package or stored as links are refused, not copied on.
TEST_F(FiendtligBok, DelerUtenforPakken)
{
    for (const std::string navn : {"../../ut.txt", "/etc/x", "xl\\..\\..\\x"})
        EXPECT_EQ(avvisning(med(navn, "x")), "Delen " + navn + " har et navn som peker ut av arbeidsboka");
    med("xl/lenke", "/etc/passwd");
    zip_t* z = zip_open(fil.toUtf8().constData(), 0, nullptr);
    ASSERT_NE(z, nullptr);
    zip_file_set_external_attributes(z, static_cast<zip_uint64_t>(zip_name_locate(z, "xl/lenke", 0)), 0, ZIP_OPSYS_UNIX,
                                     0120777u << 16);
    ASSERT_EQ(zip_close(z), 0);
    EXPECT_EQ(avvisning(fil), "Delen xl/lenke er en lenke");
}

// Entities declared in a DTD are not expanded: a billion laughs stays a short text.
TEST_F(FiendtligBok, DtdEntiteterUtvidesIkke)
{
    auto bok = apne(med("xl/sharedStrings.xml", test::data("inn/milliard_latter.xml")));
    EXPECT_EQ(bok->ark(1).celle(1, 1), Verdi(u"&l9;"_s));
}

}  // namespace
