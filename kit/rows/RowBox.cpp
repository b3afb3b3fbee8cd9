#include "kit/rows/RowBox.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeCombo.h"
#include "kit/controls/ChromeNote.h"
#include "kit/controls/ChromePanel.h"
#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeStepper.h"
#include "kit/controls/ChromeToggle.h"

namespace qirn {

namespace {

/// A control behind its name. In a column all controls begin at one place.
QWidget* labelled(QWidget* control, RowBox::Form form, QWidget* parent) {
    auto* whole = new QWidget(parent);
    auto* label = new QLabel(control->accessibleName(), whole);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setBuddy(control);
    auto* row = new QHBoxLayout(whole);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label, form == RowBox::Form::column ? 2 : 0);
    row->addWidget(control, 3);
    return whole;
}

} // namespace

RowBox::RowBox(Form form, const Dress& dress, QWidget* parent)
    : QWidget(parent),
      form_(form),
      dress_(dress),
      layout_(new QBoxLayout(form == Form::bar ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this)) {
    layout_->setContentsMargins(0, 0, 0, 0); // its spacing is the style's
    layout_->addStretch();
}

void RowBox::refresh() {
    for (const Row& row : rows_) {
        const bool there = !row.shows || row.shows();
        row.whole->setVisible(there);
        if (there && row.read) row.read();
    }
}

void RowBox::add(const Binding& binding, std::function<bool()> shows) {
    QWidget* control = binding.control;
    const bool named =
        qobject_cast<NumberField*>(control) || (form_ == Form::column && qobject_cast<QComboBox*>(control));
    QWidget* whole = named ? labelled(control, form_, this) : control;
    layout_->insertWidget(layout_->count() - 1, whole, qobject_cast<ChromeNote*>(control) ? 1 : 0);
    rows_.push_back({whole, std::move(shows), binding.read});
}

void RowBox::change(const std::function<void()>& body) {
    if (dress_.guard)
        dress_.guard(body);
    else
        body();
}

void RowBox::introduce(QWidget& control, const char* label, const char* tip) const {
    const QString name = QString::fromUtf8(dress_.prefix) + QString::fromUtf8(label);
    QString unique = name; // two rows that show at different times may have one label
    for (int i = 2; findChild<QWidget*>(unique); ++i) unique = QStringLiteral("%1 %2").arg(name).arg(i);
    control.setObjectName(unique);
    control.setAccessibleName(dress_.words(label));
    if (tip) control.setToolTip(dress_.words(tip));
    if (control.focusPolicy() != Qt::NoFocus && !qobject_cast<QLineEdit*>(&control))
        control.setFocusPolicy(Qt::TabFocus);
}

ChromeSlider* RowBox::slider(const char* label, const char* tip, const SliderScale& scale,
                             const NumberFormat& format, std::function<void(double)> set) {
    auto* slider = new ChromeSlider(dress_.words(label), scale, format, this);
    introduce(*slider, label, tip);
    slider->setSizePolicy(form_ == Form::bar ? QSizePolicy::Maximum : QSizePolicy::Expanding,
                          QSizePolicy::Fixed);
    connect(slider, &ChromeSlider::valueChanged, this, std::move(set));
    return slider;
}

NumberField* RowBox::number(const char* label, const char* tip, const NumberField::Range& range,
                            const NumberFormat& format, std::function<void(double)> set) {
    auto* field = new NumberField(dress_.words(label), range, format, this);
    introduce(*field, label, tip);
    connect(field, &NumberField::valueChanged, this, std::move(set));
    return field;
}

ChromeStepper* RowBox::stepper(const char* label, const char* tip, const char* words, int lower, int upper,
                               int step, std::function<void(int)> set) {
    auto* stepper = new ChromeStepper(dress_.words(label), dress_.words(words), this);
    introduce(*stepper, label, tip);
    stepper->setRange(lower, upper);
    stepper->setSingleStep(step);
    connect(stepper, &ChromeStepper::valueChanged, this, std::move(set));
    return stepper;
}

ChromeToggle* RowBox::toggle(const char* label, const char* tip, std::function<void(bool)> set) {
    auto* toggle = new ChromeToggle(dress_.words(label), this);
    introduce(*toggle, label, tip);
    if (form_ == Form::column) toggle->setWraps();
    connect(toggle, &ChromeToggle::toggled, this, std::move(set));
    return toggle;
}

ChromeSegments* RowBox::segments(const char* label, const char* tip, std::span<const char* const> titles,
                                 std::function<void(int)> set) {
    QStringList words;
    for (const char* title : titles) {
        if (title) words << dress_.words(title);
    }
    auto* segments = new ChromeSegments(dress_.words(label), words, this);
    introduce(*segments, label, tip);
    connect(segments, &ChromeSegments::picked, this, std::move(set));
    return segments;
}

QComboBox* RowBox::picker(const char* label, const char* tip, std::function<void(int)> set) {
    auto* menu = new ChromeCombo(this);
    introduce(*menu, label, tip);
    connect(menu, &QComboBox::activated, this, std::move(set));
    return menu;
}

QWidget* RowBox::button(const char* label, const char* tip, const std::function<void()>& run) {
    auto* button = new QPushButton(dress_.words(label), this);
    introduce(*button, label, tip);
    connect(button, &QPushButton::clicked, this, run);
    return button;
}

QWidget* RowBox::note(const char* text) {
    const QString words = dress_.words(text);
    if (form_ == Form::bar) return new ChromeNote(words, this);
    auto* label = new QLabel(words, this);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    QirnKit::followMetrics(label, [label](const Metrics&) { label->setFont(ChromeFont::small()); });
    return label;
}

QWidget* RowBox::section(const char* title) {
    if (form_ == Form::bar) return new ChromeDivider(this);
    auto* heading = new QLabel(dress_.words(title), this);
    heading->setForegroundRole(QPalette::PlaceholderText);
    QirnKit::followMetrics(heading, [heading](const Metrics& m) {
        heading->setFont(ChromeFont::caption());
        heading->setContentsMargins(0, m.gap, 0, 0);
    });
    return heading;
}

void RowBox::display(ChromeSlider& control, double value) {
    control.setValue(value);
}

void RowBox::display(NumberField& control, double value) {
    control.setValue(value);
}

void RowBox::display(ChromeStepper& control, int value) {
    const QSignalBlocker blocked(&control);
    control.setValue(value);
}

void RowBox::display(ChromeToggle& control, bool value) {
    const QSignalBlocker blocked(&control);
    control.setChecked(value);
}

void RowBox::display(ChromeSegments& control, int value) {
    control.setChosen(value);
}

void RowBox::display(QComboBox& control, const QStringList& choices, int value) {
    const QSignalBlocker blocked(&control);
    QStringList shown;
    for (int i = 0; i < control.count(); ++i) shown << control.itemText(i);
    if (shown != choices) {
        control.clear();
        control.addItems(choices);
    }
    control.setCurrentIndex(value);
}

} // namespace qirn
