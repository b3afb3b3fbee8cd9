#include "durability/Writers.h"

#include "app/model/Palettes.h"
#include "durability/Row.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/Json.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"

#include <atomic>

#include <QCryptographicHash>
#include <QDir>
#include <fcntl.h>

namespace qirn::test {

namespace {

/// Of noise, which does not get smaller: 60 KB, or 230.
int side() {
    return isLongForm() ? 240 : 120;
}

QString at(const QString& folder, const char* name) {
    return QDir(folder).filePath(QString::fromUtf8(name));
}

/// The picture in a file.
QString pictureAt(const QString& path) {
    try {
        return QString::number(PaintFile::decode(bytesOf(readFile(path)))->fingerprint());
    } catch (const ReadError& error) {
        return error.systemError() == ENOENT ? kNone : kDamaged;
    } catch (const DescribedError&) {
        return kDamaged;
    }
}
/// Of the one picture that there may be in a folder.
QString onlyPictureIn(const QString& folder) {
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.qirnpaint")}, QDir::Files);
    return names.isEmpty() ? kNone : names.size() > 1 ? kDamaged : pictureAt(QDir(folder).filePath(names[0]));
}
std::optional<Json> jsonAt(const QString& path) {
    return parseJson(bytesOf(bytesAt(path)));
}
/// As "a b": the names in a list of records.
QString namesAt(const QString& path) {
    if (!QFile::exists(path)) return kNone;
    const std::optional<Json> list = jsonAt(path);
    if (!list || !list->is_array()) return kDamaged;
    QStringList names;
    for (const Json& record : *list) names << jsonText(jsonMember(record, "name"));
    return names.join(u' ');
}

QString copyIn(const QString& folder) {
    const QDir copies(at(folder, "Autosave"));
    for (const QString& name : copies.entryList({QStringLiteral("*.json")}))
        if (!jsonAt(copies.filePath(name))) return kDamaged;
    return onlyPictureIn(copies.path());
}

void openPicture(WritingWorld& world) {
    writeAtomically(world.path("picture.qirnpaint"),
                    bytesOf(PaintFile::encode(*documentOf(*noise(side(), side(), 1)))));
    world.model.files().open(world.path("picture.qirnpaint"));
    world.fill({0, 0, 9, 9});
}
void paintOn(WritingWorld& world) {
    world.fill({9, 9, 9, 9});
}
void copyPicture(WritingWorld& world) {
    Recovery::write(world.session(), Recovery::Synchronously::yes);
}
Told toldBy(WritingWorld& world, bool isDone) {
    return {isDone, world.desktop.asked.empty() ? QString() : world.desktop.asked.back().text};
}
Told save(WritingWorld& world) {
    const bool isDone = world.model.files().save(nullptr, PictureFiles::SaveAs::no);
    return toldBy(world, isDone && !world.session().isDirty());
}
Told exportPicture(WritingWorld& world) {
    const std::size_t asked = world.desktop.asked.size();
    world.desktop.savePaths = {world.path("exported")};
    world.model.files().exportPicture(ExportFormat::png, 0.9, PaintColor::white());
    return toldBy(world, world.desktop.asked.size() == asked);
}
Told exportBrushes(WritingWorld& world) {
    const std::size_t asked = world.desktop.asked.size();
    world.desktop.savePaths = {world.path("exported")};
    world.model.brushes().exportBrushes();
    return toldBy(world, world.desktop.asked.size() == asked);
}

} // namespace

const std::vector<Writer> kWriters = {
    {"save", true, // over the file, with a safety copy that is discarded
     [](WritingWorld& world) {
         openPicture(world);
         copyPicture(world);
     },
     save,
     [](const QString& folder) {
         return copyIn(folder) == kDamaged ? kDamaged : pictureAt(at(folder, "picture.qirnpaint"));
     }},
    {"export", true,
     [](WritingWorld& world) {
         openPicture(world);
         exportPicture(world);
         paintOn(world);
     },
     exportPicture,
     [](const QString& folder) {
         const QByteArray bytes = bytesAt(at(folder, "exported.png"));
         return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
     }},
    {"safety copy", true,
     [](WritingWorld& world) {
         openPicture(world);
         copyPicture(world);
         paintOn(world);
     },
     [](WritingWorld& world) {
         copyPicture(world);
         return Told{Recovery::isUpToDate(world.session()) ? std::optional(true) : std::nullopt, {}};
     },
     copyIn},
    {"closing a saved picture", false, // whose copy goes
     [](WritingWorld& world) {
         openPicture(world);
         save(world);
         copyPicture(world);
     },
     [](WritingWorld& world) {
         return Told{world.model.pictures().close(world.session()), {}};
     },
     [](const QString& folder) {
         return copyIn(folder) == kDamaged ? kDamaged : pictureAt(at(folder, "picture.qirnpaint"));
     }},
    {"Don't Save", true, openPicture,
     [](WritingWorld& world) {
         world.desktop.answers = {2};
         const bool isClosed = world.model.pictures().close(world.session());
         return toldBy(world, isClosed);
     },
     [](const QString& folder) {
         return copyIn(folder) == kDamaged ? kDamaged : onlyPictureIn(at(folder, "data/Trash/files"));
     }},
    {"preferences", false,
     [](WritingWorld& world) {
         world.kept.emplace(world.path("Preferences.json"));
         world.kept->set("number", 1);
         world.kept->flush();
     },
     [](WritingWorld& world) {
         world.kept->set("number", 2);
         world.kept->flush();
         return Told();
     },
     [](const QString& folder) {
         const std::optional<Json> values = jsonAt(at(folder, "Preferences.json"));
         return values ? QString::number(values->value("number", 0)) : kDamaged;
     }},
    {"brushes", false, [](WritingWorld& world) { world.model.brushes().saveBrushAsNew("a"); },
     [](WritingWorld& world) {
         world.model.brushes().saveBrushAsNew("b");
         finishWriting();
         return Told();
     },
     [](const QString& folder) { return namesAt(at(folder, "My Brushes.json")); }},
    {"palettes", false,
     [](WritingWorld& world) { world.model.palettes().newPalette("a", Palettes::FromRecent::no); },
     [](WritingWorld& world) {
         world.model.palettes().newPalette("b", Palettes::FromRecent::no);
         finishWriting();
         return Told();
     },
     [](const QString& folder) { return namesAt(at(folder, "My Palettes.json")); }},
    {"brushes for others", false,
     [](WritingWorld& world) {
         world.model.brushes().saveBrushAsNew("a");
         exportBrushes(world);
         world.model.brushes().saveBrushAsNew("b");
     },
     exportBrushes, [](const QString& folder) { return namesAt(at(folder, "exported.qirnbrushes")); }},
};

FileCalls callsOf(System system) {
    FileCalls calls = FileCalls::ofSystem();
    calls.fsync = [](int) { return 0; };
    if (system == System::withoutUnnamed) {
        calls.open = [](const char* path, int flags, mode_t mode) {
            errno = EOPNOTSUPP;
            return (flags & O_TMPFILE) == O_TMPFILE ? -1 : ::open(path, flags, mode);
        };
        calls.write = [](int file, const void* bytes, std::size_t count) { // part of it, to be continued
            return ::write(file, bytes, std::min<std::size_t>(count, 20'000));
        };
    }
    return calls;
}

void finishWriting() {
    BackgroundQueue::files().finish();
    BackgroundQueue::ownFiles().finish();
}

Reference referenceOf(const Writer& writer, System system) {
    Reference reference;
    WritingWorld world;
    {
        const FileCallsInstead fast(callsOf(system));
        writer.prepare(world);
        finishWriting();
    }
    reference.before = writer.content(world.folder.path());
    std::atomic<int64_t> made = 0;
    {
        const FileCallsInstead counted(withEachCall(callsOf(system), [&](const char*) {
            ++made;
            return 0;
        }));
        writer.write(world);
        finishWriting();
    }
    reference.after = writer.content(world.folder.path());
    reference.calls = made;
    return reference;
}

QString wrongIn(const Reference& reference, const Told& told, const QString& content) {
    if (content != reference.before && content != reference.after)
        return QStringLiteral("the content is %1, not %2 or %3")
            .arg(content, reference.before, reference.after);
    if (told.isDone == true && content != reference.after) return QStringLiteral("told as done, and is not");
    const bool isTold = told.why.contains(QLatin1String("The file is written"));
    if (told.isDone == false && content != reference.before && !isTold)
        return QStringLiteral("done, and told as failed: ") + told.why;
    return {};
}

QString wrongAfter(const Writer& writer, const Reference& reference, System system,
                   const std::function<int(const std::string& call, int64_t number)>& before,
                   std::optional<bool> wanted) {
    WritingWorld world;
    {
        const FileCallsInstead fast(callsOf(system));
        writer.prepare(world);
        finishWriting();
    }
    Told told;
    {
        std::atomic<int64_t> number = 0;
        const FileCallsInstead faulty(
            withEachCall(callsOf(system), [&](const char* call) { return before(call, ++number); }));
        told = writer.write(world);
        finishWriting();
    }
    const QString content = writer.content(world.folder.path());
    const QString wrong = wrongIn(reference, told, content);
    if (!wrong.isEmpty()) return wrong;
    if (told.isDone == false && writer.isOfPicture && !world.session().isDirty())
        return QStringLiteral("the picture counts as saved");
    if (wanted == true && (told.isDone == false || content != reference.after))
        return QStringLiteral("not done: ") + told.why;
    return {};
}

} // namespace qirn::test
