#include "shell/sheets/RecoverySheet.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Failures.h"
#include "app/files/DocSession.h"
#include "app/files/LongTask.h"
#include "app/files/SalvagedPicture.h"
#include "app/model/Guarded.h"
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "platform/DescribedError.h"
#include "shell/sheets/RecoveryRow.h"

#include <algorithm>
#include <iterator>

#include <QApplication>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace qirn {

RecoverySheet::RecoverySheet(PaintModel& model, QWidget* parent)
    : Sheet(model, tr("Recover Your Work"), {}, parent),
      list_(new QScrollArea(this)) {
    list_->setAccessibleName(tr("Autosaved pictures"));
    list_->setWidgetResizable(true);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fields().addWidget(list_, 1);
    later_ = addButton(tr("Later"), Role::cancel);
    later_->setToolTip(tr("Keeps the copies. Find them again in File → Recover Autosaved Work…"));
    recoverAll_ = addButton(tr("Recover All"), Role::standard);
    connect(recoverAll_, &QPushButton::clicked, this, guarding(model, [this] { recoverAll(); }));
    reload();
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        list_->setMinimumHeight(m.px(280));
        keepRoom();
    });
    firstField = items_.empty() ? later_ : recoverAll_;
}

void RecoverySheet::reload() {
    items_.clear(); // releases the locks, which would exclude this program too
    items_ = Recovery::pending(model().pictures().ids());
    setSubtitle(
        items_.empty()
            ? tr("Nothing to recover.")
            : tr("Qirn Paint closed without saving these pictures (a crash, power cut or forced quit). "
                 "Your autosaved copies are safe."));
    auto* rows = new QWidget;
    auto* column = new QVBoxLayout(rows);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (const Recovery::Item& item : items_) {
        auto* row = new RecoveryRow(item, rows);
        column->addWidget(row);
        // Later: the pressed button goes with its row.
        connect(row, &RecoveryRow::recoverPressed, this,
                guarding(model(), [this, id = item.id] { recover(id); }), Qt::QueuedConnection);
        connect(row, &RecoveryRow::trashPressed, this,
                guarding(model(), [this, id = item.id] { moveToTrash(id); }), Qt::QueuedConnection);
    }
    column->addStretch();
    const bool hadFocus = list_->isAncestorOf(QApplication::focusWidget());
    list_->setWidget(rows);
    rows->show();
    keepRoom();
    list_->setVisible(!items_.empty());
    recoverAll_->setEnabled(!items_.empty());
    if (hadFocus) (items_.empty() ? later_ : recoverAll_)->setFocus(Qt::OtherFocusReason);
}

void RecoverySheet::keepRoom() {
    list_->setMinimumWidth(list_->widget()->minimumSizeHint().width() +
                           list_->verticalScrollBar()->sizeHint().width() + 2 * list_->frameWidth());
}

void RecoverySheet::add(const Recovery::Item& item, Read read) {
    SessionRef session;
    const auto work = [&](const Progress& progress) { session = read(item, progress); };
    if (!model().longTask().run(tr("Recovering %1…").arg(item.info.name), work)) return;
    model().pictures().addRecovered(session);
    if (!session->remark.isEmpty()) model().messages().flash(session->remark);
}

void RecoverySheet::restore(const Recovery::Item& item) {
    const QString title = tr("Couldn't recover %1").arg(item.info.name);
    try {
        add(item, Recovery::restore);
    } catch (const std::exception& error) {
        if (!canBeSalvaged(error)) return model().messages().alert(title, failureText(error));
        if (!model().messages().offerWhatCanBeRead(title, failureText(error))) return;
        try {
            add(item, Recovery::restoreWhatCanBeRead);
        } catch (const std::exception& again) {
            model().messages().alert(title, failureText(again));
        }
    }
}

bool RecoverySheet::mayTake(const std::vector<Recovery::Item>& items, const QString& doIt) {
    QStringList names;
    for (const Recovery::Item& item : items)
        if (item.mayBeOpenElsewhere()) names << item.info.name;
    if (names.isEmpty()) return true;
    return model().desktop().ask(
               names.size() == 1 ? tr("Is \"%1\" open in another window?").arg(names.front())
                                 : tr("Is one of these open in another window?"),
               tr("Qirn Paint cannot tell, because no lock could be had on the autosave copy. "
                  "A picture that is open in another window would lose its copy."),
               {tr("Cancel"), doIt}, 0) == 1;
}

void RecoverySheet::alone(const std::function<void()>& body) {
    if (isAtWork_ || model().longTask().isRunning()) return;
    const QScopedValueRollback atWork(isAtWork_, true);
    body();
}

std::vector<Recovery::Item> RecoverySheet::itemsOf(const QUuid& id) const {
    std::vector<Recovery::Item> found;
    std::ranges::copy_if(items_, std::back_inserter(found),
                         [&](const Recovery::Item& item) { return item.id == id; });
    return found;
}

void RecoverySheet::recover(const QUuid& id) {
    alone([&] {
        {
            const std::vector<Recovery::Item> chosen = itemsOf(id); // until `reload` takes the locks anew
            if (chosen.empty() || !mayTake(chosen, tr("Recover"))) return;
            restore(chosen.front());
        }
        reload();
        if (items_.empty()) model().closeSheet();
    });
}

void RecoverySheet::recoverAll() {
    alone([&] {
        const std::vector<Recovery::Item> chosen = items_;
        if (!mayTake(chosen, tr("Recover All"))) return;
        for (const Recovery::Item& item : chosen) restore(item);
        model().closeSheet();
    });
}

void RecoverySheet::moveToTrash(const QUuid& id) {
    alone([&] {
        {
            const std::vector<Recovery::Item> chosen = itemsOf(id);
            if (chosen.empty() || !mayTake(chosen, tr("Move to Trash"))) return;
            try {
                Recovery::moveToTrash(chosen.front());
            } catch (const DescribedError& error) {
                return model().messages().alert(
                    tr("Couldn't move %1 to the Trash").arg(chosen.front().info.name), error.description());
            }
        }
        reload();
    });
}

} // namespace qirn
