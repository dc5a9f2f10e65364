// The graph window "Graf": a frame holding a line chart of one column against the minutes after
// the data start, the marks of the last cycle search, a legend, a readout of the row under the
// mouse, and an "Exit" button that closes it. Dragging a rectangle zooms into it, the wheel zooms
// the time axis, dragging with the right or middle button moves the view, and the value axis can
// be made logarithmic. A second view, one tab away, lays the chosen cycles over each other in
// the same chart, one colour each on a scale from the first to the last, with their table beside
// it; the view can be saved as a picture (PNG, or PDF as vector graphics).
#pragma once

#include "analysis/Syklusvinduer.h"
#include "platform/dialogs/Vindu.h"

#include <QColor>
#include <QDialog>
#include <QList>
#include <QPointF>
#include <functional>
#include <optional>
#include <vector>

class QAbstractAxis;
class QChart;
class QChartView;
class QCheckBox;
class QGraphicsItem;
class QGroupBox;
class QLabel;
class QLineSeries;
class QLogValueAxis;
class QPushButton;
class QScatterSeries;
class QTabBar;
class QTableWidget;
class QValueAxis;

namespace app {

class FrmGraph : public QDialog {
    Q_OBJECT
public:
    // Draws the graph's values at their minutes, with the search's marks, under its title.
    explicit FrmGraph(const dialogs::Graf& graf, QWidget* eier = nullptr);

    // What the window draws.
    const dialogs::Graf& graf() const { return graf_; }
    QChart* diagram() const;

    // Where the view of the cycles over each other comes from, read the first time it is shown.
    void settSykluskilde(std::function<std::optional<analysis::Syklusbilde>()> kilde);
    // Shows the cycles over each other (true) or the whole file; false when the cycles cannot be
    // shown (no source, or it gave none after its message), and the whole file stays.
    bool visSykluser(bool sykluser);
    bool sykluser() const { return sykluser_; }
    // The cycles on the combined workbook's zero points (true) or on their turning points.
    void settJustert(bool justert);
    bool justert() const { return justert_; }
    // What the cycles view draws, once it has been read.
    const std::optional<analysis::Syklusbilde>& syklusbilde() const { return bilde_; }

    // A curve as it is drawn: its points on the current value axis, shifted forskyvning minutes to
    // the left; sortert when their minutes never fall, so that the points in view can be found by halving.
    struct Kurvedel {
        const QList<QPointF>* punkter;
        QColor farge;
        double forskyvning;
        bool sortert;
    };
    std::vector<Kurvedel> kurver() const;

    // Saves the window as a picture: a name ending in .pdf gives the chart as vector graphics,
    // any other a PNG of the window. False when the file cannot be written.
    bool lagreBilde(const QString& fil);

    // The value axis logarithmic, values at or below zero drawn as marked points at its floor, or linear.
    void settLogaritmisk(bool logaritmisk);
    bool logaritmisk() const { return logaritmisk_; }
    // Shows the minutes from fra to til (the first or last row when left out), the value axis
    // fitted to the rows between them.
    void visUtsnitt(std::optional<double> fra, std::optional<double> til);
    // The whole series again.
    void tilbakestill();
    // Zooms the time axis around the minute midt: faktor below 1 closer, above 1 further out.
    void zoomTid(double midt, double faktor);
    // The points of the whole file's curve: minutes and values, on the log axis with the floor for values at or below
    // zero.
    const QList<QPointF>& kurve() const { return logaritmisk_ ? logPunkter_ : punkter_; }
    // The minutes and values now shown.
    QPointF tidsomrade() const;
    QPointF verdiomrade() const;

    // The readout of the drawn row nearest the minute: its minutes after the start, its
    // date-time text and its value; empty without rows.
    QString avlesning(double minutt) const;
    // In the cycles view, the cycle whose curve passes nearest the point (minutes, value) on the
    // screen: its number, the minutes and the value there; empty without rows.
    QString syklusAvlesning(const QPointF& verdi) const;
    // The readout under a point of the chart view, as the mouse sets it.
    void visAvlesning(const QPointF& punkt);
    QString avlesningTekst() const;

private:
    void byggDiagram();
    void byggKontroller();
    void byggSykluser();
    void visModus();
    QString forklaring() const;
    QString syklusForklaring() const;
    // The value range of the rows from fra to til on the current axis, with a margin.
    std::optional<QPointF> verdierMellom(double fra, double til) const;
    QAbstractAxis* verdiakse() const;

    dialogs::Graf graf_;
    bool logaritmisk_ = false;
    QList<QPointF> punkter_, logPunkter_, nullPunkter_;  // nullPunkter_: values at or below zero, at the floor
    double bunn_ = 1e-15;  // the log axis's floor: the decade below the smallest value above zero
    double forsteMinutt_ = 0, sisteMinutt_ = 1;
    bool sortert_ = false;  // the whole file's minutes never fall

    // The cycles view: each cycle's points (minutes from its turning point) on either axis.
    struct Sykluskurve {
        int syklus;
        QList<QPointF> punkter, logPunkter;
        QColor farge;
        double null;  // minutes from the turning point to the combined zero point
        bool sortert;
        double forst, sist;  // its first and last minute
    };
    std::function<std::optional<analysis::Syklusbilde>()> sykluskilde_;
    std::optional<analysis::Syklusbilde> bilde_;
    std::vector<Sykluskurve> sykluskurver_;
    bool sykluser_ = false, justert_ = false;
    double syklusBunn_ = 1e-15;
    bool syklusPositive_ = false;  // a cycle value above zero, for the log axis
    // The first and last minute of the current view's rows.
    QPointF minutter() const;

    QGroupBox* Frame1 = nullptr;
    QChartView* MSChart = nullptr;
    QPushButton* Command1 = nullptr;
    QCheckBox* logBoks_ = nullptr;
    QCheckBox* justertBoks_ = nullptr;
    QTabBar* faner_ = nullptr;
    QTableWidget* tabell_ = nullptr;
    QPushButton* tilbake_ = nullptr;
    QGraphicsItem* merker_ = nullptr;
    QGraphicsItem* nokkel_ = nullptr;
    QLabel* forklaring_ = nullptr;
    QLabel* avlesning_ = nullptr;
    QLineSeries* serie_ = nullptr;
    QScatterSeries* nullSerie_ = nullptr;
    QValueAxis* tidAkse_ = nullptr;
    QValueAxis* linAkse_ = nullptr;
    QLogValueAxis* logAkse_ = nullptr;
};

}  // namespace app
