#include "export/Malprove.h"

#include "export/Eksport.h"
#include "platform/xlsx/Arbeidsbok.h"

namespace exports {

Utfall Command6_Click(Kontekst& k)
{
    try {
        const auto bok = xlsx::apne(k.sti(MalSykluser));
        bok->ark(2).diagram(1);
        return Utfall::Ferdig;
    } catch (const std::exception& e) {
        k.dialogs.info(QString::fromStdString(e.what()));
        return Utfall::Avvist;
    }
}

}  // namespace exports
