#include "kit/help/KitWindow.h"

#include <QApplication>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include "kit/QirnKit.h"

namespace qirn {

KitWindow::KitWindow(const QString& title, QSize size, QWidget* content, const char* frameName)
    : size_(size),
      frameName_(frameName) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(title);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(content);
    setFocusProxy(content);
    for (const QKeySequence& key : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)})
        connect(new QShortcut(key, this), &QShortcut::activated, this, &QWidget::close);
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        hide(); // which keeps its place
        deleteLater();
    });
}

void KitWindow::place() {
    const QString kept = frameName_ ? QirnKitHost::store().text(frameName_) : QString();
    if (restoreGeometry(QByteArray::fromBase64(kept.toLatin1()))) return;
    const Metrics& m = QirnKitHost::metrics();
    const QSize wished(m.px(size_.width()), m.px(size_.height()));
    resize(screen() ? wished.boundedTo(screen()->availableSize()) : wished);
    if (const QWidget* opener = QApplication::activeWindow())
        move(opener->frameGeometry().center() - rect().center());
}

void KitWindow::bringUp() {
    if (!isVisible()) place(); // desktops put a window that comes back somewhere else
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
    setFocus(Qt::ActiveWindowFocusReason);
}

void KitWindow::hideEvent(QHideEvent* event) {
    if (frameName_) QirnKitHost::store().setText(frameName_, QString::fromLatin1(saveGeometry().toBase64()));
    QWidget::hideEvent(event);
}

} // namespace qirn
