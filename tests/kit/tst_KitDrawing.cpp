#include "kit/QirnKit.h"
#include "kit/icons/Icons.h"
#include "kit/style/ChromePaint.h"
#include "support/TestMain.h"

#include <set>

#include <QDir>
#include <QFile>
#include <QPainter>

using namespace qirn;

namespace {

QImage canvas(double ratio) {
    QImage image(QSize(64, 64) * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::black);
    return image;
}

/// How many of the pixels along a device row are neither black nor white, but for a rounding of the rasteriser.
int halfTones(const QImage& image, int y) {
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += qRed(image.pixel(x, y)) > 4 && qRed(image.pixel(x, y)) < 251;
    return count;
}

/// Opaque pixels of one color only, whatever their coverage.
bool isTinted(const QImage& image, const QColor& color) {
    bool any = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.alpha() < 128) continue;
            any = true;
            const auto off = [&](int got, int wanted) { return qAbs(got - wanted); };
            if (off(pixel.red(), color.red()) + off(pixel.green(), color.green()) +
                    off(pixel.blue(), color.blue()) >
                9)
                return false;
        }
    }
    return any;
}

} // namespace

class tst_KitDrawing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void edgesLieOnDevicePixelsAtEveryRatioAndPlace() {
        for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            for (int shift = 0; shift < 5; ++shift) { // a widget may stand at any logical pixel of its window
                QImage image = canvas(ratio);
                QPainter painter(&image);
                painter.translate(shift, shift);
                ChromePaint::box(painter, QRectF(7, 5, 31, 41), 0, Qt::white);
                ChromePaint::line(painter, QRectF(45, 5, 5, 41), ChromePaint::Side::left, Qt::white);
                painter.end();
                QCOMPARE(halfTones(image, qRound(30 * ratio)), 0);
                const int top = qRound((5 + shift) * ratio), inside = qRound((20 + shift) * ratio);
                QVERIFY(qRed(image.pixel(inside, top)) == 255 && qRed(image.pixel(inside, top - 1)) == 0);
                int line = 0;
                for (int x = qRound((44.4 + shift) * ratio); x < qRound((50 + shift) * ratio); ++x)
                    line += image.pixel(x, qRound(30 * ratio)) == qRgb(255, 255, 255);
                QCOMPARE(line, static_cast<int>(ratio));

                image.fill(Qt::black); // a border is one sharp line
                painter.begin(&image);
                painter.translate(shift, shift);
                ChromePaint::box(painter, QRectF(3, 3, 31, 41), 6, Qt::black, Qt::white);
                painter.end();
                QCOMPARE(halfTones(image, qRound(27 * ratio)), 0);
            }
        }
    }

    void everyIconHasItsFileAndEveryFileIsUsed() {
        std::set<QString> used;
        for (int i = 0; i <= static_cast<int>(kLastIcon); ++i) {
            const QString file = Icons::file(static_cast<Icon>(i));
            QVERIFY2(QFile::exists(file), qPrintable(file));
            QVERIFY2(used.insert(file).second, qPrintable(file));
            QVERIFY(isTinted(Icons::pixmap(static_cast<Icon>(i), 20, 1, QColor(30, 200, 90)).toImage(),
                             QColor(30, 200, 90)));
        }
        QCOMPARE(static_cast<int>(used.size()), static_cast<int>(QDir(":/qirn/icons").entryList().size()));
    }

    void anIconHasTheExactPixelsOfTheScreenAndIsPlacedOnThem() {
        for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
            const QPixmap pixmap = Icons::pixmap(Icon::save, 20, ratio, Qt::white);
            QCOMPARE(pixmap.width(), qRound(20 * ratio));
            QCOMPARE(pixmap.devicePixelRatio(), ratio);
            QCOMPARE(Icons::themed(Icon::save).pixmap(QSize(20, 20), ratio).width(), qRound(20 * ratio));
            const QImage icon = pixmap.toImage();
            for (int shift = 0; shift < 4; ++shift) {
                QImage image = canvas(ratio);
                QPainter painter(&image);
                painter.translate(shift, 0);
                ChromePaint::icon(painter, QRectF(11, 11, 28, 28), Icon::save, 20, Qt::white);
                painter.end();
                const QPoint corner(qRound((15 + shift) * ratio), qRound(15 * ratio));
                for (int y = 0; y < icon.height(); ++y)
                    for (int x = 0; x < icon.width(); ++x)
                        QCOMPARE(qRed(image.pixel(corner + QPoint(x, y))), qAlpha(icon.pixel(x, y)));
            }
        }
    }

    void anIconFollowsItsButton() {
        const ChromeColors& colors = QirnKitHost::colors();
        const QIcon icon = Icons::themed(Icon::hand);
        const auto shown = [&](QIcon::Mode mode, QIcon::State state) {
            return icon.pixmap(QSize(40, 40), 1, mode, state).toImage();
        };
        QVERIFY(isTinted(shown(QIcon::Normal, QIcon::Off), colors.text));
        QVERIFY(isTinted(shown(QIcon::Disabled, QIcon::Off), colors.faint));
        QVERIFY(isTinted(shown(QIcon::Normal, QIcon::On), colors.onAccent));
    }
};

QIRN_TEST(tst_KitDrawing)
#include "tst_KitDrawing.moc"
