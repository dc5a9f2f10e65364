// One worksheet held as a sparse map of rows and cells. The sheet's XML is read
// once, on first use; saving writes the part before and after the cell data as
// it was and the cell data anew, in row and column order.
#pragma once

#include "platform/xlsx/Arbeidsbok.h"
#include "platform/xlsx/Formel.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace xlsx {

// What a worksheet needs from its workbook.
class Bokdeler {
public:
    virtual ~Bokdeler() = default;
    virtual std::string lesDel(const std::string& sti) = 0;
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
    // The sheet's XML with the current cells, formula values cached.
    std::string skriv();

private:
    struct FormelDel {
        std::string tekst;  // as stored, without "="
        std::string attr;   // raw attributes of <f> kept for array formulas
        int rad = 0;        // the row of the cell, which relative references start from
        std::shared_ptr<const formel::Uttrykk> tre;
        uint64_t gen = 0;
        bool underveis = false;
        formel::Resultat verdi;
        // Written as a shared formula: its number, and for the first cell the last row of the run.
        int delt = -1;
        int deltTil = 0;
    };
    struct Celle {
        enum Art : unsigned char { Tom, Tall, Tekst, Delt, Logisk, Feil, Rik };
        int kol = 0;
        Art art = Tom;
        double tall = 0;     // number, logical, shared-string index
        std::string tekst;   // text, error code, or the raw <is> element of rich text
        long stil = -1;      // s attribute, the index of the cell format; -1 without
        std::string ekstra;  // other attributes of <c>, raw
        std::unique_ptr<FormelDel> formel;

        Celle() = default;
        Celle(Celle&&) = default;
        Celle& operator=(Celle&&) = default;
        Celle(const Celle& c)
            : kol(c.kol), art(c.art), tall(c.tall), tekst(c.tekst), stil(c.stil), ekstra(c.ekstra),
              formel(c.formel ? std::make_unique<FormelDel>(*c.formel) : nullptr)
        {
        }
    };
    struct Rad {
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
        std::string xml;
        std::string ns, foran, bak;
        std::vector<Kolonnestil> kolonnestiler;
        std::map<int, Rad> rader;
        long antallFormler = 0;
    };

    formel::Resultat resultat(Celle& c);
    void last();
    void tolk(const std::string& xml);
    // The last sheets read on this thread: a template opened once per exported cycle is read
    // from its XML once and copied after that.
    static std::deque<Lest>& lesteArk();
    Celle* finn(int rad, int kol);
    Celle& hent(int rad, int kol);
    // The format a new cell takes: its row's, else its column's, as when a user types into it.
    long nyStil(const Rad& rad, int kol) const;
    void lesKolonnestiler();
    void fyllFormlerNed(int sisteRad);
    void fjernFormel(Celle& c);
    void endring()
    {
        endret_ = true;
        ++gen_;
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
    long antallFormler_ = 0;
    int sisteSkrevne_ = 0;  // the last row given a value
    std::vector<Kolonnestil> kolonnestiler_;
    uint64_t gen_ = 1;
    std::string foran_, bak_;  // the XML around the cell data
    std::string ns_;           // prefix of the sheet's elements ("" or "x:")
    std::map<int, Rad> rader_;
    std::map<int, Rad>::iterator sist_ = rader_.end();
    Kilde kilde_{*this};
    // One store for every sheet of the run: the same template is opened once per exported cycle.
    static formel::Tolkelager& tolkelager();
};

}  // namespace xlsx
