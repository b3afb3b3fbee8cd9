// What another start hands over: what is taken is absolute paths and a sheet that is known, and comes back from its own bytes.
#include "platform/Require.h"
#include "program/HandOver.h"

using namespace qirn;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const QByteArray message(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto read = HandOver::decoded(message);
    if (!read) return 0;
    for (const QByteArray& path : read->paths) require(path.startsWith('/') && !path.contains('\0'));
    require(read->encoded() == message);
    return 0;
}
