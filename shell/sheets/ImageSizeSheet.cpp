#include "shell/sheets/ImageSizeSheet.h"

#include "app/edits/CanvasEdits.h"
#include "app/files/DocSession.h"
#include "app/model/PaintModel.h"
#include "app/sizes/CanvasLimits.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeToggle.h"
#include "kit/controls/NumberField.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace qirn {

namespace {

constexpr int kPercents[] = {25, 50, 200, 300};

} // namespace

ImageSizeSheet::ImageSizeSheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("Image Size"),
            tr("Scales the whole picture (all layers). Making it bigger can soften it."), parent),
      width_(new NumberField(tr("Width"), {}, NumberFormat::pixels(), this)),
      height_(new NumberField(tr("Height"), {}, NumberFormat::pixels(), this)),
      keep_(new ChromeToggle(tr("Keep proportions"), this)),
      dpi_(new NumberField(tr("DPI"), {}, NumberFormat::upTo(2), this)),
      warning_(paragraph()) {
    const PaintDocument& doc = model.current()->doc();
    size_.width = static_cast<double>(doc.grid().width);
    size_.height = static_cast<double>(doc.grid().height);
    dpi_->setValue(doc.dpi);
    keep_->setChecked(size_.keep);

    auto* form = new QFormLayout;
    form->addRow(tr("Width"), width_);
    form->addRow(tr("Height"), height_);
    form->addRow({}, keep_);
    form->addRow({}, percentButtons());
    form->addRow(tr("DPI"), dpi_);
    fields().addLayout(form);
    fields().addWidget(warning_);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* resize = addButton(tr("Resize"), Role::standard);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        form->setHorizontalSpacing(m.groupGap);
        form->setVerticalSpacing(m.gap);
        warning_->setFixedHeight(2 * warning_->fontMetrics().lineSpacing());
    });

    const auto follow = [this](NumberField* field, void (Proportions::*set)(double)) {
        connect(field, &NumberField::valueChanged, this, [this, set](double value) {
            (size_.*set)(std::trunc(value));
            refresh();
        });
        connect(field, &NumberField::editingFinished, this, [this] { size_.endTyping(); });
    };
    follow(width_, &Proportions::setWidth);
    follow(height_, &Proportions::setHeight);
    connect(keep_, &ChromeToggle::toggled, this, [this](bool keep) {
        size_.keep = keep;
        size_.endTyping();
    });
    connect(resize, &QPushButton::clicked, this, &ImageSizeSheet::resizeImage);
    refresh();
    width_->selectAll();
    firstField = width_;
}

QWidget* ImageSizeSheet::percentButtons() {
    auto* buttons = new QWidget(this);
    auto* across = new QHBoxLayout(buttons);
    across->setContentsMargins(0, 0, 0, 0);
    for (const int percent : kPercents) {
        auto* button = new QPushButton(tr("%L1%").arg(percent), buttons);
        across->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, percent] {
            const TileGrid& grid = model().current()->doc().grid();
            const auto scaled = [percent](int64_t side) {
                return std::round(static_cast<double>(side) * percent / 100);
            };
            size_.width = scaled(grid.width);
            size_.height = scaled(grid.height);
            size_.endTyping();
            refresh();
        });
    }
    across->addStretch();
    QirnKit::followMetrics(buttons, [across](const Metrics& m) { across->setSpacing(m.gap); });
    return buttons;
}

void ImageSizeSheet::refresh() {
    width_->setValue(size_.width);
    height_->setValue(size_.height);
    warning_->setText(CanvasLimits::warning(static_cast<int64_t>(size_.width),
                                            static_cast<int64_t>(size_.height),
                                            model().current()->doc().layerCount()));
}

void ImageSizeSheet::resizeImage() {
    closeAnd([&model = model(), width = static_cast<int64_t>(size_.width),
              height = static_cast<int64_t>(size_.height),
              dpi = dpi_->value()] { CanvasEdits::resizeImage(model, width, height, dpi); });
}

} // namespace qirn
