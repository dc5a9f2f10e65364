#include "analysis/Sykluser.h"
#include "felles/MedVindu.h"
#include "store/Setninger.h"

namespace {

const QString Feil = u"Det oppstod en feil i denne rutinen"_s, SnuPunkter = u"SnuPunkter.txt"_s;

// Data start 14:00:00. With a search start one minute later and the threshold 1:
// group A 14:01:10-14:01:40 in 10-second steps (the value 1 at 14:01:45 is no hit),
// group B the lone row 14:02:05, group C 14:03:00-14:03:05, then 11 seconds on the last group 14:03:16.
// The row at exactly 14:01:00 holds the smallest value but lies on the search start.
const std::vector<test::Rad> Sykluser = {{0, 5},      {60, 0.01},  {70, 0.3},  {80, 0.2},  {90, 0.1},
                                         {100, 0.05}, {105, 1.0},  {110, 4},   {125, 0.4}, {150, 4},
                                         {180, 0.2},  {185, 0.15}, {196, 0.1}, {200, 4}};

using Syklusfinning = test::MedVindu;

TEST_F(Syklusfinning, GrupperGirSnuPunkterOgJaSetterValgene)
{
    fyll(Sykluser);
    vindu();
    const QString Tre = u"Det ble funnet 3 sykluser. Den første syklusen med en verdi "_s;
    const QByteArray Snu = "!00:00:00!23.11.2012 14:03:00\r\n";
    const struct {
        bool ads;
        QString terskel;
        bool ja;
        QString melding;
        QByteArray snu;
        QString bokser;
    } tilfeller[] = {
        // A: minimum of its span without its last row (0,05 at 14:01:40 lies outside); B: empty span, day zero;
        // C ends at 14:03:05 because 11 seconds follow it; the last group gets nothing.
        {true, u"1"_s, true,
         Tre +
             u"mindre enn 1 er ved tidspunktet 23.11.2012 14:01:10 (1 minutter etter oppstart).\nIntervallet "
             "mellom den første og andre syklusen er ca. 1 minutter. Vil du sette inn disse verdiene som valg i oppsettet?"_s,
         "23.11.2012 14:01:30" + Snu, u"3|-14|1"_s},
        // Desorpsjon takes the largest value; No leaves the settings.
        {false, u"1,0"_s, false, Tre + u"større enn 1 er"_s, "23.11.2012 14:01:10" + Snu, u"3|-14|1"_s},
        // Hits 14:01:40 alone: one group, nothing closed, an empty line in the file.
        {true, u"0.07"_s, true, u"Det ble funnet 0 sykluser. "_s, "\r\n", u"0|-14|0"_s},
        // Hits 14:01:30, 14:01:40 and 14:03:16: two groups, one turning point, the interval runs
        // from the first group's last row to the second group's first (14:01 to 14:03).
        {true, u"0.12"_s, true, u"Det ble funnet 1 sykluser. "_s, "23.11.2012 14:01:30\r\n", u"1|-14|2"_s},
    };
    // The same answers whether or not the store may read ID order from the time index.
    db::Database& k = f->kontekst().tilkobling;
    for (const bool tidFolgerId : {false, true}) {
        k.settRadorden(tidFolgerId, false);
        for (const auto& t : tilfeller) {
            f->velgAdsorpsjon(t.ads);
            svar(u"1"_s, t.terskel, t.ja ? dialogs::Svar::Ja : dialogs::Svar::Nei);
            EXPECT_EQ(f->Command7_Click(), Utfall::Ferdig) << t.terskel;
            EXPECT_TRUE(dialogs.meldinger().last().startsWith(t.melding)) << dialogs.meldinger().last();
            EXPECT_EQ(mappe.les(SnuPunkter), t.snu) << t.terskel << tidFolgerId;
            EXPECT_EQ(bokser().join('|'), t.bokser) << t.terskel;
        }
    }
    // The row on the search start second is not searched: the minimum is 0,05, not 0,01.
    const auto& d = dialogs.dialoger();
    EXPECT_EQ(d[1].tekst + '|' + d[1].tittel + '|' + d[1].forslag,
              u"Den minste verdien er 0,05. Oppgi søkeverdien som skal brukes under:|Minste verdi|5"_s);
    EXPECT_EQ(d[2].ikon, dialogs::Ikon::Sporsmal);

    // A database that cannot take the index is searched all the same.
    k.utforSqlite("DROP INDEX DataLinjer_Tid_C; PRAGMA query_only = 1");
    svar(u"1"_s, u"1"_s, dialogs::Svar::Nei);
    EXPECT_EQ(f->Command7_Click(), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(SnuPunkter), tilfeller[0].snu);
    k.utforSqlite("PRAGMA query_only = 0");
    svar(u"1"_s, u"1"_s, dialogs::Svar::Nei);
    EXPECT_EQ(f->Command7_Click(), Utfall::Ferdig);
    EXPECT_EQ(mappe.les(u"SokStart.txt"_s), "23.11.2012 14:01:00!1\r\n");  // the search start and threshold

    // The command built the column's time index, and every statement of the search reads that
    // index alone, in its order, without a sort.
    const vb::Dato a = vb::Dato::fra(2012, 11, 23, 14, 1, 10), b = vb::Dato::fra(2012, 11, 23, 14, 1, 40);
    for (const QString& s :
         {store::setning::snuPunkt(a, b, true, u"C"_s), store::setning::snuPunkt(a, b, false, u"C"_s),
          store::setning::minimum(u"C"_s, a), store::setning::treff(u"C"_s, u"0.5"_s, a)}) {
        for (auto p = k.spor(u"EXPLAIN QUERY PLAN "_s + s); !p.eof(); p.moveNext()) {
            const QString trinn = p.tekst("detail");
            EXPECT_TRUE(trinn.startsWith(u"EXECUTE"_s) ||
                        trinn.contains(u"USING COVERING INDEX DataLinjer_Tid_C (DatoTid>"_s))
                << trinn << s;
        }
    }
}

TEST_F(Syklusfinning, TomeDataAvbruddOgUgyldigeSvar)
{
    dialogs.svar(u"50"_s);
    EXPECT_EQ(vindu().Command7_Click(), Utfall::Avvist);  // an empty table ends silently
    EXPECT_TRUE(dialogs.dialoger().size() == 1 && dialogs.meldinger().isEmpty());
    fyll(Sykluser);
    // Every refusal says so with an information box; sletter: a SnuPunkter.txt from an earlier
    // run, under any case of its name, is gone.
    auto avvist = [&](int kolonne, std::vector<dialogs::SkriptDialogs::Svaret> svar, const char* hva,
                      const QString& melding = Feil, bool sletter = false) {
        const QString navn = melding == Feil ? SnuPunkter : u"Snupunkter.txt"_s;
        if (sletter) {
            mappe.skriv(navn, "01.01.2012\r\n");
            mappe.skriv(u"SokStart.txt"_s, "01.01.2012!1\r\n");
        }
        f->velgKolonne(kolonne);
        for (const auto& s : svar) dialogs.svar(s);
        EXPECT_EQ(f->Command7_Click(), Utfall::Avvist) << hva;
        EXPECT_EQ(dialogs.dialoger().back().tekst, melding) << hva;
        EXPECT_EQ(dialogs.dialoger().back().ikon, dialogs::Ikon::Informasjon) << hva;
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << hva;
        EXPECT_FALSE(sletter && (QFile::exists(mappe.sti(navn)) || QFile::exists(mappe.sti(u"SokStart.txt"_s)))) << hva;
    };
    avvist(0, {u"1"_s, u"0.02"_s}, "no hit: 0,01 lies on the search start",
           u"Ingen datapunkter er lavere enn den angitte verdien (0,02)"_s, true);
    avvist(0, {u"1"_s, QString()}, "Cancel at the threshold", Feil, true);
    avvist(0, {QString()}, "Cancel at the start minutes");
    avvist(0, {u"en time"_s}, "start minutes no number");
    avvist(0, {u"1"_s, u"lav"_s}, "threshold no number");
    avvist(2, {u"1"_s}, "a letter the table does not have");
    avvist(3, {u"1"_s}, "an entry without a letter");
    avvist(0, {u"100000"_s, dialogs::SkriptDialogs::Forslag{}}, "no row after the search start");
    // Without a row after the search start the prompt shows no number and proposes nothing.
    const auto& uten = dialogs.dialoger()[dialogs.dialoger().size() - 2];
    EXPECT_EQ(uten.tekst + '|' + uten.forslag, u"Den minste verdien er . Oppgi søkeverdien som skal brukes under:|"_s);

    // A write-protected file of an earlier search is neither removed nor replaced: the search
    // ends with its error message before the threshold is asked for, and both files stay.
    for (const QString& navn : {SnuPunkter, u"SokStart.txt"_s}) {
        mappe.skriv(SnuPunkter, "01.01.2012\r\n");
        mappe.skriv(u"SokStart.txt"_s, "01.01.2012!1\r\n");
        QFile::setPermissions(mappe.sti(navn), QFile::ReadOwner);
        avvist(0, {u"1"_s}, "write-protected");
        EXPECT_EQ(mappe.les(SnuPunkter) + mappe.les(u"SokStart.txt"_s), "01.01.2012\r\n01.01.2012!1\r\n");
        EXPECT_EQ(dialogs.grunner().last(),
                  u"Kan ikke slette fila "_s + mappe.sti(navn) + u": fila er skrivebeskyttet"_s);
        QFile::setPermissions(mappe.sti(navn), QFile::ReadOwner | QFile::WriteOwner);
    }

    QFile::remove(mappe.sti(u"Kolonner.txt"_s));
    EXPECT_EQ(vindu({}).Command7_Click(), Utfall::Avvist);
    EXPECT_EQ(dialogs.meldinger().last(), analysis::IngenData);
}

}  // namespace
