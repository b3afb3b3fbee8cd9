#pragma once
#include "app/files/SafetyCopy.h"
#include "app/files/ViewTransform.h"
#include "core/PaintDocument.h"
#include "platform/files/FileStamp.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QUuid>

namespace qirn {

/// One open picture: its document, its file and its view. It owns its document, which stays the same for its life;
/// sessions are compared by identity.
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

    QUrl fileURL; ///< Empty: never saved, or imported from another format.
    /// Of its file when it was last read or written here; nothing where there is no file, or nothing is known of it.
    std::optional<FileStamp> fileStamp;
    QString name;        ///< As the tab shows it, without extension.
    int64_t savedChange; ///< The document's change count at the last save, or -1.
    /// The change count of what is on disk, in the safety copy or, from a save on, in the file; -1: nothing is.
    int64_t autosavedChange;
    QDateTime lastAutosave; ///< When the safety copy on disk was taken; null: there is none.
    SafetyCopy copy;
    QString originalPath; ///< Where the file was of a picture that was recovered and not saved since.
    QString remark; ///< What the import left out of the file, in words; empty once the picture is saved.
    ViewState view;
    /// The view is fitted at each resize: the picture has not been shown yet, or only in a window that is still being laid
    /// out. The first change of the view, or press in it, ends that.
    bool needsFit = true;
    bool atMostFullSize = false; ///< A small picture is first shown at 100% and not enlarged.

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
