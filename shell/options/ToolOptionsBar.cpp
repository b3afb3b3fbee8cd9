#include "shell/options/ToolOptionsBar.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "app/desktop/HostWords.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeNote.h"
#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeToggle.h"
#include "shell/options/BrushPresetMenu.h"
#include "shell/options/ViewOptions.h"

namespace qirn {

namespace {

bool movesView(const PaintModel& model) {
    return model.tool() == Tool::hand || model.tool() == Tool::zoom;
}

} // namespace

ToolOptionsBar::ToolOptionsBar(PaintModel& model, CanvasView& view, QWidget* parent)
    : ChromePanel(Surface::bar, Qt::BottomEdge, parent),
      model_(model),
      title_(new QLabel(this)) {
    title_->setObjectName(QStringLiteral("toolTitle"));

    auto* row = new QHBoxLayout(this);
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        setFixedHeight(m.optionsHeight);
        row->setContentsMargins(m.groupGap, 0, m.groupGap, 0);
        row->setSpacing(m.gap);
        QFont font = ChromeFont::body();
        font.setWeight(QFont::DemiBold);
        title_->setFont(font);
    });
    row->addWidget(title_);
    row->addWidget(new ChromeDivider(this));
    for (const ToolOptionRows::Row& option : ToolOptionRows::all())
        options_.push_back(
            std::visit([&](const auto& control) { return made(option.shows, control); }, option.control));
    options_.push_back({movesView, new ViewOptions(model, view, this), {}});
    for (const Option& option : options_)
        row->addWidget(option.widget, qobject_cast<ChromeNote*>(option.widget) ? 1 : 0);
    row->addStretch();

    connect(&model, &PaintModel::changed, this, &ToolOptionsBar::refresh);
    refresh();
}

QString ToolOptionsBar::hostTip(const char* tip) const {
    return tip ? hostWords(tr(tip)) : QString();
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::PresetMenu&) {
    auto* menu = new BrushPresetMenu(model_, this);
    return {shows, menu, [menu] { menu->refresh(); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::Slider& row) {
    auto* slider = new ChromeSlider(tr(row.label), row.scale, ToolOptionRows::formatOf(row.show), this);
    slider->setObjectName(QString::fromUtf8(row.label));
    slider->setToolTip(hostTip(row.tip));
    slider->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(slider, &ChromeSlider::valueChanged, this,
            guarding(model_, [this, set = row.set](double value) { set(model_, value); }));
    return {shows, slider, [this, slider, get = row.get] { slider->setValue(get(model_)); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::Segments& row) {
    QStringList titles;
    for (const char* title : row.titles) {
        if (title) titles << tr(title);
    }
    auto* segments = new ChromeSegments(tr(row.label), titles, this);
    segments->setObjectName(QString::fromUtf8(row.label));
    segments->setToolTip(hostTip(row.tip));
    connect(segments, &ChromeSegments::picked, this,
            guarding(model_, [this, set = row.set](int index) { set(model_, index); }));
    return {shows, segments, [this, segments, get = row.get] { segments->setChosen(get(model_)); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::ShapeMenu&) {
    auto* menu = new QComboBox(this);
    menu->setObjectName(QStringLiteral("Shape"));
    menu->setAccessibleName(tr("Shape"));
    for (const ShapeRow& shape : kShapes)
        menu->addItem(QCoreApplication::translate("ShapeKind", shape.title));
    connect(menu, &QComboBox::activated, this, [this](int index) {
        ToolOptions options = model_.options();
        options.shapeKind = static_cast<ShapeKind>(index);
        model_.setOptions(options);
    });
    return {shows, menu,
            [this, menu] { menu->setCurrentIndex(static_cast<int>(model_.options().shapeKind)); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::Toggle& row) {
    auto* toggle = new ChromeToggle(tr(row.label), this);
    toggle->setObjectName(QString::fromUtf8(row.label));
    toggle->setToolTip(hostTip(row.tip));
    connect(toggle, &ChromeToggle::toggled, this,
            guarding(model_, [this, set = row.set](bool on) { set(model_, on); }));
    return {shows, toggle, [this, toggle, get = row.get] {
                const QSignalBlocker blocked(toggle);
                toggle->setChecked(get(model_));
            }};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::Button& row) {
    auto* button = new QPushButton(tr(row.label), this);
    button->setObjectName(QString::fromUtf8(row.label));
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this, guarding(model_, [this, run = row.run] { run(model_); }));
    return {shows, button, {}};
}

ToolOptionsBar::Option ToolOptionsBar::made(Shows shows, const ToolOptionRows::Note& row) {
    return {shows, new ChromeNote(hostWords(tr(row.text)), this), {}};
}

void ToolOptionsBar::refresh() {
    title_->setText(toolTitle(model_.tool()));
    for (const Option& option : options_) {
        option.widget->setVisible(option.shows(model_));
        if (option.read) option.read();
    }
}

} // namespace qirn
