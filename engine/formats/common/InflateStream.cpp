#include "formats/common/InflateStream.h"

#include "formats/common/ByteReader.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <array>
#include <new>

#include <zlib.h>

namespace qirn {

namespace {
constexpr std::size_t kAtOnce = std::size_t{1} << 30; // bytes
}

void InflateStream::End::operator()(z_stream_s* state) const {
    inflateEnd(state);
    delete state;
}

InflateStream::InflateStream(std::span<const uint8_t> packed) : waiting_(packed) {
    auto state = std::make_unique<z_stream>();
    if (inflateInit(state.get()) != Z_OK) throw std::bad_alloc();
    state_.reset(state.release());
}

InflateStream::InflateStream(const InflateStream& other) : waiting_(other.waiting_) {
    auto state = std::make_unique<z_stream>();
    if (inflateCopy(state.get(), other.state_.get()) != Z_OK) throw std::bad_alloc();
    state_.reset(state.release());
}

void InflateStream::read(std::span<uint8_t> into) {
    while (!into.empty()) {
        if (state_->avail_in == 0) {
            const auto next = waiting_.first(std::min(waiting_.size(), kAtOnce));
            state_->next_in = const_cast<Bytef*>(next.data()); // zlib only reads them
            state_->avail_in = static_cast<uInt>(next.size());
            waiting_ = waiting_.subspan(next.size());
        }
        const std::size_t wanted = std::min(into.size(), kAtOnce);
        state_->next_out = into.data();
        state_->avail_out = static_cast<uInt>(wanted);
        const int result = inflate(state_.get(), Z_NO_FLUSH);
        const std::size_t got = wanted - state_->avail_out;
        into = into.subspan(got);
        // Z_BUF_ERROR: no further output from the input given so far.
        const bool goesOn = result == Z_OK || (result == Z_BUF_ERROR && !waiting_.empty());
        if (!into.empty() && !goesOn) throw BEReader::Short();
    }
}

void InflateStream::skip(int64_t count) {
    std::array<uint8_t, 16384> unused;
    while (count > 0) {
        const auto step = std::min<int64_t>(count, static_cast<int64_t>(unused.size()));
        read({unused.data(), checkedSize(step)});
        count -= step;
    }
}

} // namespace qirn
