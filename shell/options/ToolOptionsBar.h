#pragma once
#include <functional>
#include <vector>

#include "kit/controls/ChromePanel.h"
#include "shell/options/ToolOptionRows.h"

class QLabel;

namespace qirn {

class CanvasView;
class PaintModel;
class ViewOptions;

/// The title of the current tool and its options, from the table of `ToolOptionRows`; for Hand and Zoom the view's.
class ToolOptionsBar : public ChromePanel {
    Q_OBJECT
public:
    ToolOptionsBar(PaintModel& model, CanvasView& view, QWidget* parent);

private:
    using Shows = bool (*)(const PaintModel&);
    struct Option {
        Shows shows;
        QWidget* widget;
        std::function<void()> read; ///< Shows the model's value without setting it; may be absent.
    };
    Option made(Shows shows, const ToolOptionRows::PresetMenu& row);
    Option made(Shows shows, const ToolOptionRows::Slider& row);
    Option made(Shows shows, const ToolOptionRows::Segments& row);
    Option made(Shows shows, const ToolOptionRows::ShapeMenu& row);
    Option made(Shows shows, const ToolOptionRows::Toggle& row);
    Option made(Shows shows, const ToolOptionRows::Button& row);
    Option made(Shows shows, const ToolOptionRows::Note& row);
    QString hostTip(const char* tip) const;
    void refresh();

    PaintModel& model_;
    QLabel* title_;
    std::vector<Option> options_;
};

} // namespace qirn
