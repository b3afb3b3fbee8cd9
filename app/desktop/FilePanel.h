#pragma once
#include <QFileDialog>

namespace qirn {

/// A panel for files over the active window: the desktop's own where it offers one, with the title alone, otherwise Qt's
/// with a message and previews. Files are told apart by their names, never by reading them.
class FilePanel : public QFileDialog {
    Q_OBJECT
public:
    /// Qt's asks nothing about a file that is there; the desktop's own does.
    FilePanel(const QString& title, const QString& message, const QString& folder, const QString& filters);

    bool isOurs() const; ///< It is Qt's.
    void showPreviews(); ///< Of the file that is chosen, at the side; ours only.
};

} // namespace qirn
