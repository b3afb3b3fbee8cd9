#include "app/desktop/FilePanel.h"

#include "app/desktop/FilePreview.h"
#include "kit/QirnKit.h"
#include "kit/icons/Icons.h"

#include <QAbstractFileIconProvider>
#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>

namespace qirn {

namespace {

constexpr int kPreviewDelay = 120; // ms that the choice rests before a file is read

/// By the name alone: to look into each file takes long in a slow folder, and for ever at a pipe.
class NameIcons final : public QAbstractFileIconProvider {
public:
    QIcon icon(const QFileInfo& info) const override {
        return Icons::themed(info.isDir() ? Icon::folder : Icon::file);
    }
    QIcon icon(IconType type) const override {
        return Icons::themed(type == File ? Icon::file : type == Folder ? Icon::folder : Icon::computer);
    }
    QString type(const QFileInfo& info) const override {
        if (info.isDir()) return FilePanel::tr("Folder");
        return info.suffix().isEmpty() ? FilePanel::tr("File") : info.suffix().toUpper();
    }
};

QAbstractFileIconProvider* nameIcons() {
    static NameIcons icons; // the panels borrow it
    return &icons;
}

} // namespace

FilePanel::FilePanel(const QString& title, const QString& message, const QString& folder,
                     const QString& filters)
    : QFileDialog(QApplication::activeWindow(), title, folder, filters) {
    setIconProvider(nameIcons());
    if (!isOurs()) return;
    setOption(DontConfirmOverwrite);
    const Metrics& m = QirnKitHost::metrics();
    resize(m.px(820), m.px(520));
    auto* grid = qobject_cast<QGridLayout*>(layout());
    if (!grid || message.isEmpty()) return;
    auto* label = new QLabel(message, this);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
}

bool FilePanel::isOurs() const {
    return layout() != nullptr; // Qt lays it out only where it shows it itself
}

void FilePanel::showPreviews() {
    auto* grid = qobject_cast<QGridLayout*>(layout());
    if (!grid) return;
    auto* preview = new FilePreview(this);
    grid->addWidget(preview, 1, grid->columnCount());
    auto* rest = new QTimer(this);
    rest->setSingleShot(true);
    rest->setInterval(kPreviewDelay);
    connect(rest, &QTimer::timeout, preview, [this, preview] {
        const QStringList chosen = selectedFiles();
        preview->setFile(chosen.size() == 1 && QFileInfo(chosen.front()).isFile() ? chosen.front()
                                                                                  : QString());
    });
    connect(this, &QFileDialog::currentChanged, rest, qOverload<>(&QTimer::start));
}

} // namespace qirn
