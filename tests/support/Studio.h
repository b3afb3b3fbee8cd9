#pragma once
#include "app/canvas/CanvasView.h"
#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Store.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "app/model/PictureFiles.h"
#include "app/model/Safety.h"
#include "app/tools/ToolTable.h"
#include "brush/StrokePoint.h"
#include "support/Files.h"
#include "support/Pictures.h"
#include "support/ScriptedDesktop.h"
#include "support/TestMain.h"

#include <memory>

#include <QPointingDevice>
#include <QTemporaryDir>

namespace qirn::test {

/// A model in a world of its own: a private folder, a store in memory, a scripted desktop.
struct OwnWorld {
    struct FolderOverride {
        explicit FolderOverride(const QString& path) {
            AppFolders::setBaseOverride(path);
            // What goes to the Trash goes to one of the test's own.
            qputenv("HOME", QFile::encodeName(path));
            qputenv("XDG_DATA_HOME", QFile::encodeName(path + QStringLiteral("/data")));
        }
        ~FolderOverride() {
            BackgroundQueue::files().finish();
            AppFolders::setBaseOverride({});
        }
    };

    QTemporaryDir folder;
    FolderOverride base{folder.path()};
    ScriptedDesktop desktop;
    Store store;
    PaintModel model{PaintModel::LoadStores::yes, desktop, store};

    DocSession& session() { return *model.current(); }
    PaintDocument& doc() { return session().doc(); }
    Layer& layer() { return doc().activeLayer(); }
    QString path(const QString& name) const { return folder.filePath(name); }

    QString lastStep() { ///< As "2 Paste": how many there are, and the name of the last.
        return QString("%1 %2").arg(doc().undoDepth()).arg(doc().undoName().value_or(QString()));
    }
    // Steps that need no hand.
    void fill(const IRect& rect, const PixelBytes& pixel = {255, 0, 0, 255}); ///< Of the active layer.
    void select(const QRectF& rect);
    /// One field of the preferences, the tool options or the brush in hand.
    template <class T> void set(T PaintPrefs::*field, const std::type_identity_t<T>& value) {
        PaintPrefs prefs = model.prefs();
        prefs.*field = value;
        model.setPrefs(prefs);
    }
    template <class T> void set(T ToolOptions::*field, const std::type_identity_t<T>& value) {
        ToolOptions options = model.options();
        options.*field = value;
        model.setOptions(options);
    }
    template <class T> void set(T BrushSettings::*field, const std::type_identity_t<T>& value) {
        BrushSettings brush = model.brushes().activeBrush();
        brush.*field = value;
        model.brushes().setActiveBrush(brush);
    }
};

void showActive(QWidget& window); ///< With the keys.
/// Where a canvas point is shown, in widget coordinates.
QPointF widgetPoint(const CanvasView& canvas, QPointF canvasPoint);
void sendMouse(QWidget& widget, QEvent::Type type, QPointF widgetPoint, Qt::KeyboardModifiers modifiers = {},
               uint64_t milliseconds = 0);
void sendWheel(QWidget& widget, QPointF widgetPoint, QPoint angle, QPoint pixels = {},
               Qt::ScrollPhase phase = Qt::NoScrollPhase);
void sendPen(CanvasView& canvas, const QPointingDevice& device, QEvent::Type type, QPointF canvasPoint,
             double pressure, Qt::KeyboardModifiers modifiers = {});
void sendStroke(CanvasView& canvas, const QPointingDevice& device, const std::vector<StrokePoint>& points);

/// One with a canvas of 800 x 600. The picture shown is 400 x 300 on white at 100%, its corner at 200, 150 of the
/// widget.
struct Studio : OwnWorld {
    CanvasView canvas{model, kToolTable};
    QPointingDevice penTip;
    QPointingDevice eraserEnd;

    Studio();

    QPointF widgetPoint(QPointF canvasPoint) const { return test::widgetPoint(canvas, canvasPoint); }

    // Events as the window system would send them; points are canvas points.
    void penEvent(QEvent::Type type, QPointF point, double pressure, bool eraser = false,
                  Qt::KeyboardModifiers modifiers = {}) {
        sendPen(canvas, eraser ? eraserEnd : penTip, type, point, pressure, modifiers);
    }
    void penStroke(const std::vector<QPointF>& points, double pressure = 1);
    void mouseEvent(QEvent::Type type, QPointF point, Qt::KeyboardModifiers modifiers = {},
                    uint64_t milliseconds = 0) {
        sendMouse(canvas, type, widgetPoint(point), modifiers, milliseconds);
    }
    void mouseDrag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = {});
    void key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {});
    void pointerLeaves();  ///< The ring goes.
    void waitForPenEcho(); ///< A second passes: no mouse event is the echo of a pen's any more.
};

} // namespace qirn::test
