// A waitable object without a handle.
#pragma once

#include <ORLEvent.h>

namespace ORLTest {

/// Its handle is null as long as the object lives.
class WithoutHandle : public ORL::WaitableObject
{
public:
    WithoutHandle() : mTakenAway(mEvent) { mEvent = nullptr; }
    ~WithoutHandle() { mEvent = mTakenAway; }

private:
    void* mTakenAway;
};

} // namespace ORLTest
