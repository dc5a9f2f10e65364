#include "app/Batch.h"

#include "analysis/AutomatiskSoking.h"
#include "analysis/Sykluser.h"
#include "analysis/Syklusvinduer.h"
#include "app/Form1.h"
#include "app/FrmGraph.h"
#include "app/Mappelaas.h"
#include "app/Programmappe.h"
#include "export/Eksport.h"
#include "export/Graftittel.h"
#include "export/Integrering.h"
#include "export/Samlefil.h"
#include "files/Tekstfil.h"
#include "platform/dialogs/SkriptDialogs.h"
#include "store/Import.h"

#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <unistd.h>

namespace app {

namespace {

using dialogs::SkriptDialogs;

struct BrukFeil {
    QString tekst;
};

void skriv(const QString& tekst) { std::fputs(tekst.toUtf8().constData(), stdout); }

// The arguments after the command name.
class Argumenter {
public:
    explicit Argumenter(QStringList a) : a_(std::move(a)) {}
    bool flagg(const QString& navn) { return a_.removeOne(navn); }
    std::optional<QString> verdi(const QString& navn)
    {
        const qsizetype i = a_.indexOf(navn);
        if (i < 0) return std::nullopt;
        if (i + 1 >= a_.size()) throw BrukFeil{navn + QStringLiteral(" mangler en verdi")};
        const QString v = a_[i + 1];
        a_.remove(i, 2);
        return v;
    }
    QString paakrevd(const QString& navn)
    {
        if (auto v = verdi(navn)) return *v;
        throw BrukFeil{navn + QStringLiteral(" må oppgis")};
    }
    QString posisjon(const QString& hva)
    {
        if (a_.isEmpty() || a_.first().startsWith(QStringLiteral("--")))
            throw BrukFeil{hva + QStringLiteral(" mangler")};
        return a_.takeFirst();
    }
    void ferdig() const
    {
        if (!a_.isEmpty()) throw BrukFeil{QStringLiteral("Ukjent argument: ") + a_.first()};
    }

private:
    QStringList a_;
};

using Kommando = std::function<Utfall(Form1&, Argumenter&, SkriptDialogs&)>;

Utfall status(Form1& f, Argumenter& a, SkriptDialogs&)
{
    a.ferdig();
    QString ut = f.tittel() + QLatin1Char('\n');
    for (const dialogs::Innstilling& i : dialogs::Innstillinger)
        ut += QLatin1String(i.navn) + QLatin1Char('=') + f.tekst(i.boks) + QLatin1Char('\n');
    const QStringList kolonner = f.kolonner();
    for (int i = 0; i < kolonner.size(); ++i)
        ut += (i == f.valgtKolonne() ? QStringLiteral("* ") : QStringLiteral("  ")) + kolonner[i] + QLatin1Char('\n');
    ut += f.adsorpsjon() ? QStringLiteral("Adsorpsjon\n") : QStringLiteral("Desorpsjon\n");
    skriv(ut);
    return f.databaseSkadet() ? Utfall::Avvist : Utfall::Ferdig;
}

// A value argument, or the proposed text of the input box when it is left out.
SkriptDialogs::Svaret ellerForslag(const std::optional<QString>& v)
{
    if (v) return *v;
    return SkriptDialogs::Forslag{};
}

// Answers the search-start question, the command's own second question and the final one.
Utfall sok(Form1& f, Argumenter& a, SkriptDialogs& d, const QString& andreValg, const dialogs::Sporsmal& andre,
           Utfall (Form1::*kommando)())
{
    d.svar(analysis::SporStart, a.paakrevd(QStringLiteral("--start")));
    d.svar(andre, ellerForslag(a.verdi(andreValg)));
    d.svar(analysis::SporForslag, a.flagg(QStringLiteral("--apply")) ? dialogs::Svar::Ja : dialogs::Svar::Nei);
    a.ferdig();
    return (f.*kommando)();
}

Utfall finnSykluser(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    return sok(f, a, d, QStringLiteral("--threshold"), analysis::SporTerskel, &Form1::Command7_Click);
}

Utfall automatiskSoking(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    return sok(f, a, d, QStringLiteral("--cycles"), analysis::SporAntallSykluser, &Form1::Command11_Click);
}

// A number argument in minutes, "," or "." as decimal separator.
std::optional<double> minutter(Argumenter& a, const QString& navn)
{
    const auto v = a.verdi(navn);
    if (!v) return std::nullopt;
    try {
        return vb::tall(*v);
    } catch (const vb::Feil&) {
        throw BrukFeil{navn + QStringLiteral(" venter et antall minutter, ikke ") + *v};
    }
}

Utfall graf(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    const std::optional<QString> png = a.verdi(QStringLiteral("--png")), pdf = a.verdi(QStringLiteral("--pdf"));
    const bool log = a.flagg(QStringLiteral("--log"));
    const bool sykluser = a.flagg(QStringLiteral("--cycles")), justert = a.flagg(QStringLiteral("--aligned"));
    const auto periode = a.verdi(QStringLiteral("--period"));
    const auto fra = minutter(a, QStringLiteral("--from")), til = minutter(a, QStringLiteral("--to"));
    a.ferdig();
    if (png && pdf) throw BrukFeil{QStringLiteral("--png eller --pdf, ikke begge")};
    if ((justert || periode) && !sykluser) throw BrukFeil{QStringLiteral("--aligned og --period gjelder --cycles")};
    if (fra && til && *til <= *fra) throw BrukFeil{QStringLiteral("--to må være større enn --from")};
    if (sykluser) d.svar(analysis::SporPeriode, ellerForslag(periode));
    const std::optional<QString> bilde = png ? png : pdf;
    bool vist = true;
    f.settGrafVisning([&](app::FrmGraph& vindu) {
        skriv(QStringLiteral("Punkter i grafen: %1\n").arg(vindu.graf().verdier.size()));
        if (sykluser) {
            vist = vindu.visSykluser(true);
            if (!vist) return;
            skriv(QStringLiteral("Sykluser i visningen: %1\n").arg(vindu.syklusbilde()->sykluser.size()));
            vindu.settJustert(justert);
        }
        if (!bilde) return;
        vindu.settLogaritmisk(log);
        if (fra || til) vindu.visUtsnitt(fra, til);
        vindu.show();
        QCoreApplication::processEvents();
        vist = vindu.lagreBilde(*bilde);
        vindu.close();
        if (!vist) std::fprintf(stderr, "Kan ikke lagre bildet %s\n", bilde->toUtf8().constData());
    });
    const Utfall utfall = f.Command8_Click();
    return vist ? utfall : Utfall::Avvist;
}

// Yes to the export question, then the prefix; or No with --no. Takes the last arguments.
bool svarEksport(Argumenter& a, SkriptDialogs& d, const dialogs::Sporsmal& sporsmal)
{
    const bool nei = a.flagg(QStringLiteral("--no"));
    const auto prefiks = a.verdi(QStringLiteral("--prefix"));
    a.ferdig();
    if (nei) {
        d.svar(sporsmal, dialogs::Svar::Nei);
        return false;
    }
    if (!prefiks) throw BrukFeil{QStringLiteral("--prefix må oppgis")};
    d.svar(sporsmal, dialogs::Svar::Ja);
    d.svar(exports::SporPrefiks, *prefiks);
    return true;
}

Utfall exportCombined(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    const auto periode = a.verdi(QStringLiteral("--period"));
    if (svarEksport(a, d, exports::SporSamlefil)) d.svar(exports::SporPeriode, ellerForslag(periode));
    return f.Command5_Click();
}

Utfall integrate(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    const auto foer = a.verdi(QStringLiteral("--before"));
    const auto etter = a.verdi(QStringLiteral("--after"));
    if (svarEksport(a, d, exports::SporEnkeltfiler)) {
        d.svar(exports::SporMinutterFor, ellerForslag(foer));
        d.svar(exports::SporMinutterEtter, ellerForslag(etter));
    }
    return f.Command12_Click();
}

Utfall eksportEnkelt(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    svarEksport(a, d, exports::SporEnkeltfiler);
    return f.Command3_Click();
}

Utfall redigerTittel(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    const bool enkelt = a.flagg(QStringLiteral("--single"));
    const bool samle = a.flagg(QStringLiteral("--combined"));
    if (enkelt == samle) throw BrukFeil{QStringLiteral("Oppgi enten --single eller --combined")};
    d.svar(exports::SporTittel, a.paakrevd(QStringLiteral("--title")));
    a.ferdig();
    return enkelt ? f.Command9_Click() : f.Command4_Click();
}

Utfall provMal(Form1& f, Argumenter& a, SkriptDialogs&)
{
    a.ferdig();
    return f.Command6_Click();
}

Utfall import(Form1& f, Argumenter& a, SkriptDialogs& d)
{
    const bool nei = a.flagg(QStringLiteral("--no"));
    d.svar(store::SporFil, QFileInfo(a.posisjon(QStringLiteral("FILE"))).absoluteFilePath());
    a.ferdig();
    d.svar(store::SporImport, nei ? dialogs::Svar::Nei : dialogs::Svar::Ja);
    return f.Command2_Click();
}

const std::vector<std::pair<QString, Kommando>>& kommandoer()
{
    static const std::vector<std::pair<QString, Kommando>> alle = {
        {QStringLiteral("status"), status},
        {QStringLiteral("find-cycles"), finnSykluser},
        {QStringLiteral("auto-search"), automatiskSoking},
        {QStringLiteral("graph"), graf},
        {QStringLiteral("export-combined"), exportCombined},
        {QStringLiteral("integrate"), integrate},
        {QStringLiteral("export-single"), eksportEnkelt},
        {QStringLiteral("edit-title"), redigerTittel},
        {QStringLiteral("test"), provMal},
        {QStringLiteral("import"), import},
    };
    return alle;
}

const char* const Bruk = "Bruk: tolvik-batch [--folder DIR] [--set TextN=VALUE]... [--column LETTER]\n"
                         "                   [--adsorption | --desorption] [--save-settings] COMMAND [ARGS]\n";

// --help: the usage and the commands, on stdout.
int hjelp()
{
    QStringList navn;
    for (const auto& k : kommandoer()) navn << k.first;
    skriv(QLatin1String(Bruk) + QStringLiteral("Kommandoer: ") + navn.join(QStringLiteral(", ")) +
          QStringLiteral("\nValg: --help (denne teksten), --version\n"));
    return 0;
}

struct Globalt {
    std::optional<QString> mappe;
    QList<std::pair<dialogs::Boks, QString>> sett;
    std::optional<QString> kolonne;
    std::optional<bool> adsorpsjon;
    bool lagre = false;
    QString kommando;
    QStringList argumenter;
};

Globalt lesGlobalt(const QStringList& args)
{
    Globalt g;
    int i = 0;
    auto neste = [&](const QString& navn) {
        if (i + 1 >= args.size()) throw BrukFeil{navn + QStringLiteral(" mangler en verdi")};
        return args[++i];
    };
    for (; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == QLatin1String("--folder")) {
            g.mappe = neste(a);
        } else if (a == QLatin1String("--set")) {
            const QString v = neste(a);
            const qsizetype lik = v.indexOf(QLatin1Char('='));
            const auto boks =
                std::find_if(std::begin(dialogs::Innstillinger), std::end(dialogs::Innstillinger),
                             [&](const dialogs::Innstilling& i) { return v.left(lik) == QLatin1String(i.navn); });
            if (lik < 0 || boks == std::end(dialogs::Innstillinger))
                throw BrukFeil{QStringLiteral("--set venter TextN=VERDI med N 1 til 6, ikke ") + v};
            g.sett.append({boks->boks, v.mid(lik + 1)});
        } else if (a == QLatin1String("--column")) {
            g.kolonne = neste(a);
        } else if (a == QLatin1String("--adsorption") || a == QLatin1String("--desorption")) {
            const bool ads = a == QLatin1String("--adsorption");
            if (g.adsorpsjon && *g.adsorpsjon != ads)
                throw BrukFeil{QStringLiteral("--adsorption eller --desorption, ikke begge")};
            g.adsorpsjon = ads;
        } else if (a == QLatin1String("--save-settings")) {
            g.lagre = true;
        } else if (a == QLatin1String("--help") || a == QLatin1String("--version")) {
            g.kommando = a;
            return g;
        } else if (a.startsWith(QStringLiteral("--"))) {
            throw BrukFeil{QStringLiteral("Ukjent valg: ") + a};
        } else {
            g.kommando = a;
            g.argumenter = args.mid(i + 1);
            return g;
        }
    }
    throw BrukFeil{QStringLiteral("Ingen kommando oppgitt")};
}

void brukGlobalt(Form1& f, const Globalt& g)
{
    for (const auto& [boks, verdi] : g.sett) f.settTekst(boks, verdi);
    if (g.kolonne) {
        const QStringList kolonner = f.kolonner();
        qsizetype funnet = -1;
        for (qsizetype i = 0; i < kolonner.size() && funnet < 0; ++i)
            if (files::HentKode(kolonner[i]) == *g.kolonne) funnet = i;
        if (funnet < 0) throw BrukFeil{QStringLiteral("Ingen kolonne har bokstaven ") + *g.kolonne};
        f.velgKolonne(static_cast<int>(funnet));
    }
    if (g.adsorpsjon) f.velgAdsorpsjon(*g.adsorpsjon);
}

// Outside a desktop session Qt picks a private runtime folder of its own and says so on stderr;
// naming the same kind of folder beforehand keeps stderr for the program's own errors.
void sikreKjoremappe()
{
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    const std::filesystem::path mappe =
        std::filesystem::temp_directory_path() / ("runtime-tolvik-" + std::to_string(getuid()));
    std::error_code feil;
    std::filesystem::create_directory(mappe, feil);
    std::filesystem::permissions(mappe, std::filesystem::perms::owner_all, feil);
    if (!feil) qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(mappe.string()));
}

}  // namespace

int kjorBatch(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    sikreKjoremappe();
    QApplication app(argc, argv);
    QStringList args = QCoreApplication::arguments();
    args.removeFirst();

    SkriptDialogs dialogs;
    dialogs.vedMelding = [](const QString& tekst) {
        skriv(tekst + QStringLiteral("\n\n"));
        std::fflush(stdout);
    };
    dialogs.vedGrunn = [](const QString& grunn) { std::fprintf(stderr, "%s\n", grunn.toUtf8().constData()); };
    try {
        const Globalt g = lesGlobalt(args);
        if (g.kommando == QLatin1String("--help")) return hjelp();
        if (g.kommando == QLatin1String("--version")) {
            skriv(QStringLiteral("tolvik-batch %1\n").arg(Form1::Versjon));
            return 0;
        }
        const auto& alle = kommandoer();
        auto it = std::find_if(alle.begin(), alle.end(), [&](const auto& k) { return k.first == g.kommando; });
        if (it == alle.end()) throw BrukFeil{QStringLiteral("Ukjent kommando: ") + g.kommando};
        const QString mappe = g.mappe ? *g.mappe : programmappe(dialogs);
        const Mappelaas laas(mappe);
        if (!laas.ledig()) {
            dialogs.info(laas.melding());
            return 1;
        }
        Form1 vindu(mappe, dialogs);
        brukGlobalt(vindu, g);
        Argumenter a(g.argumenter);
        const Utfall utfall = it->second(vindu, a, dialogs);
        if (g.lagre && !vindu.lagreOppsett()) return 1;
        return utfall == Utfall::Ferdig ? 0 : 1;
    } catch (const BrukFeil& f) {
        std::fprintf(stderr, "%s\n%s", f.tekst.toUtf8().constData(), Bruk);
        return 2;
    } catch (const dialogs::UbesvartSporsmal& s) {
        std::fprintf(stderr, "Argumentene svarer ikke på spørsmålet: %s\n", s.sporsmal.toUtf8().constData());
        return 2;
    }
}

}  // namespace app
