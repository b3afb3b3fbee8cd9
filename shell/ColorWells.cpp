#include "shell/ColorWells.h"

#include "app/desktop/HostWords.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"

#include <QPainter>

namespace qirn {

ColorSquare::ColorSquare(const QString& tip, QWidget* parent) : QAbstractButton(parent) {
    setToolTip(tip);
    setAttribute(Qt::WA_Hover);
}

void ColorSquare::showColor(const QColor& color) {
    if (color_ == color) return;
    color_ = color;
    setAccessibleName(toolTip() + u' ' + color.name());
    update();
}

void ColorSquare::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    // A gap of the panel's color keeps any color apart from its ring and from the square behind.
    ChromePaint::box(painter, rect(), m.radius, c.panel, underMouse() && isEnabled() ? c.text : c.edgeHover);
    ChromePaint::box(painter, QRectF(rect()).adjusted(m.inset, m.inset, -m.inset, -m.inset), m.smallRadius,
                     color_);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.radius);
}

ColorWells::ColorWells(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      secondary_(new ColorSquare(tr("Second color (click to swap, X)"), this)),
      primary_(new ColorSquare(tr("Paint color"), this)) {
    primary_->setFocusPolicy(Qt::TabFocus);
    primary_->setObjectName(QStringLiteral("primaryColor"));
    secondary_->setFocusPolicy(Qt::TabFocus);
    secondary_->setObjectName(QStringLiteral("secondaryColor"));
    setTabOrder(primary_, secondary_); // which lies below it
    connect(primary_, &ColorSquare::pressed, this,
            guarding(model, [this] { model_.revealInspectorTab(InspectorTab::color); }));
    connect(secondary_, &ColorSquare::clicked, this,
            guarding(model, [this] { model_.colors().swapColors(); }));

    auto* swap = new IconButton(Icon::swap, tr("Swap colors (X)"), this, &Metrics::smallIcon);
    auto* reset =
        new IconButton(Icon::blackWhite, hostWords(tr("Black and white (⇧D)")), this, &Metrics::smallIcon);
    swap->setObjectName(QStringLiteral("swapColors"));
    reset->setObjectName(QStringLiteral("defaultColors"));
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        const int side = 2 * m.smallButton;
        const int top = side + m.px(6);
        setFixedSize(side, top + m.smallButton);
        primary_->setGeometry(0, 0, m.px(30), m.px(30));
        secondary_->setGeometry(m.margin, m.margin, side - m.margin, side - m.margin);
        swap->setGeometry(0, top, m.smallButton, m.smallButton);
        reset->setGeometry(m.smallButton, top, m.smallButton, m.smallButton);
    });
    connect(swap, &IconButton::clicked, this, guarding(model, [this] { model_.colors().swapColors(); }));
    connect(reset, &IconButton::clicked, this, guarding(model, [this] { model_.colors().defaultColors(); }));
    connect(&model, &PaintModel::changed, this, &ColorWells::refresh);
    refresh();
}

void ColorWells::refresh() {
    primary_->showColor(shownColor(model_.colors().primary()));
    secondary_->showColor(shownColor(model_.colors().secondary()));
}

} // namespace qirn
