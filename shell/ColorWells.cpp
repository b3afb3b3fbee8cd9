#include "shell/ColorWells.h"

#include <QPainter>

#include "app/desktop/HostWords.h"
#include "app/model/PaintModel.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"

namespace qirn {

namespace {
constexpr QRect kPrimary{0, 0, 30, 30};
constexpr QRect kSecondary{16, 16, 24, 24};
constexpr QSize kButton{20, 20};
constexpr int kWidth = 40;
constexpr int kButtonTop = 46;
} // namespace

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
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    // A gap of the panel's colour keeps any colour apart from its ring and from the square behind.
    ChromePaint::box(painter, rect(), Metrics::kRadius, c.panel,
                     underMouse() && isEnabled() ? c.text : c.edgeHover);
    ChromePaint::box(painter, QRectF(rect()).adjusted(2, 2, -2, -2), Metrics::kRadiusSmall, color_);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), Metrics::kRadius);
}

ColorWells::ColorWells(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      secondary_(new ColorSquare(tr("Second color (click to swap, X)"), this)),
      primary_(new ColorSquare(tr("Paint color"), this)) {
    setFixedSize(kWidth, kButtonTop + kButton.height());
    primary_->setGeometry(kPrimary);
    primary_->setFocusPolicy(Qt::NoFocus); // it only shows
    primary_->setObjectName(QStringLiteral("primaryColor"));
    secondary_->setGeometry(kSecondary);
    secondary_->setFocusPolicy(Qt::TabFocus);
    secondary_->setObjectName(QStringLiteral("secondaryColor"));
    connect(secondary_, &ColorSquare::clicked, this, [this] { model_.swapColors(); });

    auto* swap = new IconButton(Icon::swap, tr("Swap colors (X)"), this);
    auto* reset = new IconButton(Icon::blackWhite, hostWords(tr("Black and white (⇧D)")), this);
    swap->setObjectName(QStringLiteral("swapColors"));
    reset->setObjectName(QStringLiteral("defaultColors"));
    for (IconButton* button : {swap, reset}) {
        button->setIconSize({Metrics::kIconSmall, Metrics::kIconSmall});
        button->resize(kButton);
    }
    swap->move(0, kButtonTop);
    reset->move(width() - kButton.width(), kButtonTop);
    connect(swap, &IconButton::clicked, this, [this] { model_.swapColors(); });
    connect(reset, &IconButton::clicked, this, [this] { model_.defaultColors(); });
    connect(&model, &PaintModel::changed, this, &ColorWells::refresh);
    refresh();
}

void ColorWells::refresh() {
    primary_->showColor(shownColor(model_.primary()));
    secondary_->showColor(shownColor(model_.secondary()));
}

} // namespace qirn
