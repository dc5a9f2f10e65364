#include "app/FrmGraph.h"

#include <QChart>
#include <QChartView>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineSeries>
#include <QPushButton>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>

namespace app {

FrmGraph::FrmGraph(const dialogs::Graf& graf, QWidget* eier) : QDialog(eier), graf_(graf)
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

    QList<QPointF> punkt;
    punkt.reserve(static_cast<qsizetype>(graf_.verdier.size()));
    double lav = 0, hoy = 0;
    for (size_t i = 0; i < graf_.verdier.size(); ++i) {
        const double v = graf_.verdier[i];
        if (punkt.isEmpty()) lav = hoy = v;
        lav = std::min(lav, v);
        hoy = std::max(hoy, v);
        punkt.append(QPointF(static_cast<double>(i + 1), v));
    }
    auto* chart = new QChart;
    chart->legend()->hide();
    chart->setTitle(graf_.tittel);
    auto* serie = new QLineSeries;
    serie->replace(punkt);
    chart->addSeries(serie);
    auto* x = new QValueAxis;
    x->setTitleText(QStringLiteral("Punkt"));
    x->setLabelFormat(QStringLiteral("%d"));
    auto* y = new QValueAxis;
    y->setLabelFormat(QStringLiteral("%.2e"));  // ion currents, 1e-13 to 1e-8
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    serie->attachAxis(x);
    serie->attachAxis(y);
    const double marg = hoy > lav ? (hoy - lav) * 0.05 : (lav != 0 ? std::abs(lav) * 0.05 : 1.0);
    x->setRange(1, std::max(graf_.rader, 2));
    // Currents are never negative: the axis does not reach below zero for them.
    y->setRange(lav >= 0 ? std::max(0.0, lav - marg) : lav - marg, hoy + marg);
    MSChart->setChart(chart);
}

}  // namespace app
