#include "app/model/PaintModel.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Failures.h"
#include "app/desktop/Store.h"
#include "app/files/DocSession.h"
#include "app/files/LongTask.h"
#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Clipboard.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/Messages.h"
#include "app/model/OpacityPreview.h"
#include "app/model/OpenPictures.h"
#include "app/model/Palettes.h"
#include "app/model/PendingTransform.h"
#include "app/model/PictureFiles.h"
#include "app/model/Safety.h"

namespace qirn {

namespace {

const QString kFillKey = QStringLiteral("qirn.pt.fill");
const QString kToolKey = QStringLiteral("qirn.pt.tool");
const QString kTabKey = QStringLiteral("qirn.pt.inspectorTab");

} // namespace

PaintModel* PaintModel::shared = nullptr;

PaintModel::PaintModel(LoadStores stores, Desktop& desktop, Store& store)
    : desktop_(desktop),
      store_(store),
      prefs_(PaintPrefs::load(store)),
      longTask_(std::make_unique<LongTask>()),
      status_(std::make_unique<CanvasStatus>()),
      messages_(std::make_unique<Messages>(*this)),
      colors_(std::make_unique<Colors>(*this)),
      brushes_(std::make_unique<Brushes>(*this)),
      palettes_(std::make_unique<Palettes>(*this)),
      pictures_(std::make_unique<OpenPictures>(*this)),
      files_(std::make_unique<PictureFiles>(*this)),
      transform_(std::make_unique<PendingTransform>(*this)),
      opacity_(std::make_unique<OpacityPreview>(*this)),
      clipboard_(std::make_unique<Clipboard>(*this)),
      safety_(std::make_unique<Safety>(*this)) {
    stateTimer_.setSingleShot(true);
    connect(&stateTimer_, &QTimer::timeout, this, guarding(*this, [this] { saveState(); }));
    if (stores == LoadStores::yes) loadState();
}

PaintModel::~PaintModel() {
    if (shared == this) shared = nullptr;
}

void PaintModel::setCanvas(CanvasPort* canvas) {
    canvas_ = canvas ? canvas : &noCanvas_;
    if (current()) canvas_->showSession(*current());
}

// --- Choices

DocSession* PaintModel::current() const {
    return pictures_->current();
}

void PaintModel::setTool(Tool tool) {
    if (tool == tool_) return;
    if (tool_ == Tool::move)
        finishGesture(); // leaving the Move tool puts the pixels down
    else
        canvas_->endStroke();
    tool_ = tool;
    canvas_->choicesChanged();
    choiceChanged();
}

void PaintModel::setOptions(const ToolOptions& options) {
    if (options == options_) return;
    options_ = options;
    choiceChanged();
}

void PaintModel::setPrefs(const PaintPrefs& prefs) {
    if (prefs == prefs_) return;
    prefs_ = prefs;
    prefs_.save(store_);
    for (const SessionRef& session : pictures_->sessions()) session->doc().maxUndoSteps = prefs_.undoSteps;
    canvas_->choicesChanged();
    announce();
}

void PaintModel::setKeys(const KeyChoices& keys) {
    if (keys == keys_) return;
    keys_ = keys;
    keys_.save(store_);
    announce();
}

void PaintModel::showSheet(const PaintSheet& sheet) {
    canvas_->endGesture();
    sheet_ = sheet;
    announce();
}

void PaintModel::closeSheet() {
    sheet_.reset();
    announce();
}

void PaintModel::togglePanels() {
    panelsAreHidden_ = !panelsAreHidden_;
    announce();
}

void PaintModel::setInspectorTab(InspectorTab tab) {
    if (tab == inspectorTab_) return;
    inspectorTab_ = tab;
    choiceChanged();
}

void PaintModel::revealInspectorTab(InspectorTab tab) {
    panelsAreHidden_ = false;
    inspectorTab_ = tab;
    choiceChanged();
}

// --- Edits

void PaintModel::edit(const QString& name, const std::function<void(PaintDocument&)>& body,
                      NeedsUnlockedLayer needs) {
    DocSession* session = current();
    if (!session) return;
    PaintDocument& doc = session->doc();
    if (needs == NeedsUnlockedLayer::yes && doc.activeLayer().isLocked) {
        return messages_->flash(tr("The layer \"%1\" is locked").arg(doc.activeLayer().name));
    }
    finishGesture();
    body(doc);
    if (doc.differsFromLastCommit()) doc.commit(name);
    afterChange(*session);
}

void PaintModel::editLong(const QString& name,
                          const std::function<void(PaintDocument&, const Progress&)>& body) {
    DocSession* session = current();
    if (!session) return;
    finishGesture();
    PaintDocument& doc = session->doc();
    const std::unique_ptr<PaintDocument> draft = doc.draft();
    if (!longTask_->run(tr("%1…").arg(name), [&](const Progress& progress) { body(*draft, progress); }))
        return;
    doc.take(std::move(*draft));
    if (doc.differsFromLastCommit()) doc.commit(name);
    afterChange(*session);
}

void PaintModel::finishGesture() {
    canvas_->endGesture();
    opacity_->commit();
    transform_->applyTransform();
}

void PaintModel::afterChange(DocSession& session) {
    canvas_->refresh(CanvasPort::AllTiles::no);
    session.announceChange();
    announce();
}

void PaintModel::undo() {
    DocSession* session = current();
    if (!session) return;
    if (transform_->isPending()) return transform_->cancelTransform();
    finishGesture();
    const std::optional<QString> name = session->doc().undoName();
    if (!name) return desktop_.beep();
    session->doc().undo();
    afterChange(*session);
    messages_->flash(tr("Undo %1").arg(*name));
}

void PaintModel::redo() {
    DocSession* session = current();
    canvas_->endGesture();
    opacity_->commit();
    const std::optional<QString> name = session ? session->doc().redoName() : std::nullopt;
    if (!name) return desktop_.beep();
    // Redo with pixels floating would restore a state that holds them already.
    if (transform_->isPending()) return transform_->cancelTransform();
    session->doc().redo();
    afterChange(*session);
    messages_->flash(tr("Redo %1").arg(*name));
}

void PaintModel::takeBack(const QString& why) {
    transform_->drop();
    opacity_->drop();
    DocSession* const session = current();
    contained([&] {
        if (session) session->doc().revertToLastCommit();
    });
    contained([&] { canvas_->dropUncommitted(); });
    if (session) session->announceChange();
    messages_->flash(why);
}

// --- What is kept between runs, apart from pictures. Each value is read for itself, so that a bad one costs only itself.

void PaintModel::loadState() {
    brushes_->load(store_);
    palettes_->load(store_);
    colors_->load(store_);
    if (const Json* record = store_.json(kFillKey)) {
        try {
            options_.fill = FillOptions::fromJson(*record);
        } catch (const JsonTypeError&) {
            // The built-in values stay.
        }
    }
    keys_ = KeyChoices::load(store_);
    if (const auto id = store_.text(kToolKey)) tool_ = toolWithId(*id).value_or(tool_);
    const QString tab = store_.text(kTabKey).value_or(QString());
    for (std::size_t i = 0; i < kInspectorTabIDs.size(); ++i)
        if (tab == QLatin1String(kInspectorTabIDs[i])) inspectorTab_ = static_cast<InspectorTab>(i);
}

void PaintModel::choiceChanged() {
    if (!stateTimer_.isActive()) stateTimer_.start(0);
    announce();
}

void PaintModel::saveState() {
    stateTimer_.stop();
    brushes_->save(store_);
    palettes_->save(store_);
    colors_->save(store_);
    store_.keep(kFillKey, options_.fill.toJson());
    store_.keep(kToolKey, rowOf(tool_).id);
    store_.keep(kTabKey, kInspectorTabIDs[static_cast<std::size_t>(inspectorTab_)]);
}

void PaintModel::flushState() {
    saveState();
    store_.flush();
    brushes_->flush();
    palettes_->flush();
}

} // namespace qirn
