#include "app/model/Guarded.h"

#include "app/files/LongTask.h"
#include "app/model/PaintModel.h"
#include "platform/BlockPool.h"

#include <cstddef>
#include <memory>
#include <new>

namespace qirn {

namespace {

constexpr std::size_t kReserveBytes = 4 * 1024 * 1024;

/// A reserve that is freed after std::bad_alloc, so that reverting and the message find memory.
std::unique_ptr<std::byte[]>& reserve() {
    static std::unique_ptr<std::byte[]> bytes;
    return bytes;
}

void refillReserve() {
    if (!reserve()) reserve().reset(new (std::nothrow) std::byte[kReserveBytes]);
}

[[maybe_unused]] const bool filledAtStart = (refillReserve(), true);

QString textOfExceptionInFlight() {
    try {
        throw;
    } catch (const std::exception& error) {
        return failureText(error);
    } catch (...) {
        return failureText(std::exception());
    }
}

} // namespace

void takeBackAfterFailure(PaintModel& model) noexcept {
    reserve().reset();
    contained([&] {
        const QString why = textOfExceptionInFlight();
        BlockPool::trim();
        model.takeBack(why);
    });
    refillReserve();
}

void soon(PaintModel& model, std::function<void()> body) {
    QMetaObject::invokeMethod(
        &model, [&model, slot = guarding(model, std::move(body))] { model.longTask().afterwards(slot); },
        Qt::QueuedConnection);
}

} // namespace qirn
