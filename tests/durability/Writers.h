#pragma once
#include "support/FileFaults.h"
#include "support/Studio.h"

#include <optional>

namespace qirn::test {

/// A world with a picture or a file of the user's that was written once and is to be written again.
struct WritingWorld : OwnWorld {
    std::optional<Store> kept; ///< With a file, other than the world's own.
};

/// What writing told; nothing where it tells nobody.
struct Told {
    std::optional<bool> isDone;
    QString why; ///< It is not done.
};

/// One way in which the program writes. The content that stands on the disk is told in a word or a number, the same in
/// every world: `damaged` where it cannot be read, `none` where there is none.
struct Writer {
    const char* name;
    bool isOfPicture; ///< Which stays changed when writing fails.
    void (*prepare)(WritingWorld& world);
    Told (*write)(WritingWorld& world);
    QString (*content)(const QString& folder);
};
extern const std::vector<Writer> kWriters;
inline const QString kDamaged = QStringLiteral("damaged"), kNone = QStringLiteral("none");

/// The contents before and after a write that nothing disturbs, and the number of its system calls.
struct Reference {
    QString before, after;
    int64_t calls = 0;
};

/// A system as it is, and one without files that have no name, which writes large pieces in part.
enum class System { usual, withoutUnnamed };
inline constexpr System kSystems[] = {System::usual, System::withoutUnnamed};
FileCalls callsOf(System system); ///< Which flush nothing, so that they are fast.

void finishWriting(); ///< All that was handed to the background is done then.
Reference referenceOf(const Writer& writer, System system);

/// Writes once in a world of its own with `before` run in front of each call (see `withEachCall`), and returns what is
/// wrong then: nothing where the old content is there, or the new one whole and told as such.
QString wrongAfter(const Writer& writer, const Reference& reference, System system,
                   const std::function<int(const std::string& call, int64_t number)>& before,
                   std::optional<bool> wanted = {}); ///< Whether the new content has to be there.
/// The same of what was told and is there.
QString wrongIn(const Reference& reference, const Told& told, const QString& content);

} // namespace qirn::test
