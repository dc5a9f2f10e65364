// The main window: the numbered command buttons, the column chooser, the six
// setting boxes, the progress label, About and Exit. Each CommandN_Click
// forwards to its subsystem; one command runs at a time.
#pragma once

#include "platform/Kontekst.h"

#include <QWidget>
#include <array>
#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace app {

class FrmGraph;

class Form1 : public QWidget, public dialogs::Vindu {
    Q_OBJECT
public:
    inline static const QString Versjon = QStringLiteral("1.6 (06.01.2013)");

    // Runs Form_Load on the program folder; the dialogs live as long as the window.
    Form1(const QString& mappe, dialogs::Dialogs& dialogs, QWidget* parent = nullptr);
    ~Form1() override;

    // The command buttons; each returns how its command ended (for tolvik-batch).
    Utfall Command1_Click();   // &Exit
    Utfall Command2_Click();   // 1.  &Velg og importer fil
    Utfall Command10_Click();  // Om programmet
    Utfall Command7_Click();   // 4.  Finn antall sykluser
    Utfall Command8_Click();   // 3.  Graf (viser hele fila)
    Utfall Command11_Click();  // Automatisk søking
    Utfall Command5_Click();   // 7.  Lag samlegraf
    Utfall Command12_Click();  // 10. Redigert CO2 kolonne (hidden)
    Utfall Command3_Click();   // 9.  Lag enkeltgraf
    Utfall Command4_Click();   // 6.  Rediger samlegraf
    Utfall Command6_Click();   // Test (hidden)
    Utfall Command9_Click();   // 8.  Rediger enkeltgraf

    // Writes Oppsett.txt from the six boxes, as Exit does; false (after telling the user) when it cannot.
    bool lagreOppsett();
    // Whether a statement has found Data.mdb damaged since it was opened.
    bool databaseSkadet() const { return !tilkobling_.skadet().isEmpty(); }
    // Selects Option1 "Adsorpsjon" (true) or Option2 "Desorpsjon".
    void velgAdsorpsjon(bool adsorpsjon);
    Kontekst& kontekst() { return k_; }
    // Hands the graph window to vis instead of waiting for the user to close it (tolvik-batch
    // and tests); empty restores waiting.
    void settGrafVisning(std::function<void(FrmGraph&)> vis) { grafVisning_ = std::move(vis); }

    // dialogs::Vindu
    QString tekst(dialogs::Boks boks) const override;
    void settTekst(dialogs::Boks boks, const QString& tekst) override;
    QStringList kolonner() const override;
    void settKolonner(const QStringList& oppforinger) override;
    int valgtKolonne() const override;
    void velgKolonne(int indeks) override;
    bool adsorpsjon() const override;
    void settLabel4(const QString& tekst) override;
    QString tittel() const override;
    void settTittel(const QString& tekst) override;
    void settOpptatt(bool opptatt) override;
    void behandleHendelser() override;
    void visGraf(const dialogs::Graf& graf) override;

protected:
    void closeEvent(QCloseEvent* e) override;

private:
    void byggKontroller();
    void Form_Load();
    void ryddOpp();
    void apneDatabase();
    void meldSkade();
    void Combo1_Click();
    void Option1_Click();
    void Option2_Click();
    // Runs a command unless another one is running; the program may end inside it.
    Utfall kjor(const std::function<Utfall(Kontekst&)>& kommando);
    QLineEdit* boks(dialogs::Boks b) const;
    void koble(QPushButton* knapp, Utfall (Form1::*handler)());

    db::Database tilkobling_;
    Kontekst k_;
    bool kjorer_ = false;
    QString meldtSkade_;  // the damage last reported, so that it is reported once
    bool avslutter_ = false;
    int opptatt_ = 0;
    std::function<void(FrmGraph&)> grafVisning_;

    QComboBox* Combo1 = nullptr;
    QRadioButton* Option1 = nullptr;
    QRadioButton* Option2 = nullptr;
    std::array<QLineEdit*, 6> bokser_{};  // Text4 … Text2, by dialogs::Boks
    QLabel* Label4 = nullptr;
};

}  // namespace app
