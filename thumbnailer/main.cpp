// qirnpaint-thumbnailer SIZE DOCUMENT PNG: the preview of a document for a file manager. It runs without a display, a home
// and a network, and needs no file but those two.
#include "formats/native/StoredPreview.h"
#include "platform/Bytes.h"
#include "platform/files/FileError.h"
#include "platform/files/FilePath.h"
#include "platform/files/OpenFile.h"
#include "platform/files/ReadFile.h"
#include "thumbnailer/Thumbnail.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>

#include <fcntl.h>

using namespace qirn;

namespace {

enum Exit { made, noPreview, wrongArguments, notRead, notWritten, noMemory };

constexpr char kUsage[] = "usage: qirnpaint-thumbnailer SIZE DOCUMENT.qirnpaint PICTURE.png\n"
                          "Writes the document's preview, with at most SIZE pixels on its larger side.\n";

std::optional<int64_t> sideIn(const char* text) {
    int64_t side = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), side);
    return error == std::errc() && *end == '\0' && side >= 1 ? std::optional(side) : std::nullopt;
}

/// Into the file that is there: some file managers open one before the call and read from what they opened. Not flushed
/// to the disk: a thumbnail is made again.
void write(const char* path, const QByteArray& bytes) {
    const FileCalls& calls = FileCalls::inUse();
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    OpenFile file(checked([&] { return calls.open(path, kFlags, 0600); }), calls);
    file.write(bytesOf(bytes), {});
    file.close();
}

Exit failed(Exit how, const char* path, const char* words) {
    std::fprintf(stderr, "%s: %s\n", path, words);
    return how;
}

Exit run(int64_t side, const char* document, const char* picture) {
    try {
        const auto preview = storedPreview(pathFromBytes(document));
        if (!preview) return failed(noPreview, document, "There is no preview in this file.");
        std::error_code notThere;
        if (std::filesystem::equivalent(document, picture, notThere))
            return failed(notWritten, picture, "This is the document itself.");
        write(picture, thumbnail(*preview, side));
        return made;
    } catch (const ReadError& error) {
        return failed(notRead, document, error.what());
    } catch (const FileError& error) {
        return failed(notWritten, picture, error.what());
    } catch (const std::bad_alloc&) {
        return failed(noMemory, document, "There is not enough memory.");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) return std::fputs(kUsage, stdout) < 0 ? 1 : 0;
    const auto side = argc == 4 ? sideIn(argv[1]) : std::nullopt;
    if (!side) {
        std::fputs(kUsage, stderr);
        return wrongArguments;
    }
    return run(*side, argv[2], argv[3]);
}
