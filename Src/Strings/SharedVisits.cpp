#include <SharedVisits.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <thread>

namespace ORL {

namespace {

// A visit takes less than a microsecond, unless the visitor has lost its processor: then the writer gives up its own, and
// in the end sleeps, since a visitor of lower priority might never run beside it.
void WaitForAMoment(int inTurn)
{
    constexpr int kPauses = 200;
    constexpr int kYields = 400;
    if (inTurn < kPauses) {
        __builtin_ia32_pause();
    } else if (inTurn < kYields) {
        std::this_thread::yield();
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace

void SharedVisits::Shut()
{
    mIsShut.store(true);
    for (const Place& place : mPlaces) {
        for (int turn = 0; place.mIsTaken.load() != 0; ++turn) {
            WaitForAMoment(turn);
        }
    }
}

bool SharedVisits::TryShut()
{
    mIsShut.store(true);
    const bool isEmpty =
        std::none_of(std::begin(mPlaces), std::end(mPlaces), [](const Place& inPlace) { return inPlace.mIsTaken.load() != 0; });
    if (!isEmpty) {
        mIsShut.store(false, std::memory_order_release);
    }
    return isEmpty;
}

} // namespace ORL
