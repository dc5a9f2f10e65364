// The zip package a workbook is stored in: its parts by name, the relationships from a
// part to other parts, the content types, and writing the package anew with some parts
// changed or left out. The opened file is held in memory and never changed.
#pragma once

#include <QString>
#include <pugixml.hpp>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct zip;

namespace xlsx {

// A relationship of a part: its id, its type, and the part it points to as a name in the
// package (an external target as it is written).
struct Relasjon {
    std::string id, type, maal;
};

// What a save changes in the package: parts written anew, by name, and parts left out.
struct Endringer {
    std::map<std::string, std::string> nye;
    std::set<std::string> borte;
};

class Pakke {
public:
    // Reads the file into memory; XlsxFeil when it is missing, no zip, or not a package this
    // layer takes: a part named outside the package ("../", an absolute path) or a link, more
    // than 10 000 parts, a part larger than 16 MB or all together larger than 48 MB unpacked
    // by the zip directory. The directory may lie: the parts read are held to the same
    // limits as they are unpacked.
    explicit Pakke(const QString& sti);
    ~Pakke();
    Pakke(const Pakke&) = delete;
    Pakke& operator=(const Pakke&) = delete;

    // Whether the package holds the part; the name compares without case.
    bool finnes(const std::string& del) const;
    // The bytes of a part; XlsxFeil when it is missing or cannot be read, or grows past 16 MB,
    // or past 48 MB together with the parts read before, as it is unpacked.
    std::string lesDel(const std::string& del) const;
    // The part as the zip stores it: compression method, unpacked size and packed bytes. Two parts
    // with the same stored form unpack to the same bytes, so this tells a part seen before
    // without unpacking it. XlsxFeil as for lesDel.
    std::string lagretForm(const std::string& del) const;
    // A part read into d as an XML document, its declaration kept; XlsxFeil when it is not well-formed.
    void lesXml(const std::string& del, pugi::xml_document& d) const;
    // The relationships of a part ("" for the package's own); none when it has no relationships part.
    std::vector<Relasjon> relasjoner(const std::string& del) const;

    // Writes the part's relationships part anew without the relationships whose type ends in type.
    void fjernRelasjoner(const std::string& del, std::string_view type, Endringer& endringer) const;
    // Writes [Content_Types].xml anew where it must change: the workbook part hoveddel gets the
    // content type of a macro-enabled (.xlsm) or plain (.xlsx) workbook, and the parts left out
    // lose their Override.
    void settInnholdstyper(const std::string& hoveddel, bool makro, Endringer& endringer) const;

    // Writes the package to sti under a temporary name renamed at the end: the parts of
    // endringer.nye as given, those of endringer.borte left out, every other part copied
    // compressed as it is, in the order of the opened package. A write-protected sti is
    // not replaced; XlsxFeil when the package cannot be written.
    void skriv(const std::string& sti, const Endringer& endringer) const;

private:
    // The names and sizes of the zip directory: XlsxFeil for the first part that breaks a rule
    // of the constructor.
    void kontroller() const;
    // Unpacks part nr i, named del, into ut, counting what is unpacked against the limits.
    void pakkUt(uint64_t i, const std::string& del, std::string& ut) const;
    // The index of the part in the zip; XlsxFeil when it is missing.
    uint64_t indeks(const std::string& del) const;

    std::string data_;
    mutable uint64_t pakketUt_ = 0;  // bytes unpacked from the parts read so far
    ::zip* zip_ = nullptr;
};

}  // namespace xlsx
