#pragma once
#include "app/commands/KeyOwners.h"

#include <optional>

#include <QTreeWidget>

namespace qirn {

/// Every command and tool with its keys, by menu. While it asks for the key of a row it takes whatever is typed: nothing
/// reaches the window. It changes nothing by itself.
class KeyList : public QTreeWidget {
    Q_OBJECT
public:
    explicit KeyList(QWidget* parent);

    void showKeys(const KeyChoices& choices);
    void showOnly(const QString& words); ///< Rows that have all words in their title, menu or keys.
    const KeyOwner* current() const;     ///< Null where no row is chosen.

    void ask(); ///< For the key of the current row.
    void stopAsking();
    const KeyOwner* asking() const { return asking_; } ///< Whose key is typed next; null for nobody's.

Q_SIGNALS:
    void asked();        ///< It has begun to ask.
    void typed(int key); ///< While it asks; 0 to have no key. It goes on asking.
    void clearAsked();   ///< Delete was pressed on a row.
    void stopped();      ///< It asks no more.

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void keyboardSearch(const QString&) override {} // the field above searches

private:
    bool keyWhileAsking(const QKeyEvent& event); ///< False for one that is not for the row.
    void showHeld(Qt::KeyboardModifiers held);
    void layOutColumns();

    QTreeWidgetItem* askingItem_ = nullptr;
    const KeyOwner* asking_ = nullptr;
    QString textBefore_; // in the row that is asked for
};

} // namespace qirn
