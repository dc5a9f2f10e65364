#include "platform/xlsx/Diagramdel.h"

#include "platform/xlsx/Formel.h"
#include "platform/xlsx/Omrade.h"
#include "platform/xlsx/Xml.h"

#include <QStringList>

#include <algorithm>
#include <cstring>

namespace xlsx {

namespace {

const char* const chartNs = "http://schemas.openxmlformats.org/drawingml/2006/chart";
const char* const tegningNs = "http://schemas.openxmlformats.org/drawingml/2006/main";

// The prefix bound to a namespace on the root ("c:"), "" for the default namespace,
// or nothing when it is not declared there.
bool prefiks(pugi::xml_node rot, const char* uri, std::string& ut)
{
    for (pugi::xml_attribute at = rot.first_attribute(); at; at = at.next_attribute()) {
        if (std::strcmp(at.value(), uri) != 0) continue;
        std::string_view n = at.name();
        if (n == "xmlns") {
            ut.clear();
            return true;
        }
        if (n.substr(0, 6) == "xmlns:") {
            ut = std::string(n.substr(6)) + ":";
            return true;
        }
    }
    return false;
}

}  // namespace

Diagramdel::Diagramdel(std::string sti, const std::string& xml) : sti_(std::move(sti))
{
    lesXml(doc_, xml, medDeklarasjon | pugi::parse_ws_pcdata, sti_, "Ødelagt diagram: " + sti_, true);
    pugi::xml_node rot = doc_.document_element();
    if (!prefiks(rot, chartNs, c_)) throw XlsxFeil("Ikke et diagram: " + sti_);
    if (!prefiks(rot, tegningNs, a_)) {
        a_ = "a:";
        rot.append_attribute("xmlns:a") = tegningNs;
    }
}

pugi::xml_node Diagramdel::diagram() const
{
    pugi::xml_node d = doc_.document_element().child(c("chart").c_str());
    if (!d) throw XlsxFeil("Diagrammet mangler innhold: " + sti_);
    return d;
}

QString Diagramdel::tittel() const
{
    pugi::xml_node tx = diagram().child(c("title").c_str()).child(c("tx").c_str());
    std::string ut;
    if (pugi::xml_node rik = tx.child(c("rich").c_str())) {
        bool forste = true;
        for (pugi::xml_node p = rik.child(a("p").c_str()); p; p = p.next_sibling(a("p").c_str())) {
            if (!forste) ut += '\n';
            forste = false;
            for (pugi::xml_node r = p.first_child(); r; r = r.next_sibling()) {
                if (r.name() == a("br"))
                    ut += '\n';
                else
                    ut += r.child(a("t").c_str()).child_value();
            }
        }
    } else if (pugi::xml_node ref = tx.child(c("strRef").c_str())) {
        ut = ref.child(c("strCache").c_str()).child(c("pt").c_str()).child(c("v").c_str()).child_value();
    }
    return QString::fromStdString(ut);
}

void Diagramdel::settTittel(const QString& tekst)
{
    pugi::xml_node d = diagram();
    pugi::xml_node tittel = d.child(c("title").c_str());
    bool ny = !tittel;
    if (ny) tittel = d.prepend_child(c("title").c_str());
    pugi::xml_node tx = tittel.child(c("tx").c_str());
    pugi::xml_node rik = tx.child(c("rich").c_str());
    // Keep the formatting of the first paragraph and run of a rich title.
    pugi::xml_document mal;
    pugi::xml_node forsteP = rik.child(a("p").c_str());
    pugi::xml_node pPr = mal.append_copy(forsteP.child(a("pPr").c_str()));
    pugi::xml_node rPr;
    for (pugi::xml_node r = forsteP.child(a("r").c_str()); r && !rPr; r = r.next_sibling(a("r").c_str()))
        if (pugi::xml_node x = r.child(a("rPr").c_str())) rPr = mal.append_copy(x);
    if (!rik) {
        if (tx) tittel.remove_child(tx);
        tx = tittel.prepend_child(c("tx").c_str());
        rik = tx.append_child(c("rich").c_str());
        rik.append_child(a("bodyPr").c_str());
        rik.append_child(a("lstStyle").c_str());
    }
    while (pugi::xml_node p = rik.child(a("p").c_str())) rik.remove_child(p);
    for (const QString& linje : tekst.split(QLatin1Char('\n'))) {
        pugi::xml_node p = rik.append_child(a("p").c_str());
        if (pPr)
            p.append_copy(pPr);
        else
            p.append_child(a("pPr").c_str()).append_child(a("defRPr").c_str());
        pugi::xml_node r = p.append_child(a("r").c_str());
        if (rPr)
            r.append_copy(rPr);
        else
            r.append_child(a("rPr").c_str()).append_attribute("lang") = "nb-NO";
        r.append_child(a("t").c_str()).text().set(linje.toStdString().c_str());
    }
    if (ny) tittel.append_child(c("overlay").c_str()).append_attribute("val") = "0";
    pugi::xml_node slettet = d.child(c("autoTitleDeleted").c_str());
    if (!slettet) slettet = d.insert_child_after(c("autoTitleDeleted").c_str(), tittel);
    if (!slettet.attribute("val")) slettet.append_attribute("val");
    slettet.attribute("val") = "0";
    endret_ = true;
}

pugi::xml_node Diagramdel::horisontalAkse() const
{
    pugi::xml_node omrade = diagram().child(c("plotArea").c_str());
    pugi::xml_node gruppe;
    for (pugi::xml_node n = omrade.first_child(); n && !gruppe; n = n.next_sibling())
        if (std::string_view(n.name()).ends_with("Chart")) gruppe = n;
    if (!gruppe) throw XlsxFeil("Diagrammet har ingen diagramtype: " + sti_);
    std::string type = std::string(gruppe.name()).substr(c_.size());
    bool xy = type == "scatterChart" || type == "bubbleChart";
    pugi::xml_node forste, valgt;
    for (pugi::xml_node id = gruppe.child(c("axId").c_str()); id; id = id.next_sibling(c("axId").c_str())) {
        std::string_view nr = id.attribute("val").value();
        for (pugi::xml_node akse = omrade.first_child(); akse; akse = akse.next_sibling()) {
            if (!std::string_view(akse.name()).ends_with("Ax") ||
                akse.child(c("axId").c_str()).attribute("val").value() != nr)
                continue;
            std::string navn = std::string(akse.name()).substr(c_.size());
            if (xy) {
                if (!forste && navn == "valAx") forste = akse;
                std::string_view pos = akse.child(c("axPos").c_str()).attribute("val").value();
                if (!valgt && navn == "valAx" && (pos == "b" || pos == "t")) valgt = akse;
            } else if (!valgt && (navn == "catAx" || navn == "dateAx")) {
                valgt = akse;
            }
        }
    }
    if (!valgt) valgt = forste;
    if (!valgt) throw XlsxFeil("Diagrammet har ingen kategoriakse: " + sti_);
    return valgt;
}

void Diagramdel::settKategoriMinimum(double minimum)
{
    pugi::xml_node akse = horisontalAkse();
    pugi::xml_node skala = akse.child(c("scaling").c_str());
    if (!skala) skala = akse.insert_child_after(c("scaling").c_str(), akse.child(c("axId").c_str()));
    // c:logBase, c:orientation, c:max, c:min, c:extLst: the minimum comes last but for extLst.
    pugi::xml_node min = skala.child(c("min").c_str());
    if (!min) {
        pugi::xml_node ext = skala.child(c("extLst").c_str());
        min = ext ? skala.insert_child_before(c("min").c_str(), ext) : skala.append_child(c("min").c_str());
    }
    if (!min.attribute("val")) min.append_attribute("val");
    std::string tall;
    formel::leggTilTall(tall, minimum);
    min.attribute("val") = tall.c_str();
    endret_ = true;
}

pugi::xpath_node_set Diagramdel::serieformler() const
{
    return doc_.select_nodes("//*[local-name()='ser']//*[local-name()='f']");
}

void Diagramdel::strekkSerier(const std::string& ark, int sisteRad, int& dekket)
{
    for (const pugi::xpath_node& f : serieformler()) {
        const std::string ny = strekkOmrade(f.node().child_value(), ark, sisteRad, dekket);
        if (ny.empty()) continue;
        f.node().text().set(ny.c_str());
        endret_ = true;
    }
}

void Diagramdel::slippBuffere(const std::set<std::string>& ark)
{
    for (const pugi::xpath_node& f : serieformler()) {
        const std::vector<Omrade> blokker = lesOmrader(f.node().child_value());
        if (std::none_of(blokker.begin(), blokker.end(), [&](const Omrade& o) { return ark.count(o.ark) > 0; }))
            continue;
        pugi::xml_node ref = f.node().parent();
        for (pugi::xml_node b = ref.first_child(); b;) {
            pugi::xml_node neste = b.next_sibling();
            if (std::string_view(b.name()).ends_with("Cache")) {
                ref.remove_child(b);
                endret_ = true;
            }
            b = neste;
        }
    }
}

std::string Diagramdel::skriv() const { return skrivXml(doc_); }

}  // namespace xlsx
