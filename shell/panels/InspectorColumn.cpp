#include "shell/panels/InspectorColumn.h"

#include "app/desktop/Store.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/panels/InspectorTabs.h"
#include "shell/panels/SplitGrip.h"
#include "shell/panels/layers/LayersPanel.h"

#include <algorithm>
#include <cmath>

#include <QEvent>

namespace qirn {

namespace {

const QString kWidthKey = QStringLiteral("qirn.pt.inspectorWidth");
const QString kHeightKey = QStringLiteral("qirn.pt.inspectorTabsHeight");

constexpr double kLeastWidth = 232, kMostWidth = 420; // at zoom 1, as all that is kept
constexpr double kTabsHeight = 520, kMostHeight = 4000;

double kept(const Store& store, const QString& key, double standard, double least, double most) {
    const double value = store.number(key).value_or(standard);
    return std::isfinite(value) ? std::clamp(value, least, most) : standard;
}

} // namespace

InspectorColumn::InspectorColumn(PaintModel& model, QWidget* parent)
    : ChromePanel(Surface::panel, Qt::LeftEdge, parent),
      model_(model),
      width_(kept(model.store(), kWidthKey, Metrics().panelWidth, kLeastWidth, kMostWidth)),
      tabsHeight_(kept(model.store(), kHeightKey, kTabsHeight, 0, kMostHeight)) {
    const auto keeping = [this] { keep(); };
    side_ = new SplitGrip(Qt::LeftEdge, tr("Width of the panels"),
                          {[this] { return width(); },
                           [this](int wanted) {
                               width_ =
                                   std::clamp(wanted / QirnKitHost::metrics().zoom, kLeastWidth, kMostWidth);
                               setFixedWidth(wide());
                           },
                           keeping},
                          this);
    side_->setObjectName(QStringLiteral("inspectorWidth"));
    tabs_ = new InspectorTabs(model, this);
    between_ = new SplitGrip(Qt::BottomEdge, tr("Height of the panel above the layers"),
                             {[this] { return tabs_->height(); },
                              [this](int wanted) {
                                  tabsHeight_ = wanted / QirnKitHost::metrics().zoom;
                                  tabsHeight_ = tabsHeight() / QirnKitHost::metrics().zoom;
                                  arrange();
                              },
                              keeping},
                             this);
    between_->setObjectName(QStringLiteral("inspectorTabsHeight"));
    layers_ = new LayersPanel(model, this);
    QirnKit::followMetrics(this, [this](const Metrics&) { follow(); });
}

void InspectorColumn::follow() {
    setFixedWidth(wide());
    updateGeometry();
    arrange();
}

int InspectorColumn::wide() const {
    const Metrics& m = QirnKitHost::metrics();
    return std::max({m.px(width_), m.groupGap + tabs_->minimumSizeHint().width(),
                     m.groupGap + layers_->minimumSizeHint().width() + m.groupGap});
}

QSize InspectorColumn::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {wide(), tabs_->minimumSizeHint().height() + m.groupGap + layers_->minimumSizeHint().height() +
                        m.tightGap + m.groupGap};
}

int InspectorColumn::tabsHeight() const {
    const Metrics& m = QirnKitHost::metrics();
    const int least = tabs_->minimumSizeHint().height();
    const int most = height() - (minimumSizeHint().height() - least);
    return std::clamp(m.px(tabsHeight_), least, std::max(least, most));
}

void InspectorColumn::arrange() {
    const Metrics& m = QirnKitHost::metrics();
    const int left = m.groupGap, wide = width() - left;
    const int top = m.tightGap, split = top + tabsHeight(), layers = split + m.groupGap;
    const auto place = [this](QWidget* part, int x, int y, int w, int h) {
        part->setGeometry(ChromePaint::visual(rect(), QRect(x, y, w, h)));
    };
    place(side_, 0, 0, m.px(6), height());
    place(tabs_, left, top, wide, split - top); // up to the side, where it may have a scroll bar
    place(between_, left, split, wide - m.groupGap, m.groupGap);
    place(layers_, left, layers, wide - m.groupGap, std::max(0, height() - m.groupGap - layers));
}

bool InspectorColumn::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) follow(); // a part needs more or less room
    return ChromePanel::event(event);
}

void InspectorColumn::resizeEvent(QResizeEvent* event) {
    ChromePanel::resizeEvent(event);
    arrange();
}

void InspectorColumn::keep() const {
    model_.store().set(kWidthKey, width_);
    model_.store().set(kHeightKey, tabsHeight_);
}

} // namespace qirn
