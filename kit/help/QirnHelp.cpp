#include "kit/help/QirnHelp.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>

#include "kit/help/KitTopics.h"
#include "kit/help/KitWindow.h"
#include "kit/help/QirnHelpViewer.h"

namespace qirn::QirnHelp {

namespace {

/// A text without case and accents.
QString folded(const QString& text) {
    QString plain = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    plain.removeIf([](QChar c) { return c.isMark(); });
    return plain;
}

/// What is searched of a topic, folded once: a key of the search field has to be answered before the next one.
struct Haystack {
    QString title, whole;
};

struct Manual {
    std::vector<QirnHelpTopic> installed;
    std::vector<QirnHelpTopic> all;
    std::vector<Haystack> haystacks; // of all

    Manual() { take({}); }
    void take(std::vector<QirnHelpTopic> topics) {
        installed = std::move(topics);
        all = installed;
        for (QirnHelpTopic& own : kitTopics()) {
            const bool known = std::ranges::any_of(installed, [&](const auto& t) { return t.id == own.id; });
            if (!known) all.push_back(std::move(own));
        }
        haystacks.clear();
        for (const QirnHelpTopic& t : all) {
            const QString whole = t.title + u'\n' + t.body + u'\n' + t.keywords.join(u' ');
            haystacks.push_back({folded(t.title), folded(whole)});
        }
    }
};

Manual& manual() {
    static Manual theManual;
    return theManual;
}

constexpr QSize kWindowSize{860, 600};

struct HelpWindow {
    QPointer<KitWindow> window; // ends with the application
    QPointer<QirnHelpViewer> viewer;
};

HelpWindow& helpWindow() {
    static HelpWindow theWindow;
    return theWindow;
}

} // namespace

void setTopics(std::vector<QirnHelpTopic> topics) {
    manual().take(std::move(topics));
    if (helpWindow().viewer) helpWindow().viewer->topicsChanged();
}

const std::vector<QirnHelpTopic>& topics() {
    return manual().installed;
}
const std::vector<QirnHelpTopic>& allTopics() {
    return manual().all;
}

const QirnHelpTopic* topicWithId(const QString& id) {
    const auto found = std::ranges::find(manual().all, id, &QirnHelpTopic::id);
    return found == manual().all.end() ? nullptr : &*found;
}

std::vector<QirnHelpTopic> search(const QString& query) {
    const QStringList terms = folded(query).simplified().split(u' ', Qt::SkipEmptyParts);
    if (terms.isEmpty()) return allTopics();
    std::vector<QirnHelpTopic> found, inBodyOnly;
    for (std::size_t i = 0; i < manual().all.size(); ++i) {
        const Haystack& hay = manual().haystacks[i];
        if (!std::ranges::all_of(terms, [&](const QString& term) { return hay.whole.contains(term); }))
            continue;
        const bool inTitle =
            std::ranges::any_of(terms, [&](const QString& term) { return hay.title.contains(term); });
        (inTitle ? found : inBodyOnly).push_back(manual().all[i]);
    }
    found.insert(found.end(), inBodyOnly.begin(), inBodyOnly.end());
    return found;
}

void show(const QString& topic) {
    auto& [window, viewer] = helpWindow();
    if (!window) {
        viewer = new QirnHelpViewer(topic);
        const QString title =
            QCoreApplication::translate("QirnHelp", "%1 Help").arg(QGuiApplication::applicationDisplayName());
        window = new KitWindow(title, kWindowSize, viewer, "QirnHelpWindow");
    }
    viewer->goTo(topic);
    window->bringUp();
}

} // namespace qirn::QirnHelp
