// Workbook files edited directly: open a template (.xlsx or .xlsm), work on its
// worksheets and charts, save under a new name or in place. Everything the
// program does not touch is written back as it was (styles, other sheets,
// drawings, charts, a VBA part).
#pragma once

#include "platform/vb/Vb.h"

#include <QString>
#include <memory>
#include <variant>

namespace xlsx {

// A workbook that cannot be opened or saved, or lacks the sheet, chart or axis asked for.
struct XlsxFeil : vb::Feil {
    using vb::Feil::Feil;
};

// A cell's value: empty, a number or a text.
using Verdi = std::variant<std::monostate, double, QString>;

class Diagram {
public:
    virtual ~Diagram() = default;
    // The chart title's text (plain or rich text joined); empty when the chart has none.
    virtual QString tittel() const = 0;
    // Sets the title, creating it when the chart has none.
    virtual void settTittel(const QString& tekst) = 0;
    // Minimum of the horizontal (category, date or value) axis of the primary group.
    virtual void settKategoriMinimum(double minimum) = 0;
};

class Arbeidsark {
public:
    virtual ~Arbeidsark() = default;
    // Row and column from 1.
    virtual void settCelle(int rad, int kolonne, const Verdi& verdi) = 0;
    // The cell's value; a formula cell gives its computed value (an error value as its
    // text, "#N/A", "#DIV/0!"...).
    virtual Verdi celle(int rad, int kolonne) = 0;
    // A formula in an A1 address, written as the program builds it ("= sum(G3:G57)").
    virtual void settFormel(const QString& adresse, const QString& formel) = 0;
    // Removes value and formatting of one cell.
    virtual void tomCelle(int rad, int kolonne) = 0;
    // Removes the values of a whole row.
    virtual void tomRad(int rad) = 0;
    // The chart of chart object nr (from 1) on this sheet.
    virtual Diagram& diagram(int nr) = 0;
    // Carries the template down to the last row that was given a value, as a user filling down
    // would: a formula run of two or more rows down a column that ends above that row is filled
    // down to it, and the multi-row ranges over this sheet that end above it (the series of the
    // workbook's charts, the sheet's print area) are stretched to it. Returns the last of the
    // written rows that every chart draws: the last written row itself, unless a chart refers to
    // the sheet with a union of blocks, which cannot be stretched. 0 when nothing was written.
    virtual int fyllNed() = 0;
};

class Arbeidsbok {
public:
    virtual ~Arbeidsbok() = default;
    // Worksheet by position, from 1.
    virtual Arbeidsark& ark(int posisjon) = 0;
    // Saves under a new path; .xlsx or .xlsm decides the package's content type. The file is
    // written under a temporary name and renamed, so a failed save leaves no half-written file.
    // From then on the workbook belongs to the new path, as in a spreadsheet application.
    virtual void lagreSom(const QString& sti) = 0;
    // Saves over the file it was opened from, or last saved as (close with saving).
    // Closing without saving is dropping the object.
    virtual void lagre() = 0;
    // Computes now what a save writes of the changed sheets (every formula's value, the runs of
    // shared formulas), so that a save that follows on another thread only writes; a change made
    // after it is computed again by the save.
    virtual void beregn() = 0;
};

// Opens a workbook file into memory; XlsxFeil when it cannot be read as a workbook.
std::unique_ptr<Arbeidsbok> apne(const QString& sti);

}  // namespace xlsx
