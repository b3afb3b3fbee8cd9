#pragma once
#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"

#include <deque>
#include <memory>

#include <QMimeData>

namespace qirn::test {

/// A desktop that answers from a script and notes what was asked. A question without a prepared answer is
/// cancelled, so that a forgotten one shows as a picture that was not saved.
class ScriptedDesktop final : public Desktop {
public:
    struct Question {
        QString title;
        QString text;
        QStringList buttons;
        int defaultButton;
    };

    std::deque<QString> savePaths; ///< Answers to the save panel, in order; an empty one would rather export.
    std::deque<QStringList> openPaths;
    std::deque<int> answers; ///< Buttons to press.

    std::vector<Question> asked;
    QStringList proposedNames;
    QString proposedFolder; ///< The last.
    QStringList recentFiles;
    QString usedFile; ///< The last.
    int beeps = 0;
    std::unique_ptr<QMimeData> content = std::make_unique<QMimeData>(); ///< On the clipboard.

    std::optional<SavePlace> saveFile(const SaveQuestion& question) override {
        proposedNames << question.proposedName;
        proposedFolder = question.folder;
        const auto path = take(savePaths);
        if (!path) return std::nullopt;
        if (path->isEmpty()) return SavePlace{{}, true};
        return SavePlace{FileTypes::withExtension(*path, question.types.front())};
    }
    QStringList openFiles(const QString&, const QList<FileType>&, Several) override {
        return take(openPaths).value_or(QStringList());
    }
    void noteUsedFile(const QString& path) override { usedFile = path; }
    int ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton,
            int defaultButton) override {
        asked.push_back({title, text, buttons, defaultButton});
        return take(answers).value_or(cancelButton);
    }
    void beep() override { ++beeps; }
    void noteRecentFile(const QString& path) override { recentFiles << path; }
    const QMimeData& clipboard() override { return *content; }
    void setClipboard(std::unique_ptr<QMimeData> copied) override { content = std::move(copied); }

private:
    template <class T> static std::optional<T> take(std::deque<T>& queue) {
        if (queue.empty()) return std::nullopt;
        T first = queue.front();
        queue.pop_front();
        return first;
    }
};

} // namespace qirn::test
