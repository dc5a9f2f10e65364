#include "export/Samlefil.h"

#include "export/Eksport.h"
#include "files/Tekstfil.h"
#include "platform/xlsx/Arbeidsbok.h"
#include "store/Maledata.h"
#include "store/Setninger.h"

namespace exports {

namespace {

constexpr int SisteRad = 2000;

QString kolonneBokstav(const Kontekst& k) { return files::HentKode(k.vindu.kolonneTekst()); }

}  // namespace

Utfall Command5_Click(Kontekst& k)
{
    try {
        const auto [snu, utfall] = forberedEksport(k, SporSamlefil);
        if (!snu) return utfall;
        const files::SnuPunkter& liste = *snu;
        const QString mal = k.sti(samleMal(k.vindu));
        if (!files::FilFinnes(mal)) {
            k.dialogs.info(QStringLiteral("Du mangler malfila"));
            return Utfall::Avvist;
        }
        const QString prefiks = sporPrefiks(k);
        if (prefiks.isEmpty()) return Utfall::Ferdig;

        auto bok = xlsx::apne(mal);
        xlsx::Arbeidsark& ark = bok->ark(1);
        const dialogs::Opptatt opptatt(k.vindu);
        if (!store::harRader(k.tilkobling)) {
            k.dialogs.info(QStringLiteral("Finnes det data i tabellen?"));
            return Utfall::Avvist;
        }
        int16_t periode = 0;
        if (!k.vindu.adsorpsjon()) periode = vb::heltall16(k.dialogs.inndata(SporPeriode, QStringLiteral("140")));

        Udekket udekket;
        std::vector<std::pair<int, int>> sisteRader;  // cycle, its last written row
        // The chooser and the setting boxes stay editable while the export runs: the column letter
        // and the boxes are read again in each cycle, and the letter again whenever pending events
        // have run.
        for (int16_t syklus = 1; syklus <= vb::heltall16(k.vindu.sisteSyklus());) {
            const vb::Dato snupunkt = liste.syklus(syklus);
            QString K = kolonneBokstav(k);
            const analysis::Tidsvindu vindu = analysis::samlevindu(k, snupunkt, K, periode);
            if (vb::tall(k.vindu.forsteSyklus()) <= syklus) {
                auto poster = store::vinduRader(k.tilkobling, true, vindu.fra, vindu.til);
                if (!poster.eof()) {
                    const int kolonne = syklus + 2;
                    float rad = 2.0f;
                    {
                        Fremdrift fremdrift(k.vindu, syklus);
                        for (; !poster.eof(); poster.moveNext()) {
                            const int n = static_cast<int>(rad);
                            if (syklus == 1) ark.settCelle(n, 1, poster.tekst("DatoTid_Tekst"));
                            ark.settCelle(n, kolonne, static_cast<double>(store::HentVerdi(K, poster)));
                            rad += 1.0f;
                            if (fremdrift.rad(static_cast<long long>(rad))) K = kolonneBokstav(k);
                        }
                    }
                    for (int n = static_cast<int>(rad); n <= SisteRad; ++n) ark.tomCelle(n, kolonne);
                    sisteRader.emplace_back(syklus, static_cast<int>(rad) - 1);
                }
            }
            if (vb::tall(k.vindu.sisteSyklus()) == syklus) {
                const int dekket = ark.fyllNed();
                const QString fil = prefiks + QStringLiteral("_Samlefil.xlsm");
                bok->lagreSom(utFil(k, fil));
                for (const auto& [s, r] : sisteRader) udekket.merk(s, r, dekket, fil);
                bok.reset();
                break;
            }
            syklus = vb::pluss16(syklus);
        }
        k.dialogs.info(QStringLiteral("Eksporten er ferdig"));
        udekket.vis(k.dialogs);
        return Utfall::Ferdig;
    } catch (const std::exception& e) {
        return eksportFeil(k, e);
    }
}

}  // namespace exports
