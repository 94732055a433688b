// An event that the system has taken back.
#pragma once

#include <ORLEvent.h>

namespace ORLTest {

/// A waitable object whose handle is taken away while it lives.
class WithoutHandle : public ORL::WaitableObject
{
public:
    WithoutHandle() : mTakenAway(mEvent) { mEvent = nullptr; }
    ~WithoutHandle() { mEvent = mTakenAway; }

private:
    void* mTakenAway;
};

} // namespace ORLTest
