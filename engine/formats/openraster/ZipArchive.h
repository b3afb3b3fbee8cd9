#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <QByteArray>

struct zip;
struct zip_source;

namespace qirn {

/// The entries of a ZIP archive, unpacked one at a time into memory: nothing that they are called leads anywhere else.
class ZipReader {
public:
    /// Nothing where the bytes, which are borrowed, are no archive.
    static std::optional<ZipReader> open(std::span<const uint8_t> file);

    struct Unpacked {
        QByteArray bytes;
        bool isWhole = false; ///< To its end, and the checksum is right.
    };
    /// What there is of an entry, up to `most` bytes, whatever size it claims; nothing without such an entry and for one
    /// that is encrypted or packed in another way than by Deflate. Of several with one name the first counts.
    std::optional<Unpacked> unpacked(const QByteArray& name, int64_t most) const;

private:
    struct Discard {
        void operator()(zip* archive) const;
    };
    explicit ZipReader(zip* archive) : archive_(archive) {}

    std::unique_ptr<zip, Discard> archive_;
};

/// A ZIP archive whose entries are stored as they are, in the order in which they are added, without a time: the same
/// entries give the same bytes.
class ZipWriter {
public:
    ZipWriter(); ///< This and the next throw std::bad_alloc.
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ~ZipWriter();

    void add(const QByteArray& name, const QByteArray& bytes); ///< Shares the bytes until the end.
    QByteArray finish();                                       ///< Called once, last.

private:
    zip_source* target_ = nullptr;
    zip* archive_ = nullptr;
    std::vector<QByteArray> held_; // the archive borrows them
};

} // namespace qirn
