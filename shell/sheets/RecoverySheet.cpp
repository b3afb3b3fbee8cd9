#include "shell/sheets/RecoverySheet.h"

#include "app/desktop/Failures.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Guarded.h"
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "platform/CheckedMath.h"
#include "platform/DescribedError.h"

#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace qirn {

namespace {

QSize previewSize() {
    const Metrics& m = QirnKitHost::metrics();
    return {m.px(120), m.px(80)};
}

QIcon preview(const Recovery::Item& item, double ratio) {
    QPixmap pixmap(previewSize() * ratio);
    pixmap.fill(Qt::transparent);
    QImage image;
    contained([&] { image = item.thumbnail(); });
    if (!image.isNull()) {
        pixmap =
            QPixmap::fromImage(image.scaled(pixmap.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    pixmap.setDevicePixelRatio(ratio);
    return QIcon(pixmap);
}

} // namespace

RecoverySheet::RecoverySheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("Recover Your Work"),
            tr("Qirn Paint closed without saving these pictures (a crash, power cut or forced quit). "
               "Your autosaved copies are safe."),
            parent) {
    list_ = new QListWidget(this);
    list_->setAccessibleName(tr("Autosaved pictures"));
    fields().addWidget(list_, 1);
    recover_ = addButton(tr("Recover"), Role::other);
    trash_ = addButton(tr("Move to Trash"), Role::other);
    trash_->setToolTip(tr("Moves this autosave copy to the Trash (you can still take it back out)"));
    QPushButton* later = addButton(tr("Later"), Role::cancel);
    later->setToolTip(tr("Keeps the copies. Find them again in File → Recover Autosaved Work…"));
    recoverAll_ = addButton(tr("Recover All"), Role::standard);
    firstField = list_;

    connect(list_, &QListWidget::currentRowChanged, this, &RecoverySheet::refreshButtons);
    const auto recoverChosen = guarding(model, [this] { recover(list_->currentRow()); });
    connect(list_, &QListWidget::itemDoubleClicked, this, recoverChosen);
    connect(recover_, &QPushButton::clicked, this, recoverChosen);
    connect(trash_, &QPushButton::clicked, this,
            guarding(model, [this] { moveToTrash(list_->currentRow()); }));
    connect(recoverAll_, &QPushButton::clicked, this, guarding(model, [this] { recoverAll(); }));
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        list_->setMinimumHeight(m.px(280));
        list_->setIconSize(previewSize());
        list_->setSpacing(m.inset);
        reload(); // draws the previews at their new size
    });
}

void RecoverySheet::reload() {
    items_.clear(); // releases the locks, which would exclude this program too
    items_ = Recovery::pending(model().pictures().ids());
    list_->clear();
    for (const Recovery::Item& item : items_) {
        const Recovery::Info& info = item.info;
        const QString size = tr("%1 × %2 px · %3 layer(s)").arg(info.width).arg(info.height).arg(info.layers);
        const QString date = QLocale().toString(info.date.toLocalTime(), QLocale::ShortFormat);
        list_->addItem(
            new QListWidgetItem(preview(item, devicePixelRatioF()), info.name + u'\n' + date + u'\n' + size));
    }
    if (items_.empty()) {
        auto* none = new QListWidgetItem(tr("Nothing to recover."), list_);
        none->setFlags(Qt::NoItemFlags);
    } else {
        list_->setCurrentRow(0);
    }
    refreshButtons();
}

void RecoverySheet::refreshButtons() {
    const bool one = list_->currentRow() >= 0 && list_->currentRow() < static_cast<int>(items_.size());
    recover_->setEnabled(one);
    trash_->setEnabled(one);
    recoverAll_->setEnabled(!items_.empty());
}

bool RecoverySheet::restore(const Recovery::Item& item) {
    try {
        model().pictures().addRecovered(Recovery::restore(item));
        return true;
    } catch (const std::exception& error) {
        model().messages().alert(tr("Couldn't recover %1").arg(item.info.name), failureText(error));
        return false;
    }
}

void RecoverySheet::recover(int row) {
    if (row < 0 || row >= static_cast<int>(items_.size())) return;
    restore(items_[checkedSize(row)]);
    reload();
    if (items_.empty()) model().closeSheet();
}

void RecoverySheet::recoverAll() {
    for (const Recovery::Item& item : items_) restore(item);
    model().closeSheet();
}

void RecoverySheet::moveToTrash(int row) {
    if (row < 0 || row >= static_cast<int>(items_.size())) return;
    const Recovery::Item item = items_[checkedSize(row)];
    try {
        Recovery::moveToTrash(item);
    } catch (const DescribedError& error) {
        return model().messages().alert(tr("Couldn't move %1 to the Trash").arg(item.info.name),
                                        error.description());
    }
    reload();
}

} // namespace qirn
