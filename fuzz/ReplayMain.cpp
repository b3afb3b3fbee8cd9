// Gives every file that is named, and every file in a folder that is named, to a fuzz target once.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace {

bool replay(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "Cannot read %s\n", qPrintable(path));
        return false;
    }
    const QByteArray bytes = file.readAll();
    // Named beforehand: a fault ends the process.
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()),
                           static_cast<std::size_t>(bytes.size()));
    return true;
}

} // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        QStringList files;
        if (QFileInfo(path).isDir()) {
            QDirIterator folder(path, QDir::Files, QDirIterator::Subdirectories);
            while (folder.hasNext()) files += folder.next();
        } else if (QFileInfo::exists(path)) {
            files += path;
        }
        files.sort();
        for (const QString& file : files) {
            if (!replay(file)) return 1;
            ++count;
        }
    }
    std::printf("%d files\n", count);
    return count > 0 ? 0 : 1;
}
