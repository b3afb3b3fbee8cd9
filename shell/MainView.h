#pragma once
#include <QMainWindow>

namespace qirn {

class CanvasView;
class HudBubble;
class PaintCommands;
class PaintModel;
class WindowFrame;

/// The one main window: menus and header on top, then the options of the tool, the tools with the colors, the
/// canvas and the panels, and the status bar. Everything in it reads and sets the model, which it borrows. On a
/// screen that is smaller than the content, the content scrolls.
class MainView : public QMainWindow {
    Q_OBJECT
public:
    explicit MainView(PaintModel& model);
    ~MainView() override;

    CanvasView& canvas() { return *canvas_; }

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    QWidget* content();
    QWidget* body();
    void keepToScreen(); ///< Asks for no more room than the screen has.
    void offerRecovery();

    PaintModel& model_;
    CanvasView* canvas_;
    WindowFrame* frame_;
    QWidget* header_ = nullptr; // the regions of the window, round the canvas
    QWidget* options_ = nullptr;
    QWidget* tools_ = nullptr;
    QWidget* panels_ = nullptr;
    QWidget* status_ = nullptr;
    bool shown_ = false;
};

} // namespace qirn
