#include "shell/panels/ColorChooser.h"

#include "app/model/Colors.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/panels/ColorPlane.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace qirn {

ColorChooser::ColorChooser(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      plane_(new ColorPlane(this)),
      hex_(new QLineEdit(this)) {
    auto* label = new QLabel(tr("Hex"), this);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setBuddy(hex_);
    hex_->setPlaceholderText(QStringLiteral("#RRGGBB"));
    hex_->setToolTip(tr("Type a color like #B3001B and press Return"));
    hex_->setAccessibleName(tr("Hex"));
    hex_->setObjectName(QStringLiteral("hex"));
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(hex_, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(plane_);
    column->addLayout(row);
    QirnKit::followMetrics(this, [row, column](const Metrics& m) {
        row->setSpacing(m.gap);
        column->setSpacing(m.groupGap);
    });

    connect(plane_, &ColorPlane::changed, this, &ColorChooser::push);
    connect(hex_, &QLineEdit::returnPressed, this, &ColorChooser::takeHex);
    connect(hex_, &QLineEdit::editingFinished, this,
            [this] { hex_->setText(model_.colors().primary().hex()); });
    connect(&model, &PaintModel::changed, this, &ColorChooser::refresh);
    refresh();
}

void ColorChooser::push() {
    const HueColor& color = plane_->color();
    const PaintColor chosen = PaintColor::fromHSV(color.h, color.s, color.v);
    lastSet_ = chosen.hex();
    model_.colors().setPrimary(chosen);
}

void ColorChooser::takeHex() {
    const auto typed = PaintColor::fromHex(hex_->text());
    if (!typed) return QApplication::beep();
    lastSet_.clear();
    model_.colors().pick(*typed, Colors::AddRecent::yes);
}

void ColorChooser::refresh() {
    const QString hex = model_.colors().primary().hex();
    if (!hex_->hasFocus() || hex != lastSet_) hex_->setText(hex);
    if (hex == lastSet_) return;
    lastSet_ = hex;
    // A gray has no hue and black no saturation: the plane keeps the ones it had.
    const PaintColor::HSB read = model_.colors().primary().hsb();
    HueColor shown = plane_->color();
    shown.v = read.b;
    if (read.b > 0) shown.s = read.s;
    if (read.b > 0 && read.s > 0) shown.h = read.h;
    plane_->setColor(shown);
}

} // namespace qirn
