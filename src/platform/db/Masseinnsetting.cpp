#include "platform/db/Masseinnsetting.h"

#include <algorithm>
#include <sqlite3.h>

namespace db {

Masseinnsetting::Masseinnsetting(Database& d, std::string_view innsetting, int tekster, int tall)
    : db_(d), innsetting_(innsetting), tekster_(tekster), tall_(tall)
{
    if (tekster < 0 || tall < 0 || tekster > MaksTekster || tekster + tall > MaksKolonner)
        throw DbFeil(QStringLiteral("Innsettingen har for mange kolonner (%1)")
                         .arg(QString::fromUtf8(innsetting))
                         .toStdString());
}

Masseinnsetting::~Masseinnsetting()
{
    for (auto& s : setninger_) sqlite3_finalize(s.stmt);
}

void Masseinnsetting::settInn(std::span<const Rad> rader)
{
    settInn(rader.size(), [rader](size_t i) { return rader[i]; });
}

void Masseinnsetting::settInn(size_t antall, const std::function<Rad(size_t)>& rad)
{
    for (size_t start = 0; start < antall; start += Bunt)
        send(rad, start, static_cast<int>(std::min(antall - start, size_t{Bunt})));
}

Masseinnsetting::Setning& Masseinnsetting::setning(int rader)
{
    Setning& s = setninger_[static_cast<size_t>(rader)];
    if (!s.stmt) {
        std::string rad = "(?";
        for (int i = 1; i < tekster_ + tall_; ++i) rad += ", ?";
        rad += ')';
        std::string sql = innsetting_ + " VALUES " + rad;
        for (int i = 1; i < rader; ++i) sql += ", " + rad;
        s.stmt = db_.forbered(sql.c_str());
        s.tallBundet.assign(static_cast<size_t>(rader), 0);  // a new statement has every parameter NULL
    }
    return s;
}

void Masseinnsetting::send(const std::function<Rad(size_t)>& kilde, size_t forste, int antall)
{
    Setning& s = setning(antall);
    for (int r = 0; r < antall; ++r) {
        const Rad rad = kilde(forste + static_cast<size_t>(r));
        if (rad.antallTall > tall_) throw DbFeil("Raden har flere tall enn innsettingen har kolonner");
        const int p = r * (tekster_ + tall_) + 1;
        for (int i = 0; i < tekster_; ++i) {
            const std::string_view t = rad.tekster[static_cast<size_t>(i)];
            sqlite3_bind_text(s.stmt, p + i, t.data(), static_cast<int>(t.size()), SQLITE_STATIC);
        }
        const int t = p + tekster_;
        for (int i = 0; i < rad.antallTall; ++i) sqlite3_bind_double(s.stmt, t + i, rad.tall[i]);
        int& bundet = s.tallBundet[static_cast<size_t>(r)];
        for (int i = rad.antallTall; i < bundet; ++i) sqlite3_bind_null(s.stmt, t + i);
        bundet = rad.antallTall;
    }
    const int rc = sqlite3_step(s.stmt);
    sqlite3_reset(s.stmt);
    if (rc != SQLITE_DONE)
        throw DbFeil(QStringLiteral("Databasen %1 avviste raden: %2").arg(db_.fil(), db_.grunn()).toStdString());
    lagret_ += antall;
}

}  // namespace db
