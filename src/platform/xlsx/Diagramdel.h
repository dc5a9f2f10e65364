// One chart part, edited as an XML document: its title and the minimum of its
// horizontal axis.
#pragma once

#include "platform/xlsx/Arbeidsbok.h"

#include <pugixml.hpp>
#include <string>

namespace xlsx {

class Diagramdel final : public Diagram {
public:
    Diagramdel(std::string sti, const std::string& xml);

    QString tittel() const override;
    void settTittel(const QString& tekst) override;
    void settKategoriMinimum(double minimum) override;

    bool endret() const { return endret_; }
    std::string skriv() const;

private:
    pugi::xml_node diagram() const;
    pugi::xml_node horisontalAkse() const;
    std::string c(const char* navn) const { return c_ + navn; }
    std::string a(const char* navn) const { return a_ + navn; }

    std::string sti_;
    pugi::xml_document doc_;
    std::string c_, a_;  // prefixes of the chart and drawing namespaces
    bool endret_ = false;
};

}  // namespace xlsx
