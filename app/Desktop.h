#pragma once
#include <optional>

#include <QString>
#include <QStringList>

namespace qirn {

struct FileType {
    QString description;
    QStringList extensions; ///< Without the dot.
};

/// What the application asks of the desktop, so that tests can answer in a person's place. All of it is modal and
/// on the main thread.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// A path to write to, or nothing when the user cancels. `message` stands in the panel where it has a place.
    virtual std::optional<QString> saveFile(const QString& proposedName, const QList<FileType>& types,
                                            const QString& message) = 0;
    virtual QStringList openFiles(const QList<FileType>& types) = 0; ///< Empty when the user cancels.
    /// A message box; the index of the button that was pressed. The first button is the default one.
    virtual int ask(const QString& title, const QString& text, const QStringList& buttons,
                    int cancelButton) = 0;
    virtual void beep() = 0;
    virtual void noteRecentFile(const QString& path) = 0;
};

} // namespace qirn
