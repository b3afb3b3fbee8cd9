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

/// What the application needs of the desktop, as an interface that tests can script. Panels and boxes are modal; main
/// thread only.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// A path to write to with an extension of the first type, or nothing when the user cancels. `message` stands
    /// in the panel where it has a place.
    virtual std::optional<QString> saveFile(const QString& proposedName, const QList<FileType>& types,
                                            const QString& message) = 0;
    enum class Several { no, yes };
    virtual QStringList openFiles(const QList<FileType>& types, Several several) = 0; ///< Empty: cancelled.
    /// A message box; the index of the button that was pressed. The first button is the default one.
    virtual int ask(const QString& title, const QString& text, const QStringList& buttons,
                    int cancelButton) = 0;
    virtual void beep() = 0;
    virtual void noteRecentFile(const QString& path) = 0;
    /// What lies on the clipboard; borrowed until control returns to the event loop.
    virtual const QMimeData& clipboard() = 0;
    virtual void setClipboard(std::unique_ptr<QMimeData> content) = 0;
};

} // namespace qirn
