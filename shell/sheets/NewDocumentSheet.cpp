#include "shell/sheets/NewDocumentSheet.h"

#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/sizes/CanvasLimits.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeSegments.h"
#include "kit/controls/NumberField.h"

#include <algorithm>

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTreeWidget>

namespace qirn {

namespace {

constexpr int kPresetRole = Qt::UserRole; // the number of the preset; headings have none

NumberFormat formatOf(LengthUnit unit) {
    const LengthUnitRow& row = rowOf(unit);
    return NumberFormat::upTo(row.decimals, row.suffix);
}

QString presetText(const char* text) {
    return QCoreApplication::translate("qirn::CanvasPresets", text);
}

/// For all words of a list with two columns.
int widthOf(const QTreeWidget& list) {
    const QAbstractItemView& rows = list; // whose hints are public
    return rows.sizeHintForColumn(0) + rows.sizeHintForColumn(1) +
           list.verticalScrollBar()->sizeHint().width() + 2 * list.frameWidth();
}

std::optional<PaintColor> colorOf(NewBackground background, const Colors& colors) {
    switch (background) {
    case NewBackground::clear:
        return std::nullopt;
    case NewBackground::secondary:
        return colors.secondary();
    case NewBackground::black:
        return PaintColor::black();
    default:
        return PaintColor::white();
    }
}

} // namespace

NewDocumentSheet::NewDocumentSheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("New Canvas"),
            tr("Pick a size or type your own. Print sizes are at 300 DPI (sharp prints)."), parent),
      presets_(new QTreeWidget(this)),
      name_(new QLineEdit(this)),
      width_(new NumberField(tr("Width"), {}, formatOf(shown_), this)),
      height_(new NumberField(tr("Height"), {}, formatOf(shown_), this)),
      unit_(new QComboBox(this)),
      swap_(new QPushButton(tr("Swap width ↔ height"), this)),
      dpi_(new NumberField(tr("DPI"), {}, NumberFormat::upTo(2), this)),
      background_(new ChromeSegments(
          tr("Background"), {tr("White"), tr("Transparent"), tr("Second color"), tr("Black")}, this)),
      summary_(paragraph()),
      remark_(paragraph()) {
    if (model.prefs().newDocTransparent) canvas_.background = NewBackground::clear;
    listPresets();
    auto* across = new QHBoxLayout;
    across->addWidget(presets_, 1);
    across->addWidget(customPanel());
    fields().addLayout(across);
    addButton(tr("Cancel"), Role::cancel);
    create_ = addButton(tr("Create"), Role::standard);
    setLeastWidth(720);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        across->setSpacing(m.margin);
        presets_->setMinimumSize(widthOf(*presets_), m.px(330));
        for (int group = 0; group < presets_->topLevelItemCount(); ++group)
            presets_->topLevelItem(group)->setFont(0, ChromeFont::caption());
    });
    followFields();
    refresh();
    name_->selectAll();
    firstField = name_;
}

void NewDocumentSheet::listPresets() {
    presets_->setAccessibleName(tr("Presets"));
    presets_->setColumnCount(2);
    presets_->setHeaderHidden(true);
    presets_->setIndentation(0);
    presets_->setRootIsDecorated(false);
    presets_->setItemsExpandable(false);
    presets_->setUniformRowHeights(true);
    presets_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    presets_->header()->setStretchLastSection(false);
    presets_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    presets_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    const auto all = DocPreset::all();
    QTreeWidgetItem* heading = nullptr;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (i == 0 || qstrcmp(all[i].group, all[i - 1].group) != 0) {
            heading = new QTreeWidgetItem(presets_, {presetText(all[i].group)});
            heading->setFlags(Qt::ItemIsEnabled);
            heading->setFirstColumnSpanned(true);
        }
        auto* item = new QTreeWidgetItem(
            heading, {presetText(all[i].name), QStringLiteral("%1 × %2").arg(all[i].w).arg(all[i].h)});
        item->setData(0, kPresetRole, static_cast<int>(i));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    }
    presets_->expandAll();
}

QWidget* NewDocumentSheet::customPanel() {
    auto* panel = new QWidget(this);
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    auto* heading = new QLabel(tr("Custom"), panel);
    form->addRow(heading);
    name_->setAccessibleName(tr("Name"));
    unit_->setAccessibleName(tr("Units"));
    for (const LengthUnitRow& row : kLengthUnits) unit_->addItem(tr(row.label));
    form->addRow(tr("Name"), name_);
    form->addRow(tr("Width"), width_);
    form->addRow(tr("Height"), height_);
    form->addRow(tr("Units"), unit_);
    form->addRow({}, swap_);
    form->addRow(tr("DPI"), dpi_);
    form->addRow(new QLabel(tr("Background"), panel));
    form->addRow(background_);
    form->addRow(summary_);
    form->addRow(remark_);
    summary_->setForegroundRole(QPalette::PlaceholderText);
    QirnKit::followMetrics(panel, [=, this](const Metrics& m) {
        heading->setFont(ChromeFont::caption());
        form->setHorizontalSpacing(m.groupGap);
        form->setVerticalSpacing(m.gap);
        // The sheet keeps its size while a remark comes and goes.
        remark_->setFixedHeight(3 * remark_->fontMetrics().lineSpacing());
        panel->setFixedWidth(std::max(m.px(340), background_->sizeHint().width()));
    });
    return panel;
}

void NewDocumentSheet::followFields() {
    const auto follow = [this](NumberField* field, void (NewCanvas::*set)(double)) {
        connect(field, &NumberField::valueChanged, this, [this, set](double value) {
            (canvas_.*set)(value);
            refresh();
        });
    };
    follow(width_, &NewCanvas::setWidth);
    follow(height_, &NewCanvas::setHeight);
    follow(dpi_, &NewCanvas::setDpi);
    connect(name_, &QLineEdit::textEdited, this, [this](const QString& text) { canvas_.name = text; });
    connect(unit_, &QComboBox::activated, this, [this](int unit) {
        canvas_.setUnit(kLengthUnits[static_cast<std::size_t>(unit)].unit);
        refresh();
    });
    connect(swap_, &QPushButton::clicked, this, [this] {
        canvas_.swapSides();
        refresh();
    });
    connect(background_, &ChromeSegments::picked, this,
            [this](int chosen) { canvas_.background = static_cast<NewBackground>(chosen); });
    // The selection and not the current row, which the list also gives itself when it gets the keyboard.
    connect(presets_, &QTreeWidget::itemSelectionChanged, this, &NewDocumentSheet::takePreset);
    connect(presets_, &QTreeWidget::itemDoubleClicked, this, [this](const QTreeWidgetItem* item) {
        if (item->data(0, kPresetRole).isValid()) create_->click();
    });
    connect(create_, &QPushButton::clicked, this, &NewDocumentSheet::create);
}

void NewDocumentSheet::takePreset() {
    const auto chosen = presets_->selectedItems();
    if (chosen.isEmpty()) return;
    canvas_.apply(DocPreset::all()[chosen.front()->data(0, kPresetRole).toUInt()]);
    refresh();
}

void NewDocumentSheet::refresh() {
    if (name_->text() != canvas_.name) name_->setText(canvas_.name);
    unit_->setCurrentIndex(static_cast<int>(canvas_.unit()));
    for (NumberField* field : {width_, height_}) {
        if (shown_ != canvas_.unit()) field->setFormat(formatOf(canvas_.unit())); // ends what is typed
        field->setStep(canvas_.unit() == LengthUnit::inches ? 0.25 : 1);
    }
    shown_ = canvas_.unit();
    width_->setValue(canvas_.width());
    height_->setValue(canvas_.height());
    dpi_->setValue(canvas_.dpi());
    background_->setChosen(static_cast<int>(canvas_.background));

    const int64_t w = canvas_.pixelsW(), h = canvas_.pixelsH();
    const double megapixels = static_cast<double>(w) * static_cast<double>(h) / 1e6;
    summary_->setText(tr("%L1 × %L2 pixels · %L3 megapixels").arg(w).arg(h).arg(megapixels, 0, 'f', 1));
    remark_->setText(canvas_.valid() ? CanvasLimits::warning(w, h)
                                     : tr("Width and height must be 1 to 30,000 pixels."));
    create_->setEnabled(canvas_.valid());

    const DocPreset* preset = canvas_.chosen();
    if (preset && (preset->w != w || preset->h != h || preset->dpi != canvas_.dpi())) {
        const QSignalBlocker quiet(presets_);
        presets_->clearSelection(); // it is another size now
    }
}

void NewDocumentSheet::create() {
    closeAnd([&model = model(), canvas = canvas_] {
        model.pictures().newDocument(canvas.pixelsW(), canvas.pixelsH(), canvas.dpi(),
                                     colorOf(canvas.background, model.colors()), canvas.name);
    });
}

} // namespace qirn
