#include "export/Integrering.h"

#include "export/Eksport.h"
#include "files/Tekstfil.h"
#include "platform/xlsx/Arbeidsbok.h"
#include "store/Setninger.h"

namespace exports {

namespace {

const QString MalEnkel = QStringLiteral("Mal_Integrering_desorpsjon_Enkel.xlsx");
const QString MalAlle = QStringLiteral("Mal_desorpsjon_areal_alle.xlsx");
constexpr int KolonneA = 1, KolonneB = 2, KolonneC = 3, KolonneE = 5, KolonneK = 11, KolonneL = 12;
constexpr int SisteRad = 2999;

// The CO2 value of the current row as stored: a number, or empty.
xlsx::Verdi co2(const db::Recordset& poster)
{
    const int f = poster.kolonne("F");
    return poster.erNull(f) ? xlsx::Verdi{} : xlsx::Verdi{poster.tall(f)};
}

void skrivRad(xlsx::Arbeidsark& ark, int n, const db::Recordset& poster)
{
    ark.settCelle(n, KolonneA, poster.tekst("DatoTid_Tekst"));
    ark.settCelle(n, KolonneC, co2(poster));
}

QString tall(int n) { return QString::number(n); }

// A cell whose text is empty: no value, or an empty text.
bool harTekst(const xlsx::Verdi& v)
{
    const auto* tekst = std::get_if<QString>(&v);
    return !std::holds_alternative<std::monostate>(v) && !(tekst && tekst->isEmpty());
}

int16_t minutter(Kontekst& k, const dialogs::Sporsmal& sporsmal)
{
    return vb::heltall16(k.dialogs.inndata(sporsmal, QStringLiteral("25")));
}

}  // namespace

void LagIntegreringsfil(Kontekst& k, const QString& Filnavn, db::Recordset& PosterFor, db::Recordset& PosterEtter,
                        int16_t SyklusNr, const vb::Dato& StartTid, int16_t SisteSyklus, Udekket& udekket,
                        Bakgrunnslagring& lagring)
{
    if (!files::FilFinnes(k.sti(MalEnkel))) {
        k.dialogs.info(QStringLiteral("Du mangler malfila for enkeltsyklusene"));
        return;
    }
    if (SyklusNr == 1 && !files::FilFinnes(k.sti(MalAlle))) {
        k.dialogs.info(QStringLiteral("Du mangler malfila for alle"));
        return;
    }
    auto integrering = xlsx::apne(k.sti(MalEnkel));
    xlsx::Arbeidsark& ark = integrering->ark(1);

    Fremdrift fremdrift(k.vindu, SyklusNr);
    int16_t rad = 3;
    ark.settCelle(2, KolonneK, startForskyvning(StartTid, PosterFor.dato("DatoTid")));

    float startniva = 0.0f;
    for (; !PosterFor.eof(); PosterFor.moveNext()) {
        const int n = rad;
        skrivRad(ark, n, PosterFor);
        if (n == 3) {
            ark.settFormel(QStringLiteral("F3"), QStringLiteral("= abs((D3-D3)/2)"));
            if (PosterFor.erNull("F"))
                throw vb::Feil(QStringLiteral("Syklus %1 har ingen CO2-verdi i første rad (startnivået)")
                                   .arg(SyklusNr)
                                   .toStdString());
            startniva = vb::enkel(PosterFor.tall("F"));
        } else {
            ark.settFormel(QLatin1Char('F') + tall(n), QStringLiteral("= abs((D") + tall(n) + QStringLiteral("-D") +
                                                           tall(n - 1) + QStringLiteral(")/2)"));
        }
        rad = vb::pluss16(rad);
        fremdrift.rad(rad);
    }
    for (; !PosterEtter.eof(); PosterEtter.moveNext()) {
        const int n = rad;
        skrivRad(ark, n, PosterEtter);
        ark.settFormel(QLatin1Char('F') + tall(n), QStringLiteral("= abs((D") + tall(n) + QStringLiteral(" -D") +
                                                       tall(n + 1) + QStringLiteral(")/2)"));
        rad = vb::pluss16(rad);
        fremdrift.rad(rad);
        // An empty value never cuts; the value is compared in the start level's single precision.
        if (!PosterEtter.erNull("F") && vb::enkel(PosterEtter.tall("F")) < startniva) {
            ark.settCelle(n, KolonneE, 0.0);
            break;
        }
    }
    const int dekket = ark.fyllNed();  // the area elements of column G reach every written row
    ark.settFormel(QStringLiteral("L17"), QStringLiteral("= sum(G3:G") + tall(rad - 1) + QLatin1Char(')'));
    // The area is computed, and the template's rows below the cycle emptied, while the last
    // cycle's workbooks are still being saved.
    const xlsx::Verdi areal = ark.celle(17, KolonneL);
    for (int r = rad; r <= SisteRad; ++r) ark.tomRad(r);
    // The summary as the last cycle's saves left it: the template carries the areas on.
    lagring.vent();
    auto samle = xlsx::apne(k.sti(MalAlle));
    xlsx::Arbeidsark& samleark = samle->ark(1);
    if (SyklusNr == 1)
        for (int r = 2; harTekst(samleark.celle(r, KolonneB)); ++r) samleark.settCelle(r, KolonneB, xlsx::Verdi{});
    samleark.settCelle(SyklusNr + 1, KolonneB, areal);

    const int samleDekket = samleark.fyllNed();
    const QString fil = Filnavn + QLatin1Char('_') + tall(SyklusNr) + QStringLiteral(".xlsx");
    lagring.lagreSom(std::move(integrering), utFil(k, fil));
    udekket.merk(SyklusNr, rad - 1, dekket, fil);
    // Saved only once this cycle's workbook is on the disk, so that the template never holds an
    // area whose workbook was not written; meanwhile the next cycle is filled.
    const QString samleFil = SyklusNr < SisteSyklus
                                 ? MalAlle
                                 : Filnavn + QStringLiteral("_Samlefil_") + tall(SyklusNr) + QStringLiteral(".xlsx");
    lagring.lagreDeretter(std::move(samle), SyklusNr < SisteSyklus ? k.sti(MalAlle) : utFil(k, samleFil));
    udekket.merk(SyklusNr, SyklusNr + 1, samleDekket, samleFil);
}

Utfall Command12_Click(Kontekst& k)
{
    Udekket udekket;
    Bakgrunnslagring lagring;
    try {
        const auto [snu, utfall] = forberedEksport(k, SporEnkeltfiler);
        if (!snu) return utfall;
        const files::SnuPunkter& liste = *snu;
        const QString prefiks = sporPrefiks(k);
        if (prefiks.isEmpty()) return Utfall::Ferdig;

        const dialogs::Opptatt opptatt(k.vindu);
        const vb::Dato start = dataStart(k);
        const int16_t foer = minutter(k, SporMinutterFor);
        const int16_t etter = minutter(k, SporMinutterEtter);
        k.vindu.behandleHendelser();

        const int16_t siste = vb::heltall16(k.vindu.sisteSyklus());
        for (int16_t syklus = 1; syklus <= siste; syklus = vb::pluss16(syklus)) {
            if (vb::tall(k.vindu.forsteSyklus()) > syklus) continue;
            const vb::Dato snupunkt = liste.syklus(syklus);
            auto posterFor = store::vinduRader(k.tilkobling, true, snupunkt.leggTilMinutter(-foer), snupunkt);
            auto posterEtter = store::vinduRader(k.tilkobling, true, snupunkt, snupunkt.leggTilMinutter(etter));
            if (!posterFor.eof())
                LagIntegreringsfil(k, prefiks, posterFor, posterEtter, syklus, start,
                                   vb::heltall16(k.vindu.sisteSyklus()), udekket, lagring);
        }
        lagring.vent();
    } catch (const std::exception& e) {
        return lagring.stoppet(e, [&k](const std::exception& f) {
            k.dialogs.info(FeilMelding + QStringLiteral("\n\n") + QString::fromStdString(f.what()));
            return Utfall::Avvist;
        });
    }
    k.dialogs.info(QStringLiteral("Eksporten er ferdig"));
    udekket.vis(k.dialogs);
    return Utfall::Ferdig;
}

}  // namespace exports
