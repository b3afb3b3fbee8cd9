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

#include <set>

#include <QHBoxLayout>
#include <QLabel>
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

std::vector<Recovery::Item> pendingFor(const PaintModel& model) {
    std::set<QUuid> open;
    for (const SessionRef& session : model.pictures().sessions()) open.insert(session->id);
    return Recovery::pending(open);
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

RecoverySheet::RecoverySheet(PaintModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setWindowTitle(tr("Recover Your Work"));
    auto* text =
        new QLabel(tr("Qirn Paint closed without saving these pictures (a crash, power cut or forced quit). "
                      "Your autosaved copies are safe."),
                   this);
    text->setWordWrap(true);
    list_ = new QListWidget(this);
    list_->setAccessibleName(tr("Autosaved pictures"));
    recover_ = new QPushButton(tr("Recover"), this);
    trash_ = new QPushButton(tr("Move to Trash"), this);
    trash_->setToolTip(tr("Moves this autosave copy to the Trash (you can still take it back out)"));
    auto* later = new QPushButton(tr("Later"), this);
    later->setToolTip(tr("Keeps the copies. Find them again in File → Recover Autosaved Work…"));
    recoverAll_ = new QPushButton(tr("Recover All"), this);
    recoverAll_->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(recover_);
    buttons->addWidget(trash_);
    buttons->addStretch();
    buttons->addWidget(later);
    buttons->addWidget(recoverAll_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);

    connect(list_, &QListWidget::currentRowChanged, this, &RecoverySheet::refreshButtons);
    const auto recoverChosen = guarding(model_, [this] { recover(list_->currentRow()); });
    connect(list_, &QListWidget::itemActivated, this, recoverChosen);
    connect(recover_, &QPushButton::clicked, this, recoverChosen);
    connect(trash_, &QPushButton::clicked, this,
            guarding(model_, [this] { moveToTrash(list_->currentRow()); }));
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    connect(recoverAll_, &QPushButton::clicked, this, guarding(model_, [this] { recoverAll(); }));
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        setMinimumSize(m.px(560), m.px(420));
        list_->setIconSize(previewSize());
        list_->setSpacing(m.inset);
        reload(); // draws the previews in their size
    });
}

bool RecoverySheet::isEmpty() const {
    return items_.empty();
}

void RecoverySheet::reload() {
    items_.clear(); // lets go of the locks, which would keep us away as well
    items_ = pendingFor(model_);
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
        model_.pictures().addRecovered(Recovery::restore(item));
        return true;
    } catch (const std::exception& error) {
        model_.messages().alert(tr("Couldn't recover %1").arg(item.info.name), failureText(error));
        return false;
    }
}

void RecoverySheet::recover(int row) {
    if (row < 0 || row >= static_cast<int>(items_.size())) return;
    restore(items_[checkedSize(row)]);
    reload();
    if (items_.empty()) accept();
}

void RecoverySheet::recoverAll() {
    for (const Recovery::Item& item : items_) restore(item);
    accept();
}

void RecoverySheet::moveToTrash(int row) {
    if (row < 0 || row >= static_cast<int>(items_.size())) return;
    const Recovery::Item item = items_[checkedSize(row)];
    try {
        Recovery::moveToTrash(item);
    } catch (const DescribedError& error) {
        return model_.messages().alert(tr("Couldn't move %1 to the Trash").arg(item.info.name),
                                       error.description());
    }
    reload();
}

} // namespace qirn
