#include "shell/MainView.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/CommandRows.h"
#include "app/commands/PaintCommands.h"
#include "app/desktop/keys/Typing.h"
#include "app/files/LongTask.h"
#include "app/files/Recovery.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "app/tools/ToolTable.h"
#include "kit/QirnKit.h"
#include "kit/QrZoomHost.h"
#include "kit/controls/ChromePanel.h"
#include "shell/ColorWells.h"
#include "shell/HudBubble.h"
#include "shell/RegionKeys.h"
#include "shell/StatusBar.h"
#include "shell/StudioAccess.h"
#include "shell/ToolRail.h"
#include "shell/WindowFrame.h"
#include "shell/WindowSides.h"
#include "shell/header/HeaderBar.h"
#include "shell/help/PaintHelp.h"
#include "shell/options/ToolOptionsBar.h"
#include "shell/panels/InspectorColumn.h"
#include "shell/preferences/PreferencesHost.h"
#include "shell/sheets/SheetHost.h"
#include "shell/sheets/WorkCover.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace qirn {

namespace {

constexpr QSize kSize{1480, 920};
constexpr QSize kLeastWindow{1040, 680}; // without its frame
constexpr QSize kFrame{8, 40};   // a guess at the window's frame, which is known only once it is shown
constexpr QSize kPanels{72, 72}; // a guess at the desktop's panels where it does not report them
constexpr QSize kLeastOfTiles{400, 300}; // where the desktop tiles its windows

QVBoxLayout* columnIn(QWidget* parent) {
    auto* column = new QVBoxLayout(parent);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    return column;
}

/// On Wayland the desktop alone decides how large a window is, maximised or tiled, and tells nothing of its panels. A
/// window that insists on more is cut, or ended with its program.
bool desktopDecides() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

CanvasView* newCanvas(PaintModel& model) {
    QAccessible::installFactory(studioAccess); // before the first widget that it is asked about
    return new CanvasView(model, kToolTable);
}

QSize roomOn(const QScreen& screen) {
    return screen.availableSize() - kFrame - (desktopDecides() ? kPanels : QSize(0, 0));
}

} // namespace

MainView::MainView(PaintModel& model)
    : model_(model),
      canvas_(newCanvas(model)),
      frame_(new WindowFrame(model, *this)) {
    new PaintCommands(model, *canvas_, *menuBar());

    auto* host = new QrZoomHost(content());
    setCentralWidget(host);
    new SheetHost(model, centralWidget());
    new PreferencesHost(model, this);
    PaintHelp::followKeys(model);
    model.longTask().setCover(new WorkCover(this));
    new TypingKeys(*this, *canvas_);
    new RegionKeys(*this, {header_, options_, tools_, canvas_, panels_});
    using Sides = WindowSides;
    new Sides(model, *this, *host, *canvas_,
              {{menuBar(), Qt::TopEdge, Sides::HiddenWith::fullScreen},
               {header_, Qt::TopEdge, Sides::HiddenWith::fullScreen},
               {options_, Qt::TopEdge, Sides::HiddenWith::panels},
               {tools_, Qt::LeftEdge, Sides::HiddenWith::panels},
               {panels_, Qt::RightEdge, Sides::HiddenWith::panels},
               {status_, Qt::BottomEdge, Sides::HiddenWith::fullScreen}});
    canvas_->setFocus();
    QirnKit::followMetrics(this, [this](const Metrics&) { keepToScreen(); });
    if (!frame_->restore()) resize(screen() ? kSize.boundedTo(roomOn(*screen())) : kSize);
}

QWidget* MainView::content() {
    auto* content = new QWidget(this);
    auto* rows = columnIn(content);
    header_ = new HeaderBar(model_, *canvas_, content);
    options_ = new ToolOptionsBar(model_, *canvas_, content);
    rows->addWidget(header_);
    rows->addWidget(options_);
    rows->addWidget(body(), 1);
    status_ = new StatusBar(model_, content);
    rows->addWidget(status_);
    return content;
}

QWidget* MainView::body() {
    auto* row = new QWidget(this);
    auto* across = new QHBoxLayout(row);
    across->setContentsMargins(0, 0, 0, 0);
    across->setSpacing(0);

    auto* tools = new ChromePanel(ChromePanel::Surface::panel, Qt::RightEdge, row);
    auto* toolColumn = columnIn(tools);
    toolColumn->addWidget(new ToolRail(model_, tools), 0, Qt::AlignHCenter);
    toolColumn->addStretch();
    toolColumn->addWidget(new ColorWells(model_, tools), 0, Qt::AlignHCenter);

    tools_ = tools;
    panels_ = new InspectorColumn(model_, row);
    across->addWidget(tools);
    across->addWidget(canvas_, 1);
    across->addWidget(panels_);
    new HudBubble(model_, canvas_);
    QirnKit::followMetrics(row, [=](const Metrics& m) {
        tools->setFixedWidth(m.railButton + 2 * m.gap);
        toolColumn->setContentsMargins(0, m.gap, 0, m.gap);
        toolColumn->setSpacing(m.gap);
    });
    return row;
}

void MainView::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (shown_) return;
    shown_ = true;
    connect(windowHandle(), &QWindow::screenChanged, this, &MainView::keepToScreen);
    soon(model_, [view = QPointer(this)] {
        if (view) view->offerRecovery();
    });
}

void MainView::keepToScreen() {
    if (!screen()) return;
    connect(screen(), &QScreen::availableGeometryChanged, this, &MainView::keepToScreen,
            Qt::UniqueConnection);
    const QSize whole = kLeastWindow + QSize(0, menuBar()->sizeHint().height());
    setMinimumSize(whole.boundedTo(desktopDecides() ? kLeastOfTiles : roomOn(*screen())));
}

void MainView::offerRecovery() {
    if (!Recovery::pending(model_.pictures().ids()).empty()) model_.showSheet({PaintSheet::Kind::recovery});
}

MainView::~MainView() {
    model_.longTask().setCover(nullptr);
}

void MainView::closeEvent(QCloseEvent* event) {
    bool quit = false;
    guarded(model_, [&] { quit = model_.pictures().shouldQuit(); });
    if (quit) frame_->keep();
    event->setAccepted(quit);
}

// Keys that no control has used are for the canvas, then for the commands.
void MainView::keyPressEvent(QKeyEvent* event) {
    // From any control the first Escape gives the keys back to the canvas, and only the next one is a command there.
    const bool givesBack =
        event->key() == Qt::Key_Escape && !canvas_->hasFocus() && !model_.transform().isPending();
    if (givesBack && !canvas_->isBusy()) return canvas_->setFocus(Qt::OtherFocusReason);
    if (canvas_->handleKeyPress(event)) return;
    const CommandRow* command = commandOfKey(*event, model_.keys());
    if (!command) return QMainWindow::keyPressEvent(event);
    guarded(model_, [&] { runCommand(*command, model_, *canvas_); });
}

void MainView::keyReleaseEvent(QKeyEvent* event) {
    if (!canvas_->handleKeyRelease(event)) QMainWindow::keyReleaseEvent(event);
}

} // namespace qirn
