// The graph window "Graf": a frame holding a line chart of one column, point after point, and an
// "Exit" button that closes it.
#pragma once

#include "platform/dialogs/Vindu.h"

#include <QDialog>

class QChart;
class QChartView;
class QGroupBox;
class QLineSeries;
class QPushButton;

namespace app {

class FrmGraph : public QDialog {
    Q_OBJECT
public:
    // Draws the graph's values, row after row, under its title.
    explicit FrmGraph(const dialogs::Graf& graf, QWidget* eier = nullptr);

    // What the window draws.
    const dialogs::Graf& graf() const { return graf_; }

private:
    dialogs::Graf graf_;
    QGroupBox* Frame1 = nullptr;
    QChartView* MSChart = nullptr;
    QPushButton* Command1 = nullptr;
};

}  // namespace app
