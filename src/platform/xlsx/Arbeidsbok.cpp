#include "platform/xlsx/Arbeidsbok.h"

#include "platform/xlsx/Ark.h"
#include "platform/xlsx/Diagramdel.h"
#include "platform/xlsx/Omrade.h"
#include "platform/xlsx/Pakke.h"
#include "platform/xlsx/Xml.h"

#include <cstring>
#include <map>
#include <set>

namespace xlsx {

namespace {

// The attribute of a relationship id ("r:id") whatever its prefix.
const char* relId(pugi::xml_node n)
{
    for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute())
        if (std::string_view(a.name()).ends_with(":id")) return a.value();
    return "";
}

class Bok final : public Arbeidsbok, public Bokdeler {
public:
    explicit Bok(const QString& sti) : sti_(sti), pakke_(sti) { lesStruktur(); }

    Arbeidsark& ark(int posisjon) override
    {
        if (posisjon < 1 || posisjon > static_cast<int>(ark_.size()))
            throw XlsxFeil("Arbeidsboka har ikke ark nr " + std::to_string(posisjon));
        auto& a = ark_[posisjon - 1];
        if (!a.ark) a.ark = std::make_unique<Ark>(*this, a.sti);
        return *a.ark;
    }

    void lagreSom(const QString& sti) override
    {
        skriv(sti);
        sti_ = sti;  // like a spreadsheet application: the workbook now lives under the new name
    }
    void lagre() override { skriv(sti_); }
    void beregn() override
    {
        for (auto& a : ark_)
            if (a.ark && a.ark->endret()) a.ark->beregn();
    }

    // ------------------------------------------------------------ parts

    std::string lesDel(const std::string& del) override { return pakke_.lesDel(del); }
    std::string lagretForm(const std::string& del) override { return pakke_.lagretForm(del); }

    const std::string& deltTekst(long indeks) override
    {
        if (!delteLest_) {
            delteLest_ = true;
            if (!delteSti_.empty()) {
                pugi::xml_document d;
                pakke_.lesXml(delteSti_, d);
                for (pugi::xml_node si : d.document_element().children())
                    if (lokaltNavn(si.name()) == "si") delte_.push_back(rentTekst(si));
            }
        }
        static const std::string ingen;
        return indeks >= 0 && indeks < static_cast<long>(delte_.size()) ? delte_[indeks] : ingen;
    }

    Diagram& diagram(const std::string& arkSti, int nr) override
    {
        std::string tegning;
        for (auto& r : pakke_.relasjoner(arkSti))
            if (r.type.ends_with("/drawing")) tegning = r.maal;
        int teller = 0;
        std::string rid;
        if (!tegning.empty()) {
            pugi::xml_document d;
            pakke_.lesXml(tegning, d);
            // Chart objects in the order of their anchors.
            for (pugi::xml_node anker : d.document_element().children()) {
                pugi::xml_node ramme;
                for (pugi::xml_node b : anker.children())
                    if (lokaltNavn(b.name()) == "graphicFrame") ramme = b;
                if (!ramme) continue;
                auto hit = ramme.select_node(".//*[local-name()='graphicData']/*[local-name()='chart']");
                if (hit && ++teller == nr) rid = relId(hit.node());
            }
        }
        std::string del;
        if (!rid.empty())
            for (auto& r : pakke_.relasjoner(tegning))
                if (r.id == rid) del = r.maal;
        if (del.empty() || !pakke_.finnes(del)) throw XlsxFeil("Arket har ikke diagramobjekt nr " + std::to_string(nr));
        return diagramdel(del);
    }

    int strekkOmrader(const std::string& arkSti, int sisteRad) override
    {
        int dekket = sisteRad;
        for (size_t i = 0; i < ark_.size(); ++i) {
            if (ark_[i].sti != arkSti) continue;
            for (Diagramdel* d : alleDiagrammer()) d->strekkSerier(ark_[i].navn, sisteRad, dekket);
            utskrift_[static_cast<int>(i)] = sisteRad;
        }
        return dekket;
    }

private:
    Diagramdel& diagramdel(const std::string& del)
    {
        // Made before it is kept: a part that is no chart leaves nothing behind for the save.
        auto plass = diagrammer_.find(del);
        if (plass == diagrammer_.end())
            plass = diagrammer_.emplace(del, std::make_unique<Diagramdel>(del, pakke_.lesDel(del))).first;
        return *plass->second;
    }

    // Every chart drawn on a worksheet of the workbook.
    std::vector<Diagramdel*> alleDiagrammer()
    {
        std::vector<Diagramdel*> ut;
        for (const ArkPlass& a : ark_)
            for (const Relasjon& t : pakke_.relasjoner(a.sti))
                if (t.type.ends_with("/drawing") && pakke_.finnes(t.maal))
                    for (const Relasjon& r : pakke_.relasjoner(t.maal))
                        if (r.type.ends_with("/chart") && pakke_.finnes(r.maal)) ut.push_back(&diagramdel(r.maal));
        return ut;
    }

    // Print areas of the sheets stretched by strekkOmrader, in the workbook's defined names.
    void strekkUtskrift(pugi::xml_node bok)
    {
        for (const pugi::xpath_node& x : bok.select_nodes("//*[local-name()='definedName']")) {
            pugi::xml_node navn = x.node();
            auto it = utskrift_.find(navn.attribute("localSheetId").as_int(-1));
            if (std::string_view(navn.attribute("name").value()) != "_xlnm.Print_Area" || it == utskrift_.end())
                continue;
            int dekket = it->second;
            const std::string ny = strekkOmrade(navn.child_value(), ark_[it->first].navn, it->second, dekket);
            if (!ny.empty()) navn.text().set(ny.c_str());
        }
    }

    void lesStruktur()
    {
        for (auto& r : pakke_.relasjoner(""))
            if (r.type.ends_with("/officeDocument")) bokSti_ = r.maal;
        if (bokSti_.empty() || !pakke_.finnes(bokSti_)) throw XlsxFeil("Ikke en arbeidsbok: " + sti_.toStdString());
        std::map<std::string, std::string> arkAvId;
        for (auto& r : pakke_.relasjoner(bokSti_)) {
            if (r.type.ends_with("/worksheet"))
                arkAvId[r.id] = r.maal;
            else if (r.type.ends_with("/sharedStrings"))
                delteSti_ = r.maal;
            else if (r.type.ends_with("/calcChain"))
                beregningskjede_ = r.maal;
        }
        pugi::xml_document d;
        pakke_.lesXml(bokSti_, d);
        for (auto x : d.select_nodes("//*[local-name()='sheets']/*[local-name()='sheet']")) {
            auto it = arkAvId.find(relId(x.node()));
            if (it != arkAvId.end()) ark_.push_back({it->second, x.node().attribute("name").value(), nullptr});
        }
    }

    // The parts that differ from the opened package, and those left out, for a file named sti.
    Endringer endringer(const QString& sti)
    {
        Endringer e;
        bool formlerEndret = false, beregn = false;
        std::set<std::string> endredeArk;
        for (auto& a : ark_) {
            if (!a.ark || !a.ark->endret()) continue;
            e.nye[a.sti] = a.ark->skriv();
            endredeArk.insert(a.navn);
            formlerEndret |= a.ark->formlerEndret();
            beregn |= a.ark->harFormler() || a.ark->formlerEndret();
        }
        // Charts over changed cells would otherwise show the values they were saved with.
        if (!endredeArk.empty())
            for (Diagramdel* d : alleDiagrammer()) d->slippBuffere(endredeArk);
        for (auto& [del, d] : diagrammer_)
            if (d->endret()) e.nye[del] = d->skriv();

        // The calculation chain lists the formula cells; with formulas changed it is dropped,
        // and the spreadsheet application computes on loading instead.
        if (formlerEndret && !beregningskjede_.empty()) {
            e.borte.insert(beregningskjede_);
            pakke_.fjernRelasjoner(bokSti_, "/calcChain", e);
        }
        if (beregn || !utskrift_.empty()) {
            pugi::xml_document d;
            pakke_.lesXml(bokSti_, d);
            if (beregn) settBeregnVedLasting(d.document_element());
            strekkUtskrift(d.document_element());
            e.nye[bokSti_] = skrivXml(d);
        }
        pakke_.settInnholdstyper(bokSti_, sti.endsWith(QLatin1String(".xlsm"), Qt::CaseInsensitive), e);
        return e;
    }

    // <calcPr fullCalcOnLoad="1"/>, placed where the workbook schema wants it.
    static void settBeregnVedLasting(pugi::xml_node bok)
    {
        std::string ns;
        if (const char* k = std::strchr(bok.name(), ':')) ns.assign(bok.name(), k + 1);
        pugi::xml_node calc = bok.child((ns + "calcPr").c_str());
        if (!calc) {
            static const char* const etter[] = {"oleSize",        "customWorkbookViews", "pivotCaches",
                                                "smartTagPr",     "smartTagTypes",       "webPublishing",
                                                "fileRecoveryPr", "webPublishObjects",   "extLst"};
            pugi::xml_node foran;
            for (pugi::xml_node b = bok.first_child(); b && !foran; b = b.next_sibling())
                for (const char* e : etter)
                    if (lokaltNavn(b.name()) == e) foran = b;
            calc = foran ? bok.insert_child_before((ns + "calcPr").c_str(), foran)
                         : bok.append_child((ns + "calcPr").c_str());
        }
        if (!calc.attribute("fullCalcOnLoad")) calc.append_attribute("fullCalcOnLoad");
        calc.attribute("fullCalcOnLoad") = "1";
    }

    void skriv(const QString& sti) { pakke_.skriv(sti.toStdString(), endringer(sti)); }

    struct ArkPlass {
        std::string sti, navn;
        std::unique_ptr<Ark> ark;
    };

    QString sti_;
    Pakke pakke_;
    std::string bokSti_, delteSti_, beregningskjede_;
    std::vector<ArkPlass> ark_;
    std::map<std::string, std::unique_ptr<Diagramdel>> diagrammer_;
    std::vector<std::string> delte_;
    bool delteLest_ = false;
    std::map<int, int> utskrift_;  // sheet position from 0 -> the row its print area reaches
};

}  // namespace

std::unique_ptr<Arbeidsbok> apne(const QString& sti) { return std::make_unique<Bok>(sti); }

}  // namespace xlsx
