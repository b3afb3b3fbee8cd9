#pragma once
#include "kit/QirnKit.h"
#include "shell/MainView.h"
#include "support/Studio.h"

#include <QApplication>
#include <QtTest>

namespace qirn::test {

/// The real main window in a world of its own, showing a white picture of 400 x 300 named "Test".
struct Window : OwnWorld {
    MainView view{model};

    Window() {
        model.pictures().newDocument(400, 300, 72, PaintColor::white(), "Test");
        showActive(view);
    }

    CanvasView& canvas() { return view.canvas(); }

    /// Of two controls of one name, as two tools can have, the one that is shown.
    template <class T> T& find(const char* name) {
        const QList<T*> found = view.findChildren<T*>(QString::fromUtf8(name));
        if (found.isEmpty()) qFatal("The window has no %s.", name);
        for (T* control : found) {
            if (control->isVisible()) return *control;
        }
        return *found.front();
    }
    template <class T> T& find() {
        T* found = view.findChild<T*>();
        if (!found) qFatal("The window lacks a part.");
        return *found;
    }
    template <class T> bool shows(const char* name) { return find<T>(name).isVisible(); }
    void click(const char* name) { QTest::mouseClick(&find<QWidget>(name), Qt::LeftButton); }

    /// A short stroke of the mouse in the middle of the canvas.
    void paint() {
        const QPoint middle = canvas().rect().center();
        QTest::mousePress(&canvas(), Qt::LeftButton, {}, middle);
        QTest::mouseMove(&canvas(), middle + QPoint(20, 5));
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, middle + QPoint(20, 5));
    }
};

/// A drag over a widget from one point to another, as fractions of its width and height.
inline void dragOver(QWidget& widget, QPointF from, QPointF to) {
    const auto send = [&](QEvent::Type type, QPointF fraction) {
        sendMouse(widget, type, {fraction.x() * widget.width(), fraction.y() * widget.height()});
    };
    send(QEvent::MouseButtonPress, from);
    send(QEvent::MouseMove, (from + to) / 2);
    send(QEvent::MouseMove, to);
    send(QEvent::MouseButtonRelease, to);
}

} // namespace qirn::test
