#pragma once
#include <cstdint>
#include <memory>
#include <span>

struct z_stream_s;

namespace qirn {

/// A stream of deflate in its zlib wrapping, unpacked in pieces from front to back, so that what it unpacks to never has to
/// be held at once. It borrows the packed bytes. A copy goes on at the same place, independently.
class InflateStream {
public:
    explicit InflateStream(std::span<const uint8_t> packed);
    InflateStream(const InflateStream& other);
    InflateStream(InflateStream&&) noexcept = default;
    InflateStream& operator=(InflateStream&&) noexcept = default;

    /// Fills `into` with the next bytes; throws BEReader::Short where the stream is damaged or ends.
    void read(std::span<uint8_t> into);
    void skip(int64_t count);

private:
    struct End {
        void operator()(z_stream_s* state) const;
    };
    std::span<const uint8_t> waiting_; ///< Not yet handed to zlib, which counts in 32 bits.
    std::unique_ptr<z_stream_s, End> state_;
};

} // namespace qirn
