#include "platform/xlsx/Arbeidsbok.h"

#include "platform/xlsx/Ark.h"
#include "platform/xlsx/Diagramdel.h"

#include <QFile>
#include <QFileInfo>
#include <pugixml.hpp>
#include <zip.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <unistd.h>

namespace xlsx {

namespace {

const char* const innholdstyper = "[Content_Types].xml";
const char* const typeMakro = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
const char* const typeVanlig = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

std::string tekst(const QString& s) { return s.toStdString(); }

bool slutterPa(std::string_view s, std::string_view slutt) {
    return s.size() >= slutt.size() && s.substr(s.size() - slutt.size()) == slutt;
}

std::string mappeAv(const std::string& del) {
    size_t p = del.rfind('/');
    return p == std::string::npos ? std::string() : del.substr(0, p + 1);
}

// The relationships part that belongs to a part: xl/workbook.xml -> xl/_rels/workbook.xml.rels.
std::string relsAv(const std::string& del) {
    return mappeAv(del) + "_rels/" + del.substr(mappeAv(del).size()) + ".rels";
}

// A relationship target seen from the part that owns it, as a zip entry name.
std::string maal(const std::string& del, const std::string& target) {
    std::string sti = !target.empty() && target[0] == '/' ? target.substr(1) : mappeAv(del) + target;
    std::vector<std::string> deler;
    std::stringstream ss(sti);
    for (std::string bit; std::getline(ss, bit, '/');) {
        if (bit == "..") { if (!deler.empty()) deler.pop_back(); }
        else if (!bit.empty() && bit != ".") deler.push_back(bit);
    }
    std::string ut;
    for (auto& d : deler) ut += (ut.empty() ? "" : "/") + d;
    return ut;
}

// The attribute of a relationship id ("r:id") whatever its prefix.
const char* relId(pugi::xml_node n) {
    for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute())
        if (slutterPa(a.name(), ":id")) return a.value();
    return "";
}

std::string_view lokalt(const char* navn) {
    const char* k = std::strrchr(navn, ':');
    return k ? k + 1 : navn;
}

struct Relasjon {
    std::string id, type, maal;
};

std::string skrivXml(const pugi::xml_document& d) {
    std::ostringstream ut;
    d.save(ut, "", pugi::format_raw);
    return ut.str();
}

void lesXml(pugi::xml_document& d, const std::string& xml, const std::string& navn) {
    if (!d.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_declaration))
        throw XlsxFeil("Ødelagt del i arbeidsboka: " + navn);
}

class Bok final : public Arbeidsbok, public Bokdeler {
public:
    explicit Bok(const QString& sti) : sti_(sti) {
        QFile f(sti);
        if (!f.open(QIODevice::ReadOnly)) throw XlsxFeil("Finner ikke arbeidsboka " + tekst(sti));
        QByteArray innhold = f.readAll();
        data_.assign(innhold.constData(), static_cast<size_t>(innhold.size()));
        zip_error_t feil;
        zip_error_init(&feil);
        zip_source_t* kilde = zip_source_buffer_create(data_.data(), data_.size(), 0, &feil);
        if (kilde) zip_ = zip_open_from_source(kilde, ZIP_RDONLY, &feil);
        if (!zip_) {
            if (kilde) zip_source_free(kilde);
            zip_error_fini(&feil);
            throw XlsxFeil("Ikke en arbeidsbok (zip): " + tekst(sti));
        }
        zip_error_fini(&feil);
        lesStruktur();
    }
    ~Bok() override {
        if (zip_) zip_discard(zip_);
    }

    Arbeidsark& ark(int posisjon) override {
        if (posisjon < 1 || posisjon > static_cast<int>(ark_.size()))
            throw XlsxFeil("Arbeidsboka har ikke ark nr " + std::to_string(posisjon));
        auto& a = ark_[posisjon - 1];
        if (!a.ark) a.ark = std::make_unique<Ark>(*this, a.sti);
        return *a.ark;
    }

    void lagreSom(const QString& sti) override {
        skrivPakke(sti);
        sti_ = sti; // like a spreadsheet application: the workbook now lives under the new name
    }
    void lagre() override { skrivPakke(sti_); }

    // ------------------------------------------------------------ parts

    bool finnes(const std::string& del) const {
        return zip_name_locate(zip_, del.c_str(), ZIP_FL_NOCASE) >= 0;
    }

    std::string lesDel(const std::string& del) override {
        zip_int64_t i = zip_name_locate(zip_, del.c_str(), ZIP_FL_NOCASE);
        zip_stat_t st;
        if (i < 0 || zip_stat_index(zip_, static_cast<zip_uint64_t>(i), 0, &st) != 0)
            throw XlsxFeil("Arbeidsboka mangler delen " + del);
        zip_file_t* f = zip_fopen_index(zip_, static_cast<zip_uint64_t>(i), 0);
        if (!f) throw XlsxFeil("Kan ikke lese " + del);
        std::string ut(st.size, '\0');
        zip_int64_t n = zip_fread(f, ut.data(), st.size);
        zip_fclose(f);
        if (n < 0 || static_cast<zip_uint64_t>(n) != st.size) throw XlsxFeil("Kan ikke lese " + del);
        return ut;
    }

    std::vector<Relasjon> relasjoner(const std::string& del) {
        std::vector<Relasjon> ut;
        std::string rels = relsAv(del);
        if (!finnes(rels)) return ut;
        pugi::xml_document d;
        lesXml(d, lesDel(rels), rels);
        for (pugi::xml_node r : d.document_element().children()) {
            if (lokalt(r.name()) != "Relationship") continue;
            std::string target = r.attribute("Target").value();
            bool ekstern = std::string_view(r.attribute("TargetMode").value()) == "External";
            ut.push_back({r.attribute("Id").value(), r.attribute("Type").value(), ekstern ? target : maal(del, target)});
        }
        return ut;
    }

    const std::string& deltTekst(long indeks) override {
        if (!delteLest_) {
            delteLest_ = true;
            if (!delteSti_.empty()) {
                pugi::xml_document d;
                lesXml(d, lesDel(delteSti_), delteSti_);
                for (pugi::xml_node si : d.document_element().children()) {
                    if (lokalt(si.name()) != "si") continue;
                    std::string s;
                    for (auto x : si.select_nodes(".//*[local-name()='t' and not(ancestor::*[local-name()='rPh'])]"))
                        s += x.node().child_value();
                    delte_.push_back(std::move(s));
                }
            }
        }
        static const std::string ingen;
        return indeks >= 0 && indeks < static_cast<long>(delte_.size()) ? delte_[indeks] : ingen;
    }

    Diagram& diagram(const std::string& arkSti, int nr) override {
        std::string tegning;
        for (auto& r : relasjoner(arkSti))
            if (slutterPa(r.type, "/drawing")) tegning = r.maal;
        int teller = 0;
        std::string rid;
        if (!tegning.empty()) {
            pugi::xml_document d;
            lesXml(d, lesDel(tegning), tegning);
            // Chart objects in the order of their anchors.
            for (pugi::xml_node anker : d.document_element().children()) {
                pugi::xml_node ramme;
                for (pugi::xml_node b : anker.children())
                    if (lokalt(b.name()) == "graphicFrame") ramme = b;
                if (!ramme) continue;
                auto hit = ramme.select_node(".//*[local-name()='graphicData']/*[local-name()='chart']");
                if (hit && ++teller == nr) rid = relId(hit.node());
            }
        }
        std::string del;
        if (!rid.empty())
            for (auto& r : relasjoner(tegning))
                if (r.id == rid) del = r.maal;
        if (del.empty() || !finnes(del))
            throw XlsxFeil("Arket har ikke diagramobjekt nr " + std::to_string(nr));
        auto& plass = diagrammer_[del];
        if (!plass) plass = std::make_unique<Diagramdel>(del, lesDel(del));
        return *plass;
    }

private:
    void lesStruktur() {
        for (auto& r : relasjoner(""))
            if (slutterPa(r.type, "/officeDocument")) bokSti_ = r.maal;
        if (bokSti_.empty() || !finnes(bokSti_)) throw XlsxFeil("Ikke en arbeidsbok: " + tekst(sti_));
        std::map<std::string, std::string> arkAvId;
        for (auto& r : relasjoner(bokSti_)) {
            if (slutterPa(r.type, "/worksheet")) arkAvId[r.id] = r.maal;
            else if (slutterPa(r.type, "/sharedStrings")) delteSti_ = r.maal;
            else if (slutterPa(r.type, "/calcChain")) beregningskjede_ = r.maal;
        }
        pugi::xml_document d;
        lesXml(d, lesDel(bokSti_), bokSti_);
        for (auto x : d.select_nodes("//*[local-name()='sheets']/*[local-name()='sheet']")) {
            auto it = arkAvId.find(relId(x.node()));
            if (it != arkAvId.end()) ark_.push_back({it->second, nullptr});
        }
    }

    // The parts that differ from the opened package, and those left out.
    void endringer(const QString& sti, std::map<std::string, std::string>& nye, std::set<std::string>& borte) {
        bool formlerEndret = false, beregn = false;
        for (auto& a : ark_) {
            if (!a.ark || !a.ark->endret()) continue;
            nye[a.sti] = a.ark->skriv();
            formlerEndret |= a.ark->formlerEndret();
            beregn |= a.ark->harFormler() || a.ark->formlerEndret();
        }
        for (auto& [del, d] : diagrammer_)
            if (d->endret()) nye[del] = d->skriv();

        bool utenKjede = formlerEndret && !beregningskjede_.empty();
        if (utenKjede) {
            borte.insert(beregningskjede_);
            std::string rels = relsAv(bokSti_);
            pugi::xml_document d;
            lesXml(d, lesDel(rels), rels);
            for (pugi::xml_node r = d.document_element().first_child(); r;) {
                pugi::xml_node neste = r.next_sibling();
                if (slutterPa(r.attribute("Type").value(), "/calcChain")) d.document_element().remove_child(r);
                r = neste;
            }
            nye[rels] = skrivXml(d);
        }
        if (beregn) {
            pugi::xml_document d;
            lesXml(d, lesDel(bokSti_), bokSti_);
            settBeregnVedLasting(d.document_element());
            nye[bokSti_] = skrivXml(d);
        }

        pugi::xml_document typer;
        lesXml(typer, lesDel(innholdstyper), innholdstyper);
        bool typerEndret = false;
        const char* bokType = sti.endsWith(QLatin1String(".xlsm"), Qt::CaseInsensitive) ? typeMakro : typeVanlig;
        for (pugi::xml_node o = typer.document_element().first_child(); o;) {
            pugi::xml_node neste = o.next_sibling();
            std::string del = maal("", o.attribute("PartName").value());
            if (lokalt(o.name()) == "Override" && del == bokSti_ &&
                std::strcmp(o.attribute("ContentType").value(), bokType) != 0) {
                o.attribute("ContentType") = bokType;
                typerEndret = true;
            } else if (utenKjede && lokalt(o.name()) == "Override" && del == beregningskjede_) {
                typer.document_element().remove_child(o);
                typerEndret = true;
            }
            o = neste;
        }
        if (typerEndret) nye[innholdstyper] = skrivXml(typer);
    }

    // <calcPr fullCalcOnLoad="1"/>, placed where the workbook schema wants it.
    static void settBeregnVedLasting(pugi::xml_node bok) {
        std::string ns;
        if (const char* k = std::strchr(bok.name(), ':')) ns.assign(bok.name(), k + 1);
        pugi::xml_node calc = bok.child((ns + "calcPr").c_str());
        if (!calc) {
            static const char* const etter[] = {"oleSize", "customWorkbookViews", "pivotCaches", "smartTagPr",
                                                "smartTagTypes", "webPublishing", "fileRecoveryPr",
                                                "webPublishObjects", "extLst"};
            pugi::xml_node foran;
            for (pugi::xml_node b = bok.first_child(); b && !foran; b = b.next_sibling())
                for (const char* e : etter)
                    if (lokalt(b.name()) == e) foran = b;
            calc = foran ? bok.insert_child_before((ns + "calcPr").c_str(), foran)
                         : bok.append_child((ns + "calcPr").c_str());
        }
        if (!calc.attribute("fullCalcOnLoad")) calc.append_attribute("fullCalcOnLoad");
        calc.attribute("fullCalcOnLoad") = "1";
    }

    void skrivPakke(const QString& sti) {
        std::map<std::string, std::string> nye;
        std::set<std::string> borte;
        endringer(sti, nye, borte);

        static std::atomic<int> teller{0};
        std::string mal = tekst(sti);
        // A write-protected file is not replaced, as the spreadsheet application would not either.
        using std::filesystem::perms;
        std::error_code sc;
        const auto status = std::filesystem::status(mal, sc);
        if (!sc && std::filesystem::is_regular_file(status) &&
            (status.permissions() & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none)
            throw XlsxFeil("Kan ikke lagre " + mal + ": fila er skrivebeskyttet");
        std::string tmp = mal + ".tmp" + std::to_string(::getpid()) + "_" + std::to_string(++teller);
        int feil = 0;
        zip_t* ut = zip_open(tmp.c_str(), ZIP_CREATE | ZIP_EXCL, &feil);
        if (!ut) throw XlsxFeil("Kan ikke skrive " + mal);
        auto avbryt = [&](const std::string& melding) {
            zip_discard(ut);
            std::error_code ec;
            std::filesystem::remove(tmp, ec);
            throw XlsxFeil(melding);
        };
        zip_int64_t antall = zip_get_num_entries(zip_, 0);
        for (zip_int64_t i = 0; i < antall; ++i) {
            auto idx = static_cast<zip_uint64_t>(i);
            std::string navn = zip_get_name(zip_, idx, ZIP_FL_ENC_RAW);
            if (borte.count(navn)) continue;
            zip_source_t* kilde;
            zip_int32_t metode = ZIP_CM_DEFLATE;
            zip_uint32_t niva = 1; // fast deflate for the parts written anew
            auto ny = nye.find(navn);
            if (ny != nye.end()) {
                kilde = zip_source_buffer(ut, ny->second.data(), ny->second.size(), 0);
            } else {
                // Unchanged: the compressed data are copied as they are.
                zip_stat_t st;
                zip_stat_index(zip_, idx, 0, &st);
                metode = st.comp_method;
                niva = 0;
                kilde = zip_source_zip(ut, zip_, idx, 0, 0, -1);
            }
            if (!kilde) avbryt("Kan ikke skrive " + mal);
            zip_int64_t nr = zip_file_add(ut, navn.c_str(), kilde, ZIP_FL_ENC_RAW);
            if (nr < 0) {
                zip_source_free(kilde);
                avbryt("Kan ikke skrive " + mal);
            }
            zip_set_file_compression(ut, static_cast<zip_uint64_t>(nr), metode, niva);
        }
        if (zip_close(ut) != 0) avbryt("Kan ikke skrive " + mal + ": " + zip_strerror(ut));
        std::error_code ec;
        std::filesystem::rename(tmp, mal, ec);
        if (ec) {
            std::filesystem::remove(tmp, ec);
            throw XlsxFeil("Kan ikke lagre " + mal);
        }
    }

    struct ArkPlass {
        std::string sti;
        std::unique_ptr<Ark> ark;
    };

    QString sti_;
    std::string data_;
    zip_t* zip_ = nullptr;
    std::string bokSti_, delteSti_, beregningskjede_;
    std::vector<ArkPlass> ark_;
    std::map<std::string, std::unique_ptr<Diagramdel>> diagrammer_;
    std::vector<std::string> delte_;
    bool delteLest_ = false;
};

} // namespace

std::unique_ptr<Arbeidsbok> apne(const QString& sti) { return std::make_unique<Bok>(sti); }

} // namespace xlsx
