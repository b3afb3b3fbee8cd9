#pragma once
#include <chrono>

namespace qirn {

/// From here on the calling thread works behind the user's back: every other thread of the machine goes before it, and
/// `concurrentPerform` stays on it, so that a pen in motion keeps all processors but what it leaves.
void becomeBackgroundThread();

/// While one lives, somebody waits for background threads: they use all processors, also in loops that they are in the
/// middle of.
class BackgroundHurry {
public:
    BackgroundHurry();
    ~BackgroundHurry();
    BackgroundHurry(const BackgroundHurry&) = delete;
    BackgroundHurry& operator=(const BackgroundHurry&) = delete;
};

/// While one lives, a hand paints: the loops of background threads rest between two pieces, so that the pen has caches,
/// memory and processors to itself.
class HandInMotion {
public:
    HandInMotion();
    ~HandInMotion();
    HandInMotion(const HandInMotion&) = delete;
    HandInMotion& operator=(const HandInMotion&) = delete;
};

/// How long one loop of a background thread rests, all in all: a hand that never stops does not keep its copy from the disk.
class BackgroundRest {
public:
    explicit BackgroundRest(std::chrono::nanoseconds most = std::chrono::seconds(3)) : left_(most) {}
    /// Returns when no hand is in motion, somebody waits for background threads, or the loop has rested long enough.
    void whileHandMoves();

private:
    std::chrono::nanoseconds left_;
};

bool keepsToItself(); ///< The calling thread is a background thread, and nobody waits for it.

} // namespace qirn
