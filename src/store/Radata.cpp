#include "store/Radata.h"

#include "platform/vb/Vb.h"

#include <cstring>

namespace store {

namespace {

// DatoTid as the store keeps it, "YYYY-MM-DD HH:MM:SS", from characters 1 to 19 of a cleaned
// line: year, month, day and time of day with ":" between its parts. False when they hold
// no valid date-time.
bool lesDatoTid(std::string_view L, char (&iso)[19])
{
    if (L.size() < 19 || L[13] != ':' || L[16] != ':' || !vb::Dato::fraFastePlasser(L)) return false;
    std::memcpy(iso, L.data(), sizeof iso);
    iso[4] = iso[7] = '-';
    iso[10] = ' ';
    return true;
}

// DatoTid_Tekst: characters 1 to 10 with "." back to "/", a blank, characters 11 to 22.
void lagDatoTekst(std::string_view L, Rad& rad)
{
    char* ut = rad.datoTekst;
    auto leggTil = [&ut](char c) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            *ut++ = c;
        } else {
            *ut++ = static_cast<char>(0xC0 | (b >> 6));
            *ut++ = static_cast<char>(0x80 | (b & 0x3F));
        }
    };
    for (char c : L.substr(0, 10)) leggTil(c == '.' ? '/' : c);
    leggTil(' ');
    for (char c : L.substr(10, 12)) leggTil(c);
    rad.datoTekstLengde = static_cast<int>(ut - rad.datoTekst);
}

}  // namespace

QString hoppTekst(const Hopp& hopp)
{
    const QString t = QString::fromLatin1(hopp.tekst.data(), static_cast<qsizetype>(hopp.tekst.size()));
    switch (hopp.grunn) {
    case Hopp::Apostrof: return QStringLiteral("apostrof i dato og tid «%1»").arg(t);
    case Hopp::UgyldigDatoTid: return QStringLiteral("ugyldig dato eller klokkeslett «%1»").arg(t);
    case Hopp::ForStortTall: return QStringLiteral("tallet «%1» er for stort").arg(t);
    }
    return {};
}

void Radatalinje::les(std::string_view raa)
{
    linje_.resize(raa.size());
    char* ut = linje_.data();
    for (char c : raa)
        if (c != '"') *ut++ = c == '/' ? '.' : c;
    linje_.resize(static_cast<size_t>(ut - linje_.data()));
    felt_.clear();
    const std::string_view L(linje_);
    size_t start = 0;
    for (size_t komma; (komma = L.find(',', start)) != std::string_view::npos; start = komma + 1)
        felt_.push_back(L.substr(start, komma - start));
    felt_.push_back(L.substr(start));
}

std::optional<Hopp> Radatalinje::tolk(Rad& rad)
{
    const std::string_view L(linje_);
    forLite_ = {};
    if (L.substr(0, 22).find('\'') != std::string_view::npos) return Hopp{Hopp::Apostrof, L.substr(0, 22)};
    if (!lesDatoTid(L, rad.datoTid)) return Hopp{Hopp::UgyldigDatoTid, L.substr(0, 19)};
    rad.antall = static_cast<int>(felt_.size()) - 3;
    for (int i = 0; i < rad.antall; ++i) {
        const std::string_view felt = felt_[static_cast<size_t>(i) + 2];
        try {
            bool forLite = false;
            rad.verdier[i] = vb::valLagret(felt, &forLite);
            if (forLite && forLite_.empty()) forLite_ = felt;
        } catch (const vb::Feil&) {
            return Hopp{Hopp::ForStortTall, felt};
        }
    }
    lagDatoTekst(L, rad);
    return std::nullopt;
}

}  // namespace store
