// What each fuzz target does with one input. The tests run the inputs that fuzzing has found
// through the same functions: any outcome is accepted but a crash, a hang or a sanitizer's report.
#pragma once

#include "platform/db/Database.h"
#include "platform/db/JetDialekt.h"
#include "platform/xlsx/Arbeidsbok.h"
#include "platform/xlsx/Formel.h"
#include "store/Radata.h"

#include <QFile>
#include <zip.h>

#include <string>
#include <string_view>

namespace ovelse {

// Every line of a raw-data file as the import reads it.
inline void radata(std::string_view data)
{
    store::Radatalinje linje;
    store::Rad rad;
    while (!data.empty()) {
        const size_t slutt = std::min(data.find('\n'), data.size());
        linje.les(data.substr(0, slutt));
        if (linje.erDatalinje())
            if (auto hopp = linje.tolk(rad)) store::hoppTekst(*hopp);
        data.remove_prefix(std::min(slutt + 1, data.size()));
    }
}

// A statement text translated for SQLite, with and without rising time.
inline void jetDialekt(std::string_view data)
{
    const QString setning = QString::fromUtf8(data.data(), static_cast<qsizetype>(data.size()));
    for (bool tidFolgerId : {false, true}) {
        try {
            db::tilSqlite(setning, tidFolgerId);
        } catch (const db::DbFeil&) {
        }
    }
}

// A sheet where every cell has a value by its position: a number, a text, an error or nothing.
struct Fuzzark final : xlsx::formel::Kilde {
    xlsx::formel::Resultat celle(int rad, int kolonne) override
    {
        using xlsx::formel::Resultat;
        switch ((rad + kolonne) % 4) {
        case 0: return Resultat::nummer(rad * 0.5 - kolonne);
        case 1: return Resultat::streng(std::to_string(rad));
        case 2: return Resultat::feil("#N/A");
        default: return {};
        }
    }
    // The top left corner of a range at most, so that A:XFD does not take hours.
    void omrade(int rad1, int kol1, int rad2, int kol2,
                const std::function<void(const xlsx::formel::Resultat&)>& hver) override
    {
        for (int r = rad1; r <= std::min(rad2, rad1 + 8); ++r)
            for (int k = kol1; k <= std::min(kol2, kol1 + 8); ++k) hver(celle(r, k));
    }
};

// A formula parsed, computed in C5, and written back as it stands and moved.
inline void formel(std::string_view data)
{
    namespace f = xlsx::formel;
    try {
        f::Tolkelager lager;
        Fuzzark ark;
        f::beregn(*lager.hent(data, 5, 3), ark, 5, 3);
        f::normaliser(data);
        f::flytt(data, 7, -2);
    } catch (const xlsx::XlsxFeil&) {
    }
}

// A workbook file opened, its first two sheets and their first chart read and changed, and
// saved as kopi.
inline void arbeidsbok(const QString& fil, const QString& kopi)
{
    try {
        const auto bok = xlsx::apne(fil);
        for (int nr : {1, 2}) {
            try {
                xlsx::Arbeidsark& ark = bok->ark(nr);
                for (int rad = 1; rad <= 6; ++rad)
                    for (int kol = 1; kol <= 6; ++kol) ark.celle(rad, kol);
                ark.settCelle(2, 1, 1.5);
                ark.settFormel(QStringLiteral("C3"), QStringLiteral("sum(A1:B9)"));
                xlsx::Diagram& diagram = ark.diagram(1);
                diagram.settTittel(diagram.tittel() + QLatin1Char('x'));
                diagram.settKategoriMinimum(3);
            } catch (const xlsx::XlsxFeil&) {
            }
        }
        bok->lagreSom(kopi);
    } catch (const xlsx::XlsxFeil&) {
    }
}

// A package written as fil: the parts of the workbook mal, with one part, its name on the
// data's first line, replaced by the rest of the data (or added).
inline void byttDel(const QString& mal, std::string_view data, const QString& fil)
{
    const size_t linje = std::min(data.find('\n'), data.size());
    const std::string navn(data.substr(0, linje));
    const std::string_view innhold = data.substr(std::min(linje + 1, data.size()));
    QFile::remove(fil);
    int feil = 0;
    zip_t* inn = zip_open(mal.toUtf8().constData(), ZIP_RDONLY, &feil);
    zip_t* ut = zip_open(fil.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, &feil);
    if (!inn || !ut) std::abort();
    // A part libzip does not take (a name twice, say) is left out.
    const auto leggTil = [ut](const char* del, zip_source_t* kilde) {
        if (kilde && zip_file_add(ut, del, kilde, ZIP_FL_ENC_RAW) < 0) zip_source_free(kilde);
    };
    for (zip_int64_t i = 0; i < zip_get_num_entries(inn, 0); ++i) {
        const char* del = zip_get_name(inn, static_cast<zip_uint64_t>(i), 0);
        if (navn != del) leggTil(del, zip_source_zip(ut, inn, static_cast<zip_uint64_t>(i), 0, 0, -1));
    }
    leggTil(navn.c_str(), zip_source_buffer(ut, innhold.data(), innhold.size(), 0));
    if (zip_close(ut) != 0) zip_discard(ut);
    zip_discard(inn);
}

}  // namespace ovelse
