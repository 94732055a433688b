#include <ORLFoundation.h>

#include <Diagnostics/DebugDatabaseLifecycle.h>
#include <Files/AsyncFileReaderImpl.h>
#include <Foundation/CountedLifecycle.h>
#include <Memory/MemoryRecyclerLifecycle.h>
#include <ORLVersion.h>
#include <Strings/LocaleInternals.h>
#include <tvxcore/Trace.h>

namespace ORL {

namespace {

// The start order and the stop order are fixed. The stop order is not the reverse of the start order.
constexpr LifecycleStep kStart[] = {
    {"Exception::Initialize", &Exception::Initialize},
    {"Locale::Initialize", &Locale::Initialize},
    {"ThreadManager::RegisterMainThread", &ThreadManager::RegisterMainThread},
    {"CreateMemoryRecycler", &CreateMemoryRecycler},
    {"StartupAsyncFileOperations", &StartupAsyncFileOperations},
};

constexpr LifecycleStep kStop[] = {
    {"TerminateAsyncFileOperations", &TerminateAsyncFileOperations},
    {"DropMemoryRecycler", &DropMemoryRecycler},
    {"SharedThreadedWorkQueue::Shutdown", &SharedThreadedWorkQueue::Shutdown},
    {"ThreadManager::UnregisterMainThread", &ThreadManager::UnregisterMainThread},
    {"Exception::Terminate", &Exception::Terminate},
    {"ReleaseDebugDatabase", &ReleaseDebugDatabase},
    {"tvxcore::debug::ShutdownTraceManager", &tvxcore::debug::ShutdownTraceManager},
};

CountedLifecycle sLifecycle(kStart, kStop);

} // namespace

CountedLifecycle& FoundationLifecycle()
{
    return sLifecycle;
}

namespace Foundation {

void Initialize()
{
    sLifecycle.Initialize();
}

void Terminate()
{
    sLifecycle.Terminate();
}

const char* GetVersion() noexcept
{
    return ORL_VERSION;
}

} // namespace Foundation

bool GetEmergencyMemoryMode()
{
    return false;
}

void SetEmergencyMemoryMode(bool)
{
}

} // namespace ORL
