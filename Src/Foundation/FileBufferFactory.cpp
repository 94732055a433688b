#include <Files/FileBufferFactory.h>

#include <Foundation/CountedLifecycle.h>
#include <new>

namespace ORL {
namespace Foundation {

namespace {

using Factory = InterfaceRef<IFileBufferFactory, IFileBufferFactory>;

// Never destroyed: at process exit the module that contains the host's factory may already be unloaded.
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
    Factory earlier(inFactory); // declared after the lock, so it releases the old factory while the lock is held
    earlier.Swap(TheFactory());
}

Factory GetFileBufferFactory()
{
    const CriticalSectionLock lock(FoundationLifecycle().mLock);
    return TheFactory();
}

} // namespace Foundation
} // namespace ORL
