#include "durability/RandomHand.h"

#include "core/selection/Selection.h"

#include <QAbstractSlider>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace qirn::test {

namespace {

const char* const kEntries[] = {"1",  "7",   "64",  "130", "257", "300",        "0",
                                "-5", "1e9", "0.5", "Ä b", "",    "99999999999"};

} // namespace

RandomHand::RandomHand(uint64_t seed)
    : seed_(seed),
      pen_(QStringLiteral("pen"), 1, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
           QInputDevice::Capability::Pressure, 1, 1),
      eraser_(QStringLiteral("eraser"), 2, QInputDevice::DeviceType::Stylus,
              QPointingDevice::PointerType::Eraser, QInputDevice::Capability::Pressure, 1, 1) {
    set(&PaintPrefs::undoSteps, int64_t{500});
    set(&PaintPrefs::autosaveSeconds, 0.0); // only when it is told to
    canvas_.strokeSeed = [this] { return random_.next(); };
    canvas_.clock = [this] { return seconds_ += 0.01; };
    window_.resize(240, 180);
    canvas_.setGeometry(window_.rect());
    random_ = SeededRandom(seed_);
    model.pictures().newDocument(side(), side(), 72, sometimes(2) ? std::nullopt : std::optional(color()),
                                 "First");
    window_.show();
    notePictures();
}

QPointF RandomHand::point() {
    const TileGrid& grid = doc().grid();
    return {between(-0.1, 1.1) * static_cast<double>(grid.width),
            between(-0.1, 1.1) * static_cast<double>(grid.height)};
}

QString RandomHand::file() {
    return path(QStringLiteral("%1.qirnpaint").arg(below(3)));
}

void RandomHand::press(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        QApplication::sendEvent(&canvas_, &event);
    }
}

void RandomHand::gesture() {
    if (sometimes(2)) model.setTool(sometimes(3) ? static_cast<Tool>(below(4)) : anyOf(kTools).tool);
    if (!sometimes(4)) { // a hand that gets something done
        LayerEdits::setMark(model, doc().activeIndex(), &LayerSettings::isVisible, true);
        LayerEdits::setMark(model, doc().activeIndex(), &LayerSettings::isLocked, false);
        if (sometimes(6)) canvas_.fit();
    }
    const Qt::KeyboardModifiers modifiers =
        sometimes(4) ? anyOf(kModifiers) | anyOf(kModifiers) : Qt::NoModifier;
    const bool isPen = sometimes(2);
    const QPointingDevice& device = sometimes(8) ? eraser_ : pen_;
    const auto send = [&](QEvent::Type ofPen, QEvent::Type ofMouse) {
        if (isPen)
            sendPen(canvas_, device, ofPen, point(), random_.unit(), modifiers);
        else
            sendMouse(canvas_, ofMouse, test::widgetPoint(canvas_, point()), modifiers);
    };
    seconds_ += 2; // no mouse event is a pen's echo
    send(QEvent::TabletPress, QEvent::MouseButtonPress);
    for (int moves = below(6); moves > 0; --moves) send(QEvent::TabletMove, QEvent::MouseMove);
    if (sometimes(12)) return press(Qt::Key_Escape, Qt::NoModifier, {});
    if (!sometimes(12)) send(QEvent::TabletRelease, QEvent::MouseButtonRelease); // or it is lost
}

void RandomHand::fillSheet() {
    Sheet* sheet = sheets_.sheet();
    if (!sheet) return;
    for (QWidget* field : sheet->findChildren<QWidget*>()) {
        if (!field->isEnabled() || sometimes(3)) continue;
        if (auto* line = qobject_cast<QLineEdit*>(field)) {
            line->selectAll();
            line->insert(QString::fromUtf8(anyOf(kEntries)));
        } else if (auto* text = qobject_cast<QPlainTextEdit*>(field)) {
            text->setPlainText(QString::fromUtf8(anyOf(kEntries)));
        } else if (auto* list = qobject_cast<QComboBox*>(field)) {
            list->setCurrentIndex(below(list->count() + 1) - 1);
        } else if (auto* slider = qobject_cast<QAbstractSlider*>(field)) {
            slider->setValue(slider->minimum() + below(int64_t{slider->maximum()} - slider->minimum() + 1));
        } else if (auto* button = qobject_cast<QAbstractButton*>(field); button && button->isCheckable()) {
            button->click();
        }
    }
    if (QPushButton* accept = sheet->defaultButton(); accept && !sometimes(4)) accept->click();
    model.closeSheet();
    QCoreApplication::processEvents(); // what it has queued
}

void RandomHand::act(int64_t deed) {
    random_ = SeededRandom(seed_ * 1'000'003 + static_cast<uint64_t>(deed) + 1);
    random_.next();
    desktop.asked.clear();
    desktop.proposedNames.clear();
    desktop.recentFiles.clear();
    desktop.answers = {below(3), below(3)};
    desktop.savePaths.clear();
    if (!sometimes(4)) desktop.savePaths = {file()};
    desktop.openPaths = {{file()}};
    int share = 0;
    for (const Deed& one : kDeeds) share += one.share;
    int chosen = below(share);
    for (const Deed& one : kDeeds) {
        if ((chosen -= one.share) >= 0) continue;
        one.run(*this);
        break;
    }
    if (model.sheet()) fillSheet();
    if (sometimes(8)) QCoreApplication::processEvents();
    notePictures();
}

void RandomHand::notePictures() {
    for (const SessionRef& session : model.pictures().sessions())
        if (!starts_.contains(session->id)) starts_[session->id] = session->doc().fingerprint();
}

QString RandomHand::fault() {
    model.finishGesture();
    const QImage shown = canvas_.grab().toImage();
    canvas_.refresh(CanvasPort::AllTiles::yes);
    if (canvas_.grab().toImage() != shown) return QStringLiteral("the canvas shows another picture");
    for (const SessionRef& session : model.pictures().sessions()) {
        PaintDocument& picture = session->doc();
        const uint64_t now = picture.fingerprint();
        const Selection* selected = picture.selection.get();
        const int64_t depth = picture.undoDepth();
        while (picture.canUndo()) picture.undo();
        if (picture.fingerprint() != starts_[session->id] || picture.selection)
            return QStringLiteral("undoing all gives another picture");
        while (picture.undoDepth() < depth && picture.canRedo()) picture.redo();
        if (picture.fingerprint() != now || picture.selection.get() != selected)
            return QStringLiteral("doing all again gives another picture");
    }
    return {};
}

void RandomHand::closeAll() {
    for (const SessionRef& session : std::vector(model.pictures().sessions())) {
        session->savedChange = session->doc().changeCount();
        model.pictures().close(*session);
    }
    QCoreApplication::processEvents();
}

} // namespace qirn::test
