#pragma once
#include "ChromePanel.h"

namespace qirn {

class PaintModel;
class PressureMeter;
class StatusText;

/// What is known of the current picture, in one line. It also follows `CanvasStatus`, at the rate of the pen.
class StatusBar : public ChromePanel {
    Q_OBJECT
public:
    StatusBar(PaintModel& model, QWidget* parent);

private:
    void refresh();
    void refreshCursor(); ///< What `CanvasStatus` has.

    PaintModel& model_;
    StatusText* size_;
    StatusText* zoom_;
    StatusText* rotation_;
    StatusText* flip_;
    StatusText* cursor_;
    PressureMeter* pressure_;
    StatusText* layer_;
    StatusText* undo_;
    StatusText* stroke_;
    StatusText* autosave_;
};

} // namespace qirn
