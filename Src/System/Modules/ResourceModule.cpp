#include <ORLModule.h>

#include <Core/UntilUnload.h>

namespace ORL {

namespace {

UntilUnload<ObjectPtr<Module, AtomicValue>> sResourceModule;

} // namespace

const ObjectPtr<Module, AtomicValue>& GetResourceModule()
{
    return sResourceModule.Get();
}

void SetResourceModule(const ObjectPtr<Module, AtomicValue>& inModule)
{
    sResourceModule.Get() = inModule;
}

const ResourceCollection& GetResourceCollection()
{
    return *sResourceModule.Get();
}

} // namespace ORL
