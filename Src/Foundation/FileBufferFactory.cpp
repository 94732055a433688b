#include <FileBufferFactory.h>

#include <CountedLifecycle.h>
#include <new>

namespace ORL {
namespace Foundation {

namespace {

using Factory = InterfaceRef<IFileBufferFactory, IFileBufferFactory>;

// Not destroyed at the end of the process: the module of the host's factory may be gone by then.
Factory& TheFactory()
{
    alignas(Factory) static unsigned char sMemory[sizeof(Factory)];
    static Factory* const sFactory = ::new (static_cast<void*>(sMemory)) Factory;
    return *sFactory;
}

} // namespace

void SetFileBufferFactory(Factory inFactory)
{
    const CriticalSectionLock lock(FoundationLifecycle().mLock);
    Factory earlier(inFactory); // released before the lock is
    earlier.Swap(TheFactory());
}

Factory GetFileBufferFactory()
{
    const CriticalSectionLock lock(FoundationLifecycle().mLock);
    return TheFactory();
}

} // namespace Foundation
} // namespace ORL
