#pragma once
#include "app/desktop/QtDesktop.h"
#include "app/desktop/Store.h"
#include "app/model/PaintModel.h"
#include "shell/MainView.h"

#include <QApplication>
#include <QSize>
#include <QTemporaryDir>

namespace qirn::bench {

/// The real window on the display that the program is started on, with a folder of its own in place of the user's.
class StudioWindow {
public:
    StudioWindow(int argc, char** argv);

    PaintModel& model() { return model_; }
    CanvasView& canvas() { return window_.canvas(); }
    void show(QSize size);         ///< Returns when the desktop has placed it and it has drawn itself.
    void act(const char* command); ///< As its item in the menu does.
    /// Paints what is left to paint, and returns when the display has it: it is asked for a pixel.
    void waitUntilShown();

private:
    QTemporaryDir home_;
    int argc_; // the application holds a reference to it
    QApplication app_;
    QtDesktop desktop_;
    Store store_;
    PaintModel model_;
    MainView window_;
};

/// Handles events for so long.
void pass(double seconds);

double threadSeconds();  ///< That this thread has worked; a desktop that keeps it waiting takes none.
double processSeconds(); ///< That all threads of this process have.

} // namespace qirn::bench
