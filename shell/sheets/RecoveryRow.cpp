#include "shell/sheets/RecoveryRow.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/HostWords.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPointer>
#include <QPushButton>

namespace qirn {

namespace {

QSize previewSize() {
    const Metrics& m = QirnKitHost::metrics();
    return {m.px(120), m.px(80)};
}

QString whenOf(const QDateTime& date) {
    return QLocale().toString(date.date(), QLocale::ShortFormat) + u' ' + shortTime(date.time());
}

QLabel* dimLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

RecoveryRow::RecoveryRow(const Recovery::Item& item, QWidget* parent)
    : QWidget(parent),
      recover_(new QPushButton(tr("Recover"), this)) {
    const Recovery::Info& info = item.info;
    setAccessibleName(info.name);
    recover_->setAccessibleName(tr("Recover %1").arg(info.name));
    auto* trash = new QPushButton(tr("Move to Trash"), this);
    trash->setAccessibleName(tr("Move %1 to Trash").arg(info.name));
    trash->setToolTip(tr("Moves this autosave copy to the Trash (you can still take it back out)"));
    connect(recover_, &QPushButton::clicked, this, &RecoveryRow::recoverPressed);
    connect(trash, &QPushButton::clicked, this, &RecoveryRow::trashPressed);

    auto* name = new QLabel(this);
    name->setTextFormat(Qt::PlainText);
    auto* words = new QVBoxLayout;
    words->addStretch();
    words->addWidget(name);
    words->addWidget(dimLabel(whenOf(info.date.toLocalTime()), this));
    words->addWidget(
        dimLabel(tr("%1 × %2 px · %3 layer(s)").arg(info.width).arg(info.height).arg(info.layers), this));
    words->addStretch();
    auto* across = new QHBoxLayout(this);
    across->addLayout(words, 1);
    across->addWidget(recover_);
    across->addWidget(trash);
    QirnKit::followMetrics(this, [=, this, text = info.name](const Metrics& m) {
        across->setContentsMargins(2 * m.gap + previewSize().width(), m.gap, m.gap, m.gap);
        across->setSpacing(m.gap);
        words->setSpacing(m.inset);
        setFixedHeight(previewSize().height() + 2 * m.gap);
        name->setText(name->fontMetrics().elidedText(text, Qt::ElideMiddle, m.px(220)));
        name->setToolTip(name->text() == text ? QString() : plainTip(text));
    });

    // The row may be gone when the preview is there: only the main thread looks.
    Recovery::Item copy; // without the lock, which is let go of on the main thread
    copy.file = item.file;
    BackgroundQueue::previews().run([row = QPointer(this), copy] {
        QImage preview;
        contained([&] { preview = copy.thumbnail(); });
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [row, preview] {
                if (!row) return;
                row->preview_ = preview;
                row->update();
            },
            Qt::QueuedConnection);
    });
}

QRect RecoveryRow::previewRect() const {
    const Metrics& m = QirnKitHost::metrics();
    return {QPoint(m.gap, m.gap), previewSize()};
}

void RecoveryRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ChromeColors& c = QirnKitHost::colors();
    ChromePaint::line(painter, rect(), ChromePaint::Side::bottom, c.divider);
    const QRect room = previewRect();
    if (preview_.isNull()) return;
    QRectF place({}, QSizeF(preview_.size()).scaled(room.size(), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(room).center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(ChromePaint::snapped(painter, place), preview_);
}

} // namespace qirn
