#include "shell/sheets/ExportSheet.h"

#include "app/desktop/Store.h"
#include "app/files/DocSession.h"
#include "app/files/PictureOnDisk.h"
#include "app/model/Colors.h"
#include "app/model/PaintModel.h"
#include "app/model/PictureFiles.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace qirn {

namespace {

const QString kFormatKey = QStringLiteral("qirn.pt.exportFormat");
const QString kQualityKey = QStringLiteral("qirn.pt.jpegQuality");

/// The format of a stored name; PNG for an unknown one.
ExportFormat formatNamed(const QString& id) {
    for (const ExportFormatRow& row : kExportFormats) {
        if (id == QLatin1String(row.id)) return row.format;
    }
    return ExportFormat::png;
}

} // namespace

ExportSheet::ExportSheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("Export"),
            tr("Save a copy for sharing, printing or other apps. Your Qirn Paint document is not changed."),
            parent),
      formats_(new QListWidget(this)),
      explanation_(paragraph()),
      lossyOptions_(new QWidget(this)),
      quality_(
          new ChromeSlider(tr("Quality"), {kLeastQuality, 1, 0.01}, NumberFormat::percent(), lossyOptions_)),
      backgroundLabel_(new QLabel(tr("Background"), lossyOptions_)),
      background_(new ChromeSegments(tr("Background"), {tr("White"), tr("Black"), tr("Second color")},
                                     lossyOptions_)) {
    formats_->setAccessibleName(tr("Format"));
    formats_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    formats_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const ExportFormatRow& row : kExportFormats) formats_->addItem(displayName(row.format));
    auto* lossy = new QHBoxLayout(lossyOptions_);
    lossy->setContentsMargins(0, 0, 0, 0);
    lossy->addWidget(quality_, 1);
    lossy->addWidget(backgroundLabel_);
    lossy->addWidget(background_);
    auto* details = new QWidget(this);
    auto* detailRows = new QVBoxLayout(details);
    detailRows->setContentsMargins(0, 0, 0, 0);
    detailRows->addWidget(explanation_);
    detailRows->addWidget(lossyOptions_);
    detailRows->addStretch();

    const PaintDocument& doc = model.current()->doc();
    auto* facts =
        new QLabel(tr("%L1 × %L2 px · %L3 DPI · %Ln layer(s)", nullptr, static_cast<int>(doc.layerCount()))
                       .arg(doc.grid().width)
                       .arg(doc.grid().height)
                       .arg(doc.dpi),
                   this);
    facts->setObjectName(QStringLiteral("facts"));
    facts->setForegroundRole(QPalette::PlaceholderText);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* go = addButton(tr("Export…"), Role::standard);

    fields().addWidget(new QLabel(tr("Format"), this));
    fields().addWidget(formats_);
    fields().addWidget(details);
    fields().addWidget(facts);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        formats_->setFixedHeight(formats_->sizeHintForRow(0) * formats_->count() +
                                 2 * formats_->frameWidth());
        // As high as the longest text needs, so that the sheet keeps its size whichever format is chosen.
        const int line = explanation_->fontMetrics().lineSpacing();
        details->setFixedHeight(std::max(4 * line, 2 * line + m.groupGap + m.controlHeight));
        for (QLayout* rows : std::initializer_list<QLayout*>{lossy, detailRows}) rows->setSpacing(m.groupGap);
    });

    const ExportFormat last = formatNamed(model.store().text(kFormatKey).value_or(QString()));
    formats_->setCurrentRow(static_cast<int>(last));
    quality_->setValue(model.store().number(kQualityKey).value_or(kUsualQuality));
    background_->setChosen(0);
    connect(formats_, &QListWidget::currentRowChanged, this, [this] {
        this->model().store().setText(kFormatKey, QLatin1String(rowOf(format()).id));
        refresh();
    });
    connect(quality_, &ChromeSlider::valueChanged, this,
            [this](double quality) { this->model().store().set(kQualityKey, quality); });
    connect(formats_, &QListWidget::itemDoubleClicked, this, &ExportSheet::exportPicture);
    connect(go, &QPushButton::clicked, this, &ExportSheet::exportPicture);
    refresh();
    firstField = formats_;
}

ExportFormat ExportSheet::format() const {
    return static_cast<ExportFormat>(std::max(formats_->currentRow(), 0));
}

PaintColor ExportSheet::background() const {
    switch (background_->chosen()) {
    case 1:
        return PaintColor::black();
    case 2:
        return model().colors().secondary();
    default:
        return PaintColor::white();
    }
}

void ExportSheet::refresh() {
    explanation_->setText(explanation(format()));
    const ExportFormatRow& row = rowOf(format());
    lossyOptions_->setVisible(row.asksQuality || row.asksBackground);
    quality_->setVisible(row.asksQuality);
    for (QWidget* part : std::initializer_list<QWidget*>{backgroundLabel_, background_})
        part->setVisible(row.asksBackground);
}

void ExportSheet::exportPicture() {
    closeAnd([&model = model(), format = format(), quality = quality_->value(), color = background()] {
        model.files().exportPicture(format, quality, color);
    });
}

} // namespace qirn
