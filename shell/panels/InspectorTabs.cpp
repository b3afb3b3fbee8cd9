#include "shell/panels/InspectorTabs.h"

#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/ScrollColumn.h"
#include "shell/panels/brush/BrushPanel.h"
#include "shell/panels/color/ColorPanel.h"
#include "shell/panels/palettes/PalettePanel.h"

#include <vector>

#include <QGuiApplication>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace qirn {

namespace {

struct TabRow {
    InspectorTab tab;
    const char* title; // English source text
    QWidget* (*make)(PaintModel& model, QWidget* parent);
};

template <class Panel> QWidget* make(PaintModel& model, QWidget* parent) {
    return new Panel(model, parent);
}

constexpr TabRow kTabs[] = {
    {InspectorTab::color, QT_TRANSLATE_NOOP("qirn::InspectorTabs", "Color"), make<ColorPanel>},
    {InspectorTab::brush, QT_TRANSLATE_NOOP("qirn::InspectorTabs", "Brush"), make<BrushPanel>},
    {InspectorTab::palettes, QT_TRANSLATE_NOOP("qirn::InspectorTabs", "Palettes"), make<PalettePanel>},
};

class Bar final : public QTabBar {
public:
    using QTabBar::QTabBar;

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); } // which turns no page by chance
};

/// From the side of the window, up to which the tabs reach; layouts do not mirror their margins.
QMargins gapAtTheSide() {
    const int gap = QirnKitHost::metrics().groupGap;
    return QGuiApplication::isRightToLeft() ? QMargins(gap, 0, 0, 0) : QMargins(0, 0, gap, 0);
}

/// Holds a panel, once it is filled.
class Page final : public ScrollColumn {
public:
    explicit Page(QWidget* parent) : ScrollColumn(new QWidget, parent), column_(new QVBoxLayout(widget())) {
        QirnKit::followMetrics(this, [this](const Metrics& m) {
            column_->setContentsMargins(gapAtTheSide() + QMargins(0, m.groupGap, 0, m.tightGap));
        });
    }

    bool isEmpty() const { return column_->isEmpty(); }
    void fill(QWidget* panel) {
        column_->addWidget(panel);
        panel->show();
    }

    QSize minimumSizeHint() const override { return {ScrollColumn::minimumSizeHint().width(), 0}; }

private:
    QVBoxLayout* column_;
};

/// Puts the controls of a panel right behind a widget in the order of the Tab key, not at the end as new ones are.
void followInTabOrder(QWidget* before, QWidget* panel) {
    std::vector<QWidget*> parts;
    for (QWidget* next = before->nextInFocusChain(); next != before; next = next->nextInFocusChain())
        if (panel->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus)) parts.push_back(next);
    for (QWidget* part : parts) {
        QWidget::setTabOrder(before, part);
        before = part;
    }
}

} // namespace

InspectorTabs::InspectorTabs(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      bar_(new Bar(this)),
      pages_(new QStackedWidget(this)) {
    bar_->setObjectName(QStringLiteral("inspectorTabs"));
    bar_->setAccessibleName(tr("Panels"));
    bar_->setFocusPolicy(Qt::TabFocus);
    bar_->setDrawBase(false);
    bar_->setUsesScrollButtons(false);
    for (const TabRow& row : kTabs) {
        bar_->addTab(tr(row.title));
        pages_->addWidget(new Page(pages_));
    }
    auto* head = new QHBoxLayout;
    head->addWidget(bar_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(head);
    column->addWidget(pages_, 1);
    QirnKit::followMetrics(this, [head](const Metrics&) { head->setContentsMargins(gapAtTheSide()); });
    connect(bar_, &QTabBar::currentChanged, this, guarding(model, [this](int index) {
                model_.setInspectorTab(kTabs[static_cast<std::size_t>(index)].tab);
            }));
    connect(&model, &PaintModel::changed, this, &InspectorTabs::refresh);
    refresh();
}

QSize InspectorTabs::minimumSizeHint() const {
    return {layout()->minimumSize().width(), bar_->sizeHint().height() + QirnKitHost::metrics().px(96)};
}

void InspectorTabs::refresh() {
    int index = 0;
    for (int i = 0; i < bar_->count(); ++i)
        if (kTabs[static_cast<std::size_t>(i)].tab == model_.inspectorTab()) index = i;
    auto* page = static_cast<Page*>(pages_->widget(index));
    if (page->isEmpty()) {
        page->fill(kTabs[static_cast<std::size_t>(index)].make(model_, page));
        followInTabOrder(bar_, page);
    }
    const QSignalBlocker quiet(bar_);
    bar_->setCurrentIndex(index);
    pages_->setCurrentIndex(index);
}

} // namespace qirn
