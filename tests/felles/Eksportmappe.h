// A program folder for the export tests: the built workbook templates, a column list for
// C..K, measurement rows and turning points, the real main window over it with scripted
// dialogs, and workbooks read back with openpyxl.
#pragma once

#include "export/Eksport.h"
#include "felles/MedVindu.h"
#include "platform/xlsx/Arbeidsbok.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QPushButton>
#include <functional>
#include <optional>

namespace test {

using dialogs::Svar;
using Forslag = dialogs::SkriptDialogs::Forslag;

// The values of a row for columns C, D, E, ... in order; an empty one is stored as Null.
using Verdier = QList<std::optional<double>>;

// Seconds after 23.11.2012 00:00 (within the day) as the import stores it in DatoTid_Tekst.
QString tidTekst(int sekunder);

// A workbook as openpyxl reads it; a failing read fails the test.
struct Bok {
    QJsonObject json;     // "ark", "diagrammer" (per sheet: {"tittel", "xmin"}), "makro"
    QJsonObject celler;   // sheet 1: address -> value (for a formula its text, or its cached value when bufret)
    QJsonObject formler;  // sheet 1: address -> formula text
    QJsonValue operator[](const QString& adresse) const { return celler.value(adresse); }
};
// What bok holds otherwise than the template mal: a line per column of sheet 1 with its changed cells
// as row=text (a formula's text, not its value) and the runs of rows it emptied as row-row tom; then
// the sheet names and the charts (title and axis minimum per sheet) where they differ.
QString endringer(const Bok& mal, const Bok& bok);
// Several workbooks in one Python run, in the order named.
QList<Bok> lesArbeidsboker(const QStringList& filer, bool bufret = false);
Bok lesArbeidsbok(const QString& fil, bool bufret = false);

// What the graph window shows: the minutes and values in view (4 digits), the legend as plain text,
// and the readout.
QString vist(const app::FrmGraph& g);
// Moves the mouse over the graph window's chart to the point of these minutes and value.
void pek(app::FrmGraph& g, QPointF verdi);

class Eksportmappe : public MedVindu {
protected:
    Eksportmappe();

    // The main window, opened on first use over the folder as it is then.
    app::Form1& form() { return f ? *f : vindu({}); }
    void sett(dialogs::Boks boks, const QString& tekst) { form().settTekst(boks, tekst); }
    void sykluser(const char* fra, const char* til)
    {
        sett(dialogs::Boks::Text4, fra), sett(dialogs::Boks::Text6, til);
    }
    // One measurement row, and rows every steg seconds from fra to til (both included) in one transaction.
    void rad(int sekunder, const Verdier& verdier);
    void rader(int fra, int til, int steg, const std::function<Verdier(int)>& verdier);
    void snupunkter(const QList<int>& sekunder);  // SnuPunkter.txt

    QString ut(const QString& navn) const { return mappe.sti(QStringLiteral("Data_Bearbeidet/") + navn); }
    QStringList utfiler() const { return QDir(ut(QString())).entryList(QDir::Files, QDir::Name); }
    Kjoring batch(const QStringList& argumenter) const { return mappe.batch(argumenter); }
};

}  // namespace test
