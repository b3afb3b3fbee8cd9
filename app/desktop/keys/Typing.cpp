#include "app/desktop/keys/Typing.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace qirn {

namespace {

template <class Field> bool canBeWritten(QWidget* widget) {
    const auto* field = qobject_cast<Field*>(widget);
    return field && !field->isReadOnly();
}

/// The same for each class of text field, which have these functions in common and no base class for them.
template <class Field> bool actIn(QWidget* widget, Typing::TextAction action) {
    auto* field = qobject_cast<Field*>(widget);
    const bool changes = action != Typing::TextAction::copy && action != Typing::TextAction::selectAll;
    if (!field || (field->isReadOnly() && changes)) return false;
    switch (action) {
    case Typing::TextAction::undo:
        field->undo();
        break;
    case Typing::TextAction::redo:
        field->redo();
        break;
    case Typing::TextAction::cut:
        field->cut();
        break;
    case Typing::TextAction::copy:
        field->copy();
        break;
    case Typing::TextAction::paste:
        field->paste();
        break;
    case Typing::TextAction::selectAll:
        field->selectAll();
        break;
    }
    return true;
}

bool isReturn(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool edits(int key) {
    return key == Qt::Key_Backspace || key == Qt::Key_Insert || key == Qt::Key_Delete ||
           (key >= Qt::Key_Home && key <= Qt::Key_PageDown); // with the arrows between them
}

} // namespace

QWidget* Typing::field() {
    QWidget* focus = QApplication::focusWidget();
    // These have the focus on behalf of a field inside them.
    if (qobject_cast<QAbstractSpinBox*>(focus)) return focus->findChild<QLineEdit*>();
    if (const auto* list = qobject_cast<QComboBox*>(focus)) return list->lineEdit();
    const bool isField = qobject_cast<QLineEdit*>(focus) || qobject_cast<QPlainTextEdit*>(focus) ||
                         qobject_cast<QTextEdit*>(focus);
    return isField ? focus : nullptr;
}

bool Typing::hasTyped() {
    QWidget* text = field();
    if (const auto* line = qobject_cast<QLineEdit*>(text)) return line->isModified();
    if (const auto* page = qobject_cast<QPlainTextEdit*>(text)) return page->document()->isModified();
    const auto* page = qobject_cast<QTextEdit*>(text);
    return page && page->document()->isModified();
}

bool Typing::act(TextAction action) {
    QWidget* text = field();
    return actIn<QLineEdit>(text, action) || actIn<QPlainTextEdit>(text, action) ||
           actIn<QTextEdit>(text, action);
}

bool Typing::takes(const QKeyEvent& event) {
    QWidget* text = field();
    if (!canBeWritten<QLineEdit>(text) && !canBeWritten<QPlainTextEdit>(text) &&
        !canBeWritten<QTextEdit>(text))
        return false;
    if (edits(event.key()) || isReturn(event.key()) || event.key() == Qt::Key_Escape) return true;
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    return !event.text().isEmpty() && event.text().front().isPrint();
}

TypingKeys::TypingKeys(QWidget& window, QWidget& next, Means returnMeans)
    : QObject(&window),
      next_(next),
      returnMeans_(returnMeans) {
    window.installEventFilter(this);
}

bool TypingKeys::eventFilter(QObject*, QEvent* event) {
    const bool press = event->type() == QEvent::KeyPress;
    if (!press && event->type() != QEvent::ShortcutOverride) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isForWindow = isReturn(key->key()) || (key->key() == Qt::Key_Escape && !Typing::hasTyped());
    const bool goesOn = isForWindow && returnMeans_ == Means::window;
    if (goesOn || !Typing::takes(*key)) return false;
    event->accept();
    if (press && (isReturn(key->key()) || key->key() == Qt::Key_Escape)) next_.setFocus(Qt::OtherFocusReason);
    return true;
}

} // namespace qirn
