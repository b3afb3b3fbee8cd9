#pragma once
#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

namespace qirn {

class PaintModel;

/// Files that are to be opened from outside: they wait until a question, sheet, long task or gesture is over, and are
/// then opened in order.
class OpenRequests : public QObject {
public:
    OpenRequests(PaintModel& model, QWidget& window); ///< Both are borrowed for its life.

    void open(const QStringList& paths);
    /// The window comes forward; the desktop allows it by the token of who asked, which may be empty.
    void comeForward(const QByteArray& token);
    const QStringList& waiting() const { return waiting_; }

private:
    bool isFree() const;
    void openWaiting();

    PaintModel& model_;
    QPointer<QWidget> window_;
    QStringList waiting_;
    bool isOpening_ = false;
    QTimer timer_; // while something waits
};

} // namespace qirn
