#include "shell/sheets/RecoveryRow.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/FilePreview.h"
#include "app/desktop/HostWords.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
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
    label->setWordWrap(true);
    return label;
}

} // namespace

RecoveryRow::RecoveryRow(const Recovery::Item& item, QWidget* parent)
    : QWidget(parent),
      date_(dimLabel(whenOf(item.info.date.toLocalTime()), this)) {
    const Recovery::Info& info = item.info;
    setAccessibleName(info.name);
    auto* recover = new QPushButton(tr("Recover"), this);
    recover->setAccessibleName(tr("Recover %1").arg(info.name));
    auto* trash = new QPushButton(tr("Move to Trash"), this);
    trash->setAccessibleName(tr("Move %1 to Trash").arg(info.name));
    trash->setToolTip(tr("Moves this autosave copy to the Trash (you can still take it back out)"));
    connect(recover, &QPushButton::clicked, this, &RecoveryRow::recoverPressed);
    connect(trash, &QPushButton::clicked, this, &RecoveryRow::trashPressed);

    auto* name = new QLabel(this);
    name->setTextFormat(Qt::PlainText);
    auto* words = new QVBoxLayout;
    words->addStretch();
    words->addWidget(name);
    words->addWidget(date_);
    words->addWidget(dimLabel(tr("%L1 × %L2 px · %Ln layer(s)", nullptr, static_cast<int>(info.layers))
                                  .arg(info.width)
                                  .arg(info.height),
                              this));
    words->addStretch();
    auto* preview = new FilePreview(this);
    auto* across = new QHBoxLayout(this);
    across->addWidget(preview);
    across->addLayout(words, 1);
    across->addWidget(recover);
    across->addWidget(trash);
    QirnKit::followMetrics(this, [=, this, text = info.name](const Metrics& m) {
        preview->setFixedSize(previewSize());
        across->setContentsMargins(m.gap, m.gap, m.gap, m.gap);
        across->setSpacing(m.gap);
        words->setSpacing(m.inset);
        setFixedHeight(previewSize().height() + 2 * m.gap);
        name->setText(name->fontMetrics().elidedText(text, Qt::ElideMiddle, m.px(220)));
        name->setToolTip(name->text() == text ? QString() : plainTip(text));
    });
    preview->setFile(item.file);
    // After the previews of all rows, which shall not wait for a folder that does not answer.
    QMetaObject::invokeMethod(
        this, [this, info] { contained([&] { askWhetherSaved(info); }); }, Qt::QueuedConnection);
}

void RecoveryRow::askWhetherSaved(const Recovery::Info& info) {
    BackgroundQueue::previews().run([this, info, life = std::weak_ptr(life_)] {
        if (life.expired() || !info.isSavedSince()) return;
        const auto say = [this, life] { // as it would be where this is gone
            if (!life.expired()) date_->setText(tr("%1 · saved since").arg(date_->text()));
        };
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [say] { contained(say); }, Qt::QueuedConnection);
    });
}

void RecoveryRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ChromePaint::line(painter, rect(), ChromePaint::Side::bottom, QirnKitHost::colors().divider);
}

} // namespace qirn
