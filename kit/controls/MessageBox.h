#pragma once
#include <QDialog>

class QPushButton;

namespace qirn {

/// A question or a message: what it is in a line, why in a paragraph, and buttons, in the order of the desktop's reader:
/// the first of them, which Return presses, stands last. Texts are plain whatever signs are in them, and wrap.
class MessageBox : public QDialog {
    Q_OBJECT
public:
    /// `cancelButton` is what Escape presses, `defaultButton` what Return does.
    MessageBox(const QString& title, const QString& text, const QStringList& buttons, int cancelButton,
               int defaultButton, QWidget* parent);

    int ask(); ///< Waits for an answer: the index of a button.
    const QList<QPushButton*>& buttons() const { return buttons_; } ///< In the order of their indexes.

private:
    QList<QPushButton*> buttons_;
    int answer_;
};

} // namespace qirn
