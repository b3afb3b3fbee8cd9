#include "Clipboard.h"
#include "PaintCommands.h"
#include "compositing/CompositeInputs.h"
#include "formats/native/PaintFile.h"
#include "formats/pictures/ImageImport.h"
#include "operations/Selection.h"
#include "platform/Bytes.h"
#include "support/Pictures.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace qirn;
using namespace qirn::test;

namespace {

QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer file(&bytes);
    file.open(QIODevice::WriteOnly);
    if (!image.save(&file, format)) qFatal("No codec for %s.", format);
    return bytes;
}

/// A picture of 6 x 4 in one colour.
QByteArray plain(Qt::GlobalColor color, const char* format) {
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(color);
    return encoded(image, format);
}

const PixelBytes kRed{255, 0, 0, 255};
const PixelBytes kGreen{0, 255, 0, 255};
const PixelBytes kBlue{0, 0, 255, 255};
const PixelBytes kYellow{255, 255, 0, 255};

/// The part of a layer that the rectangle covers.
std::shared_ptr<RGBABuffer> part(const Layer& layer, const IRect& rect) {
    auto buffer = std::make_shared<RGBABuffer>(rect.w, rect.h);
    for (int64_t y = 0; y < rect.h; ++y) {
        for (int64_t x = 0; x < rect.w; ++x) {
            const PixelBytes pixel = layer.pixel(rect.x + x, rect.y + y);
            std::copy(pixel.begin(), pixel.end(), buffer->row(y) + x * 4);
        }
    }
    return buffer;
}

void select(PaintDocument& doc, const QRectF& rect) {
    QPainterPath path;
    path.addRect(rect);
    doc.selection = Selection::make(path, SelectionOp::replace, nullptr, doc.grid().width, doc.grid().height,
                                    Antialias::yes);
    doc.commit(QStringLiteral("Select"));
}

/// Puts noise on the active layer of the studio's picture.
void addNoise(Studio& studio) {
    studio.layer().load(*noise(400, 300, 5));
    studio.doc().commit(QStringLiteral("Noise"));
}

/// The studio's canvas under the menu bar of the program, beside two text fields.
struct MenuWindow : Studio {
    QWidget window;
    QMenuBar* menu = new QMenuBar(&window);
    PaintCommands commands{model, *menu};
    QLineEdit* line = new QLineEdit(&window);
    QPlainTextEdit* text = new QPlainTextEdit(&window);

    MenuWindow() {
        auto* column = new QVBoxLayout(&window);
        column->setMenuBar(menu);
        for (QWidget* widget : std::initializer_list<QWidget*>{line, text, &canvas})
            column->addWidget(widget);
        window.resize(800, 800);
        window.show();
        window.activateWindow();
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(&window);
        canvas.setFocus();
    }
    ~MenuWindow() { canvas.setParent(nullptr); }

    void press(QWidget& on, Qt::Key letter, Qt::KeyboardModifiers more = {}) {
        on.setFocus();
        QTest::keyClick(&on, letter, Qt::ControlModifier | more);
    }
};

struct Drag {
    Qt::DropAction action; ///< What the canvas wants.
    bool entered;
    bool dropped;
};

Drag dragOnto(Studio& studio, const QMimeData& mime, Qt::DropAction proposed) {
    const Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QDragEnterEvent enter({50, 50}, possible, &mime, Qt::LeftButton, {});
    enter.setDropAction(proposed);
    QApplication::sendEvent(&studio.canvas, &enter);
    if (!enter.isAccepted()) return {enter.dropAction(), false, false};
    QDropEvent drop({50, 50}, possible, &mime, Qt::LeftButton, {});
    drop.setDropAction(proposed);
    QApplication::sendEvent(&studio.canvas, &drop);
    QCoreApplication::processEvents(); // files are read later
    return {drop.dropAction(), true, drop.isAccepted()};
}

/// Promises a picture and hands over nothing after a while, as the toolkit does for a program that hangs.
class LateOffer final : public QMimeData {
public:
    int milliseconds = 520;
    mutable int asked = 0;
    QStringList formats() const override { return {"image/png", "image/tiff", "image/bmp"}; }

protected:
    QVariant retrieveData(const QString&, QMetaType) const override {
        ++asked;
        QThread::msleep(static_cast<unsigned long>(milliseconds));
        return QByteArray();
    }
};

} // namespace

class tst_Clipboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCopyIsPastedWhereItWasTaken() {
        MenuWindow studio;
        addNoise(studio);
        select(studio.doc(), {250.5, 10, 20, 30.5}); // across a tile seam, with half covered edges
        const auto selection = studio.doc().selection;
        const auto expected = copyPixels(studio.doc(), Merged::no);
        studio.press(studio.canvas, Qt::Key_C);
        QCOMPARE(studio.model.hud(), QStringLiteral("Copied"));
        studio.press(studio.canvas, Qt::Key_V);
        QCOMPARE(studio.model.hud(), QStringLiteral("Pasted as a new layer — use Move (V) to position it"));
        QCOMPARE(studio.layer().name, QStringLiteral("Pasted Layer"));
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Paste"));
        QCOMPARE(studio.doc().selection, selection);
        QCOMPARE(studio.layer().contentBounds(), std::optional(expected->rect));
        QCOMPARE(firstDifference(*part(studio.layer(), expected->rect), *expected->buffer), QString());
        studio.model.undo();
        QCOMPARE(studio.doc().layerCount(), int64_t{2});
    }

    void othersReadACopyAsPngAndTiff() {
        Studio studio;
        addNoise(studio);
        studio.model.copy(Merged::no);
        const auto expected = copyPixels(studio.doc(), Merged::no);
        QCOMPARE(studio.desktop.content->formats(), QStringList({"image/png", "image/tiff"}));
        for (const char* type : {"image/png", "image/tiff"}) {
            const auto read = ImageImport::decode(bytesOf(studio.desktop.content->data(QLatin1String(type))));
            QVERIFY2(read, type);
            QCOMPARE(firstDifference(*read->layer->toBuffer(), *expected->buffer), QString());
        }
        // And so the program itself, when they come back by way of another.
        auto foreign = std::make_unique<QMimeData>();
        foreign->setData(QStringLiteral("image/png"),
                         studio.desktop.content->data(QStringLiteral("image/png")));
        studio.desktop.content = std::move(foreign);
        studio.model.paste();
        QCOMPARE(firstDifference(*part(studio.layer(), expected->rect), *expected->buffer), QString());
    }

    void theMergedCopyIsTheFinishedPicture() {
        MenuWindow studio;
        paintRect(studio.doc(), studio.layer(), {10, 10, 50, 50}, {100, 0, 0, 128});
        studio.layer().opacity = 0.5;
        studio.doc().onion.enabled = true;
        const auto finished = flattened(studio.doc());
        studio.press(studio.canvas, Qt::Key_C, Qt::ShiftModifier);
        QCOMPARE(studio.model.hud(), QStringLiteral("Copied the merged picture"));
        QCOMPARE(firstDifference(*Clipboard::picture(*studio.desktop.content).pixels, *finished), QString());
    }

    void formsAreTriedInTheirOrder_data() {
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<PixelBytes>("pasted");
        const auto row = [](const char* name, const char* offered, const PixelBytes& pasted) {
            QTest::newRow(name) << QString::fromLatin1(offered).split(u' ') << pasted;
        };
        row("PNG before all", "bmp file tiff png", kRed);
        row("TIFF before a file", "bmp file tiff", kGreen);
        row("a file before other forms", "bmp file", kBlue);
        row("BMP alone", "bmp", kYellow);
        row("an image of the toolkit", "image", kYellow);
        row("empty PNG does not count", "empty tiff", kGreen);
        row("damaged PNG does not count", "damaged tiff", kGreen);
        row("a web address is no file", "web bmp", kYellow);
    }
    void formsAreTriedInTheirOrder() {
        QFETCH(QStringList, offered);
        QFETCH(PixelBytes, pasted);
        Studio studio;
        QFile file(studio.path(QStringLiteral("blue ä.png")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(plain(Qt::blue, "png"));
        file.close();
        QMimeData& mime = *studio.desktop.content;
        for (const QString& form : offered) {
            if (form == QStringLiteral("png"))
                mime.setData(QStringLiteral("image/png"), plain(Qt::red, "png"));
            if (form == QStringLiteral("empty")) mime.setData(QStringLiteral("image/png"), {});
            if (form == QStringLiteral("damaged")) mime.setData(QStringLiteral("image/png"), "\x89PNG\r\n");
            if (form == QStringLiteral("tiff"))
                mime.setData(QStringLiteral("image/tiff"), plain(Qt::green, "tiff"));
            if (form == QStringLiteral("file")) mime.setUrls({QUrl::fromLocalFile(file.fileName())});
            if (form == QStringLiteral("web"))
                mime.setUrls({QUrl(QStringLiteral("https://a.example/b.png"))});
            if (form == QStringLiteral("bmp"))
                mime.setData(QStringLiteral("image/bmp"), plain(Qt::yellow, "bmp"));
            if (form == QStringLiteral("image"))
                mime.setImageData(QImage::fromData(plain(Qt::yellow, "bmp")));
        }
        studio.model.paste();
        QCOMPARE(studio.doc().layerCount(), int64_t{3});
        QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{197, 148, 6, 4})); // in the middle
        QCOMPARE(text(studio.layer().pixel(199, 150)), text(pasted));
    }

    void aPasteIsPlaced_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<IRect>("copied"); // empty: nothing was
        QTest::addColumn<IRect>("covered");
        QTest::newRow("odd sizes, whole-number division") << QSize(7, 5) << IRect{} << IRect{196, 147, 7, 5};
        QTest::newRow("larger than the canvas") << QSize(503, 401) << IRect{} << IRect{0, 0, 400, 300};
        QTest::newRow("of the copy's size")
            << QSize(20, 10) << IRect{90, 70, 20, 10} << IRect{90, 70, 20, 10};
        QTest::newRow("of another size") << QSize(10, 20) << IRect{90, 70, 20, 10} << IRect{195, 140, 10, 20};
    }
    void aPasteIsPlaced() {
        QFETCH(QSize, size);
        QFETCH(IRect, copied);
        QFETCH(IRect, covered);
        Studio studio;
        if (!copied.isEmpty()) {
            paintRect(studio.doc(), studio.layer(), copied, kRed);
            studio.model.copy(Merged::no);
        }
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgb(x % 256, y % 256, 9));
        }
        studio.desktop.content = std::make_unique<QMimeData>();
        studio.desktop.content->setData(QStringLiteral("image/png"), encoded(image, "png"));
        studio.model.paste();
        QCOMPARE(studio.layer().contentBounds(), std::optional(covered));
        if (size.width() > 400) // the origin is at (400 - 503) / 2, (300 - 401) / 2
            QCOMPARE(text(studio.layer().pixel(0, 0)), text(PixelBytes{51, 50, 9, 255}));
    }

    void aPlaceOutsideTheOtherPictureIsNotKept() {
        Studio studio;
        paintRect(studio.doc(), studio.layer(), {300, 200, 20, 10}, kRed);
        studio.model.copy(Merged::no);
        studio.model.newDocument(100, 100, 72, std::nullopt, QStringLiteral("Small"));
        studio.model.paste();
        QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{40, 45, 20, 10}));
    }

    void aProgramThatAnswersLateIsNotAnEmptyClipboard() {
        MenuWindow studio;
        studio.desktop.content = std::make_unique<LateOffer>();
        auto& late = static_cast<LateOffer&>(*studio.desktop.content);
        for (const bool again : {false, true}) { // then at once, from memory
            late.milliseconds = again ? 0 : 520;
            studio.press(studio.canvas, Qt::Key_V);
            QCOMPARE(studio.model.hud(), QStringLiteral("The other program did not answer in time"));
            QVERIFY(again || late.asked == 1); // not once more for each form
            studio.model.flash({});
        }
        QVERIFY(!dragOnto(studio, late, Qt::CopyAction).dropped && !studio.model.hud()->isEmpty());
        QCOMPARE(studio.doc().changeCount(), int64_t{0});
    }

    void nothingToCopyOrPasteLeavesNoTrace_data() {
        QTest::addColumn<bool>("selected");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("message");
        const QString nothing = QStringLiteral("Nothing to copy");
        QTest::newRow("copy of an empty layer") << false << Qt::Key_C << nothing;
        QTest::newRow("copy of empty pixels") << true << Qt::Key_C << nothing;
        QTest::newRow("cut of empty pixels") << true << Qt::Key_X << nothing;
        QTest::newRow("paste of a text")
            << false << Qt::Key_V << QStringLiteral("There's no picture on the clipboard");
    }
    void nothingToCopyOrPasteLeavesNoTrace() {
        QFETCH(bool, selected);
        QFETCH(Qt::Key, key);
        QFETCH(QString, message);
        MenuWindow studio;
        if (selected) select(studio.doc(), {10, 10, 30, 30});
        studio.desktop.content->setText(QStringLiteral("words"));
        const auto before = std::pair(studio.doc().fingerprint(), studio.doc().changeCount());
        studio.press(studio.canvas, key);
        QCOMPARE(studio.model.hud(), message);
        QCOMPARE(std::pair(studio.doc().fingerprint(), studio.doc().changeCount()), before);
        QCOMPARE(studio.desktop.content->text(), QStringLiteral("words"));
    }

    void aCutTakesWhatIsSelected() {
        MenuWindow studio;
        addNoise(studio);
        select(studio.doc(), {0, 0, 100, 300});
        const auto rest = part(studio.layer(), {100, 0, 300, 300});
        const auto taken = copyPixels(studio.doc(), Merged::no);
        studio.press(studio.canvas, Qt::Key_X);
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Cut"));
        QCOMPARE(firstDifference(*part(studio.layer(), {100, 0, 300, 300}), *rest), QString());
        QVERIFY(studio.layer().contentBounds()->x >= 100);
        QCOMPARE(firstDifference(*Clipboard::picture(*studio.desktop.content).pixels, *taken->buffer),
                 QString());
    }

    void aLockedLayerIsCopiedButNotCut() {
        Studio studio;
        addNoise(studio);
        studio.model.toggleLock();
        const uint64_t before = studio.doc().fingerprint();
        studio.model.cut();
        QCOMPARE(studio.model.hud(), QStringLiteral("The layer is locked"));
        QCOMPARE(studio.doc().fingerprint(), before);
        QVERIFY(Clipboard::picture(*studio.desktop.content).pixels);
    }

    void aPendingTransformIsLeftByCopyAndEndedByCutAndPaste() {
        Studio studio;
        paintRect(studio.doc(), studio.layer(), {10, 10, 20, 20}, kRed);
        studio.doc().commit(QStringLiteral("Dot"));
        studio.model.beginTransform();
        studio.model.copy(Merged::no);
        QVERIFY(studio.model.transform());
        studio.model.cut(); // the pixels that floated are on the clipboard, not lost
        QVERIFY(!studio.model.transform());
        const auto cut = Clipboard::picture(*studio.desktop.content).pixels;
        QVERIFY(cut && cut->width() == 20 && cut->pixel(5, 5) == kRed);
        studio.model.undo();
        studio.model.beginTransform();
        studio.model.paste();
        QVERIFY(!studio.model.transform());
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Paste"));
        QCOMPARE(text(studio.doc().layer(1).pixel(15, 15)), text(kRed));
    }

    void theKeysOfATextFieldMeanItsText() {
        MenuWindow studio;
        addNoise(studio);
        const int64_t before = studio.doc().changeCount();
        const auto systemText = [] { return QGuiApplication::clipboard()->text(); };
        const auto writeIn = [](auto* field, const char* words) {
            field->clear();
            QTest::keyClicks(field, QString::fromLatin1(words));
            field->selectAll();
        };
        writeIn(studio.line, "one");
        studio.press(*studio.line, Qt::Key_C);
        QCOMPARE(systemText(), QStringLiteral("one"));
        writeIn(studio.text, "two");
        studio.press(*studio.text, Qt::Key_X);
        QCOMPARE(systemText(), QStringLiteral("two"));
        QVERIFY(studio.text->toPlainText().isEmpty());
        studio.press(*studio.text, Qt::Key_V);
        QCOMPARE(studio.text->toPlainText(), QStringLiteral("two"));
        // The menu's items act on the field as well.
        studio.line->setFocus();
        studio.line->selectAll();
        for (const char* item : {"copy", "cut", "paste"})
            studio.commands.action(QLatin1String(item))->trigger();
        QCOMPARE(studio.line->text(), QStringLiteral("one"));
        QCOMPARE(studio.doc().changeCount(), before);
        QVERIFY(studio.desktop.content->formats().isEmpty());
        // A field that only shows is copied from; a paste goes to the picture.
        studio.line->setReadOnly(true);
        studio.desktop.content->setData(QStringLiteral("image/png"), plain(Qt::red, "png"));
        studio.commands.action(QStringLiteral("paste"))->trigger();
        QCOMPARE(studio.layer().name, QStringLiteral("Pasted Layer"));
    }

    void droppedPicturesBecomeLayers_data() {
        QTest::addColumn<QString>("type"); // empty: a file
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("layer");
        const QString dropped = QStringLiteral("Dropped Picture");
        QTest::newRow("PNG") << QStringLiteral("image/png") << plain(Qt::red, "png") << dropped;
        QTest::newRow("TIFF") << QStringLiteral("image/tiff") << plain(Qt::red, "tiff") << dropped;
        QTest::newRow("BMP") << QStringLiteral("image/bmp") << plain(Qt::red, "bmp") << dropped;
        QTest::newRow("file") << QString() << plain(Qt::red, "jpeg") << QStringLiteral("red.one");
    }
    void droppedPicturesBecomeLayers() {
        QFETCH(QString, type);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, layer);
        Studio studio;
        select(studio.doc(), {0, 0, 5, 5});
        QMimeData mime;
        if (type.isEmpty()) {
            QFile file(studio.path(QStringLiteral("red.one.jpg")));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
            mime.setUrls({QUrl::fromLocalFile(file.fileName()),
                          QUrl::fromLocalFile(studio.path(QStringLiteral("other")))});
        } else {
            mime.setData(type, bytes);
        }
        const Drag drag = dragOnto(studio, mime, Qt::MoveAction);
        QVERIFY(drag.dropped);
        QCOMPARE(drag.action, Qt::CopyAction);
        QCOMPARE(studio.layer().name, layer);
        QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{197, 148, 6, 4}));
        QVERIFY(studio.layer().pixel(198, 149)[0] > 250);
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Paste"));
    }

    void aDroppedDocumentIsOpened() {
        Studio studio;
        PaintDocument picture(30, 20, 72, PaintColor::white());
        QFile file(studio.path(QStringLiteral("a.QirnPaint")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(PaintFile::encode(picture));
        file.close();
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(file.fileName())});
        QVERIFY(dragOnto(studio, mime, Qt::CopyAction).dropped);
        QCOMPARE(studio.session().name, QStringLiteral("a"));
        QCOMPARE(studio.session().fileURL, QUrl::fromLocalFile(file.fileName()));
    }

    void whatIsNoPictureIsRefused() {
        Studio studio;
        const uint64_t before = studio.doc().fingerprint();
        QMimeData words;
        words.setText(QStringLiteral("words"));
        words.setUrls({QUrl(QStringLiteral("https://a.example/b.png"))});
        QVERIFY(!dragOnto(studio, words, Qt::CopyAction).entered);
        QMimeData damaged;
        damaged.setData(QStringLiteral("image/png"), "no picture");
        const Drag drag = dragOnto(studio, damaged, Qt::CopyAction);
        QVERIFY(drag.entered && !drag.dropped);
        QMimeData missing;
        missing.setUrls({QUrl::fromLocalFile(studio.path(QStringLiteral("missing.png")))});
        dragOnto(studio, missing, Qt::CopyAction);
        QCOMPARE(studio.desktop.asked.size(), std::size_t{1});
        QCOMPARE(studio.desktop.asked[0].title, QStringLiteral("Couldn't import"));
        QCOMPARE(studio.desktop.asked[0].text, QStringLiteral("This picture could not be read."));
        QCOMPARE(studio.doc().fingerprint(), before);
    }
};

QIRN_TEST(tst_Clipboard)
#include "tst_Clipboard.moc"
