#pragma once
#include <QTimer>

#include "kit/controls/ChromePanel.h"

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
    void followCursor();  ///< Soon: a bar that is painted at the rate of the pen costs the pen its time.
    void refreshCursor(); ///< What `CanvasStatus` has.

    PaintModel& model_;
    QTimer pause_;        // runs for a while after the cursor was shown
    bool isLate_ = false; // there is news since
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
