#include "app/commands/PaintCommands.h"
#include "app/files/PictureExchange.h"
#include "app/model/Clipboard.h"
#include "compositing/CompositeInputs.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "support/PictureFiles.h"
#include "support/Studio.h"

#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A picture of 6 x 4 in one color.
QByteArray plain(Qt::GlobalColor color, const char* format) {
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(color);
    return written(image, format);
}

const PixelBytes kRed{255, 0, 0, 255};
const PixelBytes kGreen{0, 255, 0, 255};
const PixelBytes kBlue{0, 0, 255, 255};
const PixelBytes kYellow{255, 255, 0, 255};

/// The part of a layer that the rectangle covers.
std::shared_ptr<RGBABuffer> part(const Layer& layer, const IRect& rect) {
    return pictureOf(rect.w, rect.h,
                     [&](int64_t x, int64_t y) { return layer.pixel(rect.x + x, rect.y + y); });
}

std::shared_ptr<const RGBABuffer> copied(Studio& studio) {
    return PictureExchange::picture(*studio.desktop.content).pixels;
}

/// Puts noise on the active layer of the studio's picture.
void addNoise(Studio& studio) {
    studio.layer().load(*noise(400, 300, 5));
    studio.doc().commit("Noise");
}

/// The studio's canvas under the menu bar of the program, beside two text fields.
struct MenuWindow : Studio {
    QWidget window;
    QMenuBar* menu = new QMenuBar(&window);
    PaintCommands commands{model, canvas, *menu};
    QLineEdit* line = new QLineEdit(&window);
    QPlainTextEdit* text = new QPlainTextEdit(&window);

    MenuWindow() {
        auto* column = new QVBoxLayout(&window);
        column->setMenuBar(menu);
        for (QWidget* widget : std::initializer_list<QWidget*>{line, text, &canvas})
            column->addWidget(widget);
        window.resize(800, 800);
        showActive(window);
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
        studio.select({250.5, 10, 20, 30.5}); // across a tile seam, with half covered edges
        const auto selection = studio.doc().selection;
        const auto expected = copyPixels(studio.doc(), Merged::no);
        studio.press(studio.canvas, Qt::Key_C);
        QCOMPARE(studio.model.messages().hud(), "Copied");
        studio.press(studio.canvas, Qt::Key_V);
        QCOMPARE(studio.model.messages().hud(), "Pasted as a new layer — use Move (V) to position it");
        QCOMPARE(studio.layer().name, "Pasted Layer");
        QCOMPARE(studio.doc().undoName(), "Paste");
        QCOMPARE(studio.doc().selection, selection);
        QCOMPARE(studio.layer().contentBounds(), std::optional(expected->rect));
        QCOMPARE(firstDifference(*part(studio.layer(), expected->rect), *expected->buffer), QString());
        studio.model.undo();
        QCOMPARE(studio.doc().layerCount(), int64_t{2});
    }

    void othersReadACopyAsPngAndTiff() {
        Studio studio;
        addNoise(studio);
        studio.model.clipboard().copy(Merged::no);
        const auto expected = copyPixels(studio.doc(), Merged::no);
        QCOMPARE(studio.desktop.content->formats(), QStringList({"image/png", "image/tiff"}));
        for (const char* type : {"image/png", "image/tiff"}) {
            const auto read = ImageImport::decode(bytesOf(studio.desktop.content->data(QLatin1String(type))));
            QVERIFY2(read, type);
            QCOMPARE(firstDifference(*read->layer->toBuffer(), *expected->buffer), QString());
        }
        // And so the program itself, when they come back by way of another.
        auto foreign = std::make_unique<QMimeData>();
        foreign->setData("image/png", studio.desktop.content->data("image/png"));
        studio.desktop.content = std::move(foreign);
        studio.model.clipboard().paste();
        QCOMPARE(firstDifference(*part(studio.layer(), expected->rect), *expected->buffer), QString());
    }

    void theMergedCopyIsTheFinishedPicture() {
        MenuWindow studio;
        paintRect(studio.doc(), studio.layer(), {10, 10, 50, 50}, {100, 0, 0, 128});
        studio.layer().opacity = 0.5;
        studio.doc().onion.enabled = true;
        studio.press(studio.canvas, Qt::Key_C, Qt::ShiftModifier);
        QCOMPARE(studio.model.messages().hud(), "Copied the merged picture");
        QCOMPARE(firstDifference(*copied(studio), *flattened(studio.doc())), QString());
    }

    void formsAreTriedInTheirOrder() {
        const struct {
            const char* offered;
            PixelBytes pasted;
        } cases[] = {{"bmp file tiff png", kRed}, {"bmp file tiff", kGreen},
                     {"bmp file", kBlue},         {"bmp", kYellow},
                     {"image", kYellow},          {"empty tiff", kGreen},
                     {"damaged tiff", kGreen},    {"web bmp", kYellow}};
        for (const auto& [offered, pasted] : cases) {
            Studio studio;
            const QString file = studio.path("blue ä.png");
            writeFile(file, plain(Qt::blue, "png"));
            QMimeData& mime = *studio.desktop.content;
            for (const QString& form : QString(offered).split(u' ')) {
                if (form == "png") mime.setData("image/png", plain(Qt::red, "png"));
                if (form == "empty") mime.setData("image/png", {});
                if (form == "damaged") mime.setData("image/png", "\x89PNG\r\n");
                if (form == "tiff") mime.setData("image/tiff", plain(Qt::green, "tiff"));
                if (form == "file") mime.setUrls({QUrl::fromLocalFile(file)});
                if (form == "web") mime.setUrls({QUrl("https://a.example/b.png")});
                if (form == "bmp") mime.setData("image/bmp", plain(Qt::yellow, "bmp"));
                if (form == "image") mime.setImageData(QImage::fromData(plain(Qt::yellow, "bmp")));
            }
            studio.model.clipboard().paste();
            QCOMPARE(studio.doc().layerCount(), int64_t{3});
            QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{197, 148, 6, 4})); // in the middle
            QVERIFY2(studio.layer().pixel(199, 150) == pasted, offered);
        }
    }

    void aPasteIsPlaced() {
        const struct {
            QSize size;
            IRect from; // empty: nothing was copied
            IRect covered;
        } cases[] = {{{7, 5}, {}, {196, 147, 7, 5}}, // whole-number division
                     {{503, 401}, {}, {0, 0, 400, 300}},
                     {{20, 10}, {90, 70, 20, 10}, {90, 70, 20, 10}},
                     {{10, 20}, {90, 70, 20, 10}, {195, 140, 10, 20}}};
        for (const auto& [size, from, covered] : cases) {
            Studio studio;
            if (!from.isEmpty()) {
                studio.fill(from);
                studio.model.clipboard().copy(Merged::no);
            }
            QImage image(size, QImage::Format_RGB32);
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgb(x % 256, y % 256, 9));
            }
            studio.desktop.content = std::make_unique<QMimeData>();
            studio.desktop.content->setData("image/png", written(image, "png"));
            studio.model.clipboard().paste();
            QCOMPARE(studio.layer().contentBounds(), std::optional(covered));
            if (size.width() > 400) // the origin is at (400 - 503) / 2, (300 - 401) / 2
                QCOMPARE(studio.layer().pixel(0, 0), (PixelBytes{51, 50, 9, 255}));
        }
        // Where the picture was copied from counts only within the one that it is pasted into.
        Studio studio;
        studio.fill({300, 200, 20, 10});
        studio.model.clipboard().copy(Merged::no);
        studio.model.pictures().newDocument(100, 100, 72, std::nullopt, "Small");
        studio.model.clipboard().paste();
        QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{40, 45, 20, 10}));
    }

    void aProgramThatAnswersLateIsNotAnEmptyClipboard() {
        MenuWindow studio;
        studio.desktop.content = std::make_unique<LateOffer>();
        auto& late = static_cast<LateOffer&>(*studio.desktop.content);
        for (const bool again : {false, true}) { // then at once, from memory
            late.milliseconds = again ? 0 : 520;
            studio.press(studio.canvas, Qt::Key_V);
            QCOMPARE(studio.model.messages().hud(), "The other program did not answer in time");
            QVERIFY(again || late.asked == 1); // not once more for each form
            studio.model.messages().flash({});
        }
        QVERIFY(!dragOnto(studio, late, Qt::CopyAction).dropped && !studio.model.messages().hud()->isEmpty());
        QCOMPARE(studio.doc().changeCount(), int64_t{0});
    }

    void nothingToCopyOrPasteLeavesNoTrace() {
        MenuWindow studio;
        studio.desktop.content->setText("words");
        const auto refused = [&](Qt::Key key, const char* message) {
            const int64_t before = studio.doc().changeCount();
            studio.press(studio.canvas, key);
            QCOMPARE(studio.model.messages().hud(), message);
            QCOMPARE(studio.doc().changeCount(), before);
            QCOMPARE(studio.desktop.content->text(), "words");
        };
        refused(Qt::Key_C, "Nothing to copy"); // of an empty layer
        refused(Qt::Key_V, "There's no picture on the clipboard");
        studio.select({10, 10, 30, 30});
        refused(Qt::Key_C, "Nothing to copy");
        refused(Qt::Key_X, "Nothing to copy");
    }

    void aCutTakesWhatIsSelected() {
        MenuWindow studio;
        addNoise(studio);
        studio.select({0, 0, 100, 300});
        const auto rest = part(studio.layer(), {100, 0, 300, 300});
        const auto taken = copyPixels(studio.doc(), Merged::no);
        studio.press(studio.canvas, Qt::Key_X);
        QCOMPARE(studio.doc().undoName(), "Cut");
        QCOMPARE(firstDifference(*part(studio.layer(), {100, 0, 300, 300}), *rest), QString());
        QVERIFY(studio.layer().contentBounds()->x >= 100);
        QCOMPARE(firstDifference(*copied(studio), *taken->buffer), QString());
        LayerEdits::toggleLock(studio.model); // it is copied, but not cut
        studio.select({100, 0, 100, 100});
        const uint64_t before = studio.doc().fingerprint();
        studio.press(studio.canvas, Qt::Key_X);
        QCOMPARE(studio.model.messages().hud(), "The layer is locked");
        QCOMPARE(studio.doc().fingerprint(), before);
        QCOMPARE(copied(studio)->height(), int64_t{100});
    }

    void aPendingTransformIsLeftByCopyAndEndedByCutAndPaste() {
        Studio studio;
        studio.fill({10, 10, 20, 20});
        studio.model.transform().beginTransform();
        studio.model.clipboard().copy(Merged::no);
        QVERIFY(studio.model.transform().state());
        studio.model.clipboard().cut(); // the pixels that floated are on the clipboard, not lost
        QVERIFY(!studio.model.transform().state());
        const auto cut = copied(studio);
        QVERIFY(cut && cut->width() == 20 && cut->pixel(5, 5) == kRed);
        studio.model.undo();
        studio.model.transform().beginTransform();
        studio.model.clipboard().paste();
        QVERIFY(!studio.model.transform().state());
        QCOMPARE(studio.doc().undoName(), "Paste");
        QCOMPARE(text(studio.doc().layer(1).pixel(15, 15)), text(kRed));
    }

    void theKeysOfATextFieldMeanItsText() {
        MenuWindow studio;
        addNoise(studio);
        const int64_t before = studio.doc().changeCount();
        studio.line->setText("one");
        studio.line->selectAll();
        studio.press(*studio.line, Qt::Key_C);
        studio.press(*studio.text, Qt::Key_V);
        studio.press(*studio.text, Qt::Key_V);
        QCOMPARE(studio.text->toPlainText(), "oneone");
        studio.text->selectAll();
        studio.press(*studio.text, Qt::Key_X);
        QVERIFY(studio.text->toPlainText().isEmpty());
        // The menu's items act on the field as well.
        studio.line->setFocus();
        studio.line->selectAll();
        for (const char* item : {"copy", "cut", "paste"}) studio.commands.action(item)->trigger();
        QCOMPARE(studio.line->text(), "one");
        QCOMPARE(studio.doc().changeCount(), before);
        QVERIFY(studio.desktop.content->formats().isEmpty());
        // A field that only shows is copied from; a paste goes to the picture.
        studio.line->setReadOnly(true);
        studio.desktop.content->setData("image/png", plain(Qt::red, "png"));
        studio.commands.action("paste")->trigger();
        QCOMPARE(studio.layer().name, "Pasted Layer");
    }

    void droppedPicturesBecomeLayers() {
        const std::tuple<const char*, const char*, const char*> cases[] = {
            {"image/png", "png", "Dropped Picture"},
            {"image/tiff", "tiff", "Dropped Picture"},
            {"image/bmp", "bmp", "Dropped Picture"},
            {nullptr, "jpeg", "red.one"}};
        for (const auto& [type, format, layer] : cases) {
            Studio studio;
            studio.select({0, 0, 5, 5});
            QMimeData mime;
            writeFile(studio.path("red.one.jpg"), plain(Qt::red, format));
            if (type)
                mime.setData(type, plain(Qt::red, format));
            else
                mime.setUrls({QUrl::fromLocalFile(studio.path("red.one.jpg")),
                              QUrl::fromLocalFile(studio.path("other"))});
            const Drag drag = dragOnto(studio, mime, Qt::MoveAction);
            QVERIFY(drag.dropped && drag.action == Qt::CopyAction);
            QCOMPARE(studio.layer().name, layer);
            QCOMPARE(studio.layer().contentBounds(), std::optional(IRect{197, 148, 6, 4}));
            QVERIFY(studio.layer().pixel(198, 149)[0] > 250);
            QCOMPARE(studio.doc().undoName(), "Paste");
        }
    }

    void droppedFilesBecomeLayersOrTabs() {
        Studio studio;
        const DocSession& here = studio.session();
        for (const char* name : {"a.QirnPaint", "b.qirnpaint"})
            writeFile(studio.path(name), PaintFile::encode(studio.doc()));
        for (const char* name : {"one.jpg", "two.jpg"}) writeFile(studio.path(name), plain(Qt::red, "jpeg"));
        QMimeData mime;
        QList<QUrl> urls;
        for (const char* name : {"a.QirnPaint", "one.jpg", "b.qirnpaint", "two.jpg"})
            urls << QUrl::fromLocalFile(studio.path(name));
        mime.setUrls(urls);
        QVERIFY(dragOnto(studio, mime, Qt::CopyAction).dropped);
        QTRY_COMPARE(studio.model.pictures().sessions().size(), std::size_t{3});
        // The pictures are layers of what was shown, in order; the first document is what is shown now.
        const int64_t top = here.doc().layerCount() - 1;
        QVERIFY(here.doc().layer(top).name == "two" && here.doc().layer(top - 1).name == "one");
        QVERIFY(studio.session().name == "a" && studio.model.pictures().sessions().back()->name == "b");
        QCOMPARE(studio.session().fileURL, QUrl::fromLocalFile(studio.path("a.QirnPaint")));
        // On the strip of tabs each is a picture of its own.
        QVERIFY(studio.model.clipboard().dropAsPictures(mime));
        QTRY_COMPARE(studio.session().name, "two (from JPG)");
        QCOMPARE(studio.model.pictures().sessions().size(), std::size_t{5});
    }

    void whatIsNoPictureIsRefused() {
        Studio studio;
        const uint64_t before = studio.doc().fingerprint();
        QMimeData words;
        words.setText("words");
        words.setUrls({QUrl("https://a.example/b.png")});
        QVERIFY(!dragOnto(studio, words, Qt::CopyAction).dropped);
        QCOMPARE(studio.model.messages().hud(), "Only files can be dropped here.");
        QVERIFY(!studio.model.clipboard().dropAsPictures(words));
        QMimeData damaged;
        damaged.setData("image/png", "no picture");
        const Drag drag = dragOnto(studio, damaged, Qt::CopyAction);
        QVERIFY(drag.entered && !drag.dropped);
        QMimeData missing;
        missing.setUrls({QUrl::fromLocalFile(studio.path("missing.png"))});
        dragOnto(studio, missing, Qt::CopyAction);
        QCOMPARE(studio.desktop.asked.size(), std::size_t{1});
        QCOMPARE(studio.desktop.asked[0].title, "Couldn't import");
        QCOMPARE(studio.desktop.asked[0].text, "This picture could not be read.");
        QCOMPARE(studio.doc().fingerprint(), before);
    }
};

QIRN_TEST(tst_Clipboard)
#include "tst_Clipboard.moc"
