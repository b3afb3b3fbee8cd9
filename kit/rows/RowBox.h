#pragma once
#include <functional>
#include <span>
#include <vector>

#include <QWidget>

#include "kit/controls/NumberField.h"
#include "kit/controls/NumberFormat.h"

class QBoxLayout;
class QComboBox;

namespace qirn {

class ChromeSegments;
class ChromeSlider;
class ChromeStepper;
class ChromeToggle;

/// What `ControlRows` needs of every target: it makes the controls of its rows and lays them out.
class RowBox : public QWidget {
public:
    enum class Form { bar, column };
    /// What the rows borrow from the program around them.
    struct Dress {
        QString (*words)(const char* source); ///< A text of the table as the user reads it.
        /// Runs every change of the target, for instance to catch what it throws; may be absent.
        std::function<void(const std::function<void()>&)> guard;
        const char* prefix = ""; ///< Of the object names, where other rows have the same labels.
    };

    void refresh(); ///< Reads the target again, and shows the rows that it has now.

protected:
    struct Binding {
        QWidget* control;
        std::function<void()> read; ///< Shows the target's value without setting it; may be absent.
    };

    RowBox(Form form, const Dress& dress, QWidget* parent);

    /// Puts a row behind the others. `shows` says when it is there; absent for always.
    void add(const Binding& binding, std::function<bool()> shows);
    void change(const std::function<void()>& body); ///< Runs a change of the target inside the guard.

    // A control of each kind; `set` is called with what the user chose.
    ChromeSlider* slider(const char* label, const char* tip, const SliderScale& scale,
                         const NumberFormat& format, std::function<void(double)> set);
    NumberField* number(const char* label, const char* tip, const NumberField::Range& range,
                        const NumberFormat& format, std::function<void(double)> set);
    ChromeStepper* stepper(const char* label, const char* tip, const char* words, int lower, int upper,
                           int step, std::function<void(int)> set);
    ChromeToggle* toggle(const char* label, const char* tip, std::function<void(bool)> set);
    ChromeSegments* segments(const char* label, const char* tip, std::span<const char* const> titles,
                             std::function<void(int)> set);
    QComboBox* picker(const char* label, const char* tip, std::function<void(int)> set);
    QWidget* button(const char* label, const char* tip, const std::function<void()>& run);
    QWidget* note(const char* text);
    QWidget* section(const char* title);

    // Shows a value and emits nothing.
    static void display(ChromeSlider& control, double value);
    static void display(NumberField& control, double value);
    static void display(ChromeStepper& control, int value);
    static void display(ChromeToggle& control, bool value);
    static void display(ChromeSegments& control, int value);
    static void display(QComboBox& control, const QStringList& choices, int value);

private:
    struct Row {
        QWidget* whole; ///< The control, or what it stands in with its label.
        std::function<bool()> shows;
        std::function<void()> read;
    };
    /// Gives a control its name, tip and place in the tab order.
    void introduce(QWidget& control, const char* label, const char* tip) const;

    Form form_;
    Dress dress_;
    QBoxLayout* layout_;
    std::vector<Row> rows_;
};

} // namespace qirn
