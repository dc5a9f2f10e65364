#include "Zipfiler.h"

#include <gtest/gtest.h>
#include <zip.h>

namespace test {

void skrivZip(const std::string& sti, const std::vector<std::pair<std::string, std::string>>& deler,
              const std::set<std::string>& lagret) {
    int feil = 0;
    zip_t* z = zip_open(sti.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &feil);
    ASSERT_NE(z, nullptr);
    for (auto& [navn, innhold] : deler) {
        zip_source_t* s = zip_source_buffer(z, innhold.data(), innhold.size(), 0);
        zip_int64_t i = zip_file_add(z, navn.c_str(), s, ZIP_FL_ENC_UTF_8);
        ASSERT_GE(i, 0);
        zip_set_file_compression(z, static_cast<zip_uint64_t>(i), lagret.count(navn) ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 9);
    }
    ASSERT_EQ(zip_close(z), 0);
}

std::map<std::string, Oppforing> lesZip(const std::string& sti) {
    std::map<std::string, Oppforing> ut;
    int feil = 0;
    zip_t* z = zip_open(sti.c_str(), ZIP_RDONLY, &feil);
    if (!z) {
        ADD_FAILURE() << "kan ikke åpne " << sti;
        return ut;
    }
    for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(z, static_cast<zip_uint64_t>(i), 0, &st);
        Oppforing o;
        o.metode = st.comp_method;
        o.komprimert = st.comp_size;
        o.crc = st.crc;
        o.innhold.resize(st.size);
        zip_file_t* f = zip_fopen_index(z, static_cast<zip_uint64_t>(i), 0);
        zip_fread(f, o.innhold.data(), st.size);
        zip_fclose(f);
        ut[st.name] = std::move(o);
    }
    zip_discard(z);
    return ut;
}

std::vector<std::string> navnIZip(const std::string& sti) {
    std::vector<std::string> ut;
    int feil = 0;
    zip_t* z = zip_open(sti.c_str(), ZIP_RDONLY, &feil);
    if (!z) return ut;
    for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) ut.push_back(zip_get_name(z, static_cast<zip_uint64_t>(i), 0));
    zip_discard(z);
    return ut;
}

namespace {

const char* const xmlHode = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
const char* const nsC = "xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\" "
                        "xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
                        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";

std::string rel(const char* id, const char* type, const char* maal) {
    return std::string("<Relationship Id=\"") + id + "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/" +
           type + "\" Target=\"" + maal + "\"/>";
}

std::string rels(const std::string& innhold) {
    return xmlHode + std::string("<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">") +
           innhold + "</Relationships>";
}

std::string diagram(const std::string& tittel, const std::string& gruppe, const std::string& akser) {
    return xmlHode + std::string("<c:chartSpace ") + nsC + "><c:roundedCorners val=\"0\"/><c:chart>" + tittel +
           "<c:plotArea><c:layout/>" + gruppe + akser + "</c:plotArea><c:plotVisOnly val=\"1\"/></c:chart></c:chartSpace>";
}

std::string anker(int nr, bool bilde) {
    std::string fra = "<xdr:from><xdr:col>" + std::to_string(nr) + "</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>1</xdr:row>"
                      "<xdr:rowOff>0</xdr:rowOff></xdr:from><xdr:to><xdr:col>" + std::to_string(nr + 1) +
                      "</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>5</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:to>";
    if (bilde)
        return "<xdr:twoCellAnchor>" + fra + "<xdr:pic><xdr:nvPicPr><xdr:cNvPr id=\"9\" name=\"Bilde\"/><xdr:cNvPicPr/>"
               "</xdr:nvPicPr><xdr:blipFill/><xdr:spPr/></xdr:pic><xdr:clientData/></xdr:twoCellAnchor>";
    return "<xdr:twoCellAnchor>" + fra + "<xdr:graphicFrame macro=\"\"><xdr:nvGraphicFramePr><xdr:cNvPr id=\"" +
           std::to_string(nr + 1) + "\" name=\"Diagram " + std::to_string(nr) + "\"/><xdr:cNvGraphicFramePr/></xdr:nvGraphicFramePr>"
           "<xdr:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"0\" cy=\"0\"/></xdr:xfrm><a:graphic><a:graphicData "
           "uri=\"http://schemas.openxmlformats.org/drawingml/2006/chart\"><c:chart r:id=\"rId" + std::to_string(nr) +
           "\"/></a:graphicData></a:graphic></xdr:graphicFrame><xdr:clientData/></xdr:twoCellAnchor>";
}

} // namespace

std::vector<std::pair<std::string, std::string>> handlagetBok() {
    const std::string ov = "<Override PartName=\"/xl/";
    const std::string ct = "application/vnd.openxmlformats-officedocument.";
    std::string typer =
        xmlHode + std::string("<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
        "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
        "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
        "<Default Extension=\"bin\" ContentType=\"application/vnd.ms-office.vbaProject\"/>") +
        ov + "workbook.xml\" ContentType=\"" + ct + "spreadsheetml.sheet.main+xml\"/>" +
        ov + "worksheets/sheet1.xml\" ContentType=\"" + ct + "spreadsheetml.worksheet+xml\"/>" +
        ov + "worksheets/sheet2.xml\" ContentType=\"" + ct + "spreadsheetml.worksheet+xml\"/>" +
        ov + "styles.xml\" ContentType=\"" + ct + "spreadsheetml.styles+xml\"/>" +
        ov + "sharedStrings.xml\" ContentType=\"" + ct + "spreadsheetml.sharedStrings+xml\"/>" +
        ov + "calcChain.xml\" ContentType=\"" + ct + "spreadsheetml.calcChain+xml\"/>" +
        ov + "drawings/drawing1.xml\" ContentType=\"" + ct + "drawing+xml\"/>" +
        ov + "charts/chart1.xml\" ContentType=\"" + ct + "drawingml.chart+xml\"/>" +
        ov + "charts/chart2.xml\" ContentType=\"" + ct + "drawingml.chart+xml\"/>" +
        ov + "charts/chart3.xml\" ContentType=\"" + ct + "drawingml.chart+xml\"/></Types>";
    std::string bok = xmlHode + std::string(
        "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
        "<bookViews><workbookView xWindow=\"0\" yWindow=\"0\"/></bookViews><sheets>"
        "<sheet name=\"Data\" sheetId=\"1\" r:id=\"rId1\"/><sheet name=\"Grafer\" sheetId=\"2\" r:id=\"rId2\"/></sheets>"
        "<calcPr calcId=\"191029\"/><extLst><ext uri=\"{x}\"/></extLst></workbook>");
    std::string ark1 = xmlHode + std::string(
        "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
        "<dimension ref=\"A1:C4\"/><sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>"
        "<sheetFormatPr defaultRowHeight=\"15\"/><cols><col min=\"1\" max=\"1\" width=\"20\" customWidth=\"1\"/></cols>"
        "<sheetData>"
        "<row r=\"1\" spans=\"1:3\"><c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" s=\"1\"><v>2.5</v></c></row>"
        "<row r=\"2\" spans=\"1:3\"><c r=\"A2\" s=\"1\"><v>10</v></c><c r=\"B2\"><v>20</v></c>"
        "<c r=\"C2\"><f>A2+B2</f><v>30</v></c></row>"
        "<row r=\"3\" spans=\"1:3\" ht=\"20\" customHeight=\"1\"><c r=\"A3\" t=\"s\"><v>1</v></c><c r=\"B3\" s=\"1\"/>"
        "<c r=\"C3\"><f t=\"shared\" ref=\"C3:C4\" si=\"0\">B2*2</f><v>40</v></c></row>"
        "<row r=\"4\"><c r=\"C4\"><f t=\"shared\" si=\"0\"/><v>0</v></c></row>"
        "</sheetData><pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" footer=\"0.3\"/>"
        "</worksheet>");
    std::string ark2 = xmlHode + std::string(
        "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
        "<dimension ref=\"A1\"/><sheetData/><drawing r:id=\"rId1\"/></worksheet>");
    std::string tegning = xmlHode + std::string(
        "<xdr:wsDr xmlns:xdr=\"http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing\" "
        "xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
        "xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">") +
        anker(0, true) + anker(1, false) + anker(2, false) + anker(3, false) + "</xdr:wsDr>";
    std::string linje = diagram(
        "<c:title><c:tx><c:rich><a:bodyPr rot=\"0\"/><a:lstStyle/><a:p><a:pPr><a:defRPr sz=\"1400\" b=\"0\"/></a:pPr>"
        "<a:r><a:rPr lang=\"nb-NO\" sz=\"1400\" b=\"1\"/><a:t>Første </a:t></a:r><a:r><a:rPr lang=\"nb-NO\"/><a:t>del</a:t></a:r>"
        "</a:p></c:rich></c:tx><c:overlay val=\"0\"/></c:title><c:autoTitleDeleted val=\"0\"/>",
        "<c:lineChart><c:grouping val=\"standard\"/><c:varyColors val=\"0\"/><c:marker val=\"1\"/>"
        "<c:axId val=\"10\"/><c:axId val=\"20\"/></c:lineChart>",
        "<c:catAx><c:axId val=\"10\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling><c:delete val=\"0\"/>"
        "<c:axPos val=\"b\"/><c:crossAx val=\"20\"/></c:catAx>"
        "<c:valAx><c:axId val=\"20\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling><c:delete val=\"0\"/>"
        "<c:axPos val=\"l\"/><c:crossAx val=\"10\"/></c:valAx>");
    std::string spredning = diagram(
        "<c:autoTitleDeleted val=\"1\"/>",
        "<c:scatterChart><c:scatterStyle val=\"lineMarker\"/><c:axId val=\"30\"/><c:axId val=\"40\"/></c:scatterChart>",
        "<c:valAx><c:axId val=\"30\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling><c:delete val=\"0\"/>"
        "<c:axPos val=\"l\"/><c:crossAx val=\"40\"/></c:valAx>"
        "<c:valAx><c:axId val=\"40\"/><c:scaling><c:logBase val=\"10\"/><c:orientation val=\"minMax\"/><c:max val=\"500\"/>"
        "<c:extLst><c:ext uri=\"{y}\"/></c:extLst></c:scaling><c:delete val=\"0\"/><c:axPos val=\"b\"/><c:crossAx val=\"30\"/></c:valAx>");
    std::string soyle = diagram(
        "<c:title><c:tx><c:strRef><c:f>Data!$A$1</c:f><c:strCache><c:ptCount val=\"1\"/><c:pt idx=\"0\"><c:v>Fra celle</c:v>"
        "</c:pt></c:strCache></c:strRef></c:tx><c:overlay val=\"0\"/></c:title>",
        "<c:barChart><c:barDir val=\"col\"/><c:grouping val=\"clustered\"/><c:axId val=\"50\"/><c:axId val=\"60\"/></c:barChart>",
        "<c:catAx><c:axId val=\"50\"/><c:scaling><c:orientation val=\"minMax\"/><c:min val=\"2\"/></c:scaling><c:delete val=\"0\"/>"
        "<c:axPos val=\"b\"/><c:crossAx val=\"60\"/></c:catAx>"
        "<c:valAx><c:axId val=\"60\"/><c:scaling><c:orientation val=\"minMax\"/></c:scaling><c:delete val=\"0\"/>"
        "<c:axPos val=\"l\"/><c:crossAx val=\"50\"/></c:valAx>");
    std::string vba(3000, '\0');
    for (size_t i = 0; i < vba.size(); ++i) vba[i] = static_cast<char>((i * 7919) % 251);
    return {
        {"[Content_Types].xml", typer},
        {"_rels/.rels", rels(rel("rId1", "officeDocument", "xl/workbook.xml"))},
        {"xl/workbook.xml", bok},
        {"xl/_rels/workbook.xml.rels",
         rels(rel("rId1", "worksheet", "worksheets/sheet1.xml") + rel("rId2", "worksheet", "/xl/worksheets/sheet2.xml") +
              rel("rId3", "styles", "styles.xml") + rel("rId4", "sharedStrings", "sharedStrings.xml") +
              rel("rId5", "calcChain", "calcChain.xml") + rel("rId6", "vbaProject", "vbaProject.bin"))},
        {"xl/worksheets/sheet1.xml", ark1},
        {"xl/worksheets/sheet2.xml", ark2},
        {"xl/worksheets/_rels/sheet2.xml.rels", rels(rel("rId1", "drawing", "../drawings/drawing1.xml"))},
        {"xl/drawings/drawing1.xml", tegning},
        {"xl/drawings/_rels/drawing1.xml.rels",
         rels(rel("rId1", "chart", "../charts/chart1.xml") + rel("rId2", "chart", "../charts/chart2.xml") +
              rel("rId3", "chart", "../charts/chart3.xml"))},
        {"xl/charts/chart1.xml", linje},
        {"xl/charts/chart2.xml", spredning},
        {"xl/charts/chart3.xml", soyle},
        {"xl/sharedStrings.xml",
         xmlHode + std::string("<sst xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" count=\"2\" uniqueCount=\"2\">"
                               "<si><t>Navn</t></si><si><r><rPr><b/></rPr><t xml:space=\"preserve\">Rik </t></r><r><t>tekst</t></r>"
                               "<rPh sb=\"0\" eb=\"1\"><t>x</t></rPh></si></sst>")},
        {"xl/styles.xml",
         xmlHode + std::string("<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
                               "<numFmts count=\"1\"><numFmt numFmtId=\"164\" formatCode=\"0.000E+00\"/></numFmts>"
                               "<fonts count=\"1\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
                               "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill><fill><patternFill patternType=\"gray125\"/></fill></fills>"
                               "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
                               "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
                               "<cellXfs count=\"2\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
                               "<xf numFmtId=\"164\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/></cellXfs>"
                               "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles></styleSheet>")},
        {"xl/calcChain.xml",
         xmlHode + std::string("<calcChain xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
                               "<c r=\"C2\" i=\"1\"/><c r=\"C3\"/><c r=\"C4\"/></calcChain>")},
        {"xl/vbaProject.bin", vba},
    };
}

} // namespace test
