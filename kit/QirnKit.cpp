#include "kit/QirnKit.h"

#include <memory>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QToolTip>

#include "kit/ChromeFont.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "kit/controls/ChromeSliderAccess.h"
#include "kit/style/ChromeStyle.h"

// Without this the linker leaves the resources of a static library out; the macro works outside namespaces only.
static void linkResources() {
    Q_INIT_RESOURCE(icons);
}

namespace qirn {

namespace {

struct Applied {
    QrKitTheme theme = QirnThemes::named(QString::fromLatin1(QirnThemes::kDefaultID)).kitTheme();
    ChromeColors colors = ChromeColors::fromTheme(theme);
    Metrics metrics;
};

KitStore& keptStore() {
    static KitStore theStore = KitStore::forThisRun();
    return theStore;
}

Applied& applied() {
    static Applied theApplied;
    return theApplied;
}

void applyFonts() {
    QApplication::setFont(ChromeFont::body());
    QToolTip::setFont(ChromeFont::small());
}

/// The parts first and laid out: what holds them asks at once how much room they need, and a row within a layout only
/// knows once that has been activated.
void tellSizes(QWidget& widget) {
    const QObjectList parts = widget.children();
    for (QObject* part : parts)
        if (part->isWidgetType() && !static_cast<QWidget*>(part)->isWindow())
            tellSizes(static_cast<QWidget&>(*part));
    QEvent sizes(QEvent::StyleChange);
    QCoreApplication::sendEvent(&widget, &sizes);
    if (widget.layout()) widget.layout()->activate();
}

/// Lives with the widget whose sizes it sets.
class MetricsFollower : public QObject {
public:
    MetricsFollower(QWidget* widget, std::function<void(const Metrics&)> apply)
        : QObject(widget),
          apply_(std::move(apply)) {
        widget->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::StyleChange) apply_(QirnKitHost::metrics());
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void(const Metrics&)> apply_;
};

} // namespace

const KitStore& QirnKitHost::store() {
    return keptStore();
}
const QrKitTheme& QirnKitHost::theme() {
    return applied().theme;
}
const ChromeColors& QirnKitHost::colors() {
    return applied().colors;
}
const Metrics& QirnKitHost::metrics() {
    return applied().metrics;
}

void QirnKit::useStore(KitStore store) {
    keptStore() = std::move(store);
}

void QirnKit::install(const QString& appName, std::vector<QirnHelpTopic> helpTopics,
                      std::span<const QirnTheme> extraThemes) {
    linkResources();
    QirnHelp::setTopics(std::move(helpTopics));
    QirnThemes::registerThemes(extraThemes);
    // No display name: Qt would hang it on each window's title that ends with something else.
    QCoreApplication::setApplicationName(appName);
    QAccessible::installFactory(chromeSliderAccess);
    applyFonts();
    QApplication::setStyle(std::make_unique<ChromeStyle>().release()); // the application owns its style
    applyTheme();
    applyZoom(QrZoom::value());
}

void QirnKit::applyTheme() {
    applied().theme = QirnThemes::current().kitTheme();
    applied().colors = ChromeColors::fromTheme(applied().theme);
    const QPalette palette = applied().colors.palette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    for (QWidget* window : QApplication::topLevelWidgets()) window->update();
}

void QirnKit::applyZoom(double zoom) {
    if (zoom == applied().metrics.zoom) return;
    applied().metrics = Metrics{zoom};
    applyFonts();
    // Qt sends this one itself only while the event loop runs.
    QEvent font(QEvent::ApplicationFontChange);
    for (QWidget* window : QApplication::topLevelWidgets()) QCoreApplication::sendEvent(window, &font);
    for (QWidget* window : QApplication::topLevelWidgets()) tellSizes(*window);
}

void QirnKit::followMetrics(QWidget* widget, std::function<void(const Metrics&)> apply) {
    apply(QirnKitHost::metrics());
    new MetricsFollower(widget, std::move(apply)); // the widget owns it
}

} // namespace qirn
