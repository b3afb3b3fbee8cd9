#pragma once
#include "app/model/PaintSheet.h"

#include <vector>

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

namespace qirn {

class PaintModel;

/// What is asked for from outside: files to open and sheets to show. They wait until a question, sheet, long task or
/// gesture is over; then the files are opened in order, and the sheets shown one after the other.
class OpenRequests : public QObject {
public:
    OpenRequests(PaintModel& model, QWidget& window); ///< Both are borrowed for its life.

    void open(const QStringList& paths);
    void show(PaintSheet::Kind sheet); ///< Nothing happens where it is up, or waits already.
    /// The window comes forward; the desktop allows it by the token of who asked, which may be empty.
    void comeForward(const QByteArray& token);
    const QStringList& waiting() const { return waiting_; }
    const std::vector<PaintSheet::Kind>& waitingSheets() const { return waitingSheets_; }

private:
    bool isFree() const;
    void serve();

    PaintModel& model_;
    QPointer<QWidget> window_;
    QStringList waiting_;
    std::vector<PaintSheet::Kind> waitingSheets_;
    bool isOpening_ = false;
    QTimer timer_; // while something waits
};

} // namespace qirn
