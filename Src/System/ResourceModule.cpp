#include <ORLModule.h>

namespace ORL {

namespace {

ObjectPtr<Module, AtomicValue> sResourceModule;

} // namespace

const ObjectPtr<Module, AtomicValue>& GetResourceModule()
{
    return sResourceModule;
}

void SetResourceModule(const ObjectPtr<Module, AtomicValue>& inModule)
{
    sResourceModule = inModule;
}

const ResourceCollection& GetResourceCollection()
{
    return *sResourceModule;
}

} // namespace ORL
