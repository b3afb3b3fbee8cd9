#include "formats/openraster/ZipArchive.h"

#include "platform/Require.h"

#include <algorithm>
#include <new>

#include <zip.h>

namespace qirn {

namespace {

constexpr int64_t kPiece = 64 * 1024;
constexpr int64_t kLargestInflation = 1040;    // Deflate turns one byte into at most 1,032.
constexpr zip_uint16_t kFirstDay = 1 << 5 | 1; // 1 January 1980, with which the times of the format begin

struct EntryCloser {
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};

} // namespace

void ZipReader::Discard::operator()(zip* archive) const {
    zip_discard(archive);
}

std::optional<ZipReader> ZipReader::open(std::span<const uint8_t> file) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_buffer_create(file.data(), file.size(), 0, &error);
    zip_t* const archive = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    if (source && !archive) zip_source_free(source);
    zip_error_fini(&error);
    return archive ? std::optional(ZipReader(archive)) : std::nullopt;
}

std::optional<ZipReader::Unpacked> ZipReader::unpacked(const QByteArray& name, int64_t most) const {
    const zip_int64_t index = zip_name_locate(archive_.get(), name.constData(), 0);
    if (index < 0) return std::nullopt;
    const auto at = static_cast<zip_uint64_t>(index);
    const std::unique_ptr<zip_file_t, EntryCloser> entry(zip_fopen_index(archive_.get(), at, 0));
    zip_stat_t claims;
    if (!entry || zip_stat_index(archive_.get(), at, 0, &claims) != 0) return std::nullopt;
    if (claims.comp_method != ZIP_CM_STORE && claims.comp_method != ZIP_CM_DEFLATE) return std::nullopt;
    Unpacked result;
    const auto packed = static_cast<int64_t>(std::min<zip_uint64_t>(claims.comp_size, UINT32_MAX));
    const auto claimed = static_cast<int64_t>(std::min<zip_uint64_t>(claims.size, UINT32_MAX));
    result.bytes.reserve(std::min({claimed + kPiece, most, packed * kLargestInflation + kPiece}));
    while (result.bytes.size() < most) {
        const qsizetype had = result.bytes.size();
        const auto room = std::min<int64_t>(kPiece, most - had);
        result.bytes.resize(had + room);
        const zip_int64_t got =
            zip_fread(entry.get(), result.bytes.data() + had, static_cast<zip_uint64_t>(room));
        result.bytes.resize(had + std::max<zip_int64_t>(got, 0));
        result.isWhole = got == 0;
        if (got <= 0) break;
    }
    return result;
}

ZipWriter::ZipWriter() {
    zip_error_t error;
    zip_error_init(&error);
    target_ = zip_source_buffer_create(nullptr, 0, 0, &error);
    if (target_) archive_ = zip_open_from_source(target_, ZIP_TRUNCATE, &error);
    zip_error_fini(&error);
    if (archive_) {
        zip_source_keep(target_);
        return;
    }
    zip_source_free(target_);
    throw std::bad_alloc();
}

ZipWriter::~ZipWriter() {
    if (archive_) zip_discard(archive_);
    zip_source_free(target_);
}

void ZipWriter::add(const QByteArray& name, const QByteArray& bytes) {
    held_.push_back(bytes);
    zip_source_t* const source =
        zip_source_buffer(archive_, bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0);
    if (!source) throw std::bad_alloc();
    const zip_int64_t index = zip_file_add(archive_, name.constData(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        throw std::bad_alloc();
    }
    const auto at = static_cast<zip_uint64_t>(index);
    require(zip_set_file_compression(archive_, at, ZIP_CM_STORE, 0) == 0);
    if (zip_file_set_dostime(archive_, at, 0, kFirstDay, 0) != 0) throw std::bad_alloc();
}

QByteArray ZipWriter::finish() {
    if (zip_close(archive_) != 0) throw std::bad_alloc(); // in memory nothing else can fail
    archive_ = nullptr;
    held_.clear();
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_source_stat(target_, &stat) != 0 || zip_source_open(target_) != 0) throw std::bad_alloc();
    QByteArray file(static_cast<qsizetype>(stat.size), Qt::Uninitialized);
    const zip_int64_t got = zip_source_read(target_, file.data(), stat.size);
    zip_source_close(target_);
    require(got == file.size());
    return file;
}

} // namespace qirn
