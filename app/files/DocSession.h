#pragma once
#include "app/files/ViewTransform.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <future>
#include <memory>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QUuid>

namespace qirn {

class CopyLock;

/// One open picture: its document, where it is kept, and its own view. It owns the document and never changes it
/// for another; sessions are told apart by identity.
class DocSession : public QObject {
    Q_OBJECT
public:
    enum class Dirty { no, yes };

    /// `url` is empty for a picture that has no native file. `yes` makes a picture that counts as changed until
    /// it is saved.
    DocSession(std::unique_ptr<PaintDocument> document, QString name, QUrl url = {},
               QUuid id = QUuid::createUuid(), Dirty dirty = Dirty::no);

    const QUuid id; ///< Also names the safety copy.
    PaintDocument& doc() const { return *document_; }

    QUrl fileURL;        ///< Empty: never saved, or imported from another format.
    QString name;        ///< As the tab shows it, without extension.
    int64_t savedChange; ///< The document's change count at the last save, or -1.
    int64_t autosavedChange;
    QDateTime lastAutosave; ///< Null: never.
    std::shared_future<void>
        copy; ///< Of `autosavedChange`: ready when it is on disk, or with the error. Not valid: none.
    std::shared_ptr<CopyLock> copyLock; ///< Of the safety copy, from the first one on; null before.
    QString remark; ///< What the picture lacks of the file that it was opened from, until it is saved.
    ViewState view;
    /// The view is to be fitted: not shown yet, or still as the fit at its showing left it, so that the picture
    /// follows a window that is still finding its size. Whoever changes the view or works in it ends that.
    bool needsFit = true;

    bool isDirty() const { return document_->changeCount() != savedChange; }
    int64_t revision() const { return revision_; }
    /// Raises the revision and tells whoever shows the contents.
    void announceChange();

Q_SIGNALS:
    void changed();

private:
    std::unique_ptr<PaintDocument> document_;
    int64_t revision_ = 0;
};

using SessionRef = std::shared_ptr<DocSession>;

} // namespace qirn
