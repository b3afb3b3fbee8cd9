#include "kit/QirnKit.h"

#include <memory>

#include <QAccessible>
#include <QApplication>
#include <QToolTip>

#include "kit/ChromeFont.h"
#include "kit/QirnThemes.h"
#include "kit/controls/ChromeSliderAccess.h"
#include "kit/style/ChromeStyle.h"

// Resources of a static library are linked in only where they are asked for, from outside any namespace.
static void linkResources() {
    Q_INIT_RESOURCE(icons);
}

namespace qirn {

namespace {

struct Applied {
    QrKitTheme theme = QirnThemes::named(QString::fromLatin1(QirnThemes::kDefaultID)).kitTheme();
    ChromeColors colors = ChromeColors::of(theme);
};

Applied& applied() {
    static Applied theApplied;
    return theApplied;
}

} // namespace

const QrKitTheme& QirnKitHost::theme() {
    return applied().theme;
}
const ChromeColors& QirnKitHost::colors() {
    return applied().colors;
}

void QirnKit::install(const QString& appName) {
    linkResources();
    QCoreApplication::setApplicationName(appName);
    QGuiApplication::setApplicationDisplayName(appName);
    QAccessible::installFactory(chromeSliderAccess);
    QApplication::setFont(ChromeFont::body());
    QToolTip::setFont(ChromeFont::small());
    QApplication::setStyle(std::make_unique<ChromeStyle>().release()); // the application owns its style
    applyTheme();
}

void QirnKit::applyTheme() {
    applied().theme = QirnThemes::current().kitTheme();
    applied().colors = ChromeColors::of(applied().theme);
    const QPalette palette = applied().colors.palette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    for (QWidget* window : QApplication::topLevelWidgets()) window->update();
}

} // namespace qirn
