#pragma once
#include <array>
#include <span>
#include <variant>

#include <QComboBox>

#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeStepper.h"
#include "kit/controls/ChromeToggle.h"
#include "kit/rows/RowBox.h"

namespace qirn {

/// One row of a table of controls over a target: a plain value that says what the control is, how to read the target
/// and how to set it. Texts are English sources, translated by the box that shows them; a tip may be null. What fits no
/// kind is a widget of its own in a `Custom` row.
template <class Target> struct ControlRow {
    template <class Value> using Get = Value (*)(const Target&);
    template <class Value> using Set = void (*)(Target&, Value);

    struct Slider {
        const char* label;
        SliderScale scale;
        NumberFormat format;
        const char* tip;
        Get<double> get;
        Set<double> set;
    };
    /// A field for a number of any size.
    struct Number {
        const char* label;
        NumberField::Range range;
        NumberFormat format;
        const char* tip;
        Get<double> get;
        Set<double> set;
    };
    struct Stepper {
        const char* label; ///< Only read out.
        const char* words; ///< With "%1" for the number: "Grow %1 px".
        int lower, upper, step;
        const char* tip;
        Get<int> get;
        Set<int> set;
    };
    struct Toggle {
        const char* label;
        const char* tip;
        Get<bool> get;
        Set<bool> set;
    };
    struct Segments {
        const char* label;                 ///< Only read out.
        std::array<const char*, 4> titles; ///< The last ones may be null.
        const char* tip;
        Get<int> get;
        Set<int> set;
    };
    /// A menu of choices, of which one is taken.
    struct Picker {
        const char* label;                     ///< In a bar only read out.
        QStringList (*choices)(const Target&); ///< As the user reads them; they may change with the target.
        const char* tip;
        Get<int> get; ///< An index; -1 for none of them.
        Set<int> set;
    };
    struct Button {
        const char* label;
        void (*run)(Target&);
        const char* tip = nullptr;
    };
    struct Note {
        const char* text;
    };
    /// The heading of the rows below it; in a bar a line before them.
    struct Section {
        const char* title;
    };
    /// A widget that follows the target by itself.
    struct Custom {
        QWidget* (*make)(Target&, QWidget* parent);
    };

    bool (*shows)(const Target&); ///< When the row is there; null for always.
    std::variant<Slider, Number, Stepper, Toggle, Segments, Picker, Button, Note, Section, Custom> control;
};

/// The controls of a table, in its order, in a bar or a column. The owner calls `refresh` when the target has changed.
template <class Target> class ControlRows : public RowBox {
public:
    using Row = ControlRow<Target>;

    /// Borrows the target.
    ControlRows(Target& target, std::span<const Row> rows, Form form, const Dress& dress, QWidget* parent)
        : RowBox(form, dress, parent),
          target_(target) {
        for (const Row& row : rows) {
            const Binding binding =
                std::visit([this](const auto& control) { return this->bound(control); }, row.control);
            add(binding,
                row.shows ? [this, shows = row.shows] { return shows(target_); } : std::function<bool()>());
        }
        refresh();
    }

private:
    /// A control together with its value in the target.
    template <class Value, class Control>
    Binding bound(Control* control, typename Row::template Get<Value> get) {
        return {control, [this, control, get] { display(*control, get(target_)); }};
    }
    template <class Value> auto setter(typename Row::template Set<Value> set) {
        return [this, set](Value value) { change([&] { set(target_, value); }); };
    }

    Binding bound(const typename Row::Slider& row) {
        return bound<double>(slider(row.label, row.tip, row.scale, row.format, setter<double>(row.set)),
                             row.get);
    }
    Binding bound(const typename Row::Number& row) {
        return bound<double>(number(row.label, row.tip, row.range, row.format, setter<double>(row.set)),
                             row.get);
    }
    Binding bound(const typename Row::Stepper& row) {
        return bound<int>(
            stepper(row.label, row.tip, row.words, row.lower, row.upper, row.step, setter<int>(row.set)),
            row.get);
    }
    Binding bound(const typename Row::Toggle& row) {
        return bound<bool>(toggle(row.label, row.tip, setter<bool>(row.set)), row.get);
    }
    Binding bound(const typename Row::Segments& row) {
        return bound<int>(segments(row.label, row.tip, row.titles, setter<int>(row.set)), row.get);
    }
    Binding bound(const typename Row::Picker& row) {
        QComboBox* menu = picker(row.label, row.tip, setter<int>(row.set));
        return {menu, [this, menu, row] { display(*menu, row.choices(target_), row.get(target_)); }};
    }
    Binding bound(const typename Row::Button& row) {
        return {button(row.label, row.tip, [this, run = row.run] { change([&] { run(target_); }); }), {}};
    }
    Binding bound(const typename Row::Note& row) { return {note(row.text), {}}; }
    Binding bound(const typename Row::Section& row) { return {section(row.title), {}}; }
    Binding bound(const typename Row::Custom& row) { return {row.make(target_, this), {}}; }

    Target& target_;
};

} // namespace qirn
