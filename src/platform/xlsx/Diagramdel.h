// One chart part, edited as an XML document: its title, the minimum of its
// horizontal axis, and the ranges its series draw from.
#pragma once

#include "platform/xlsx/Arbeidsbok.h"

#include <pugixml.hpp>
#include <set>
#include <string>

namespace xlsx {

class Diagramdel final : public Diagram {
public:
    Diagramdel(std::string sti, const std::string& xml);

    QString tittel() const override;
    void settTittel(const QString& tekst) override;
    void settKategoriMinimum(double minimum) override;

    // Stretches the series ranges over sheet ark that end above sisteRad down to it (see
    // strekkOmrade); lowers dekket to the last row that a range which cannot be stretched covers.
    void strekkSerier(const std::string& ark, int sisteRad, int& dekket);
    // Drops the cached values of the series ranges that refer to one of the sheets, so that a
    // reader draws from the cells instead of showing what the template held.
    void slippBuffere(const std::set<std::string>& ark);

    bool endret() const { return endret_; }
    std::string skriv() const;

private:
    pugi::xml_node diagram() const;
    pugi::xml_node horisontalAkse() const;
    // The <f> elements of the series: names, categories, x and y values.
    pugi::xpath_node_set serieformler() const;
    std::string c(const char* navn) const { return c_ + navn; }
    std::string a(const char* navn) const { return a_ + navn; }

    std::string sti_;
    pugi::xml_document doc_;
    std::string c_, a_;  // prefixes of the chart and drawing namespaces
    bool endret_ = false;
};

}  // namespace xlsx
