#pragma once
#include <QString>
#include <QWidget>

namespace qirn {

/// A window of the kit's own beside the application's: one of its kind, made on first use and kept when it is closed,
/// until the application ends. It does not keep the application alive. Esc closes it.
class KitWindow : public QWidget {
    Q_OBJECT
public:
    /// Holds `content`, in a size given as it is at zoom 1. With a name its place is remembered under it
    /// (`QirnKitHost::store`).
    KitWindow(const QString& title, QSize size, QWidget* content, const char* frameName = nullptr);

    void bringUp(); ///< Shows it, in front, with the keyboard.

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void place(); ///< Where it was the last time, or in the size that it was made with.

    QSize size_; // at zoom 1
    const char* frameName_;
};

} // namespace qirn
