// Floor: Objects
// Objects whose owners are counted by a manager and by nobody else.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>

namespace ORL {

class Manager;

/// An object with a count that only a Manager may touch. A new object has no owner. The count may be changed from any
/// thread.
class ORL_API Managed
{
protected:
    Managed();
    virtual ~Managed();

    Managed(const Managed&) = delete;
    Managed& operator=(const Managed&) = delete;

private:
    friend class Manager;

    /// Called when the last owner has gone. What becomes of the object is the derived class's choice.
    virtual void Destroy() = 0;

    void AddRef();
    void Release();

    AtomicValue mRefCount;
};

/// Base of classes that keep Managed objects alive.
class ORL_API Manager
{
protected:
    static void AddRef(Managed* inManaged);

    /// The last one ends in the object's Destroy.
    static void Release(Managed* inManaged);
};

} // namespace ORL
