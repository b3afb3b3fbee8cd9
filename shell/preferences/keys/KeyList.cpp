#include "shell/preferences/keys/KeyList.h"

#include "app/desktop/HostWords.h"
#include "app/desktop/keys/TypedKeys.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace qirn {

namespace {

enum Column { kTitle, kKeys, kRemark };
constexpr int kOwnerRole = Qt::UserRole;      // the number of the owner; headings have none
constexpr int kAskingRole = Qt::UserRole + 1; // its key is typed next

const KeyOwner* ownerOf(const QTreeWidgetItem* item) {
    const QVariant number = item ? item->data(kTitle, kOwnerRole) : QVariant();
    return number.isValid() ? &keyOwners()[number.toUInt()] : nullptr;
}

/// Keys look like something to press.
class KeyDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Metrics& m = QirnKitHost::metrics();
        const ChromeColors& c = QirnKitHost::colors();
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        const bool asking = index.data(kAskingRole).toBool();
        const QRectF cap = QRectF(row.rect).adjusted(m.tightGap, m.px(3), -m.tightGap, -m.px(3));
        ChromePaint::box(*painter, cap, m.smallRadius, asking ? c.well : c.raised, c.edge);
        if (asking) ChromePaint::focusRing(*painter, cap, m.smallRadius);
        painter->setFont(row.font);
        const QString text = row.text.isEmpty() ? QStringLiteral("–") : row.text;
        ChromePaint::text(*painter, cap.adjusted(m.gap, 0, -m.gap, 0), Qt::AlignCenter, text,
                          row.text.isEmpty() ? c.dim : c.text);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const Metrics& m = QirnKitHost::metrics();
        const int text = option.fontMetrics.horizontalAdvance(index.data().toString());
        return {text + 2 * (m.gap + m.tightGap) + 1, m.rowHeight};
    }
};

/// Titles, remarks and headings, over the mark of the chosen row.
class TextDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const bool isQuiet = index.column() == kRemark || !index.parent().isValid();
        if (isQuiet) option->palette.setBrush(QPalette::Text, option->palette.placeholderText());
        option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver);
    }
};

QString keysText(const KeyOwner& owner, const KeyChoices& choices) {
    QStringList keys;
    for (const int key : keysOf(owner, choices)) keys << keyText(key);
    return keys.join(QStringLiteral(", "));
}

QString remarkOf(const KeyOwner& owner, const KeyChoices& choices) {
    const int own = ownKeyOf(owner);
    if (shownKeyOf(owner, choices) == own) return {};
    return own == 0 ? KeyList::tr("instead of none") : KeyList::tr("instead of %1").arg(keyText(own));
}

} // namespace

KeyList::KeyList(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("keys"));
    setAccessibleName(tr("Keys"));
    setColumnCount(3);
    setHeaderHidden(true);
    setIndentation(0);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setItemDelegate(new TextDelegate(this));
    setItemDelegateForColumn(kKeys, new KeyDelegate(this));
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(0);
    header()->setSectionResizeMode(QHeaderView::Fixed);
    const auto owners = keyOwners();
    QTreeWidgetItem* heading = nullptr;
    for (std::size_t i = 0; i < owners.size(); ++i) {
        if (i == 0 || qstrcmp(owners[i].group, owners[i - 1].group) != 0) {
            heading = new QTreeWidgetItem(this, {groupOf(owners[i])});
            heading->setFlags(Qt::ItemIsEnabled);
            heading->setFirstColumnSpanned(true);
        }
        auto* item = new QTreeWidgetItem(heading, {titleOf(owners[i])});
        item->setData(kTitle, kOwnerRole, static_cast<uint>(i));
    }
    expandAll();
    setCurrentItem(topLevelItem(0)->child(0));
    QirnKit::followMetrics(this, [this](const Metrics&) {
        for (int group = 0; group < topLevelItemCount(); ++group)
            topLevelItem(group)->setFont(kTitle, ChromeFont::caption());
        layOutColumns();
    });
    connect(this, &QTreeWidget::itemClicked, this, [this](const QTreeWidgetItem*, int column) {
        if (column == kKeys) ask();
    });
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](const QTreeWidgetItem*, int column) {
        if (column != kKeys) ask();
    });
}

void KeyList::showKeys(const KeyChoices& choices) {
    for (QTreeWidgetItemIterator it(this); *it; ++it) {
        const KeyOwner* owner = ownerOf(*it);
        if (!owner) continue;
        const QString keys = keysText(*owner, choices);
        if (*it == askingItem_)
            textBefore_ = keys;
        else
            (*it)->setText(kKeys, keys);
        (*it)->setText(kRemark, remarkOf(*owner, choices));
        for (const int column : {kTitle, kKeys, kRemark})
            (*it)->setToolTip(column, (*it)->text(column)); // it may be cut
    }
    layOutColumns();
}

/// The titles have what keys and remarks leave them, and three tenths at least.
void KeyList::layOutColumns() {
    const int width = viewport()->width();
    const int keys = std::min(sizeHintForColumn(kKeys), width * 2 / 5);
    const int remark = std::min(sizeHintForColumn(kRemark), width * 3 / 10);
    header()->resizeSection(kTitle, width - keys - remark);
    header()->resizeSection(kKeys, keys);
    header()->resizeSection(kRemark, remark);
}

void KeyList::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    layOutColumns();
}

/// Arrow keys pass over the headings.
QModelIndex KeyList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const QModelIndex to = QTreeWidget::moveCursor(action, modifiers);
    if (!to.isValid() || to.parent().isValid()) return to;
    const bool up = action == MoveUp || action == MovePrevious || action == MovePageUp;
    const QModelIndex beyond = up ? indexAbove(to) : indexBelow(to);
    return beyond.isValid() ? beyond : currentIndex();
}

/// A chosen row is one piece.
void KeyList::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (index == currentIndex().siblingAtColumn(index.column())) {
        QStyleOptionViewItem row = option;
        row.state |= QStyle::State_Selected | QStyle::State_Enabled;
        row.state.setFlag(QStyle::State_HasFocus, hasFocus() && !asking_);
        style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, this);
    }
    QTreeWidget::drawRow(painter, option, index);
}

void KeyList::showOnly(const QString& words) {
    stopAsking();
    const QStringList wanted = words.split(u' ', Qt::SkipEmptyParts);
    QTreeWidgetItem* first = nullptr;
    for (int group = 0; group < topLevelItemCount(); ++group) {
        QTreeWidgetItem* heading = topLevelItem(group);
        bool any = false;
        for (int i = 0; i < heading->childCount(); ++i) {
            QTreeWidgetItem* item = heading->child(i);
            const QString all = item->text(kTitle) + u' ' + item->text(kKeys) + u' ' + heading->text(kTitle);
            const bool found = std::all_of(wanted.begin(), wanted.end(), [&](const QString& word) {
                return all.contains(word, Qt::CaseInsensitive);
            });
            item->setHidden(!found);
            if (found && !first) first = item;
            any |= found;
        }
        heading->setHidden(!any);
    }
    if (first && !current()) setCurrentItem(first);
}

const KeyOwner* KeyList::current() const {
    return currentItem() && !currentItem()->isHidden() ? ownerOf(currentItem()) : nullptr;
}

void KeyList::ask() {
    stopAsking();
    asking_ = current();
    if (!asking_) return;
    askingItem_ = currentItem();
    textBefore_ = askingItem_->text(kKeys);
    askingItem_->setData(kKeys, kAskingRole, true);
    setFocus();
    showHeld({});
    Q_EMIT asked();
}

void KeyList::stopAsking() {
    if (!asking_) return;
    asking_ = nullptr;
    QTreeWidgetItem* item = std::exchange(askingItem_, nullptr);
    item->setText(kKeys, textBefore_);
    item->setData(kKeys, kAskingRole, {});
    Q_EMIT stopped();
}

void KeyList::showHeld(Qt::KeyboardModifiers held) {
    held &= ~Qt::KeypadModifier;
    const QString keys = leftToRight(QKeySequence(static_cast<int>(held)).toString(QKeySequence::NativeText));
    askingItem_->setText(kKeys, keys.isEmpty() ? tr("Type a key…") : tr("%1…").arg(keys));
}

bool KeyList::keyWhileAsking(const QKeyEvent& event) {
    const bool plain = !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const int key = event.key();
    if (plain && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
        stopAsking();
        return false;
    }
    if (event.isAutoRepeat()) return true;
    if (plain && key == Qt::Key_Escape)
        stopAsking();
    else if (plain && (key == Qt::Key_Backspace || key == Qt::Key_Delete))
        Q_EMIT typed(0);
    else if (const std::optional<int> shortcut = shortcutOf(event))
        Q_EMIT typed(*shortcut);
    else
        showHeld(event.modifiers());
    return true;
}

bool KeyList::event(QEvent* event) {
    if (!asking_) return QTreeWidget::event(event);
    switch (event->type()) {
    case QEvent::ShortcutOverride: // no shortcut of the window or its menus is meant
        event->accept();
        return true;
    case QEvent::KeyPress:
        return keyWhileAsking(*static_cast<QKeyEvent*>(event)) || QTreeWidget::event(event);
    case QEvent::KeyRelease:
        showHeld(static_cast<QKeyEvent*>(event)->modifiers());
        return true;
    default:
        return QTreeWidget::event(event);
    }
}

void KeyList::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        return ask();
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        Q_EMIT clearAsked();
        return;
    default:
        QTreeWidget::keyPressEvent(event);
    }
}

void KeyList::mousePressEvent(QMouseEvent* event) {
    stopAsking();
    QTreeWidget::mousePressEvent(event);
}

void KeyList::focusOutEvent(QFocusEvent* event) {
    stopAsking();
    QTreeWidget::focusOutEvent(event);
}

} // namespace qirn
