#include "ToolOptionsBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "BrushPresetMenu.h"
#include "ChromeFont.h"
#include "ChromeNote.h"
#include "ChromeSegments.h"
#include "ChromeSlider.h"
#include "ChromeToggle.h"
#include "HostWords.h"
#include "Metrics.h"
#include "PaintModel.h"
#include "ViewOptions.h"

namespace qirn {

namespace {

bool movesView(Tool tool) {
    return tool == Tool::hand || tool == Tool::zoom;
}

} // namespace

ToolOptionsBar::ToolOptionsBar(PaintModel& model, QWidget* parent)
    : ChromePanel(Surface::bar, Qt::BottomEdge, parent),
      model_(model),
      title_(new QLabel(this)) {
    setFixedHeight(Metrics::kOptionsHeight);
    QFont font = ChromeFont::body();
    font.setWeight(QFont::DemiBold);
    title_->setFont(font);
    title_->setObjectName(QStringLiteral("toolTitle"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Metrics::kSpace12, 0, Metrics::kSpace12, 0);
    row->setSpacing(Metrics::kSpace8);
    row->addWidget(title_);
    row->addWidget(new ChromeDivider(this));
    for (const ToolOptionRows::Row& option : ToolOptionRows::all())
        options_.push_back(
            std::visit([&](const auto& control) { return made(option.shows, control); }, option.control));
    options_.push_back({movesView, new ViewOptions(model, this), {}});
    for (const Option& option : options_)
        row->addWidget(option.widget, qobject_cast<ChromeNote*>(option.widget) ? 1 : 0);
    row->addStretch();

    connect(&model, &PaintModel::changed, this, &ToolOptionsBar::refresh);
    refresh();
}

QString ToolOptionsBar::hostTip(const char* tip) const {
    return tip ? hostWords(tr(tip)) : QString();
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::PresetMenu&) {
    auto* menu = new BrushPresetMenu(model_, this);
    return {shows, menu, [menu] { menu->refresh(); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::Slider& row) {
    auto* slider = new ChromeSlider(tr(row.label), row.scale, ToolOptionRows::formatOf(row.show), this);
    slider->setObjectName(QLatin1String(row.label));
    slider->setToolTip(hostTip(row.tip));
    slider->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(slider, &ChromeSlider::valueChanged, this,
            [this, set = row.set](double value) { set(model_, value); });
    return {shows, slider, [this, slider, get = row.get] { slider->setValue(get(model_)); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::Segments& row) {
    QStringList titles;
    for (const char* title : row.titles) titles << tr(title);
    auto* segments = new ChromeSegments(tr(row.label), titles, this);
    segments->setObjectName(QLatin1String(row.label));
    segments->setToolTip(hostTip(row.tip));
    connect(segments, &ChromeSegments::picked, this,
            [this, set = row.set](int index) { set(model_, index); });
    return {shows, segments, [this, segments, get = row.get] { segments->setChosen(get(model_)); }};
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::Toggle& row) {
    auto* toggle = new ChromeToggle(tr(row.label), this);
    toggle->setObjectName(QLatin1String(row.label));
    toggle->setToolTip(hostTip(row.tip));
    connect(toggle, &ChromeToggle::toggled, this, [this, set = row.set](bool on) { set(model_, on); });
    return {shows, toggle, [this, toggle, get = row.get] {
                const QSignalBlocker blocked(toggle);
                toggle->setChecked(get(model_));
            }};
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::Button& row) {
    auto* button = new QPushButton(tr(row.label), this);
    button->setObjectName(QLatin1String(row.label));
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this, [this, run = row.run] { run(model_); });
    return {shows, button, {}};
}

ToolOptionsBar::Option ToolOptionsBar::made(bool (*shows)(Tool), const ToolOptionRows::Note& row) {
    return {shows, new ChromeNote(hostWords(tr(row.text)), this), {}};
}

void ToolOptionsBar::refresh() {
    title_->setText(toolTitle(model_.tool()));
    for (const Option& option : options_) {
        option.widget->setVisible(option.shows(model_.tool()));
        if (option.read) option.read();
    }
}

} // namespace qirn
