// One worksheet held as a sparse map of rows and cells. The sheet's XML is read
// once, on first use; saving writes the part before and after the cell data as
// it was and the cell data anew, in row and column order.
#pragma once

#include "platform/xlsx/Arbeidsbok.h"
#include "platform/xlsx/Formel.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace xlsx {

// What a worksheet needs from its workbook.
class Bokdeler {
public:
    virtual ~Bokdeler() = default;
    virtual std::string lesDel(const std::string& sti) = 0;
    // The part as stored, which is the same when its bytes are (see Pakke::lagretForm).
    virtual std::string lagretForm(const std::string& sti) = 0;
    virtual const std::string& deltTekst(long indeks) = 0;
    virtual Diagram& diagram(const std::string& arkSti, int nr) = 0;
    // Stretches the chart series and the print area over the sheet down to sisteRad; returns the
    // last row up to which every chart series over the sheet reaches (see Arbeidsark::fyllNed).
    virtual int strekkOmrader(const std::string& arkSti, int sisteRad) = 0;
};

class Ark final : public Arbeidsark {
public:
    Ark(Bokdeler& bok, std::string sti) : bok_(bok), sti_(std::move(sti)) {}

    void settCelle(int rad, int kolonne, const Verdi& verdi) override;
    Verdi celle(int rad, int kolonne) override;
    void settFormel(const QString& adresse, const QString& formel) override;
    void tomCelle(int rad, int kolonne) override;
    void tomRad(int rad) override;
    Diagram& diagram(int nr) override { return bok_.diagram(sti_, nr); }
    int fyllNed() override;

    bool endret() const { return endret_; }
    // A formula was set, overwritten or removed since opening.
    bool formlerEndret() const { return formlerEndret_; }
    bool harFormler() const { return antallFormler_ > 0; }
    // Every formula's value and the runs of shared formulas, as skriv() writes them.
    void beregn();
    // The sheet's XML with the current cells, formula values cached.
    std::string skriv();

private:
    // A formula as stored and parsed. Those read from the sheet's XML are shared by the copies of
    // the sheet read once, and are parsed when read, so that no copy changes them; those set
    // since belong to the sheet and are parsed when first needed.
    struct Lagret {
        std::string tekst;  // without "="
        std::string attr;   // raw attributes of <f>, kept for array formulas
        int rad = 0;        // the row of the cell, which relative references start from
        std::shared_ptr<const formel::Uttrykk> tre;
    };
    using Lagrede = std::deque<Lagret>;  // keeps their places as it grows
    // A formula cell's own state. A plain pointer to the formula: copying a sheet of thousands of
    // formulas, and freeing it, then touches no reference counts.
    struct FormelDel {
        Lagret* lagret = nullptr;
        formel::Resultat verdi;
        uint64_t gen = 0;
        // Written as a shared formula: its number, and for the first cell the last row of the run.
        int delt = -1;
        int deltTil = 0;
        bool underveis = false;
    };
    struct Celle {
        enum Art : unsigned char { Tom, Tall, Tekst, Delt, Logisk, Feil, Rik };
        int kol = 0;
        int formel = -1;  // its formula among the sheet's formulas, -1 without
        int ekstra = -1;  // its other attributes of <c>, raw, among the sheet's; -1 without
        Art art = Tom;
        long stil = -1;     // s attribute, the index of the cell format; -1 without
        double tall = 0;    // number, logical, shared-string index
        std::string tekst;  // text, error code, or the raw <is> element of rich text
    };
    struct Rad {
        int nr = 0;
        std::string attr;  // attributes of <row> but r and spans, raw
        long stil = -1;    // the row's own cell format, which new cells of the row take
        std::vector<Celle> celler;
    };
    // The cell format of a block of columns (<col min max style>).
    struct Kolonnestil {
        int fra, til;
        long stil;
    };

    // The sheet as the evaluator sees it.
    class Kilde final : public formel::Kilde {
    public:
        explicit Kilde(Ark& ark) : ark_(ark) {}
        formel::Resultat celle(int rad, int kolonne) override;
        void omrade(int rad1, int kol1, int rad2, int kol2,
                    const std::function<void(const formel::Resultat&)>& hver) override;

    private:
        Ark& ark_;
    };

    // A sheet as read from its XML, before any change.
    struct Lest {
        std::string lagret;  // the part as stored, which tells the same XML
        std::string ns, foran, bak;
        std::vector<Kolonnestil> kolonnestiler;
        std::vector<Rad> rader;
        std::vector<FormelDel> formler;
        std::vector<std::string> ekstra;
        long antallFormler = 0;
        std::shared_ptr<Lagrede> lagrede;  // what formler points into
    };

    formel::Resultat resultat(Celle& c);
    void last();
    void tolk(const std::string& xml);
    // The last sheets read on this thread: a template opened once per exported cycle is read
    // from its XML once and copied after that.
    static std::deque<Lest>& lesteArk();
    // The row numbered nr, or nullptr; hentRad adds it where it is missing.
    Rad* finnRad(int nr);
    Rad& hentRad(int nr);
    // The first row numbered nr or higher.
    std::vector<Rad>::iterator fraRad(int nr);
    Celle* finn(int rad, int kol);
    Celle& hent(int rad, int kol);
    // The format a new cell takes: its row's, else its column's, as when a user types into it.
    long nyStil(const Rad& rad, int kol) const;
    void lesKolonnestiler();
    void fyllFormlerNed(int sisteRad);
    // Adds f to the sheet's formulas and gives its number for Celle::formel.
    int nyFormel(FormelDel f);
    // A formula set on the sheet, kept by it.
    Lagret* egen(std::string tekst, int rad, std::shared_ptr<const formel::Uttrykk> tre = nullptr)
    {
        return &egne_.emplace_back(Lagret{std::move(tekst), {}, rad, std::move(tre)});
    }
    // The parse of f's formula, made on first use.
    const formel::Uttrykk& tre(Lagret& f, int kol);
    FormelDel& formelAv(const Celle& c) { return formler_[static_cast<size_t>(c.formel)]; }
    void fjernFormel(Celle& c);
    // A change from row rad down. The values computed so far stay current when none of them
    // read a cell that far down; otherwise a new generation computes them again.
    void endring(int rad)
    {
        endret_ = true;
        beregnet_ = false;
        if (rad > lestTil_) return;
        ++gen_;
        lestTil_ = 0;
    }
    formel::Resultat verdiAv(Celle& c);
    void beregnMedKilder(Celle& c);
    // Calls hver with every cell inside the rectangle, in row and column order.
    template <class Hver>
    void forHverCelle(int rad1, int kol1, int rad2, int kol2, Hver&& hver);
    void finnDelteFormler();
    void apneTagg(std::string& ut, const char* navn) const;
    void lukkTagg(std::string& ut, const char* navn) const;
    void skrivCelle(std::string& ut, int rad, Celle& c);

    Bokdeler& bok_;
    std::string sti_;
    bool lastet_ = false;
    bool endret_ = false;
    bool formlerEndret_ = false;
    bool beregnet_ = false;  // beregn() has run since the last change
    long antallFormler_ = 0;
    int sisteSkrevne_ = 0;  // the last row given a value
    std::vector<Kolonnestil> kolonnestiler_;
    uint64_t gen_ = 1;
    int lestTil_ = 0;          // the farthest row down that a value computed in this generation has read
    std::string foran_, bak_;  // the XML around the cell data
    std::string ns_;           // prefix of the sheet's elements ("" or "x:")
    std::vector<Rad> rader_;   // in order of their numbers
    // The formulas of the cells, apart from them so that a sheet is copied in a few blocks; a
    // cell's formula keeps its place, and a formula removed leaves its place unused.
    std::vector<FormelDel> formler_;
    std::shared_ptr<Lagrede> lagrede_;  // the formulas read from the XML
    Lagrede egne_;                      // and those set since
    std::vector<std::string> ekstra_;   // the raw attributes of the cells that have more
    size_t sist_ = 0;                   // the row used last, where the next look-up starts
    Kilde kilde_{*this};
    // One store for every sheet of the run: the same template is opened once per exported cycle.
    static formel::Tolkelager& tolkelager();
};

}  // namespace xlsx
