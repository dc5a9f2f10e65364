#include "analysis/FrmGraph.h"

#include <QChart>
#include <QChartView>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineSeries>
#include <QPushButton>
#include <QValueAxis>
#include <QVBoxLayout>
#include <algorithm>

namespace analyse
{

FrmGraph::FrmGraph(QWidget* eier) : QDialog(eier)
{
    setObjectName(QStringLiteral("frm_Graph"));
    setWindowTitle(QStringLiteral("Graf"));
    resize(900, 560);

    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    MSChart = new QChartView(Frame1);
    MSChart->setObjectName(QStringLiteral("MSChart"));
    auto* ramme = new QVBoxLayout(Frame1);
    ramme->addWidget(MSChart);

    Command1 = new QPushButton(QStringLiteral("Exit"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, &QDialog::reject);

    auto* knapper = new QHBoxLayout;
    knapper->addStretch();
    knapper->addWidget(Command1);
    auto* hoved = new QVBoxLayout(this);
    hoved->addWidget(Frame1, 1);
    hoved->addLayout(knapper);

    auto* chart = new QChart;
    chart->legend()->hide();
    serie_ = new QLineSeries;
    chart->addSeries(serie_);
    auto* x = new QValueAxis;
    x->setTitleText(QStringLiteral("Punkt"));
    x->setLabelFormat(QStringLiteral("%d"));
    auto* y = new QValueAxis;
    y->setLabelFormat(QStringLiteral("%.2e")); // ion currents, 1e-13 to 1e-8
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    serie_->attachAxis(x);
    serie_->attachAxis(y);
    MSChart->setChart(chart);
}

void FrmGraph::settRadAntall(int antall) { rader_.assign(static_cast<size_t>(std::max(antall, 0)), std::nullopt); }

void FrmGraph::settVerdi(int rad, double verdi) { rader_.at(static_cast<size_t>(rad - 1)) = verdi; }

int FrmGraph::punkter() const
{
    return static_cast<int>(std::count_if(rader_.begin(), rader_.end(), [](const auto& v) { return v.has_value(); }));
}

void FrmGraph::tegn(const QString& tittel)
{
    QList<QPointF> punkt;
    punkt.reserve(static_cast<qsizetype>(rader_.size()));
    double lav = 0, hoy = 0;
    for (size_t i = 0; i < rader_.size(); ++i) {
        if (!rader_[i]) continue;
        const double v = *rader_[i];
        if (punkt.isEmpty()) lav = hoy = v;
        lav = std::min(lav, v);
        hoy = std::max(hoy, v);
        punkt.append(QPointF(static_cast<double>(i + 1), v));
    }
    serie_->replace(punkt);
    QChart* chart = MSChart->chart();
    chart->setTitle(tittel);
    const double marg = hoy > lav ? (hoy - lav) * 0.05 : (lav != 0 ? std::abs(lav) * 0.05 : 1.0);
    chart->axes(Qt::Horizontal).first()->setRange(1, std::max<qsizetype>(radAntall(), 2));
    // Currents are never negative: the axis does not reach below zero for them.
    chart->axes(Qt::Vertical).first()->setRange(lav >= 0 ? std::max(0.0, lav - marg) : lav - marg, hoy + marg);
}

} // namespace analyse
