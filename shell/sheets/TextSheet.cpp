#include "shell/sheets/TextSheet.h"

#include "app/desktop/Failures.h"
#include "app/desktop/Store.h"
#include "app/edits/CanvasEdits.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/text/TextRenderer.h"
#include "kit/QirnKit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace qirn {

namespace {

QDoubleSpinBox* pixelBox(double lower, double upper, const QString& name, QWidget* parent) {
    auto* box = new QDoubleSpinBox(parent);
    box->setRange(lower, upper);
    box->setDecimals(0);
    box->setSuffix(QStringLiteral(" px"));
    box->setAccessibleName(name);
    return box;
}

} // namespace

TextSheet::TextSheet(PaintModel& model, QPointF topLeft, QWidget* parent)
    : Sheet(model, tr("Add Text"),
            tr("Text goes on its own new layer in the paint color. Use Move (V) afterwards to place it "
               "exactly."),
            parent),
      topLeft_(topLeft) {
    words_ = new QPlainTextEdit(this);
    words_->setAccessibleName(tr("Text"));
    family_ = new QComboBox(this);
    family_->addItems(QFontDatabase::families());
    size_ = pixelBox(6, 600, tr("Size"), this);
    bold_ = new QCheckBox(tr("Bold"), this);
    italic_ = new QCheckBox(tr("Italic"), this);
    alignment_ = new QComboBox(this);
    alignment_->addItems({tr("Left"), tr("Center"), tr("Right")});
    alignment_->setAccessibleName(tr("Alignment"));
    outline_ = new QCheckBox(tr("Outline (second color)"), this);
    outlineWidth_ = pixelBox(1, 40, tr("Width"), this);
    preview_ = new QLabel(this);
    preview_->setAlignment(Qt::AlignCenter);
    preview_->setAccessibleName(tr("Preview"));

    auto* form = new QFormLayout;
    form->addRow(tr("Font"), family_);
    auto* look = new QHBoxLayout;
    for (QWidget* control : std::initializer_list<QWidget*>{size_, bold_, italic_, alignment_})
        look->addWidget(control);
    look->addStretch();
    form->addRow(tr("Size"), look);
    auto* edge = new QHBoxLayout;
    edge->addWidget(outline_);
    edge->addWidget(outlineWidth_);
    edge->addStretch();
    form->addRow(QString(), edge);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* place = addButton(tr("Place Text"), Role::standard);
    fields().addWidget(words_);
    fields().addLayout(form);
    fields().addWidget(preview_);

    loadLook();
    connect(words_, &QPlainTextEdit::textChanged, this, &TextSheet::refreshPreview);
    for (QComboBox* box : {family_, alignment_})
        connect(box, &QComboBox::currentIndexChanged, this, &TextSheet::refreshPreview);
    for (QDoubleSpinBox* box : {size_, outlineWidth_})
        connect(box, &QDoubleSpinBox::valueChanged, this, &TextSheet::refreshPreview);
    for (QCheckBox* box : {bold_, italic_, outline_})
        connect(box, &QCheckBox::toggled, this, &TextSheet::refreshPreview);
    connect(place, &QPushButton::clicked, this, guarding(model, [this] { placeText(); }));
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        words_->setFixedHeight(m.px(96));
        preview_->setFixedHeight(m.px(140));
        refreshPreview();
    });
    firstField = words_;
}

TextSpec TextSheet::spec() const {
    TextSpec spec;
    spec.text = words_->toPlainText();
    spec.fontFamily = family_->currentText();
    spec.size = size_->value();
    spec.bold = bold_->isChecked();
    spec.italic = italic_->isChecked();
    spec.alignment = alignment_->currentIndex();
    spec.color = model().colors().primary();
    spec.outline = outline_->isChecked();
    spec.outlineColor = model().colors().secondary();
    spec.outlineWidth = outlineWidth_->value();
    return spec;
}

void TextSheet::loadLook() {
    const Store& stored = model().store();
    TextSpec look;
    look.fontFamily = stored.text(QStringLiteral("qirn.pt.textFont")).value_or(look.fontFamily);
    const auto number = [&](const char* key, double usual, double least, double most) {
        return std::clamp(stored.number(QLatin1String(key)).value_or(usual), least, most);
    };
    look.size = number("qirn.pt.textSize", look.size, size_->minimum(), size_->maximum());
    look.bold = stored.flag(QStringLiteral("qirn.pt.textBold")).value_or(look.bold);
    look.italic = stored.flag(QStringLiteral("qirn.pt.textItalic")).value_or(look.italic);
    look.alignment = static_cast<int>(number("qirn.pt.textAlign", look.alignment, 0, 2));
    look.outline = stored.flag(QStringLiteral("qirn.pt.textOutline")).value_or(look.outline);
    look.outlineWidth = number("qirn.pt.textOutlineWidth", look.outlineWidth, outlineWidth_->minimum(),
                               outlineWidth_->maximum());
    // Where the stored family is not installed, the list shows the font that is used instead.
    family_->setCurrentText(TextRenderer::font(look).family());
    size_->setValue(look.size);
    bold_->setChecked(look.bold);
    italic_->setChecked(look.italic);
    alignment_->setCurrentIndex(look.alignment);
    outline_->setChecked(look.outline);
    outlineWidth_->setValue(look.outlineWidth);
}

void TextSheet::saveLook() const {
    Store& store = model().store();
    const TextSpec look = spec();
    store.setText(QStringLiteral("qirn.pt.textFont"), look.fontFamily);
    store.set(QStringLiteral("qirn.pt.textSize"), look.size);
    store.set(QStringLiteral("qirn.pt.textBold"), look.bold);
    store.set(QStringLiteral("qirn.pt.textItalic"), look.italic);
    store.set(QStringLiteral("qirn.pt.textAlign"), look.alignment);
    store.set(QStringLiteral("qirn.pt.textOutline"), look.outline);
    store.set(QStringLiteral("qirn.pt.textOutlineWidth"), look.outlineWidth);
}

void TextSheet::refreshPreview() {
    outlineWidth_->setEnabled(outline_->isChecked());
    if (!contained([this] { showPreview(); })) preview_->clear();
}

void TextSheet::showPreview() {
    const auto rendered = TextRenderer::render(spec());
    if (!rendered) return preview_->clear();
    const double ratio = devicePixelRatioF();
    QImage image = rendered->buffer->makeImage();
    const QSize room = preview_->size() * ratio;
    if (image.width() > room.width() || image.height() > room.height()) {
        image = image.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    image.setDevicePixelRatio(ratio);
    preview_->setPixmap(QPixmap::fromImage(image));
}

void TextSheet::placeText() {
    saveLook();
    closeAnd([&model = model(), spec = spec(), topLeft = topLeft_] {
        CanvasEdits::placeText(model, spec, topLeft);
    });
}

} // namespace qirn
