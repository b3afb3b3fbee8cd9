#include "shell/panels/color/ColorPanel.h"

#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeNote.h"
#include "kit/controls/ChromeToggle.h"
#include "kit/controls/IconButton.h"
#include "kit/rows/ControlRows.h"
#include "shell/panels/color/ColorWheel.h"
#include "shell/panels/color/HexField.h"
#include "shell/panels/color/SwatchGrid.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace qirn {

namespace {

using Row = ControlRow<EditedColor>;

bool showsHue(const EditedColor& color) {
    return !color.showsRGB;
}
bool showsRGB(const EditedColor& color) {
    return color.showsRGB;
}

template <double HueColor::*kPart>
constexpr Row::Slider hueSlider(const char* label, double steps, const NumberFormat& format) {
    return {label,
            {0, 1, 1 / steps},
            format,
            nullptr,
            [](const EditedColor& color) { return color.hue().*kPart; },
            [](EditedColor& color, double value) {
                HueColor hue = color.hue();
                hue.*kPart = value;
                color.setHue(hue);
            }};
}

template <double PaintColor::*kChannel> constexpr Row::Slider channelSlider(const char* label) {
    return {label,
            {0, 1, 1 / 255.0},
            {255, 0, ""},
            nullptr,
            [](const EditedColor& color) { return color.paintColor().*kChannel; },
            [](EditedColor& color, double value) { color.setChannel(kChannel, value); }};
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::ColorPanel", text)

constexpr Row kSliders[] = {
    {showsHue, hueSlider<&HueColor::h>(TEXT("Hue"), 360, {360, 0, "°"})},
    {showsHue, hueSlider<&HueColor::s>(TEXT("Saturation"), 100, NumberFormat::percent())},
    {showsHue, hueSlider<&HueColor::v>(TEXT("Brightness"), 100, NumberFormat::percent())},
    {showsRGB, channelSlider<&PaintColor::r>(TEXT("Red"))},
    {showsRGB, channelSlider<&PaintColor::g>(TEXT("Green"))},
    {showsRGB, channelSlider<&PaintColor::b>(TEXT("Blue"))},
};

RowBox::Dress dressFor(PaintModel& model) {
    return {[](const char* source) { return ColorPanel::tr(source); },
            [&model](const std::function<void()>& body) { guarded(model, body); }};
}

std::vector<PaletteColor> withoutNames(const std::vector<PaintColor>& colors) {
    std::vector<PaletteColor> result;
    for (const PaintColor& color : colors) result.push_back({color, {}});
    return result;
}

} // namespace

ColorPanel::ColorPanel(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      color_(model),
      wheel_(new ColorWheel(this)),
      sliders_(new ControlRows<EditedColor>(color_, kSliders, RowBox::Form::column, dressFor(model), this)),
      hex_(new HexField(model, this)) {
    auto* label = new QLabel(tr("Hex"), this);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setBuddy(hex_);
    auto* rgb = new ChromeToggle(tr("RGB"), this);
    rgb->setObjectName(QStringLiteral("rgb"));
    rgb->setToolTip(tr("Sliders of red, green and blue"));
    rgb->setFocusPolicy(Qt::TabFocus);
    recentTitle_ = new ChromeNote(tr("Recent colors"), this, ChromeFont::caption);
    recent_ =
        new SwatchGrid(QStringLiteral("recentColors"), tr("Recent colors"), SwatchGrid::Editing::no, this);
    paletteTitle_ = new ChromeNote({}, this, ChromeFont::caption);
    auto* add =
        new IconButton(Icon::plus, tr("Add this color to the current palette"), this, &Metrics::smallIcon);
    add->setObjectName(QStringLiteral("addToPalette"));
    palette_ = new SwatchGrid(QStringLiteral("paletteColors"), tr("Colors of the palette"),
                              SwatchGrid::Editing::no, this);

    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(hex_, 1);
    row->addWidget(rgb);
    auto* head = new QHBoxLayout;
    head->addWidget(paletteTitle_, 1);
    head->addWidget(add);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(wheel_, 1);
    column->addWidget(sliders_);
    column->addLayout(row);
    column->addWidget(recentTitle_);
    column->addWidget(recent_);
    column->addLayout(head);
    column->addWidget(palette_);
    column->addStretch();
    QirnKit::followMetrics(this, [row, column](const Metrics& m) {
        row->setSpacing(m.gap);
        column->setSpacing(m.gap);
    });

    connect(wheel_, &ColorWheel::changed, this, guarding(model, [this] { color_.setHue(wheel_->color()); }));
    connect(rgb, &ChromeToggle::toggled, this, guarding(model, [this](bool on) {
                color_.showsRGB = on;
                sliders_->refresh();
            }));
    connect(add, &IconButton::clicked, this,
            guarding(model, [this] { model_.palettes().addToPalette(model_.colors().primary()); }));
    for (const SwatchGrid* grid : {recent_, palette_})
        connect(grid, &SwatchGrid::picked, this, guarding(model, [this, grid](int index) {
                    const PaintColor color = grid->colors()[static_cast<std::size_t>(index)].color;
                    model_.colors().pick(color, Colors::AddRecent::no);
                }));
    connect(&model, &PaintModel::changed, this, &ColorPanel::refresh);
}

void ColorPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    guarded(model_, [this] { refresh(); });
}

void ColorPanel::refresh() {
    if (!isVisible()) return;
    color_.follow();
    wheel_->setColor(color_.hue());
    sliders_->refresh();
    const PaintColor& color = model_.colors().primary();
    hex_->showColor(color);
    const std::vector<PaintColor>& recent = model_.colors().recent();
    for (QWidget* part : std::initializer_list<QWidget*>{recentTitle_, recent_})
        part->setVisible(!recent.empty());
    recent_->setColors(withoutNames(recent));
    const Palette& palette = model_.palettes().currentPalette();
    paletteTitle_->setText(palette.name);
    palette_->setColors(palette.colors);
    for (SwatchGrid* grid : {recent_, palette_}) grid->setChosen(color);
}

} // namespace qirn
