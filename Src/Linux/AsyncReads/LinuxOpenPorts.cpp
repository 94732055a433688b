#include "LinuxCompletionPort.h"

#include <Core/Immortal.h>

#include <Platform/Mutex.h>
#include <utility>

namespace ORL {
namespace Linux {

using AsyncFiles::Platform::Handle;

namespace {

struct OpenPort
{
    Handle mHandle;
    std::shared_ptr<CompletionPort> mPort;
    std::unique_ptr<OpenPort> mNext;
};

// A linked list suffices: a process has one port, and only tests have more.
struct PortList
{
    Mutex mMutex; // a leaf lock
    std::unique_ptr<OpenPort> mFirst TVXCORE_GUARDED_BY(mMutex);
    std::uintptr_t
        mLastNumber TVXCORE_GUARDED_BY(mMutex) = 0; // counts all ports ever opened, so that no handle is reused
};

// A thread that was never joined may still use the ports at process exit.
Immortal<PortList> sPorts;

// Returns the link that owns the port, or the null link at the end of the list.
std::unique_ptr<OpenPort>& PlaceOf(Handle inHandle) TVXCORE_REQUIRES(sPorts.mValue.mMutex)
{
    std::unique_ptr<OpenPort>* place = &sPorts.mValue.mFirst;
    while (*place != nullptr && (*place)->mHandle != inHandle) {
        place = &(*place)->mNext;
    }
    return *place;
}

} // namespace

Handle OpenPorts::Add(const std::shared_ptr<CompletionPort>& inPort)
{
    const MutexLock lock(sPorts.mValue.mMutex);
    const Handle handle = reinterpret_cast<Handle>(++sPorts.mValue.mLastNumber);
    PlaceOf(handle).reset(new OpenPort{handle, inPort, nullptr});
    return handle;
}

std::shared_ptr<CompletionPort> OpenPorts::Find(Handle inHandle)
{
    const MutexLock lock(sPorts.mValue.mMutex);
    const std::unique_ptr<OpenPort>& place = PlaceOf(inHandle);
    return place != nullptr ? place->mPort : nullptr;
}

std::shared_ptr<CompletionPort> OpenPorts::Remove(Handle inHandle)
{
    const MutexLock lock(sPorts.mValue.mMutex);
    std::unique_ptr<OpenPort>& place = PlaceOf(inHandle);
    if (place == nullptr) {
        return nullptr;
    }
    const std::unique_ptr<OpenPort> removed = std::move(place);
    place = std::move(removed->mNext);
    return removed->mPort;
}

} // namespace Linux
} // namespace ORL
