#pragma once
#include <QToolButton>

namespace qirn {

/// A flat button before a part of a panel that it shows or hides. Its title says which of the two a press does.
class Disclosure : public QToolButton {
    Q_OBJECT
public:
    /// Closed at first.
    Disclosure(const QString& toOpen, const QString& toClose, QWidget* parent);

    bool isOpen() const { return isOpen_; }
    void setOpen(bool open); ///< Emits nothing.

Q_SIGNALS:
    void turned(bool open); ///< By the user.

private:
    QString toOpen_;
    QString toClose_;
    bool isOpen_ = true;
};

} // namespace qirn
