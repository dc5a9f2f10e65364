#include "export/Enkeltgraf.h"

#include "export/Eksport.h"
#include "files/Tekstfil.h"
#include "platform/xlsx/Arbeidsbok.h"
#include "store/Setninger.h"

#include <array>

namespace exports {

namespace {

// The measured values that go to columns C to K of the sheet, in that order.
constexpr std::array<const char*, 9> Verdikolonner = {"C", "D", "E", "F", "G", "H", "I", "J", "K"};

}  // namespace

void LagSyklusfil(Kontekst& k, const QString& Filnavn, db::Recordset& Poster, int16_t SyklusNr,
                  const vb::Dato& StartTid, Udekket& udekket, Bakgrunnslagring& lagring)
{
    const QString mal = k.sti(MalSykluser);
    if (!files::FilFinnes(mal)) {
        k.dialogs.info(QStringLiteral("Du mangler malfila"));
        return;
    }
    auto bok = xlsx::apne(mal);
    xlsx::Arbeidsark& data = bok->ark(1);

    const double forskyvning = startForskyvning(StartTid, Poster.dato("DatoTid"));
    data.settCelle(1, 15, forskyvning);
    const double akseStart = vb::rundHalvTilPar(forskyvning);

    std::array<int, Verdikolonner.size()> felt{};
    for (size_t i = 0; i < felt.size(); ++i) felt[i] = Poster.kolonne(Verdikolonner[i]);
    const int tidTekst = Poster.kolonne("DatoTid_Tekst");
    int16_t rad = 2;
    {
        Fremdrift fremdrift(k.vindu, SyklusNr);
        for (; !Poster.eof(); Poster.moveNext()) {
            data.settCelle(rad, 1,
                           Poster.erNull(tidTekst) ? xlsx::Verdi{} : xlsx::Verdi{Poster.tekst("DatoTid_Tekst")});
            for (size_t i = 0; i < felt.size(); ++i)
                data.settCelle(rad, 3 + static_cast<int>(i),
                               Poster.erNull(felt[i]) ? xlsx::Verdi{} : xlsx::Verdi{Poster.tall(felt[i])});
            rad = vb::pluss16(rad);
            fremdrift.rad(rad);
        }
    }

    const int dekket = data.fyllNed();
    xlsx::Arbeidsark& grafer = bok->ark(2);
    grafer.diagram(1).settKategoriMinimum(akseStart);
    grafer.diagram(2).settKategoriMinimum(akseStart);
    const QString fil = Filnavn + QLatin1Char('_') + QString::number(SyklusNr) + QStringLiteral(".xlsx");
    lagring.lagreSom(std::move(bok), utFil(k, fil));
    udekket.merk(SyklusNr, rad - 1, dekket, fil);
}

Utfall Command3_Click(Kontekst& k)
{
    Bakgrunnslagring lagring;
    try {
        const auto [snu, utfall] = forberedEksport(k, SporEnkeltfiler);
        if (!snu) return utfall;
        const files::SnuPunkter& snupunkter = *snu;
        const QString prefiks = sporPrefiks(k);
        if (prefiks.isEmpty()) return Utfall::Ferdig;
        Udekket udekket;
        {
            dialogs::Opptatt opptatt(k.vindu);
            const vb::Dato start = dataStart(k);
            k.vindu.behandleHendelser();
            const int16_t siste = vb::heltall16(k.vindu.sisteSyklus());
            for (int16_t syklus = 1; syklus <= siste; syklus = vb::pluss16(syklus)) {
                const vb::Dato snupunkt = snupunkter.syklus(syklus);
                const analysis::Tidsvindu vindu = analysis::enkeltvindu(k, snupunkt);
                if (vb::tall(k.vindu.forsteSyklus()) > syklus) continue;
                auto poster = store::vinduRader(k.tilkobling, false, vindu.fra, vindu.til);
                if (!poster.eof()) LagSyklusfil(k, prefiks, poster, syklus, start, udekket, lagring);
            }
            lagring.vent();
        }
        k.dialogs.info(QStringLiteral("Eksporten er ferdig!"));
        udekket.vis(k.dialogs);
        return Utfall::Ferdig;
    } catch (const std::exception& e) {
        return lagring.stoppet(e, [&k](const std::exception& f) { return eksportFeil(k, f); });
    }
}

}  // namespace exports
