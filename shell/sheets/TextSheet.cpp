#include "shell/sheets/TextSheet.h"

#include "app/desktop/Store.h"
#include "app/edits/CanvasEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/text/TextRenderer.h"
#include "kit/QirnKit.h"
#include "shell/sheets/FontMenu.h"
#include "shell/sheets/TextPreview.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace qirn {

namespace {

using Row = ControlRow<TextLook>;

constexpr SliderScale kSizes{6, 600, 1, true};
constexpr SliderScale kWidths{1, 40, 1};

/// Where each part of the look is stored.
constexpr const char* kFont = "qirn.pt.textFont";
constexpr const char* kSize = "qirn.pt.textSize";
constexpr const char* kBold = "qirn.pt.textBold";
constexpr const char* kItalic = "qirn.pt.textItalic";
constexpr const char* kAlign = "qirn.pt.textAlign";
constexpr const char* kOutline = "qirn.pt.textOutline";
constexpr const char* kOutlineWidth = "qirn.pt.textOutlineWidth";

QWidget* fontMenu(TextLook& look, QWidget* parent) {
    auto* whole = new QWidget(parent);
    auto* menu = new FontMenu(whole);
    // A family that the machine lacks shows as the one that stands in for it.
    menu->setCurrentText(TextRenderer::font(look.spec).family());
    auto* label = new QLabel(menu->accessibleName(), whole);
    label->setForegroundRole(QPalette::PlaceholderText);
    auto* across = new QHBoxLayout(whole);
    across->setContentsMargins(0, 0, 0, 0);
    across->addWidget(label);
    across->addWidget(menu, 1);
    QObject::connect(menu, &QComboBox::activated, menu, [&look, menu] {
        look.spec.fontFamily = menu->currentText();
        look.store.setText(QLatin1String(kFont), look.spec.fontFamily);
    });
    return whole;
}

/// A part of the look and the key under which it is kept.
template <auto kPart, const auto& kKey, class Value> void keep(TextLook& look, Value value) {
    look.spec.*kPart = value;
    look.store.set(QLatin1String(kKey), value);
}
template <auto kPart, class Value> Value part(const TextLook& look) {
    return look.spec.*kPart;
}

constexpr Row kRows[] = {
    {nullptr, Row::Custom{fontMenu}},
    {nullptr, Row::Slider{QT_TRANSLATE_NOOP("qirn::TextSheet", "Size"), kSizes, NumberFormat::pixels(),
                          nullptr, part<&TextSpec::size>, keep<&TextSpec::size, kSize>}},
    {nullptr, Row::Toggle{QT_TRANSLATE_NOOP("qirn::TextSheet", "Bold"), nullptr, part<&TextSpec::bold>,
                          keep<&TextSpec::bold, kBold>}},
    {nullptr, Row::Toggle{QT_TRANSLATE_NOOP("qirn::TextSheet", "Italic"), nullptr, part<&TextSpec::italic>,
                          keep<&TextSpec::italic, kItalic>}},
    {nullptr, Row::Segments{QT_TRANSLATE_NOOP("qirn::TextSheet", "Alignment"),
                            {QT_TRANSLATE_NOOP("qirn::TextSheet", "Left"),
                             QT_TRANSLATE_NOOP("qirn::TextSheet", "Center"),
                             QT_TRANSLATE_NOOP("qirn::TextSheet", "Right")},
                            nullptr,
                            part<&TextSpec::alignment>,
                            keep<&TextSpec::alignment, kAlign>}},
    {nullptr, Row::Toggle{QT_TRANSLATE_NOOP("qirn::TextSheet", "Outline (second color)"), nullptr,
                          part<&TextSpec::outline>, keep<&TextSpec::outline, kOutline>}},
    {[](const TextLook& look) { return look.spec.outline; },
     Row::Slider{QT_TRANSLATE_NOOP("qirn::TextSheet", "Width"), kWidths, NumberFormat::pixels(), nullptr,
                 part<&TextSpec::outlineWidth>, keep<&TextSpec::outlineWidth, kOutlineWidth>}},
};

} // namespace

TextLook::TextLook(Store& stored) : store(stored) {
    const auto number = [&](const char* key, double usual, double lower, double upper) {
        return std::clamp(stored.number(QLatin1String(key)).value_or(usual), lower, upper);
    };
    const auto flag = [&](const char* key, bool usual) {
        return stored.flag(QLatin1String(key)).value_or(usual);
    };
    spec.fontFamily = stored.text(QLatin1String(kFont)).value_or(spec.fontFamily);
    spec.size = number(kSize, spec.size, kSizes.lower, kSizes.upper);
    spec.bold = flag(kBold, spec.bold);
    spec.italic = flag(kItalic, spec.italic);
    spec.alignment = static_cast<int>(number(kAlign, spec.alignment, 0, 2));
    spec.outline = flag(kOutline, spec.outline);
    spec.outlineWidth = number(kOutlineWidth, spec.outlineWidth, kWidths.lower, kWidths.upper);
}

TextSheet::TextSheet(PaintModel& model, QPointF topLeft, QWidget* parent)
    : Sheet(model, tr("Add Text"),
            tr("Text goes on its own new layer in the paint color. Use Move (V) afterwards to place it "
               "exactly."),
            parent),
      topLeft_(topLeft),
      look_(model.store()),
      words_(new QPlainTextEdit(this)) {
    look_.spec.color = model.colors().primary();
    look_.spec.outlineColor = model.colors().secondary();
    words_->setAccessibleName(tr("Text"));
    words_->setTabChangesFocus(true);
    rows_ = new ControlRows<TextLook>(look_, kRows, RowBox::Form::column,
                                      {[](const char* source) { return tr(source); },
                                       [this](const std::function<void()>& change) {
                                           change();
                                           refresh();
                                       }},
                                      this);
    preview_ = new TextPreview(model.current()->doc(),
                               {static_cast<int>(topLeft.x()), static_cast<int>(topLeft.y())}, this);
    preview_->setAccessibleName(tr("Preview"));
    auto* note = new QLabel(tr("Color: paint color"), this);
    note->setForegroundRole(QPalette::PlaceholderText);

    auto* look = new QHBoxLayout;
    auto* shown = new QVBoxLayout;
    shown->addWidget(preview_, 1);
    shown->addWidget(note);
    look->addWidget(rows_);
    look->addLayout(shown, 1);
    fields().addWidget(words_);
    fields().addLayout(look, 1);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* place = addButton(tr("Place Text"), Role::standard);
    setLeastWidth(720);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        look->setSpacing(m.margin);
        shown->setSpacing(m.gap);
        words_->setFixedHeight(m.px(96));
        rows_->setFixedWidth(m.px(280));
        preview_->setMinimumHeight(m.px(240));
    });
    connect(words_, &QPlainTextEdit::textChanged, this, &TextSheet::refresh);
    connect(rows_->findChild<FontMenu*>(), &QComboBox::activated, this, &TextSheet::refresh);
    connect(place, &QPushButton::clicked, this, &TextSheet::placeText);
    refresh();
    firstField = words_;
}

void TextSheet::refresh() {
    look_.spec.text = words_->toPlainText();
    rows_->refresh();
    preview_->setText(look_.spec);
}

void TextSheet::placeText() {
    closeAnd([&model = model(), spec = look_.spec, topLeft = topLeft_] {
        CanvasEdits::placeText(model, spec, topLeft);
    });
}

} // namespace qirn
