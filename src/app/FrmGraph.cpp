#include "app/FrmGraph.h"

#include "platform/vb/Vb.h"

#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QGraphicsItem>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineSeries>
#include <QLocale>
#include <QLogValueAxis>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScatterSeries>
#include <QVBoxLayout>
#include <QValueAxis>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

namespace app {

namespace {

// The colours of the curve and the marks, shared by the chart and its legend.
const QColor KurveFarge(31, 95, 168);
const QColor UtsnittFarge(255, 160, 0, 55);
const QColor SokStartFarge(198, 40, 40);
const QColor SnupunktFarge(46, 125, 50);
const QColor TerskelFarge(106, 27, 154);
const QColor NullFarge(216, 27, 96);

const QLocale Norsk(QLocale::NorwegianBokmal, QLocale::Norway);

// Lower and upper end of the range from lav to hoy with a twentieth added on each side; a range
// of values that are never negative does not reach below zero.
QPointF medMarg(double lav, double hoy)
{
    const double marg = hoy > lav ? (hoy - lav) * 0.05 : (lav != 0 ? std::abs(lav) * 0.05 : 1.0);
    return {lav >= 0 ? std::max(0.0, lav - marg) : lav - marg, hoy + marg};
}

// The whole decades around the positive values from lav to hoy.
QPointF dekader(double lav, double hoy)
{
    const double a = std::pow(10.0, std::floor(std::log10(lav)));
    const double b = std::pow(10.0, std::ceil(std::log10(hoy)));
    return {a, b > a ? b : a * 10};
}

// A round step (1, 2 or 5 times a power of ten) that gives about eight ticks from min to max.
double rundtSteg(double min, double max)
{
    const double grov = (max - min) / 8;
    if (!(grov > 0) || !std::isfinite(grov)) return 1;
    const double tier = std::pow(10.0, std::floor(std::log10(grov)));
    const double r = grov / tier;
    return (r < 1.5 ? 1 : r < 3.5 ? 2 : r < 7.5 ? 5 : 10) * tier;
}

// Ticks at round steps from zero, kept so when the chart itself changes the range (a dragged
// rectangle, a move). Qt Charts lays the ticks out before it tells of a new range, so a range
// set by the program gets its step first (settOmrade).
void rundeMerker(QValueAxis* akse)
{
    akse->setTickInterval(1);
    akse->setTickAnchor(0);
    akse->setTickType(QValueAxis::TicksDynamic);
    QObject::connect(akse, &QValueAxis::rangeChanged, akse,
                     [akse](qreal min, qreal max) { akse->setTickInterval(rundtSteg(min, max)); });
}

void settOmrade(QValueAxis* akse, double min, double max)
{
    akse->setTickInterval(rundtSteg(min, max));
    akse->setRange(min, max);
}

// Something drawn over the plot area and clipped to it, again after every zoom or move.
class Plottlag : public QGraphicsItem {
public:
    Plottlag(QChart* chart, qreal z) : QGraphicsItem(chart), chart_(chart) { setZValue(z); }
    QRectF boundingRect() const override { return chart_->plotArea(); }
    // After the plot area or an axis range has changed.
    void oppdater()
    {
        prepareGeometryChange();
        update();
    }
    void paint(QPainter* p, const QStyleOptionGraphicsItem*, QWidget*) override
    {
        const QRectF f = chart_->plotArea();
        p->save();
        p->setClipRect(f);
        tegn(*p, f);
        p->restore();
    }

protected:
    virtual void tegn(QPainter& p, const QRectF& f) const = 0;
    QChart* chart_;
};

// The curve, drawn as one path. Qt Charts' own line series takes about 100 ms to draw 30 000
// points again after each zoom; here the points of one pixel column are joined through their
// first, smallest, largest and last value only, which gives the same picture, and segments
// outside the plot area's columns are cut at its edges.
class Kurve : public Plottlag {
public:
    Kurve(QChart* chart, const FrmGraph& graf) : Plottlag(chart, 50), graf_(graf) {}

protected:
    void tegn(QPainter& p, const QRectF& f) const override
    {
        p.setPen(QPen(KurveFarge, 1));
        p.drawPath(sti(f));
    }

private:
    // The points in the plot area's pixels, one pixel column at a time reduced to four.
    std::vector<QPointF> hjorner(const QRectF& f) const
    {
        const QPointF t = graf_.tidsomrade(), v = graf_.verdiomrade();
        const bool log = graf_.logaritmisk();
        const auto y = [log](double verdi) { return log ? std::log10(verdi) : verdi; };
        const double sx = f.width() / (t.y() - t.x()), sy = f.height() / (y(v.y()) - y(v.x()));
        std::vector<QPointF> ut;
        QPointF forste, minst, storst, siste;
        double kolonne = std::nan("");
        const auto tom = [&] {
            if (std::isnan(kolonne)) return;
            ut.push_back(forste);
            ut.push_back(minst.y() < storst.y() ? minst : storst);
            ut.push_back(minst.y() < storst.y() ? storst : minst);
            ut.push_back(siste);
        };
        for (const QPointF& punkt : graf_.kurve()) {
            const double py = std::clamp(f.bottom() - (y(punkt.y()) - y(v.x())) * sy, f.top() - 1e6, f.bottom() + 1e6);
            const QPointF q(f.left() + (punkt.x() - t.x()) * sx, py);
            if (std::floor(q.x()) != kolonne) {
                tom();
                kolonne = std::floor(q.x());
                forste = minst = storst = q;
            }
            if (q.y() < minst.y()) minst = q;
            if (q.y() > storst.y()) storst = q;
            siste = q;
        }
        tom();
        return ut;
    }

    // The corners joined, each segment cut to the columns of the plot area.
    QPainterPath sti(const QRectF& f) const
    {
        const std::vector<QPointF> h = hjorner(f);
        const double venstre = f.left() - 1, hoyre = f.right() + 1;
        const auto ved = [](const QPointF& a, const QPointF& b, double x) {
            return QPointF(x, a.y() + (b.y() - a.y()) * (x - a.x()) / (b.x() - a.x()));
        };
        QPainterPath sti;
        for (size_t i = 1; i < h.size(); ++i) {
            QPointF a = h[i - 1], b = h[i];
            if (std::max(a.x(), b.x()) < venstre || std::min(a.x(), b.x()) > hoyre) continue;
            if (a.x() < venstre) a = ved(a, b, venstre);
            if (a.x() > hoyre) a = ved(a, b, hoyre);
            if (b.x() < venstre) b = ved(a, b, venstre);
            if (b.x() > hoyre) b = ved(a, b, hoyre);
            if (sti.elementCount() == 0 || sti.currentPosition() != a) sti.moveTo(a);
            sti.lineTo(b);
        }
        return sti;
    }

    const FrmGraph& graf_;
};

// The marks of the last search over the plot area: export windows as bands, the search start as
// a dashed line, the turning points as lines numbered by cycle, and the threshold across.
class Merker : public Plottlag {
public:
    Merker(QChart* chart, QLineSeries* serie, const dialogs::Graf& graf, const bool& logaritmisk)
        : Plottlag(chart, 100), serie_(serie), graf_(graf), logaritmisk_(logaritmisk)
    {
    }

protected:
    void tegn(QPainter& p, const QRectF& f) const override
    {
        // A value on the value axis, valid for either scale, to map minutes with.
        const double y0 = chart_->mapToValue(f.bottomLeft(), serie_).y();
        const auto x = [&](double m) { return chart_->mapToPosition(QPointF(m, y0), serie_).x(); };
        for (const auto& u : graf_.utsnitt)
            p.fillRect(QRectF(QPointF(x(u.fra), f.top()), QPointF(x(u.til), f.bottom())).normalized(), UtsnittFarge);
        if (graf_.terskel && (*graf_.terskel > 0 || !logaritmisk_)) {
            const double y =
                chart_->mapToPosition(QPointF(graf_.minutter.empty() ? 0 : graf_.minutter[0], *graf_.terskel), serie_)
                    .y();
            p.setPen(QPen(TerskelFarge, 1.5, Qt::DashLine));
            p.drawLine(QPointF(f.left(), y), QPointF(f.right(), y));
        }
        p.setPen(QPen(SnupunktFarge, 1));
        double forrigeTall = -1e9;
        for (const auto& s : graf_.snupunkter) {
            const double sx = x(s.minutt);
            p.drawLine(QPointF(sx, f.top() + 14), QPointF(sx, f.bottom()));
            if (sx - forrigeTall < 16) continue;  // numbers closer than that would overlap
            p.drawText(QRectF(sx - 15, f.top(), 30, 14), Qt::AlignCenter, QString::number(s.syklus));
            forrigeTall = sx;
        }
        if (graf_.sokStart) {
            const double sx = x(*graf_.sokStart);
            p.setPen(QPen(SokStartFarge, 2, Qt::DashLine));
            p.drawLine(QPointF(sx, f.top()), QPointF(sx, f.bottom()));
            p.drawText(QRectF(sx + 4, f.bottom() - 16, 120, 14), Qt::AlignLeft, QStringLiteral("Søkestart"));
        }
    }

private:
    QLineSeries* serie_;
    const dialogs::Graf& graf_;
    const bool& logaritmisk_;
};

// The chart view with the mouse of the graph window: a dragged rectangle zooms (Qt Charts' own
// rubber band), the wheel zooms the time axis, the right or middle button moves the view, and
// every move updates the readout.
class Diagramvisning : public QChartView {
public:
    Diagramvisning(QWidget* eier, std::function<void(double, double)> zoom, std::function<void(QPointF)> peker)
        : QChartView(eier), zoom_(std::move(zoom)), peker_(std::move(peker))
    {
        setRubberBand(QChartView::RectangleRubberBand);
        setMouseTracking(true);
        setToolTip(QStringLiteral("Dra et rektangel for å forstørre, hjulet zoomer tidsaksen, "
                                  "høyre eller midtre knapp flytter visningen"));
    }

protected:
    void wheelEvent(QWheelEvent* e) override
    {
        zoom_(verdi(e->position()).x(), e->angleDelta().y() > 0 ? 0.8 : 1.25);
        e->accept();
    }
    void mousePressEvent(QMouseEvent* e) override
    {
        if (e->button() != Qt::RightButton && e->button() != Qt::MiddleButton) return QChartView::mousePressEvent(e);
        flytt_ = e->position();
        e->accept();
    }
    void mouseMoveEvent(QMouseEvent* e) override
    {
        if (flytt_) {
            const QPointF d = e->position() - *flytt_;
            chart()->scroll(-d.x(), d.y());
            flytt_ = e->position();
        }
        peker_(e->position());
        QChartView::mouseMoveEvent(e);
    }
    void mouseReleaseEvent(QMouseEvent* e) override
    {
        if (e->button() != Qt::RightButton && e->button() != Qt::MiddleButton) return QChartView::mouseReleaseEvent(e);
        flytt_.reset();
        e->accept();
    }

private:
    QPointF verdi(const QPointF& punkt) const
    {
        return chart()->mapToValue(chart()->mapFromScene(mapToScene(punkt.toPoint())));
    }

    std::function<void(double, double)> zoom_;
    std::function<void(QPointF)> peker_;
    std::optional<QPointF> flytt_;
};

}  // namespace

FrmGraph::FrmGraph(const dialogs::Graf& graf, QWidget* eier) : QDialog(eier), graf_(graf)
{
    setObjectName(QStringLiteral("frm_Graph"));
    setWindowTitle(QStringLiteral("Graf"));
    resize(1000, 640);

    const size_t n = std::min(graf_.verdier.size(), graf_.minutter.size());
    double minPositiv = 0, maksPositiv = 0;
    for (size_t i = 0; i < n; ++i) {
        const double v = graf_.verdier[i];
        if (v > 0 && (minPositiv == 0 || v < minPositiv)) minPositiv = v;
        maksPositiv = std::max(maksPositiv, v);
    }
    if (minPositiv > 0) bunn_ = dekader(minPositiv, maksPositiv).x();
    punkter_.reserve(static_cast<qsizetype>(n));
    logPunkter_.reserve(static_cast<qsizetype>(n));
    for (size_t i = 0; i < n; ++i) {
        const QPointF p(graf_.minutter[i], graf_.verdier[i]);
        punkter_.append(p);
        logPunkter_.append(p.y() > 0 ? p : QPointF(p.x(), bunn_));
        if (p.y() <= 0) nullPunkter_.append(logPunkter_.back());
    }
    if (n > 0) {
        const auto [a, b] = std::minmax_element(graf_.minutter.begin(), graf_.minutter.begin() + static_cast<long>(n));
        forsteMinutt_ = *a;
        sisteMinutt_ = *b > *a ? *b : *a + 1;
    }
    byggKontroller();
    byggDiagram();
    tilbakestill();
}

void FrmGraph::byggKontroller()
{
    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    MSChart = new Diagramvisning(
        Frame1, [this](double midt, double faktor) { zoomTid(midt, faktor); },
        [this](QPointF punkt) { visAvlesning(punkt); });
    MSChart->setObjectName(QStringLiteral("MSChart"));
    forklaring_ = new QLabel(Frame1);
    forklaring_->setObjectName(QStringLiteral("Forklaring"));
    auto* ramme = new QVBoxLayout(Frame1);
    ramme->addWidget(MSChart, 1);
    ramme->addWidget(forklaring_);

    logBoks_ = new QCheckBox(QStringLiteral("Logaritmisk verdiakse"), this);
    logBoks_->setObjectName(QStringLiteral("Logaritmisk"));
    connect(logBoks_, &QCheckBox::toggled, this, &FrmGraph::settLogaritmisk);
    auto* tilbake = new QPushButton(QStringLiteral("Hele fila"), this);
    tilbake->setObjectName(QStringLiteral("Tilbakestill"));
    tilbake->setToolTip(QStringLiteral("Viser hele serien igjen"));
    connect(tilbake, &QPushButton::clicked, this, &FrmGraph::tilbakestill);
    avlesning_ = new QLabel(this);
    avlesning_->setObjectName(QStringLiteral("Avlesning"));
    Command1 = new QPushButton(QStringLiteral("Exit"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, &QDialog::reject);

    auto* knapper = new QHBoxLayout;
    knapper->addWidget(logBoks_);
    knapper->addWidget(tilbake);
    knapper->addSpacing(16);
    knapper->addWidget(avlesning_, 1);
    knapper->addWidget(Command1);
    auto* hoved = new QVBoxLayout(this);
    hoved->addWidget(Frame1, 1);
    hoved->addLayout(knapper);
}

void FrmGraph::byggDiagram()
{
    auto* chart = new QChart;
    chart->legend()->hide();
    chart->setTitle(graf_.tittel);
    serie_ = new QLineSeries;
    serie_->setName(graf_.tittel);  // holds no points: it maps the curve's minutes and values
    nullSerie_ = new QScatterSeries;
    nullSerie_->setName(QStringLiteral("Verdier ≤ 0"));
    nullSerie_->setColor(NullFarge);
    nullSerie_->setBorderColor(NullFarge);
    nullSerie_->setMarkerSize(6);
    chart->addSeries(serie_);
    chart->addSeries(nullSerie_);

    tidAkse_ = new QValueAxis;
    tidAkse_->setTitleText(QStringLiteral("Minutter etter datastart (%1)").arg(graf_.dataStart));
    tidAkse_->setLabelFormat(QStringLiteral("%g"));
    rundeMerker(tidAkse_);
    linAkse_ = new QValueAxis;
    linAkse_->setLabelFormat(QStringLiteral("%.1e"));  // ion currents, 1e-13 to 1e-8
    rundeMerker(linAkse_);
    logAkse_ = new QLogValueAxis;
    logAkse_->setVisible(false);
    logAkse_->setLabelFormat(QStringLiteral("%.0e"));
    chart->addAxis(tidAkse_, Qt::AlignBottom);
    chart->addAxis(linAkse_, Qt::AlignLeft);
    chart->addAxis(logAkse_, Qt::AlignLeft);
    for (QXYSeries* s : {static_cast<QXYSeries*>(serie_), static_cast<QXYSeries*>(nullSerie_)}) {
        s->attachAxis(tidAkse_);
        s->attachAxis(linAkse_);
    }
    // The view lets go of the empty chart it was made with but does not delete it.
    std::unique_ptr<QChart> tom(MSChart->chart());
    MSChart->setChart(chart);

    auto* kurve = new Kurve(chart, *this);
    auto* merker = new Merker(chart, serie_, graf_, logaritmisk_);
    const auto oppdater = [kurve, merker] {
        kurve->oppdater();
        merker->oppdater();
    };
    connect(chart, &QChart::plotAreaChanged, this, oppdater);
    connect(tidAkse_, &QValueAxis::rangeChanged, this, oppdater);
    connect(linAkse_, &QValueAxis::rangeChanged, this, oppdater);
    connect(logAkse_, &QLogValueAxis::rangeChanged, this, oppdater);
    // Without a value above zero a logarithmic axis has nothing to show.
    logBoks_->setEnabled(nullPunkter_.size() < punkter_.size());
    forklaring_->setText(forklaring());
}

QChart* FrmGraph::diagram() const { return MSChart->chart(); }

QAbstractAxis* FrmGraph::verdiakse() const
{
    return logaritmisk_ ? static_cast<QAbstractAxis*>(logAkse_) : static_cast<QAbstractAxis*>(linAkse_);
}

void FrmGraph::settLogaritmisk(bool logaritmisk)
{
    if (logaritmisk == logaritmisk_) return;
    // Both axes stay in the chart, the other one hidden: an axis taken out of a chart leaves its
    // labels behind in Qt Charts.
    QAbstractAxis* gammel = verdiakse();
    logaritmisk_ = logaritmisk;
    for (QXYSeries* s : {static_cast<QXYSeries*>(serie_), static_cast<QXYSeries*>(nullSerie_)}) {
        s->detachAxis(gammel);
        s->attachAxis(verdiakse());
    }
    gammel->setVisible(false);
    verdiakse()->setVisible(true);
    nullSerie_->replace(logaritmisk_ ? nullPunkter_ : QList<QPointF>());
    const QPointF tid = tidsomrade();
    visUtsnitt(tid.x(), tid.y());
    const QSignalBlocker stille(logBoks_);
    logBoks_->setChecked(logaritmisk_);
    forklaring_->setText(forklaring());
}

std::optional<QPointF> FrmGraph::verdierMellom(double fra, double til) const
{
    const QList<QPointF>& punkter = logaritmisk_ ? logPunkter_ : punkter_;
    std::optional<QPointF> omrade;
    for (const QPointF& p : punkter) {
        if (p.x() < fra || p.x() > til) continue;
        if (!omrade) omrade = QPointF(p.y(), p.y());
        omrade = QPointF(std::min(omrade->x(), p.y()), std::max(omrade->y(), p.y()));
    }
    if (!omrade) return std::nullopt;
    return logaritmisk_ ? dekader(omrade->x(), omrade->y()) : medMarg(omrade->x(), omrade->y());
}

void FrmGraph::visUtsnitt(std::optional<double> fra, std::optional<double> til)
{
    const double a = fra.value_or(forsteMinutt_), b = til.value_or(sisteMinutt_);
    settOmrade(tidAkse_, a, b > a ? b : a + 1);
    const auto v = verdierMellom(a, b);
    // A hair beyond the decades, or Qt Charts leaves out the label of the lower one.
    if (v && logaritmisk_) logAkse_->setRange(v->x() * 0.999999, v->y() * 1.000001);
    if (v && !logaritmisk_) settOmrade(linAkse_, v->x(), v->y());
}

void FrmGraph::tilbakestill() { visUtsnitt(std::nullopt, std::nullopt); }

void FrmGraph::zoomTid(double midt, double faktor)
{
    const QPointF t = tidsomrade();
    settOmrade(tidAkse_, midt - (midt - t.x()) * faktor, midt + (t.y() - midt) * faktor);
}

QPointF FrmGraph::tidsomrade() const { return {tidAkse_->min(), tidAkse_->max()}; }

QPointF FrmGraph::verdiomrade() const
{
    return logaritmisk_ ? QPointF(logAkse_->min(), logAkse_->max()) : QPointF(linAkse_->min(), linAkse_->max());
}

QString FrmGraph::avlesning(double minutt) const
{
    const size_t n = std::min(graf_.verdier.size(), graf_.minutter.size());
    if (n == 0) return {};
    size_t naermest = 0;
    for (size_t i = 1; i < n; ++i)
        if (std::abs(graf_.minutter[i] - minutt) < std::abs(graf_.minutter[naermest] - minutt)) naermest = i;
    return QStringLiteral("%1 min etter start    %2    %3")
        .arg(Norsk.toString(graf_.minutter[naermest], 'f', 2), graf_.tidTekster.value(static_cast<qsizetype>(naermest)),
             vb::tekst(static_cast<float>(graf_.verdier[naermest])));
}

void FrmGraph::visAvlesning(const QPointF& punkt)
{
    QChart* chart = diagram();
    const QPointF p = chart->mapFromScene(MSChart->mapToScene(punkt.toPoint()));
    avlesning_->setText(chart->plotArea().contains(p) ? avlesning(chart->mapToValue(p, serie_).x()) : QString());
}

QString FrmGraph::avlesningTekst() const { return avlesning_->text(); }

QString FrmGraph::forklaring() const
{
    const auto merke = [](const QColor& farge, const QString& tegn, const QString& tekst) {
        return QStringLiteral("<span style='color:%1'>%2</span>&nbsp;%3&nbsp;&nbsp;&nbsp; ")
            .arg(QColor(farge.red(), farge.green(), farge.blue()).name(), tegn, tekst.toHtmlEscaped());
    };
    QString t = merke(KurveFarge, QStringLiteral("━━"), graf_.tittel);
    if (!graf_.utsnitt.empty())
        t += merke(QColor(255, 160, 0), QStringLiteral("██"),
                   QStringLiteral("Eksportvindu, syklus %1–%2")
                       .arg(graf_.utsnitt.front().syklus)
                       .arg(graf_.utsnitt.back().syklus));
    if (!graf_.snupunkter.empty())
        t += merke(SnupunktFarge, QStringLiteral("│"), QStringLiteral("Snupunkt med syklusnr."));
    if (graf_.sokStart)
        t += merke(SokStartFarge, QStringLiteral("┆"),
                   QStringLiteral("Søkestart (%1 min)").arg(Norsk.toString(*graf_.sokStart, 'g', 6)));
    if (graf_.terskel)
        t += merke(TerskelFarge, QStringLiteral("╌╌"),
                   QStringLiteral("Terskel %1").arg(vb::tekst(static_cast<float>(*graf_.terskel))));
    if (logaritmisk_ && !nullPunkter_.isEmpty())
        t += merke(NullFarge, QStringLiteral("●"),
                   QStringLiteral("%1 verdier ≤ 0, vist ved aksens bunn").arg(nullPunkter_.size()));
    return t;
}

}  // namespace app
