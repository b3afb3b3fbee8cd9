#include "shell/options/ViewOptions.h"

#include <cmath>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "app/canvas/CanvasView.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/IconButton.h"

namespace qirn {

ViewOptions::ViewOptions(PaintModel& model, CanvasView& view, QWidget* parent)
    : QWidget(parent),
      model_(model),
      zoom_(new QLabel(this)),
      rotation_(new ChromeSlider(tr("Rotate view"), {-180, 180, 1}, NumberFormat::degrees(), this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    const auto onView = [this, &view](auto action) {
        return guarding(model_, [&view, action] { action(view); });
    };
    const auto makeButton = [&](const char* name, const QString& text, auto action) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(QLatin1String(name));
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QPushButton::clicked, this, onView(action));
        return button;
    };
    const auto makeIconButton = [&](const char* name, Icon icon, const QString& tip, auto action) {
        auto* button = new IconButton(icon, tip, this);
        button->setObjectName(QLatin1String(name));
        connect(button, &IconButton::clicked, this, onView(action));
        return button;
    };

    zoom_->setObjectName(QStringLiteral("zoomValue"));
    zoom_->setAlignment(Qt::AlignCenter);
    row->addWidget(makeIconButton("zoomOut", Icon::minus, tr("Zoom out (−)"),
                                  [](CanvasView& canvas) { canvas.zoomStep(false); }));
    row->addWidget(zoom_);
    row->addWidget(makeIconButton("zoomIn", Icon::plus, tr("Zoom in (=)"),
                                  [](CanvasView& canvas) { canvas.zoomStep(true); }));
    row->addWidget(makeButton("fitView", tr("Fit (F)"), [](CanvasView& canvas) { canvas.fit(); }));
    row->addWidget(
        makeButton("actualPixels", tr("100% (1)"), [](CanvasView& canvas) { canvas.actualPixels(); }));
    rotation_->setObjectName(QStringLiteral("Rotate view"));
    row->addWidget(rotation_);
    row->addWidget(
        makeButton("resetRotation", tr("Reset (/)"), [](CanvasView& canvas) { canvas.setRotation(0); }));
    flip_ = makeButton("flipView", tr("Flip view (W)"), [](CanvasView& canvas) { canvas.toggleFlipView(); });
    row->addWidget(flip_);
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        zoom_->setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("6400%")) + m.tightGap);
        rotation_->setFixedWidth(m.px(200));
        flip_->setFixedWidth(fontMetrics().horizontalAdvance(tr("Unflip view (W)")) + 2 * m.controlPadding);
    });

    connect(rotation_, &ChromeSlider::valueChanged, this,
            guarding(model_, [&view](double degrees) { view.setRotation(degrees); }));
    connect(&model.status(), &CanvasStatus::changed, this, &ViewOptions::refresh);
    refresh();
}

void ViewOptions::refresh() {
    const CanvasStatus::View& view = model_.status().view();
    zoom_->setText(tr("%L1%").arg(std::lround(view.zoom * 100)));
    rotation_->setValue(std::remainder(view.rotation, 360));
    flip_->setText(view.flipped ? tr("Unflip view (W)") : tr("Flip view (W)"));
}

} // namespace qirn
