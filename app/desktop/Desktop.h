#pragma once
#include <memory>
#include <optional>

#include <QString>
#include <QStringList>

class QMimeData;

namespace qirn {

struct FileType {
    QString description;
    QStringList extensions; ///< Without the dot.
};

/// What a save panel asks.
struct SaveQuestion {
    QString title;
    QString proposedName;
    QList<FileType> types;     ///< The file gets an extension of the first one.
    QString message = {};      ///< Stands in the panel where it has a place.
    bool offersExport = false; ///< For a name with a picture's extension: the user may want an export.
    QString folder = {};       ///< Where the panel starts; empty, or gone: where the last one ended.
};

/// What it was answered.
struct SavePlace {
    QString path;
    bool exportInstead = false; ///< There is no path: the user would rather export.
};

/// What the application needs of the desktop, as an interface that tests can script. Panels and boxes are modal; main
/// thread only.
class Desktop {
public:
    virtual ~Desktop() = default;

    virtual std::optional<SavePlace> saveFile(const SaveQuestion& question) = 0; ///< Nothing: cancelled.
    enum class Several { no, yes };
    /// Empty: cancelled.
    virtual QStringList openFiles(const QString& title, const QList<FileType>& types, Several several) = 0;
    /// A file of the user's was read or written: the next panel starts in its folder.
    virtual void noteUsedFile(const QString& path) = 0;
    /// A message box; the index of the button that was pressed. Escape presses `cancelButton`, Return `defaultButton`.
    virtual int ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton,
                    int defaultButton = 0) = 0;
    virtual void beep() = 0;
    virtual void noteRecentFile(const QString& path) = 0;
    /// What lies on the clipboard; borrowed until control returns to the event loop.
    virtual const QMimeData& clipboard() = 0;
    virtual void setClipboard(std::unique_ptr<QMimeData> content) = 0;
};

} // namespace qirn
