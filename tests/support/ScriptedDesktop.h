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
    };

    std::deque<QString> savePaths; ///< Answers to the save panel, in order.
    std::deque<QStringList> openPaths;
    std::deque<int> answers; ///< Buttons to press.

    std::vector<Question> asked;
    QStringList proposedNames;
    QStringList recentFiles;
    int beeps = 0;
    std::unique_ptr<QMimeData> content = std::make_unique<QMimeData>(); ///< On the clipboard.

    std::optional<QString> saveFile(const QString& proposedName, const QList<FileType>& types,
                                    const QString&) override {
        proposedNames << proposedName;
        const auto path = take(savePaths);
        return path ? std::optional(FileTypes::withExtension(*path, types.front())) : std::nullopt;
    }
    QStringList openFiles(const QList<FileType>&, Several) override {
        return take(openPaths).value_or(QStringList());
    }
    int ask(const QString& title, const QString& text, const QStringList& buttons,
            int cancelButton) override {
        asked.push_back({title, text, buttons});
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
