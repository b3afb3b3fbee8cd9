#pragma once
#include <QObject>

class QKeyEvent;
class QWidget;

namespace qirn {

/// Whether somebody types, and which keys are the text's meanwhile.
namespace Typing {

/// The text field that has the keyboard, be it one that only shows its text; null where none has it.
QWidget* field();

/// Whether a key belongs to the text that is being typed: letters, and with any modifier the keys that edit, move in
/// it or end it. Other keys with Command, Option or Control and the function keys belong to the window.
bool takes(const QKeyEvent& event);

/// Whether the user has changed what stands in the field since it came to stand there.
bool hasTyped();

enum class TextAction { undo, redo, cut, copy, paste, selectAll };
/// Does the action in the text field that has the keyboard; false where there is none that can take it.
bool act(TextAction action);

} // namespace Typing

/// Keeps the keys of whoever types from a window's commands: what the text field itself has no use for ends here.
/// Escape ends the typing, and so does Return; a window with a meaning of its own for both has Return at once, and Escape
/// where nothing was typed.
class TypingKeys : public QObject {
    Q_OBJECT
public:
    enum class Means { end, window };
    /// Belongs to the window; `next` is a part of it that has the keyboard once the typing has ended.
    TypingKeys(QWidget& window, QWidget& next, Means returnMeans = Means::end);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& next_;
    Means returnMeans_;
};

} // namespace qirn
