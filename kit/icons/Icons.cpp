#include "kit/icons/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn::Icons {

namespace {

struct Row {
    Icon icon;
    const char* file; // among the resources, without its ending
};

constexpr Row kRows[] = {
    // in the order of the enumeration
    {Icon::brush, "brush"},
    {Icon::eraser, "eraser"},
    {Icon::smudge, "hand-finger"},
    {Icon::blur, "droplet"},
    {Icon::bucket, "bucket"},
    {Icon::gradient, "gradient"},
    {Icon::eyedropper, "color-picker"},
    {Icon::selectRect, "square-dashed"},
    {Icon::selectEllipse, "circle-dashed"},
    {Icon::lasso, "lasso"},
    {Icon::move, "arrows-move"},
    {Icon::shape, "triangle-square-circle"},
    {Icon::text, "typography"},
    {Icon::hand, "hand-stop"},
    {Icon::zoom, "zoom"},
    {Icon::plus, "plus"},
    {Icon::minus, "minus"},
    {Icon::open, "folder-open"},
    {Icon::save, "device-floppy"},
    {Icon::exportPicture, "file-export"},
    {Icon::undo, "arrow-back-up"},
    {Icon::redo, "arrow-forward-up"},
    {Icon::help, "help"},
    {Icon::close, "x"},
    {Icon::eye, "eye"},
    {Icon::eyeOff, "eye-off"},
    {Icon::lock, "lock"},
    {Icon::alphaLock, "alpha-lock"},
    {Icon::clip, "corner-left-down"},
    {Icon::trash, "trash"},
    {Icon::duplicate, "copy"},
    {Icon::arrowLeft, "arrow-left"},
    {Icon::arrowRight, "arrow-right"},
    {Icon::arrowUp, "arrow-up"},
    {Icon::arrowDown, "arrow-down"},
    {Icon::swap, "arrows-exchange"},
    {Icon::blackWhite, "black-white"},
    {Icon::reset, "refresh"},
    {Icon::chevronUp, "chevron-up"},
    {Icon::chevronDown, "chevron-down"},
    {Icon::chevronRight, "chevron-right"},
    {Icon::check, "check"},
    {Icon::flipHorizontal, "flip-horizontal"},
    {Icon::flipVertical, "flip-vertical"},
    {Icon::warning, "alert-triangle"},
    {Icon::info, "info-circle"},
    {Icon::folder, "folder"},
    {Icon::folderNew, "folder-plus"},
    {Icon::file, "file"},
    {Icon::computer, "device-desktop"},
    {Icon::grid, "layout-grid"},
    {Icon::list, "list"},
    {Icon::search, "search"},
    {Icon::merge, "merge"},
};

constexpr bool inOrder() {
    for (size_t i = 0; i < std::size(kRows); ++i)
        if (kRows[i].icon != static_cast<Icon>(i)) return false;
    return std::size(kRows) == static_cast<size_t>(kLastIcon) + 1;
}
static_assert(inOrder());

const char* name(Icon icon) {
    return kRows[static_cast<size_t>(icon)].file;
}

/// What points on or back, as reading goes.
bool followsReading(Icon icon) {
    return icon == Icon::chevronRight || icon == Icon::arrowLeft || icon == Icon::arrowRight ||
           icon == Icon::undo || icon == Icon::redo;
}

/// A square of device pixels, ratio 1. The outline files say "currentColor" where the color goes.
QPixmap rendered(Icon icon, int pixels, const QColor& color) {
    const bool isMirrored = followsReading(icon) && QGuiApplication::isRightToLeft();
    const QString key = QStringLiteral("qirn-icon %1 %2 %3 %4")
                            .arg(QLatin1String(name(icon)), QString::number(pixels),
                                 color.name(QColor::HexArgb), isMirrored ? u"mirrored" : u"");
    QPixmap result;
    if (QPixmapCache::find(key, &result)) return result;
    QFile source(file(icon));
    if (!source.open(QIODevice::ReadOnly)) return result;
    QSvgRenderer renderer(source.readAll().replace("currentColor", color.name().toLatin1()));
    result = QPixmap(pixels, pixels);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setOpacity(color.alphaF());
    if (isMirrored) painter.setTransform(QTransform(-1, 0, 0, 1, pixels, 0));
    renderer.render(&painter);
    painter.end();
    QPixmapCache::insert(key, result);
    return result;
}

QColor colorFor(QIcon::Mode mode, QIcon::State state) {
    const ChromeColors& colors = QirnKitHost::colors();
    if (mode == QIcon::Disabled) return colors.faint;
    return state == QIcon::On ? colors.onAccent : colors.text;
}

class OutlineEngine : public QIconEngine {
public:
    explicit OutlineEngine(Icon icon) : icon_(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        ChromePaint::icon(*painter, rect, icon_, std::min(rect.width(), rect.height()),
                          colorFor(mode, state));
    }
    /// `size` is in device pixels. scaledPixmap() is left to the base class, whose size means something else since Qt 6.8.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return rendered(icon_, std::min(size.width(), size.height()), colorFor(mode, state));
    }
    QIconEngine* clone() const override { return std::make_unique<OutlineEngine>(*this).release(); }
    QString key() const override { return QStringLiteral("qirn-outline"); }

private:
    Icon icon_;
};

} // namespace

QIcon themed(Icon icon) {
    return QIcon(std::make_unique<OutlineEngine>(icon).release()); // the icon owns its engine
}

QPixmap pixmap(Icon icon, int size, double ratio, const QColor& color) {
    QPixmap result = rendered(icon, qRound(size * ratio), color);
    result.setDevicePixelRatio(ratio);
    return result;
}

QString file(Icon icon) {
    return QStringLiteral(":/qirn/icons/%1.svg").arg(QLatin1String(name(icon)));
}

} // namespace qirn::Icons
