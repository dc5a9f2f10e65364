// Many rows into one table, quickly. Rows go Bunt at a time in one prepared statement of as
// many rows, which spares SQLite a statement run per row; a shorter rest uses a statement of
// its own length, prepared when first needed. Each statement keeps its bound values from one
// use to the next, so a NULL is bound only where the row before had a number.
#pragma once

#include "platform/db/Database.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace db {

class Masseinnsetting {
public:
    static constexpr int Bunt = 50;
    static constexpr int MaksTekster = 2;
    static constexpr int MaksKolonner = 999 / Bunt;  // SQLite takes up to 999 parameters a statement

    // One row, read while settInn runs: its texts, then its numbers. A text without characters
    // behind it (a default string_view) and the number columns past antallTall are NULL.
    struct Rad {
        std::array<std::string_view, MaksTekster> tekster{};
        const double* tall = nullptr;
        int antallTall = 0;
    };

    // innsetting: the statement up to VALUES in SQLite's own text, "INSERT INTO T (A, B, X, Y)",
    // naming its `tekster` text columns first and its `tall` number columns after them.
    // DbFeil for more columns than MaksKolonner or texts than MaksTekster.
    Masseinnsetting(Database& d, std::string_view innsetting, int tekster, int tall);
    ~Masseinnsetting();
    Masseinnsetting(const Masseinnsetting&) = delete;
    Masseinnsetting& operator=(const Masseinnsetting&) = delete;

    // Stores the rows in their order. DbFeil when the database refuses a statement: the rows
    // sent before it stay, those of that statement and after it are not stored.
    void settInn(std::span<const Rad> rader);
    // The same for `antall` rows that rad(i) gives one at a time, without a list of them.
    void settInn(size_t antall, const std::function<Rad(size_t)>& rad);
    // Rows stored so far.
    int64_t lagret() const { return lagret_; }

private:
    struct Setning {
        sqlite3_stmt* stmt = nullptr;
        std::vector<int> tallBundet;  // per row: numbers bound last time; the columns after them are NULL
    };

    Setning& setning(int rader);
    void send(const std::function<Rad(size_t)>& rad, size_t forste, int antall);

    Database& db_;
    const std::string innsetting_;
    const int tekster_;
    const int tall_;
    std::array<Setning, Bunt + 1> setninger_;  // by their number of rows
    int64_t lagret_ = 0;
};

}  // namespace db
