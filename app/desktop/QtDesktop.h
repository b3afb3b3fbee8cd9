#pragma once
#include "app/desktop/Desktop.h"

namespace qirn {

/// The desktop as Qt offers it; panels and boxes stand over the active window.
class QtDesktop final : public Desktop {
public:
    std::optional<SavePlace> saveFile(const SaveQuestion& question) override;
    QStringList openFiles(const QString& title, const QList<FileType>& types, Several several) override;
    void noteUsedFile(const QString& path) override;
    int ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton,
            int defaultButton = 0) override;
    void beep() override;
    void noteRecentFile(const QString& path) override;
    const QMimeData& clipboard() override;
    void setClipboard(std::unique_ptr<QMimeData> content) override;

private:
    /// The name that was typed, made one of the type; nothing where the user would rather type another.
    std::optional<SavePlace> placeFor(const QString& typed, const SaveQuestion& question);
    bool mayReplace(const QString& path);

    QString folder_; // of the file used last
};

} // namespace qirn
