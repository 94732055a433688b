// A waitable object without a handle.
#pragma once

#include <ORLEvent.h>

namespace ORLTest {

/// The handle is null during the lifetime of the object.
class WaitableWithoutHandle : public ORL::WaitableObject
{
public:
    WaitableWithoutHandle() : mTakenAway(mEvent) { mEvent = nullptr; }
    ~WaitableWithoutHandle() { mEvent = mTakenAway; }

private:
    void* mTakenAway;
};

} // namespace ORLTest
