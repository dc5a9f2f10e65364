#include "app/Form1.h"

#include "analysis/AutomatiskSoking.h"
#include "analysis/Graf.h"
#include "analysis/Sykluser.h"
#include "analysis/Syklusvinduer.h"
#include "app/FrmGraph.h"
#include "export/Eksport.h"
#include "export/Enkeltgraf.h"
#include "export/Graftittel.h"
#include "export/Integrering.h"
#include "export/Malprove.h"
#include "export/Samlefil.h"
#include "files/Oppsett.h"
#include "files/Tekstfil.h"
#include "platform/db/Nokkel.h"
#include "store/Import.h"
#include "store/Maledata.h"
#include "store/Nydatabase.h"
#include "store/Setninger.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>

namespace {

// Positions in the window are given in twips: 15 twips to a pixel at 96 dpi.
double skala()
{
    const QScreen* skjerm = QGuiApplication::primaryScreen();
    return skjerm ? skjerm->logicalDotsPerInch() / 96.0 : 1.0;
}

int px(int twips) { return static_cast<int>(twips / 15.0 * skala() + 0.5); }

template <typename W>
W* plasser(W* w, const char* navn, int venstre, int topp, int bredde, int hoyde)
{
    w->setObjectName(QLatin1String(navn));
    w->setGeometry(px(venstre), px(topp), px(bredde), px(hoyde));
    return w;
}

QGroupBox* ramme(QWidget* eier, const char* navn, int venstre, int topp, int bredde, int hoyde)
{
    return plasser(new QGroupBox(eier), navn, venstre, topp, bredde, hoyde);
}

QPushButton* knapp(QWidget* eier, const char* navn, const QString& tekst, int venstre, int topp, int bredde,
                   const QString& tips = {})
{
    auto* k = plasser(new QPushButton(tekst, eier), navn, venstre, topp, bredde, 375);
    k->setToolTip(tips);
    return k;
}

QLabel* etikett(QWidget* eier, const char* navn, const QString& tekst, int venstre, int topp, int bredde)
{
    return plasser(new QLabel(tekst, eier), navn, venstre, topp, bredde, 255);
}

QLineEdit* settingBoks(QWidget* eier, const char* navn, const QString& tekst, int venstre, int topp, int bredde)
{
    auto* t = plasser(new QLineEdit(tekst, eier), navn, venstre, topp, bredde, 285);
    t->setAlignment(Qt::AlignCenter);
    return t;
}

}  // namespace

namespace app {

Form1::Form1(const QString& mappe, dialogs::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), k_{mappe, Versjon, tilkobling_, *this, dialogs}
{
    db::forberedNokkel(k_.sti(store::DataFil));  // derived while the controls are built
    byggKontroller();
    Form_Load();
}

Form1::~Form1()
{
    while (opptatt_ > 0) settOpptatt(false);
}

void Form1::byggKontroller()
{
    setObjectName(QStringLiteral("Form1"));
    setFont(QFont(QStringLiteral("MS Sans Serif"), 8));
    setFixedSize(px(9975), px(5310));

    auto* Frame3 = ramme(this, "Frame3", 120, 0, 3255, 5175);
    auto* Frame1 = ramme(this, "Frame1", 3480, 0, 6375, 4575);
    auto* Frame4 = ramme(this, "Frame4", 3480, 4560, 6375, 615);

    // Work steps, top to bottom.
    auto* Command2 = knapp(Frame3, "Command2", QStringLiteral("1.  &Velg og importer fil"), 120, 240, 3000,
                           QStringLiteral("Orginal rådata-fil (.csv)"));
    auto* Frame2 = ramme(Frame3, "Frame2", 120, 600, 3000, 615);
    Frame2->setToolTip(QStringLiteral("Velg den kolonnen med massetallet du ønsker å søke på"));
    etikett(Frame2, "Label8", QStringLiteral("2.  Kolonne"), 120, 250, 1080);
    Combo1 = plasser(new QComboBox(Frame2), "Combo1", 1200, 200, 1680, 315);
    Combo1->setEditable(false);
    auto* Command8 = knapp(Frame3, "Command8", QStringLiteral("3.  Graf (viser hele fila)"), 120, 1320, 3000,
                           QStringLiteral("Lager en graf (oversikt) over hele fila"));
    auto* Command7 =
        knapp(Frame3, "Command7", QStringLiteral("4.  Finn antall sykluser"), 120, 1800, 3000,
              QStringLiteral("Finner antall sykluser og tiden mellom dem, samt  startpkt. for første syklus"));
    Option1 = plasser(new QRadioButton(QStringLiteral("Adsorpsjon"), Frame3), "Option1", 240, 2325, 1335, 255);
    Option1->setToolTip(QStringLiteral("Minimum"));
    Option2 = plasser(new QRadioButton(QStringLiteral("Desorpsjon"), Frame3), "Option2", 1680, 2325, 1335, 255);
    Option2->setToolTip(QStringLiteral("Maximum"));
    auto* Command4 =
        knapp(Frame3, "Command4", QStringLiteral("6.  Rediger samlegraf"), 120, 2760, 3000,
              QStringLiteral("Skriv inn ønsket tekst i graf. Exel-arket må lagres med data synlig (ikke grafen)"));
    auto* Command5 = knapp(Frame3, "Command5", QStringLiteral("7.  Lag samlegraf"), 120, 3240, 3000,
                           QStringLiteral("Alle syklusene legges opp-på hverandre med tilnærmetlikt 0-punkt"));
    auto* Command9 =
        knapp(Frame3, "Command9", QStringLiteral("8.  Rediger enkeltgraf"), 120, 3720, 3000,
              QStringLiteral("Skriv inn ønsket tekst. Exel-arket må lagres med data synlig (ikke grafen)."));
    auto* Command3 = knapp(Frame3, "Command3", QStringLiteral("9.  Lag enkeltgraf"), 120, 4200, 3000,
                           QStringLiteral("Lager engraf for hver enkelt syklus"));
    auto* Command12 = knapp(Frame3, "Command12", QStringLiteral("10. Redigert CO2 kolonne"), 120, 4680, 3000,
                            QStringLiteral("Lager engraf for hver enkelt syklus"));
    Command12->hide();

    // Settings and progress.
    // The setting boxes in the order of Oppsett.txt, each with its label (Text6 shares Text4's).
    const struct {
        const char* etikett;
        int etikettTopp, topp, venstre, bredde;
    } plass[] = {{"Label6", 360, 270, 5040, 375},    {nullptr, 0, 270, 5760, 375},
                 {"Label7", 720, 720, 5040, 1095},   {"Label5", 1080, 1080, 5040, 1095},
                 {"Label1", 1440, 1440, 5040, 1095}, {"Label2", 1800, 1800, 5040, 1095}};
    for (size_t i = 0; i < bokser_.size(); ++i) {
        const dialogs::Innstilling& innstilling = dialogs::Innstillinger[i];
        const auto& p = plass[i];
        if (p.etikett) etikett(Frame1, p.etikett, QString::fromUtf8(innstilling.etikett), 240, p.etikettTopp, 4500);
        bokser_[static_cast<size_t>(innstilling.boks)] =
            settingBoks(Frame1, innstilling.navn, QLatin1String(innstilling.standard), p.venstre, p.topp, p.bredde);
    }
    boks(dialogs::Boks::Text5)->setEnabled(false);
    for (int i = 0; i < 6; ++i) {
        auto* linje = new QFrame(Frame1);
        linje->setFrameShape(QFrame::HLine);
        linje->setFrameShadow(QFrame::Sunken);
        plasser(linje, QStringLiteral("Line%1").arg(i + 1).toLatin1().constData(), 120, i < 5 ? 645 + 360 * i : 2640,
                6135, 30);
    }
    auto* Command6 = knapp(Frame1, "Command6", QStringLiteral("Test"), 240, 2160, 1215);
    Command6->hide();
    etikett(Frame1, "Label3", QStringLiteral("Antall behandlede linjer:"), 240, 2280, 2520);
    Label4 = etikett(Frame1, "Label4", QString(), 2880, 2280, 3255);
    QFont fet = Label4->font();
    fet.setBold(true);
    Label4->setFont(fet);
    plasser(new QListWidget(Frame1), "List1", 240, 2760, 5895, 1095)->hide();
    etikett(Frame1, "Label9", QStringLiteral("Samlefil:"), 240, 3960, 1080)->hide();
    etikett(Frame1, "Label11", QString(), 1320, 3960, 4815);
    etikett(Frame1, "Label10", QStringLiteral("Syklusfil:"), 240, 4200, 1080)->hide();
    etikett(Frame1, "Label12", QString(), 1320, 4200, 4815);

    // About and Exit.
    auto* Command10 = knapp(Frame4, "Command10", QStringLiteral("Om programmet"), 120, 160, 1935);
    auto* Command11 = knapp(Frame4, "Command11", QStringLiteral("Automatisk søking"), 2220, 160, 1935);
    Command11->hide();
    auto* Command1 = knapp(Frame4, "Command1", QStringLiteral("&Exit"), 4320, 160, 1935);
    Command1->setStyleSheet(QStringLiteral("background-color: rgb(255, 192, 192);"));

    koble(Command1, &Form1::Command1_Click);
    koble(Command10, &Form1::Command10_Click);
    koble(Command7, &Form1::Command7_Click);
    koble(Command8, &Form1::Command8_Click);
    koble(Command11, &Form1::Command11_Click);
    koble(Command5, &Form1::Command5_Click);
    koble(Command12, &Form1::Command12_Click);
    koble(Command3, &Form1::Command3_Click);
    koble(Command4, &Form1::Command4_Click);
    koble(Command6, &Form1::Command6_Click);
    koble(Command9, &Form1::Command9_Click);
    koble(Command2, &Form1::Command2_Click);

    connect(Combo1, &QComboBox::currentIndexChanged, this, &Form1::Combo1_Click);
    connect(Option1, &QRadioButton::toggled, this, &Form1::Option1_Click);
    connect(Option2, &QRadioButton::toggled, this, &Form1::Option2_Click);
}

void Form1::koble(QPushButton* knapp, Utfall (Form1::*handler)())
{
    connect(knapp, &QPushButton::clicked, this, [this, handler] { (this->*handler)(); });
}

void Form1::Form_Load()
{
    ryddOpp();
    apneDatabase();
    files::LesKolonner(k_);
    store::VisAntallPoster(k_);
    meldSkade();
    files::LesOppsett(k_);
    Option2->setChecked(true);
    boks(dialogs::Boks::Text1)->setEnabled(false);
}

// Removes what a killed run left: temporary files beside the program's files and workbooks,
// and a half-built database of an import (the user is told; Data.mdb is the one before it).
void Form1::ryddOpp()
{
    // An import killed while it put its files in place finishes with its own temporary files.
    if (auto notis = store::ryddAvbruttImport(k_))
        k_.dialogs.melding(*notis, dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
    files::RyddForlatteTmp(k_.mappe);
    files::RyddForlatteTmp(k_.sti(exports::UtMappe));
}

// Opens Data.mdb. A missing one is made anew from Template.mdb; one that cannot be opened
// is left as it is and the user is told, so that nothing is overwritten unasked.
void Form1::apneDatabase()
{
    const QString data = k_.sti(store::DataFil);
    const QString mal = k_.sti(store::MalFil);
    if (!QFile::exists(data)) {
        try {
            store::lagFraMal(mal, data);
        } catch (const db::DbFeil& e) {
            k_.dialogs.melding(QStringLiteral("Databasen %1 finnes ikke, og den kan ikke lages fra %2 (%3). Kontroller "
                                              "programmappen.")
                                   .arg(data, mal, QString::fromStdString(e.what())),
                               dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
            return;
        }
        k_.dialogs.melding(
            QStringLiteral("Databasen %1 fantes ikke. En ny, tom database er laget fra %2.").arg(data, mal),
            dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
    }
    try {
        store::apneMaledata(tilkobling_, data);
    } catch (const db::DbFeil& e) {
        k_.dialogs.melding(
            QString::fromStdString(e.what()) +
                QStringLiteral(".\nFila er ikke endret. En ny import erstatter den med en tom database."),
            dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
    }
}

// Tells the user once when a statement has found Data.mdb damaged: the measurements cannot be
// trusted until the raw-data file is imported again.
void Form1::meldSkade()
{
    const QString& skade = tilkobling_.skadet();
    if (skade.isEmpty() || skade == meldtSkade_) return;
    meldtSkade_ = skade;
    k_.dialogs.melding(QStringLiteral("Databasen %1 er skadet (%2). Målingene i den kan ikke brukes. Importer "
                                      "rådatafila på nytt.")
                           .arg(tilkobling_.fil(), skade),
                       dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
}

void Form1::Combo1_Click()
{
    if (Combo1->count() > 0 && Combo1->currentText().trimmed().isEmpty()) Combo1->setCurrentIndex(0);
}

void Form1::Option1_Click()
{
    if (Option1->isChecked()) boks(dialogs::Boks::Text1)->setEnabled(true);
}

void Form1::Option2_Click()
{
    if (Option2->isChecked()) boks(dialogs::Boks::Text1)->setEnabled(false);
}

bool Form1::lagreOppsett()
{
    try {
        files::SkrivTilFil(k_.sti(files::OppsettFil), files::oppsettLinje(*this));
        return true;
    } catch (const files::FilFeil& e) {
        k_.dialogs.melding(QString::fromStdString(e.what()) + QStringLiteral("\nInnstillingene ble ikke lagret."),
                           dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
        return false;
    }
}

Utfall Form1::Command1_Click()
{
    const bool lagret = lagreOppsett();
    avslutter_ = true;
    close();
    QCoreApplication::quit();
    return lagret ? Utfall::Ferdig : Utfall::Avvist;
}

Utfall Form1::Command2_Click() { return kjor(store::Command2_Click); }

Utfall Form1::Command10_Click()
{
    k_.dialogs.melding(QStringLiteral("Tolvik er utviklet av Tolvik-utviklerne.\n"
                                      "Spørsmål og kommentarer sendes til tolvik@example.org."),
                       dialogs::Knapper::Ok, dialogs::Ikon::Informasjon);
    return Utfall::Ferdig;
}

Utfall Form1::Command7_Click() { return kjor(analysis::Command7_Click); }
Utfall Form1::Command8_Click() { return kjor(analysis::Command8_Click); }
Utfall Form1::Command11_Click() { return kjor(analysis::Command11_Click); }
Utfall Form1::Command5_Click() { return kjor(exports::Command5_Click); }
Utfall Form1::Command12_Click() { return kjor(exports::Command12_Click); }
Utfall Form1::Command3_Click() { return kjor(exports::Command3_Click); }
Utfall Form1::Command4_Click() { return kjor(exports::Command4_Click); }
Utfall Form1::Command6_Click() { return kjor(exports::Command6_Click); }
Utfall Form1::Command9_Click() { return kjor(exports::Command9_Click); }

Utfall Form1::kjor(const std::function<Utfall(Kontekst&)>& kommando)
{
    if (kjorer_) return Utfall::Avvist;
    kjorer_ = true;
    Utfall utfall = Utfall::Avvist;
    try {
        utfall = kommando(k_);
    } catch (const dialogs::Avbrutt&) {
        utfall = Utfall::Avvist;
    } catch (...) {
        kjorer_ = false;
        throw;
    }
    kjorer_ = false;
    meldSkade();
    return utfall;
}

void Form1::velgAdsorpsjon(bool adsorpsjon) { (adsorpsjon ? Option1 : Option2)->setChecked(true); }

void Form1::closeEvent(QCloseEvent* e)
{
    avslutter_ = true;  // a command still running stops at its next pause
    e->accept();
}

QLineEdit* Form1::boks(dialogs::Boks b) const { return bokser_[static_cast<size_t>(b)]; }

QString Form1::tekst(dialogs::Boks b) const { return boks(b)->text(); }
void Form1::settTekst(dialogs::Boks b, const QString& tekst) { boks(b)->setText(tekst); }

QStringList Form1::kolonner() const
{
    QStringList ut;
    for (int i = 0; i < Combo1->count(); ++i) ut << Combo1->itemText(i);
    return ut;
}

void Form1::settKolonner(const QStringList& oppforinger)
{
    const QSignalBlocker stille(Combo1);
    Combo1->clear();
    Combo1->addItems(oppforinger);
    Combo1->setCurrentIndex(-1);
}

int Form1::valgtKolonne() const { return Combo1->currentIndex(); }
void Form1::velgKolonne(int indeks) { Combo1->setCurrentIndex(indeks); }
bool Form1::adsorpsjon() const { return Option1->isChecked(); }
void Form1::settLabel4(const QString& tekst) { Label4->setText(tekst); }
QString Form1::tittel() const { return windowTitle(); }
void Form1::settTittel(const QString& tekst) { setWindowTitle(tekst); }

void Form1::settOpptatt(bool opptatt)
{
    if (opptatt) {
        ++opptatt_;
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (opptatt_ > 0) {
        --opptatt_;
        QApplication::restoreOverrideCursor();
    }
}

void Form1::visGraf(const dialogs::Graf& graf)
{
    FrmGraph frm_Graph(graf);
    frm_Graph.settSykluskilde([this] { return analysis::lesSyklusbilde(k_); });
    if (grafVisning_) {
        grafVisning_(frm_Graph);
    } else {
        frm_Graph.setParent(this, frm_Graph.windowFlags());
        // The busy pointer stays over the main window only; the graph window is for the user to handle.
        if (opptatt_ > 0) QApplication::setOverrideCursor(Qt::ArrowCursor);
        frm_Graph.exec();
        if (opptatt_ > 0) QApplication::restoreOverrideCursor();
    }
}

void Form1::behandleHendelser()
{
    QCoreApplication::processEvents();
    if (avslutter_) throw dialogs::Avbrutt{};
}

}  // namespace app
