// The graph window "Graf": a frame holding a line chart of one column against the minutes after
// the data start, the marks of the last cycle search, a legend, a readout of the row under the
// mouse, and an "Exit" button that closes it. Dragging a rectangle zooms into it, the wheel zooms
// the time axis, dragging with the right or middle button moves the view, and the value axis can
// be made logarithmic.
#pragma once

#include "platform/dialogs/Vindu.h"

#include <QDialog>
#include <QList>
#include <QPointF>
#include <optional>

class QAbstractAxis;
class QChart;
class QChartView;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineSeries;
class QLogValueAxis;
class QPushButton;
class QScatterSeries;
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
    // The points of the curve: minutes and values, on the log axis with the floor for values at or below zero.
    const QList<QPointF>& kurve() const { return logaritmisk_ ? logPunkter_ : punkter_; }
    // The minutes and values now shown.
    QPointF tidsomrade() const;
    QPointF verdiomrade() const;

    // The readout of the drawn row nearest the minute: its minutes after the start, its
    // date-time text and its value; empty without rows.
    QString avlesning(double minutt) const;
    // The readout under a point of the chart view, as the mouse sets it.
    void visAvlesning(const QPointF& punkt);
    QString avlesningTekst() const;

private:
    void byggDiagram();
    void byggKontroller();
    QString forklaring() const;
    // The value range of the rows from fra to til on the current axis, with a margin.
    std::optional<QPointF> verdierMellom(double fra, double til) const;
    QAbstractAxis* verdiakse() const;

    dialogs::Graf graf_;
    bool logaritmisk_ = false;
    QList<QPointF> punkter_, logPunkter_, nullPunkter_;  // nullPunkter_: values at or below zero, at the floor
    double bunn_ = 1e-15;  // the log axis's floor: the decade below the smallest value above zero
    double forsteMinutt_ = 0, sisteMinutt_ = 1;

    QGroupBox* Frame1 = nullptr;
    QChartView* MSChart = nullptr;
    QPushButton* Command1 = nullptr;
    QCheckBox* logBoks_ = nullptr;
    QLabel* forklaring_ = nullptr;
    QLabel* avlesning_ = nullptr;
    QLineSeries* serie_ = nullptr;
    QScatterSeries* nullSerie_ = nullptr;
    QValueAxis* tidAkse_ = nullptr;
    QValueAxis* linAkse_ = nullptr;
    QLogValueAxis* logAkse_ = nullptr;
};

}  // namespace app
