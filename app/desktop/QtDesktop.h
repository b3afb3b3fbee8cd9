#pragma once
#include "app/desktop/Desktop.h"

namespace qirn {

/// The desktop as Qt offers it; panels and boxes stand over the active window.
class QtDesktop final : public Desktop {
public:
    std::optional<QString> saveFile(const QString& proposedName, const QList<FileType>& types,
                                    const QString& message) override;
    QStringList openFiles(const QList<FileType>& types, Several several) override;
    int ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton) override;
    void beep() override;
    void noteRecentFile(const QString& path) override;
    const QMimeData& clipboard() override;
    void setClipboard(std::unique_ptr<QMimeData> content) override;

private:
    bool mayReplace(const QString& path);

    QString folder_; // where the last panel ended
};

} // namespace qirn
