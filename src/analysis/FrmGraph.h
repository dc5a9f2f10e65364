// The graph window "Graf": a frame holding a line chart of one column, point after point, and an
// "Exit" button that closes it. The chart has a number of rows; each row gets its value by index.
#pragma once

#include <QDialog>
#include <optional>
#include <vector>

class QChart;
class QChartView;
class QGroupBox;
class QLineSeries;
class QPushButton;

namespace analyse
{

class FrmGraph : public QDialog
{
    Q_OBJECT
public:
    explicit FrmGraph(QWidget* eier = nullptr);

    // The chart's rows, all without a value.
    void settRadAntall(int antall);
    int radAntall() const { return static_cast<int>(rader_.size()); }
    // The value of chart row rad, counted from 1.
    void settVerdi(int rad, double verdi);
    // Draws the rows that have a value, under this title.
    void tegn(const QString& tittel);

    // The points drawn: the rows that received a value.
    int punkter() const;
    std::optional<double> verdi(int rad) const { return rader_.at(static_cast<size_t>(rad - 1)); }

private:
    std::vector<std::optional<double>> rader_;
    QGroupBox* Frame1 = nullptr;
    QChartView* MSChart = nullptr;
    QLineSeries* serie_ = nullptr;
    QPushButton* Command1 = nullptr;
};

} // namespace analyse
