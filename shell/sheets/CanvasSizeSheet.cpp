#include "shell/sheets/CanvasSizeSheet.h"

#include "app/edits/CanvasEdits.h"
#include "app/files/DocSession.h"
#include "app/model/PaintModel.h"
#include "app/sizes/CanvasLimits.h"
#include "kit/QirnKit.h"
#include "kit/controls/NumberField.h"

#include <array>

#include <QButtonGroup>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace qirn {

namespace {

struct AnchorRow {
    const char* name;
    const char* arrow; ///< From the middle to the place.
};

constexpr std::array<AnchorRow, 9> kAnchors = {{
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Top left"), "↖"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Top"), "↑"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Top right"), "↗"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Left"), "←"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Center"), "•"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Right"), "→"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Bottom left"), "↙"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Bottom"), "↓"},
    {QT_TRANSLATE_NOOP("qirn::CanvasSizeSheet", "Bottom right"), "↘"},
}};
constexpr int kCenter = 4;

} // namespace

CanvasSizeSheet::CanvasSizeSheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("Canvas Size"),
            tr("Adds empty space around the picture or trims it. Nothing is stretched."), parent),
      width_(new NumberField(tr("Width"), {}, NumberFormat::pixels(), this)),
      height_(new NumberField(tr("Height"), {}, NumberFormat::pixels(), this)),
      anchors_(new QButtonGroup(this)),
      warning_(paragraph()) {
    const TileGrid& grid = model.current()->doc().grid();
    width_->setValue(static_cast<double>(grid.width));
    height_->setValue(static_cast<double>(grid.height));
    auto* form = new QFormLayout;
    form->addRow(tr("Width"), width_);
    form->addRow(tr("Height"), height_);
    form->addRow(new QLabel(tr("Anchor (where the picture stays)"), this));
    form->addRow(anchorGrid());
    fields().addLayout(form);
    fields().addWidget(warning_);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* change = addButton(tr("Change Canvas"), Role::standard);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        form->setHorizontalSpacing(m.groupGap);
        form->setVerticalSpacing(m.gap);
        warning_->setFixedHeight(2 * warning_->fontMetrics().lineSpacing());
    });
    for (NumberField* field : {width_, height_}) {
        connect(field, &NumberField::valueChanged, this, [this, field](double value) {
            field->setValue(std::trunc(value));
            refresh();
        });
    }
    connect(change, &QPushButton::clicked, this, &CanvasSizeSheet::changeCanvas);
    refresh();
    width_->selectAll();
    firstField = width_;
}

QWidget* CanvasSizeSheet::anchorGrid() {
    auto* grid = new QWidget(this);
    grid->setAccessibleName(tr("Anchor"));
    auto* cells = new QGridLayout(grid);
    cells->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < static_cast<int>(kAnchors.size()); ++i) {
        const AnchorRow& row = kAnchors[static_cast<std::size_t>(i)];
        auto* button = new QPushButton(QString::fromUtf8(row.arrow), grid);
        button->setAccessibleName(tr(row.name));
        button->setToolTip(tr(row.name));
        button->setCheckable(true);
        button->setAutoExclusive(true); // one of them, for a reader as well
        button->setChecked(i == kCenter);
        anchors_->addButton(button, i);
        cells->addWidget(button, i / 3, i % 3);
    }
    cells->setColumnStretch(3, 1);
    QirnKit::followMetrics(grid, [=, this](const Metrics& m) {
        cells->setSpacing(m.tightGap);
        for (QAbstractButton* button : anchors_->buttons()) button->setFixedSize(m.railButton, m.railButton);
    });
    return grid;
}

void CanvasSizeSheet::refresh() {
    warning_->setText(CanvasLimits::warning(static_cast<int64_t>(width_->value()),
                                            static_cast<int64_t>(height_->value()),
                                            model().current()->doc().layerCount()));
}

void CanvasSizeSheet::changeCanvas() {
    const int ax = anchors_->checkedId() % 3, ay = anchors_->checkedId() / 3;
    closeAnd([&model = model(), width = static_cast<int64_t>(width_->value()),
              height = static_cast<int64_t>(height_->value()), ax,
              ay] { CanvasEdits::resizeCanvas(model, width, height, ax * 0.5, ay * 0.5); });
}

} // namespace qirn
