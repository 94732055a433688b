#include <ORLManaged.h>

namespace ORL {

Managed::Managed() : mRefCount(0)
{
}

Managed::~Managed() = default;

void Managed::AddRef()
{
    AtomicIncrement(mRefCount);
}

void Managed::Release()
{
    if (AtomicDecrement(mRefCount) == 0) {
        Destroy();
    }
}

void Manager::AddRef(Managed* inManaged)
{
    inManaged->AddRef();
}

void Manager::Release(Managed* inManaged)
{
    inManaged->Release();
}

} // namespace ORL
