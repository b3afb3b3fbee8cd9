#include "shell/preferences/keys/KeysPage.h"

#include "app/commands/KeyOwners.h"
#include "app/desktop/Desktop.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/preferences/keys/KeyList.h"

#include <utility>

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace qirn {

KeysPage::KeysPage(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      search_(new QLineEdit(this)),
      list_(new KeyList(this)),
      words_(new QLabel(this)) {
    search_->setObjectName(QStringLiteral("searchKeys"));
    search_->setPlaceholderText(tr("Search commands and keys"));
    search_->setAccessibleName(tr("Search commands and keys"));
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    words_->setObjectName(QStringLiteral("keyWords"));
    words_->setAccessibleName(tr("What became of the key"));
    words_->setTextFormat(Qt::PlainText);
    words_->setWordWrap(true);
    const auto button = [this](const char* name, const QString& text, auto slot) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QLatin1String(name));
        made->setFocusPolicy(Qt::TabFocus); // a click leaves the list asking
        connect(made, &QPushButton::clicked, this, guarding(model_, slot));
        return made;
    };
    change_ = button("changeKey", tr("Change…"), [this] { list_->ask(); });
    clear_ = button("clearKey", tr("No Key"), [this] {
        if (const KeyOwner* owner = list_->current()) give(*owner, 0);
    });
    reset_ = button("resetKey", tr("Reset"), [this] { reset(); });
    resetAll_ = button("resetAllKeys", tr("Reset All…"), [this] { resetAll(); });
    takeOver_ = button("takeOverKey", tr("Take It Over"), [this] { take(wanted_); });
    change_->setToolTip(tr("Type another key for the chosen row (Return)"));
    clear_->setToolTip(tr("The chosen row has no key (Delete)"));
    reset_->setToolTip(tr("The chosen row has its own key again"));
    resetAll_->setToolTip(tr("All commands and tools have their own keys again"));
    takeOver_->setToolTip(tr("The key is the chosen row's from now on"));

    auto* told = new QHBoxLayout;
    told->addWidget(words_, 1);
    told->addWidget(takeOver_);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* each : {change_, clear_, reset_}) buttons->addWidget(each);
    buttons->addStretch();
    buttons->addWidget(resetAll_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(search_);
    column->addWidget(list_, 1);
    column->addLayout(told);
    column->addLayout(buttons);
    setTabOrder(list_, takeOver_);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        column->setContentsMargins(m.margin, m.groupGap, m.margin, m.groupGap);
        column->setSpacing(m.gap);
        told->setSpacing(m.gap);
        buttons->setSpacing(m.gap);
        list_->setMinimumHeight(4 * m.rowHeight);
        // The list keeps its place while words of two lines come and go.
        words_->setMinimumHeight(2 * words_->fontMetrics().lineSpacing());
    });

    connect(search_, &QLineEdit::textChanged, list_, &KeyList::showOnly);
    connect(list_, &KeyList::asked, this, [this] {
        say(tr("Type the key for \"%1\". Esc leaves it as it is, Delete takes it away.")
                .arg(titleOf(*list_->asking())));
    });
    connect(list_, &KeyList::typed, this, guarding(model_, [this](int key) { take(key); }));
    connect(list_, &KeyList::clearAsked, clear_, &QPushButton::click);
    connect(list_, &KeyList::stopped, this, [this] { say({}); });
    connect(list_, &QTreeWidget::currentItemChanged, this, &KeysPage::refresh);
    connect(&model, &PaintModel::changed, this, &KeysPage::refresh);
    say({});
    refresh();
}

void KeysPage::refresh() {
    if (!isVisible()) return; // read when it shows
    list_->showKeys(model_.keys());
    const KeyOwner* owner = list_->current();
    change_->setEnabled(owner);
    clear_->setEnabled(owner && shownKeyOf(*owner, model_.keys()) != 0);
    reset_->setEnabled(owner && model_.keys().of(owner->name).has_value());
    resetAll_->setEnabled(!model_.keys().isEmpty());
}

void KeysPage::say(const QString& words) {
    wanted_ = 0;
    takeOver_->hide();
    words_->setText(words);
    if (words.isEmpty()) return;
    QAccessibleEvent alert(words_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void KeysPage::take(int key) {
    const KeyOwner* owner = list_->asking();
    if (!owner) return;
    if (const QString refusal = refusalOf(owner->name, key); !refusal.isEmpty()) {
        model_.desktop().beep();
        return say(refusal);
    }
    const KeyOwner* other = key == 0 ? nullptr : ownerOfKey(key, model_.keys());
    if (other && other != owner && wanted_ != key) {
        say(tr("%1 is the key of \"%2\". Type it again to take it over, or type another one.")
                .arg(keyText(key), titleOf(*other)));
        wanted_ = key;
        takeOver_->show();
        return;
    }
    give(*owner, key);
}

void KeysPage::give(const KeyOwner& owner, int key) {
    const KeyOwner* other = key == 0 ? nullptr : ownerOfKey(key, model_.keys());
    KeyChoices choices = model_.keys();
    choices.choose(owner.name, key);
    if (key == ownKeyOf(owner)) choices.forget(owner.name);
    list_->stopAsking();
    model_.setKeys(choices);
    if (key == 0) return say(tr("\"%1\" has no key now.").arg(titleOf(owner)));
    QString words = tr("%1 is the key of \"%2\" now.").arg(keyText(key), titleOf(owner));
    if (other && other != &owner) {
        const int left = shownKeyOf(*other, choices);
        words += u' ' + (left == 0 ? tr("\"%1\" has none.").arg(titleOf(*other))
                                   : tr("\"%1\" has %2.").arg(titleOf(*other), keyText(left)));
    }
    say(words);
}

void KeysPage::reset() {
    const KeyOwner* owner = list_->current();
    if (!owner) return;
    list_->stopAsking();
    KeyChoices choices = model_.keys();
    choices.forget(owner->name);
    model_.setKeys(choices);
    const int own = ownKeyOf(*owner);
    const KeyOwner* other = own == 0 ? nullptr : ownerOfKey(own, choices);
    if (other && other != owner)
        say(tr("%1 stays the key of \"%2\".").arg(keyText(own), titleOf(*other)));
    else
        say(own == 0 ? tr("\"%1\" has no key, as at first.").arg(titleOf(*owner))
                     : tr("\"%1\" has %2 again.").arg(titleOf(*owner), keyText(own)));
}

void KeysPage::resetAll() {
    list_->stopAsking();
    const int answer =
        model_.desktop().ask(tr("Reset all keys?"), tr("Every command and tool has its own key again."),
                             {tr("Reset All"), tr("Cancel")}, 1);
    if (answer != 0) return;
    model_.setKeys({});
    say(tr("Every command and tool has its own key again."));
}

/// Escape takes the search back before it closes the window; Down goes on in the list.
bool KeysPage::eventFilter(QObject* watched, QEvent* event) {
    const bool press = event->type() == QEvent::KeyPress;
    if (!press && event->type() != QEvent::ShortcutOverride) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape && !search_->text().isEmpty()) {
        event->accept();
        if (press) search_->clear();
        return true;
    }
    if (press && (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter)) {
        list_->setFocus(Qt::TabFocusReason);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace qirn
