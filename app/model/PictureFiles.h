#pragma once
#include "formats/ExportFormat.h"

#include <memory>
#include <optional>
#include <vector>

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace qirn {

class DocSession;
class PaintModel;
struct PaintColor;

/// The open pictures' way from and to files: opened, saved, exported, and the list of the recent ones.
class PictureFiles {
    Q_DECLARE_TR_FUNCTIONS(qirn::PictureFiles)
public:
    explicit PictureFiles(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    void openPanel();
    void open(const QString& path);
    void open(const QStringList& paths); ///< In order; one message tells of all that could not be opened.
    enum class SaveAs { no, yes };
    bool save(DocSession* session, SaveAs as); ///< Null: the current one. False when cancelled or failed.
    /// Writes a copy in another format; the picture stays as dirty as it was.
    void exportPicture(ExportFormat format, double quality, const PaintColor& background);

    QStringList recentFiles() const; ///< Paths of opened and saved files that are still there, newest first.
    void forgetRecentFiles();

private:
    struct Refusal {
        QString path;
        QString reason; ///< In words.
        bool canBeSalvaged = false;
    };
    /// Why it could not be opened; nothing when it was. Throws Cancelled.
    std::optional<Refusal> whyNotOpened(const QString& path);
    bool tellsOf(const std::vector<Refusal>& refusals); ///< True where what can be read is wanted.
    void openWhatCanBeRead(const QString& path);
    void add(const std::shared_ptr<DocSession>& session, const QString& path);
    void noteRecentFile(const QString& path);
    enum class Place { itsFile, another };
    /// Where it is saved, where its file may have to be asked about; nothing where the user cancels.
    std::optional<Place> placeToSave(const DocSession& session, SaveAs as);

    PaintModel& model_;
};

} // namespace qirn
