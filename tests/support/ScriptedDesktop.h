#pragma once
#include "Desktop.h"

#include <deque>

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

    std::optional<QString> saveFile(const QString& proposedName, const QList<FileType>&,
                                    const QString&) override {
        proposedNames << proposedName;
        return take(savePaths);
    }
    QStringList openFiles(const QList<FileType>&) override { return take(openPaths).value_or(QStringList()); }
    int ask(const QString& title, const QString& text, const QStringList& buttons,
            int cancelButton) override {
        asked.push_back({title, text, buttons});
        return take(answers).value_or(cancelButton);
    }
    void beep() override { ++beeps; }
    void noteRecentFile(const QString& path) override { recentFiles << path; }

private:
    template <class T> static std::optional<T> take(std::deque<T>& queue) {
        if (queue.empty()) return std::nullopt;
        T first = queue.front();
        queue.pop_front();
        return first;
    }
};

} // namespace qirn::test
