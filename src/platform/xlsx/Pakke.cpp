#include "platform/xlsx/Pakke.h"

#include "platform/fil/Varig.h"

#include "platform/xlsx/Arbeidsbok.h"
#include "platform/xlsx/Xml.h"

#include <QFile>
#include <zip.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace xlsx {

namespace {

const char* const innholdstyper = "[Content_Types].xml";
const char* const typeMakro = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
const char* const typeVanlig = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

// What a package may hold, counted as it is unpacked (a zip directory may lie about sizes): far
// above any template, and low enough that a zip bomb is refused before it takes the memory.
constexpr zip_uint64_t maksDel = 16u << 20;
constexpr zip_uint64_t maksTotalt = 48u << 20;
constexpr zip_int64_t maksDeler = 10000;

std::string megabyte(zip_uint64_t byte) { return std::to_string(byte >> 20) + " MB"; }

// The error of a part past its limit, or with del empty, of the whole package past its limit.
XlsxFeil forStor(const std::string& del)
{
    if (del.empty()) return XlsxFeil("Arbeidsboka er større enn " + megabyte(maksTotalt) + " pakket ut");
    return XlsxFeil("Delen " + del + " er større enn " + megabyte(maksDel) + " pakket ut");
}

// Whether a part's name stays inside the package: no ".." step, no absolute path or drive.
bool innenforPakken(std::string_view navn)
{
    if (navn.empty() || navn[0] == '/' || navn[0] == '\\' || (navn.size() > 1 && navn[1] == ':')) return false;
    for (size_t fra = 0; fra <= navn.size();) {
        size_t til = std::min(navn.find_first_of("/\\", fra), navn.size());
        if (navn.substr(fra, til - fra) == "..") return false;
        fra = til + 1;
    }
    return true;
}

// Whether the entry is a symbolic link, as a Unix zip tool stores one.
bool erLenke(zip_t* zip, zip_uint64_t i)
{
    zip_uint8_t system = 0;
    zip_uint32_t attributter = 0;
    return zip_file_get_external_attributes(zip, i, 0, &system, &attributter) == 0 && system == ZIP_OPSYS_UNIX &&
           ((attributter >> 16) & S_IFMT) == S_IFLNK;
}

std::string mappeAv(const std::string& del)
{
    size_t p = del.rfind('/');
    return p == std::string::npos ? std::string() : del.substr(0, p + 1);
}

// The relationships part that belongs to a part: xl/workbook.xml -> xl/_rels/workbook.xml.rels.
std::string relsAv(const std::string& del)
{
    return mappeAv(del) + "_rels/" + del.substr(mappeAv(del).size()) + ".rels";
}

// A relationship target seen from the part that owns it, as a zip entry name.
std::string maal(const std::string& del, const std::string& target)
{
    std::string sti = !target.empty() && target[0] == '/' ? target.substr(1) : mappeAv(del) + target;
    std::vector<std::string> deler;
    std::stringstream ss(sti);
    for (std::string bit; std::getline(ss, bit, '/');) {
        if (bit == "..") {
            if (!deler.empty()) deler.pop_back();
        } else if (!bit.empty() && bit != ".")
            deler.push_back(bit);
    }
    std::string ut;
    for (auto& d : deler) ut += (ut.empty() ? "" : "/") + d;
    return ut;
}

}  // namespace

Pakke::Pakke(const QString& sti)
{
    QFile f(sti);
    if (!f.open(QIODevice::ReadOnly)) throw XlsxFeil("Finner ikke arbeidsboka " + sti.toStdString());
    data_.resize(static_cast<size_t>(f.size()));
    if (f.read(data_.data(), f.size()) != f.size()) throw XlsxFeil("Kan ikke lese arbeidsboka " + sti.toStdString());
    zip_error_t feil;
    zip_error_init(&feil);
    zip_source_t* kilde = zip_source_buffer_create(data_.data(), data_.size(), 0, &feil);
    if (kilde) zip_ = zip_open_from_source(kilde, ZIP_RDONLY, &feil);
    if (!zip_) {
        if (kilde) zip_source_free(kilde);
        zip_error_fini(&feil);
        throw XlsxFeil("Ikke en arbeidsbok (zip): " + sti.toStdString());
    }
    zip_error_fini(&feil);
    try {
        kontroller();
    } catch (...) {
        zip_discard(zip_);
        throw;
    }
}

void Pakke::kontroller() const
{
    const zip_int64_t antall = zip_get_num_entries(zip_, 0);
    if (antall > maksDeler) throw XlsxFeil("Arbeidsboka har mer enn " + std::to_string(maksDeler) + " deler");
    zip_uint64_t totalt = 0;
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(antall); ++i) {
        const std::string navn = zip_get_name(zip_, i, ZIP_FL_ENC_RAW);
        if (!innenforPakken(navn)) throw XlsxFeil("Delen " + navn + " har et navn som peker ut av arbeidsboka");
        if (erLenke(zip_, i)) throw XlsxFeil("Delen " + navn + " er en lenke");
        zip_stat_t st;
        if (zip_stat_index(zip_, i, 0, &st) != 0 || !(st.valid & ZIP_STAT_SIZE))
            throw XlsxFeil("Kan ikke lese " + navn);
        if (st.size > maksDel) throw forStor(navn);
        totalt += st.size;
        if (totalt > maksTotalt) throw forStor({});
    }
}

void Pakke::pakkUt(zip_uint64_t i, const std::string& del, std::string& ut) const
{
    zip_stat_t st;
    zip_file_t* f = zip_stat_index(zip_, i, 0, &st) == 0 ? zip_fopen_index(zip_, i, 0) : nullptr;
    if (!f) throw XlsxFeil("Kan ikke lese " + del);
    ut.reserve(st.size);  // no more than the limit: checked on opening
    char blokk[1 << 16];
    zip_int64_t n;
    while ((n = zip_fread(f, blokk, sizeof blokk)) > 0) {
        pakketUt_ += static_cast<zip_uint64_t>(n);
        if (ut.size() + static_cast<size_t>(n) > maksDel || pakketUt_ > maksTotalt) {
            zip_fclose(f);
            throw forStor(ut.size() + static_cast<size_t>(n) > maksDel ? del : std::string());
        }
        ut.append(blokk, static_cast<size_t>(n));
    }
    zip_fclose(f);
    if (n < 0 || ut.size() != st.size) throw XlsxFeil("Kan ikke lese " + del);
}

Pakke::~Pakke()
{
    if (zip_) zip_discard(zip_);
}

bool Pakke::finnes(const std::string& del) const { return zip_name_locate(zip_, del.c_str(), ZIP_FL_NOCASE) >= 0; }

zip_uint64_t Pakke::indeks(const std::string& del) const
{
    zip_int64_t i = zip_name_locate(zip_, del.c_str(), ZIP_FL_NOCASE);
    if (i < 0) throw XlsxFeil("Arbeidsboka mangler delen " + del);
    return static_cast<zip_uint64_t>(i);
}

std::string Pakke::lesDel(const std::string& del) const
{
    std::string ut;
    pakkUt(indeks(del), del, ut);
    return ut;
}

std::string Pakke::lagretForm(const std::string& del) const
{
    const zip_uint64_t i = indeks(del);
    zip_stat_t st;
    zip_file_t* f = zip_stat_index(zip_, i, 0, &st) == 0 ? zip_fopen_index(zip_, i, ZIP_FL_COMPRESSED) : nullptr;
    if (!f || !(st.valid & ZIP_STAT_COMP_SIZE) || st.comp_size > data_.size()) {
        if (f) zip_fclose(f);
        throw XlsxFeil("Kan ikke lese " + del);
    }
    std::string ut = std::to_string(st.comp_method) + ':' + std::to_string(st.size) + ':';
    const size_t start = ut.size();
    ut.resize(start + st.comp_size);
    const zip_int64_t n = zip_fread(f, ut.data() + start, st.comp_size);
    zip_fclose(f);
    if (n < 0 || static_cast<zip_uint64_t>(n) != st.comp_size) throw XlsxFeil("Kan ikke lese " + del);
    return ut;
}

void Pakke::lesXml(const std::string& del, pugi::xml_document& d) const
{
    xlsx::lesXml(d, lesDel(del), medDeklarasjon, del, "Ødelagt del i arbeidsboka: " + del, false);
}

std::vector<Relasjon> Pakke::relasjoner(const std::string& del) const
{
    std::vector<Relasjon> ut;
    std::string rels = relsAv(del);
    if (!finnes(rels)) return ut;
    pugi::xml_document d;
    lesXml(rels, d);
    for (pugi::xml_node r : d.document_element().children()) {
        if (lokaltNavn(r.name()) != "Relationship") continue;
        std::string target = r.attribute("Target").value();
        bool ekstern = std::string_view(r.attribute("TargetMode").value()) == "External";
        ut.push_back({r.attribute("Id").value(), r.attribute("Type").value(), ekstern ? target : maal(del, target)});
    }
    return ut;
}

void Pakke::fjernRelasjoner(const std::string& del, std::string_view type, Endringer& endringer) const
{
    std::string rels = relsAv(del);
    pugi::xml_document d;
    lesXml(rels, d);
    for (pugi::xml_node r = d.document_element().first_child(); r;) {
        pugi::xml_node neste = r.next_sibling();
        if (std::string_view(r.attribute("Type").value()).ends_with(type)) d.document_element().remove_child(r);
        r = neste;
    }
    endringer.nye[rels] = skrivXml(d);
}

void Pakke::settInnholdstyper(const std::string& hoveddel, bool makro, Endringer& endringer) const
{
    pugi::xml_document typer;
    lesXml(innholdstyper, typer);
    bool endret = false;
    const char* hovedtype = makro ? typeMakro : typeVanlig;
    for (pugi::xml_node o = typer.document_element().first_child(); o;) {
        pugi::xml_node neste = o.next_sibling();
        std::string del = maal("", o.attribute("PartName").value());
        if (lokaltNavn(o.name()) == "Override" && del == hoveddel &&
            std::strcmp(o.attribute("ContentType").value(), hovedtype) != 0) {
            o.attribute("ContentType") = hovedtype;
            endret = true;
        } else if (lokaltNavn(o.name()) == "Override" && endringer.borte.count(del)) {
            typer.document_element().remove_child(o);
            endret = true;
        }
        o = neste;
    }
    if (endret) endringer.nye[innholdstyper] = skrivXml(typer);
}

void Pakke::skriv(const std::string& sti, const Endringer& endringer) const
{
    static std::atomic<int> teller{0};
    // A write-protected file is not replaced, as the spreadsheet application would not either.
    using std::filesystem::perms;
    std::error_code sc;
    const auto status = std::filesystem::status(sti, sc);
    if (!sc && std::filesystem::is_regular_file(status) &&
        (status.permissions() & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none)
        throw XlsxFeil("Kan ikke lagre " + sti + ": fila er skrivebeskyttet");
    std::string tmp = sti + ".tmp" + std::to_string(::getpid()) + "_" + std::to_string(++teller);
    int feil = 0;
    zip_t* ut = zip_open(tmp.c_str(), ZIP_CREATE | ZIP_EXCL, &feil);
    if (!ut) throw XlsxFeil("Kan ikke skrive " + sti);
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
        if (endringer.borte.count(navn)) continue;
        zip_source_t* kilde;
        zip_int32_t metode = ZIP_CM_DEFLATE;
        zip_uint32_t niva = 1;  // fast deflate for the parts written anew
        auto ny = endringer.nye.find(navn);
        if (ny != endringer.nye.end()) {
            kilde = zip_source_buffer(ut, ny->second.data(), ny->second.size(), 0);
        } else {
            // Unchanged: the compressed data are copied as they are.
            zip_stat_t st;
            zip_stat_index(zip_, idx, 0, &st);
            metode = st.comp_method;
            niva = 0;
            kilde = zip_source_zip(ut, zip_, idx, 0, 0, -1);
        }
        if (!kilde) avbryt("Kan ikke skrive " + sti);
        zip_int64_t nr = zip_file_add(ut, navn.c_str(), kilde, ZIP_FL_ENC_RAW);
        if (nr < 0) {
            zip_source_free(kilde);
            avbryt("Kan ikke skrive " + sti);
        }
        zip_set_file_compression(ut, static_cast<zip_uint64_t>(nr), metode, niva);
    }
    if (zip_close(ut) != 0) avbryt("Kan ikke skrive " + sti + ": " + zip_strerror(ut));
    if (const std::error_code feil = fil::byttInn(tmp, sti)) {
        std::error_code ec;
        std::filesystem::remove(tmp, ec);
        throw XlsxFeil("Kan ikke lagre " + sti + ": " + feil.message());
    }
}

}  // namespace xlsx
