#include "shell/WindowFrame.h"

#include "app/desktop/Store.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

#include <QEvent>
#include <QWidget>

namespace qirn {

namespace {

const QString kPlaceKey = QStringLiteral("qirn.pt.windowPlace");

} // namespace

WindowFrame::WindowFrame(PaintModel& model, QWidget& window)
    : QObject(&window),
      model_(model),
      window_(window) {
    connect(&model, &PaintModel::changed, this, &WindowFrame::refresh);
    atRest_.setSingleShot(true);
    atRest_.setInterval(500);
    connect(&atRest_, &QTimer::timeout, this, guarding(model, [this] { keep(); }));
    window.installEventFilter(this);
    refresh();
}

void WindowFrame::refresh() {
    const DocSession* session = model_.current();
    QString name = session ? session->name : QString();
    name.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")); // is no mark there
    window_.setWindowTitle(session ? tr("%1[*] — Qirn Paint").arg(name) : tr("Qirn Paint"));
    window_.setWindowModified(session && session->isDirty());
}

bool WindowFrame::restore() {
    const auto place = model_.store().text(kPlaceKey);
    return place && window_.restoreGeometry(QByteArray::fromBase64(place->toLatin1()));
}

bool WindowFrame::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Resize || type == QEvent::Move || type == QEvent::WindowStateChange) atRest_.start();
    return QObject::eventFilter(watched, event);
}

void WindowFrame::keep() const {
    if (window_.isFullScreen()) return; // a mode of the moment: the next start has the window from before
    model_.store().setText(kPlaceKey, QString::fromLatin1(window_.saveGeometry().toBase64()));
}

} // namespace qirn
