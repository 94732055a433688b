// A waitable object without a handle.
#pragma once

#include <ORLEvent.h>

namespace ORLTest {

/// Its handle is null during the lifetime of the object.
class WithoutHandle : public ORL::WaitableObject
{
public:
    WithoutHandle() : mTakenAway(mEvent) { mEvent = nullptr; }
    ~WithoutHandle() { mEvent = mTakenAway; }

private:
    void* mTakenAway;
};

} // namespace ORLTest
