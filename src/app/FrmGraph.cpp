#include "app/FrmGraph.h"

#include "platform/vb/Vb.h"

#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QFileDialog>
#include <QGraphicsItem>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLegend>
#include <QLineSeries>
#include <QLocale>
#include <QLogValueAxis>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPdfWriter>
#include <QPixmap>
#include <QPushButton>
#include <QScatterSeries>
#include <QTabBar>
#include <QTableWidget>
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

// The points of a curve whose minutes, shifted, lie from fra to til, with utenfor more on either
// side (to draw the segments that leave the view); every point of a curve whose minutes fall somewhere.
std::pair<QList<QPointF>::const_iterator, QList<QPointF>::const_iterator>
synlige(const FrmGraph::Kurvedel& del, double fra, double til, qsizetype utenfor)
{
    const QList<QPointF>& p = *del.punkter;
    if (!del.sortert) return {p.begin(), p.end()};
    const auto mindre = [](const QPointF& a, double x) { return a.x() < x; };
    const auto a = std::lower_bound(p.begin(), p.end(), fra + del.forskyvning, mindre);
    const auto b = std::upper_bound(p.begin(), p.end(), til + del.forskyvning,
                                    [](double x, const QPointF& a) { return x < a.x(); });
    return {a - std::min(utenfor, a - p.begin()), b + std::min(utenfor, p.end() - b)};
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

// The curves, each drawn as one path. Qt Charts' own line series takes about 100 ms to draw 30 000
// points again after each zoom; here the points of one pixel column are joined through their
// first, smallest, largest and last value only, which gives the same picture, and segments
// outside the plot area's columns are cut at its edges.
class Kurve : public Plottlag {
public:
    Kurve(QChart* chart, const FrmGraph& graf) : Plottlag(chart, 50), graf_(graf) {}

protected:
    void tegn(QPainter& p, const QRectF& f) const override
    {
        for (const FrmGraph::Kurvedel& del : graf_.kurver()) {
            p.setPen(QPen(del.farge, 1));
            p.drawPath(sti(f, del));
        }
    }

private:
    // The points in the plot area's pixels, one pixel column at a time reduced to four: its
    // first, largest, smallest and last value, found on the values themselves, so only those four
    // are taken to the screen (and to the log scale).
    std::vector<QPointF> hjorner(const QRectF& f, const FrmGraph::Kurvedel& del) const
    {
        const QPointF t = graf_.tidsomrade(), v = graf_.verdiomrade();
        const bool log = graf_.logaritmisk();
        const auto y = [log](double verdi) { return log ? std::log10(verdi) : verdi; };
        const double sx = f.width() / (t.y() - t.x()), sy = f.height() / (y(v.y()) - y(v.x()));
        const double x0 = t.x() + del.forskyvning, y0 = y(v.x());
        const auto skjerm = [&](const QPointF& p) {
            return QPointF(f.left() + (p.x() - x0) * sx,
                           std::clamp(f.bottom() - (y(p.y()) - y0) * sy, f.top() - 1e6, f.bottom() + 1e6));
        };
        std::vector<QPointF> ut;
        const QPointF *forste = nullptr, *minst = nullptr, *storst = nullptr, *siste = nullptr;
        double kolonne = std::nan("");
        const auto tom = [&] {
            if (!forste) return;
            for (const QPointF* p : {forste, storst, minst, siste}) ut.push_back(skjerm(*p));
        };
        const auto [fra, til] = synlige(del, t.x(), t.y(), 1);
        for (auto p = fra; p != til; ++p) {
            const double k = std::floor(f.left() + (p->x() - x0) * sx);
            if (k != kolonne) {
                tom();
                kolonne = k;
                forste = minst = storst = &*p;
            }
            if (p->y() < minst->y()) minst = &*p;
            if (p->y() > storst->y()) storst = &*p;
            siste = &*p;
        }
        tom();
        return ut;
    }

    // The corners joined, each segment cut to the columns of the plot area.
    QPainterPath sti(const QRectF& f, const FrmGraph::Kurvedel& del) const
    {
        const std::vector<QPointF> h = hjorner(f, del);
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

// The sequential colour scale of the cycles, from dark violet through blue and green to yellow,
// at t from 0 (the first cycle) to 1 (the last).
QColor skalaFarge(double t)
{
    static const QColor Punkter[] = {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}};
    constexpr int Siste = static_cast<int>(std::size(Punkter)) - 1;
    const double x = std::clamp(t, 0.0, 1.0) * Siste;
    const int i = std::min(static_cast<int>(x), Siste - 1);
    const double r = x - i;
    const QColor &a = Punkter[i], &b = Punkter[i + 1];
    return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * r),
                            static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * r),
                            static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * r));
}

// The cycles view's marks over the plot area: the zero minute (turning point or combined zero
// point) as a dashed line, and the colour scale's key in the upper right corner.
class Syklusnokkel : public Plottlag {
public:
    Syklusnokkel(QChart* chart, QLineSeries* serie, const FrmGraph& graf)
        : Plottlag(chart, 120), serie_(serie), graf_(graf)
    {
    }

protected:
    void tegn(QPainter& p, const QRectF& f) const override
    {
        const auto& bilde = graf_.syklusbilde();
        if (!bilde || bilde->sykluser.empty()) return;
        const double y0 = chart_->mapToValue(f.bottomLeft(), serie_).y();
        const double x0 = chart_->mapToPosition(QPointF(0, y0), serie_).x();
        p.setPen(QPen(Qt::darkGray, 1, Qt::DashLine));
        p.drawLine(QPointF(x0, f.top()), QPointF(x0, f.bottom()));

        const QRectF boks(f.right() - 190, f.top() + 8, 180, 44);
        p.setPen(QPen(Qt::gray, 1));
        p.setBrush(QColor(255, 255, 255, 225));
        p.drawRect(boks);
        const QRectF stolpe(boks.left() + 10, boks.top() + 22, boks.width() - 20, 10);
        QLinearGradient gradient(stolpe.topLeft(), stolpe.topRight());
        for (int i = 0; i <= 8; ++i) gradient.setColorAt(i / 8.0, skalaFarge(i / 8.0));
        p.fillRect(stolpe, gradient);
        p.setPen(Qt::black);
        // In pixels, so that a PDF's painter (a point a pixel) writes it as large as the screen shows it.
        QFont skrift = chart_->legend()->font();
        skrift.setPixelSize(12);
        p.setFont(skrift);
        const QString forste = QString::number(bilde->sykluser.front().syklus);
        const QString siste = QString::number(bilde->sykluser.back().syklus);
        p.drawText(QRectF(boks.left() + 10, boks.top() + 4, boks.width() - 20, 16), Qt::AlignLeft,
                   QStringLiteral("Syklus %1").arg(forste));
        p.drawText(QRectF(boks.left() + 10, boks.top() + 4, boks.width() - 20, 16), Qt::AlignRight,
                   QStringLiteral("Syklus %1").arg(siste));
    }

private:
    QLineSeries* serie_;
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

// The decade below the smallest value above zero: the log axis's floor, where values at or below zero are drawn.
double logBunn(const std::vector<double>& verdier)
{
    double minPositiv = 0, maksPositiv = 0;
    for (const double v : verdier) {
        if (v > 0 && (minPositiv == 0 || v < minPositiv)) minPositiv = v;
        maksPositiv = std::max(maksPositiv, v);
    }
    return minPositiv > 0 ? dekader(minPositiv, maksPositiv).x() : 1e-15;
}

}  // namespace

FrmGraph::FrmGraph(const dialogs::Graf& graf, QWidget* eier) : QDialog(eier), graf_(graf)
{
    setObjectName(QStringLiteral("frm_Graph"));
    setWindowTitle(QStringLiteral("Graf"));
    resize(1000, 640);

    const size_t n = std::min(graf_.verdier.size(), graf_.minutter.size());
    bunn_ = logBunn(graf_.verdier);
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
    sortert_ = std::is_sorted(graf_.minutter.begin(), graf_.minutter.begin() + static_cast<long>(n));
    byggKontroller();
    byggDiagram();
    tilbakestill();
}

void FrmGraph::byggKontroller()
{
    faner_ = new QTabBar(this);
    faner_->setObjectName(QStringLiteral("Visning"));
    faner_->addTab(QStringLiteral("Hele fila"));
    faner_->addTab(QStringLiteral("Syklusene over hverandre"));
    faner_->setTabToolTip(
        1, QStringLiteral("De valgte syklusene (Text4 til Text6) i vinduet som «9.  Lag enkeltgraf» tar"));
    faner_->setEnabled(false);  // until a source of the cycles is given
    connect(faner_, &QTabBar::currentChanged, this, [this](int fane) {
        if (!visSykluser(fane == 1)) {
            const QSignalBlocker stille(faner_);
            faner_->setCurrentIndex(0);
        }
    });

    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    MSChart = new Diagramvisning(
        Frame1, [this](double midt, double faktor) { zoomTid(midt, faktor); },
        [this](QPointF punkt) { visAvlesning(punkt); });
    MSChart->setObjectName(QStringLiteral("MSChart"));
    forklaring_ = new QLabel(Frame1);
    forklaring_->setObjectName(QStringLiteral("Forklaring"));
    forklaring_->setWordWrap(true);
    auto* ramme = new QVBoxLayout(Frame1);
    ramme->addWidget(MSChart, 1);
    ramme->addWidget(forklaring_);

    tabell_ = new QTableWidget(this);
    tabell_->setObjectName(QStringLiteral("Syklustabell"));
    tabell_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabell_->verticalHeader()->hide();
    tabell_->hide();

    logBoks_ = new QCheckBox(QStringLiteral("Logaritmisk verdiakse"), this);
    logBoks_->setObjectName(QStringLiteral("Logaritmisk"));
    connect(logBoks_, &QCheckBox::toggled, this, &FrmGraph::settLogaritmisk);
    justertBoks_ = new QCheckBox(QStringLiteral("Nullpunkt som i samlefila"), this);
    justertBoks_->setObjectName(QStringLiteral("Justert"));
    justertBoks_->setToolTip(QStringLiteral("Hver syklus fra nullpunktet som «7.  Lag samlegraf» gir den"));
    justertBoks_->hide();
    connect(justertBoks_, &QCheckBox::toggled, this, &FrmGraph::settJustert);
    tilbake_ = new QPushButton(QStringLiteral("Hele fila"), this);
    tilbake_->setObjectName(QStringLiteral("Tilbakestill"));
    tilbake_->setToolTip(QStringLiteral("Viser alt igjen"));
    connect(tilbake_, &QPushButton::clicked, this, &FrmGraph::tilbakestill);
    auto* bilde = new QPushButton(QStringLiteral("Lagre bilde …"), this);
    bilde->setObjectName(QStringLiteral("LagreBilde"));
    bilde->setToolTip(QStringLiteral("Lagrer visningen som PNG eller PDF"));
    connect(bilde, &QPushButton::clicked, this, [this] {
        const QString fil = QFileDialog::getSaveFileName(this, QStringLiteral("Lagre bilde"), QString(),
                                                         QStringLiteral("PNG-bilde (*.png);;PDF (*.pdf)"));
        if (!fil.isEmpty() && !lagreBilde(fil))
            QMessageBox::information(this, QStringLiteral("Tolvik"),
                                     QStringLiteral("Kan ikke lagre bildet %1").arg(fil));
    });
    avlesning_ = new QLabel(this);
    avlesning_->setObjectName(QStringLiteral("Avlesning"));
    Command1 = new QPushButton(QStringLiteral("Exit"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, &QDialog::reject);

    auto* knapper = new QHBoxLayout;
    knapper->addWidget(logBoks_);
    knapper->addWidget(justertBoks_);
    knapper->addWidget(tilbake_);
    knapper->addWidget(bilde);
    knapper->addSpacing(16);
    knapper->addWidget(avlesning_, 1);
    knapper->addWidget(Command1);
    auto* innhold = new QHBoxLayout;
    innhold->addWidget(Frame1, 1);
    innhold->addWidget(tabell_, 1);
    auto* hoved = new QVBoxLayout(this);
    hoved->addWidget(faner_);
    hoved->addLayout(innhold, 1);
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
    auto* nokkel = new Syklusnokkel(chart, serie_, *this);
    nokkel->hide();
    merker_ = merker;
    nokkel_ = nokkel;
    const auto oppdater = [kurve, merker, nokkel] {
        kurve->oppdater();
        merker->oppdater();
        nokkel->oppdater();
    };
    connect(chart, &QChart::plotAreaChanged, this, oppdater);
    connect(tidAkse_, &QValueAxis::rangeChanged, this, oppdater);
    connect(linAkse_, &QValueAxis::rangeChanged, this, oppdater);
    connect(logAkse_, &QLogValueAxis::rangeChanged, this, oppdater);
    visModus();
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
    const QPointF tid = tidsomrade();
    visUtsnitt(tid.x(), tid.y());
    const QSignalBlocker stille(logBoks_);
    logBoks_->setChecked(logaritmisk_);
    visModus();
}

void FrmGraph::settSykluskilde(std::function<std::optional<analysis::Syklusbilde>()> kilde)
{
    sykluskilde_ = std::move(kilde);
    faner_->setEnabled(static_cast<bool>(sykluskilde_));
}

bool FrmGraph::visSykluser(bool sykluser)
{
    if (sykluser && !bilde_) {
        if (!sykluskilde_) return false;
        bilde_ = sykluskilde_();
        if (!bilde_) return false;
        byggSykluser();
    }
    if (sykluser != sykluser_) {
        sykluser_ = sykluser;
        if (sykluser_ && width() < 1700) resize(1700, height());
        visModus();
        tilbakestill();
    }
    const QSignalBlocker stille(faner_);
    faner_->setCurrentIndex(sykluser_ ? 1 : 0);
    return true;
}

void FrmGraph::byggSykluser()
{
    std::vector<double> alle;
    for (const analysis::Syklusrader& s : bilde_->sykluser) alle.insert(alle.end(), s.verdier.begin(), s.verdier.end());
    syklusBunn_ = logBunn(alle);
    syklusPositive_ = std::any_of(alle.begin(), alle.end(), [](double v) { return v > 0; });
    const double forste = bilde_->sykluser.front().syklus, siste = bilde_->sykluser.back().syklus;
    for (const analysis::Syklusrader& s : bilde_->sykluser) {
        const auto [forst, sist] = std::minmax_element(s.minutter.begin(), s.minutter.end());
        Sykluskurve k{s.syklus,
                      {},
                      {},
                      skalaFarge(siste > forste ? (s.syklus - forste) / (siste - forste) : 0),
                      s.null,
                      std::is_sorted(s.minutter.begin(), s.minutter.end()),
                      s.minutter.empty() ? 0 : *forst,
                      s.minutter.empty() ? 0 : *sist};
        k.punkter.reserve(static_cast<qsizetype>(s.minutter.size()));
        k.logPunkter.reserve(static_cast<qsizetype>(s.minutter.size()));
        for (size_t i = 0; i < s.minutter.size(); ++i) {
            k.punkter.append(QPointF(s.minutter[i], s.verdier[i]));
            k.logPunkter.append(QPointF(s.minutter[i], s.verdier[i] > 0 ? s.verdier[i] : syklusBunn_));
        }
        sykluskurver_.push_back(std::move(k));
    }

    const QStringList overskrifter = analysis::tabellOverskrifter();
    const std::vector<analysis::Tabellrad> rader = analysis::tabell(*bilde_);
    tabell_->setColumnCount(static_cast<int>(overskrifter.size()));
    tabell_->setHorizontalHeaderLabels(overskrifter);
    tabell_->setRowCount(static_cast<int>(rader.size()));
    for (size_t r = 0; r < rader.size(); ++r) {
        for (qsizetype c = 0; c < rader[r].celler.size(); ++c) {
            auto* celle = new QTableWidgetItem(rader[r].celler[c]);
            if (rader[r].merket) celle->setBackground(QColor(255, 205, 210));
            tabell_->setItem(static_cast<int>(r), static_cast<int>(c), celle);
        }
        // The cycle's colour beside its number.
        QPixmap farge(12, 12);
        farge.fill(sykluskurver_[r].farge);
        tabell_->item(static_cast<int>(r), 0)->setIcon(QIcon(farge));
    }
    tabell_->resizeColumnsToContents();
}

void FrmGraph::settJustert(bool justert)
{
    if (justert == justert_) return;
    justert_ = justert;
    const QSignalBlocker stille(justertBoks_);
    justertBoks_->setChecked(justert_);
    visModus();
    tilbakestill();
}

void FrmGraph::visModus()
{
    if (sykluser_) {
        diagram()->setTitle(QStringLiteral("%1 – syklus %2 til %3 over hverandre")
                                .arg(bilde_->tittel)
                                .arg(bilde_->sykluser.front().syklus)
                                .arg(bilde_->sykluser.back().syklus));
        tidAkse_->setTitleText(justert_ ? QStringLiteral("Minutter fra nullpunktet i samlefila")
                                        : QStringLiteral("Minutter fra snupunktet"));
    } else {
        diagram()->setTitle(graf_.tittel);
        tidAkse_->setTitleText(QStringLiteral("Minutter etter datastart (%1)").arg(graf_.dataStart));
    }
    merker_->setVisible(!sykluser_);
    nokkel_->setVisible(sykluser_);
    nullSerie_->replace(logaritmisk_ && !sykluser_ ? nullPunkter_ : QList<QPointF>());
    tabell_->setVisible(sykluser_);
    justertBoks_->setVisible(sykluser_);
    tilbake_->setText(sykluser_ ? QStringLiteral("Hele vinduet") : QStringLiteral("Hele fila"));
    // Without a value above zero a logarithmic axis has nothing to show.
    logBoks_->setEnabled(sykluser_ ? syklusPositive_ : nullPunkter_.size() < punkter_.size());
    forklaring_->setText(sykluser_ ? syklusForklaring() : forklaring());
    avlesning_->clear();
}

std::vector<FrmGraph::Kurvedel> FrmGraph::kurver() const
{
    if (!sykluser_) return {{&kurve(), KurveFarge, 0.0, sortert_}};
    std::vector<Kurvedel> deler;
    for (const Sykluskurve& s : sykluskurver_)
        deler.push_back({logaritmisk_ ? &s.logPunkter : &s.punkter, s.farge, justert_ ? s.null : 0.0, s.sortert});
    return deler;
}

QPointF FrmGraph::minutter() const
{
    if (!sykluser_) return {forsteMinutt_, sisteMinutt_};
    // The zero minute, where the cycles meet, always in sight.
    double forst = 0, sist = 0;
    for (const Sykluskurve& s : sykluskurver_) {
        if (s.punkter.isEmpty()) continue;
        const double forskyvning = justert_ ? s.null : 0.0;
        forst = std::min(forst, s.forst - forskyvning);
        sist = std::max(sist, s.sist - forskyvning);
    }
    return {forst, sist > forst ? sist : forst + 1};
}

std::optional<QPointF> FrmGraph::verdierMellom(double fra, double til) const
{
    std::optional<QPointF> omrade;
    for (const Kurvedel& del : kurver()) {
        const auto [a, b] = synlige(del, fra, til, 0);
        for (auto p = a; p != b; ++p) {
            const double x = p->x() - del.forskyvning;
            if (x < fra || x > til) continue;
            if (!omrade) omrade = QPointF(p->y(), p->y());
            omrade = QPointF(std::min(omrade->x(), p->y()), std::max(omrade->y(), p->y()));
        }
    }
    if (!omrade) return std::nullopt;
    return logaritmisk_ ? dekader(omrade->x(), omrade->y()) : medMarg(omrade->x(), omrade->y());
}

void FrmGraph::visUtsnitt(std::optional<double> fra, std::optional<double> til)
{
    const QPointF alle = minutter();
    const double a = fra.value_or(alle.x()), b = til.value_or(alle.y());
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
    if (!chart->plotArea().contains(p)) return avlesning_->clear();
    const QPointF verdi = chart->mapToValue(p, serie_);
    avlesning_->setText(sykluser_ ? syklusAvlesning(verdi) : avlesning(verdi.x()));
}

QString FrmGraph::avlesningTekst() const { return avlesning_->text(); }

QString FrmGraph::syklusAvlesning(const QPointF& verdi) const
{
    // For each cycle its row nearest the minute; of those, the one nearest the point on the screen.
    const double skjermY = diagram()->mapToPosition(verdi, serie_).y();
    const std::vector<Kurvedel> deler = kurver();
    std::optional<size_t> beste;
    qsizetype besteRad = 0;
    double avstand = 0;
    for (size_t i = 0; i < deler.size(); ++i) {
        const Kurvedel& del = deler[i];
        const auto [a, b] = synlige(del, verdi.x(), verdi.x(), 1);
        const auto naermest = std::min_element(a, b, [&](const QPointF& p, const QPointF& q) {
            return std::abs(p.x() - del.forskyvning - verdi.x()) < std::abs(q.x() - del.forskyvning - verdi.x());
        });
        if (naermest == b) continue;
        const double d = std::abs(
            diagram()->mapToPosition(QPointF(naermest->x() - del.forskyvning, naermest->y()), serie_).y() - skjermY);
        if (!beste || d < avstand) {
            beste = i;
            besteRad = naermest - del.punkter->begin();
            avstand = d;
        }
    }
    if (!beste) return {};
    const Sykluskurve& s = sykluskurver_[*beste];
    const QPointF punkt = s.punkter.at(besteRad);  // the value itself, also where the log axis shows its floor
    return QStringLiteral("Syklus %1    %2 min fra %3    %4")
        .arg(s.syklus)
        .arg(Norsk.toString(punkt.x() - deler[*beste].forskyvning, 'f', 2),
             justert_ ? QStringLiteral("nullpunktet") : QStringLiteral("snupunktet"),
             vb::tekst(static_cast<float>(punkt.y())));
}

bool FrmGraph::lagreBilde(const QString& fil)
{
    if (!fil.endsWith(QStringLiteral(".pdf"), Qt::CaseInsensitive)) return grab().save(fil, "PNG");
    QPdfWriter pdf(fil);
    if (!pdf.setPageSize(QPageSize(MSChart->size(), QPageSize::Point)) || !pdf.setPageMargins(QMarginsF(0, 0, 0, 0)))
        return false;
    pdf.setResolution(72);  // one point a pixel: the page is the chart view's size
    pdf.setTitle(diagram()->title());
    pdf.setCreator(QStringLiteral("Tolvik"));
    QPainter maler;
    if (!maler.begin(&pdf)) return false;
    MSChart->render(&maler);
    return maler.end();
}

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

QString FrmGraph::syklusForklaring() const
{
    const QString fra = bilde_->adsorpsjon ? QStringLiteral("største verdi de 30 minuttene før snupunktet, minus Text1")
                                           : QStringLiteral("desorpsjonstoppen, minus 10 minutter");
    return QStringLiteral(
               "Syklus %1 til %2, fargene fra mørk fiolett (første) til gul (siste). Vinduet: %3 min før til "
               "%4 min etter snupunktet. ")
               .arg(bilde_->sykluser.front().syklus)
               .arg(bilde_->sykluser.back().syklus)
               .arg(Norsk.toString(bilde_->foer, 'g', 6), Norsk.toString(bilde_->etter, 'g', 6)) +
           (justert_ ? QStringLiteral("Nullpunktet som i samlefila: %1.").arg(fra)
                     : QStringLiteral("Stiplet linje: snupunktet."));
}

}  // namespace app
