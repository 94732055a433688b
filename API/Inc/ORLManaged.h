// Floor: Objects
// Objects whose reference count is changed only by a manager.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>

namespace ORL {

class Manager;

/// An object with a reference count that only a Manager can change. A new object has no references.
///
/// Owner:    the managers that hold references. The last Release calls Destroy, which decides what happens to the
///           object.
/// Threads:  the count is thread-safe.
/// Failure:  never throws.
class ORL_API Managed
{
protected:
    Managed();
    virtual ~Managed();

    Managed(const Managed&) = delete;
    Managed& operator=(const Managed&) = delete;

private:
    friend class Manager;

    /// Called when the last reference has been released.
    virtual void Destroy() = 0;

    void AddRef();
    void Release();

    AtomicValue mRefCount;
};

/// Base of classes that keep Managed objects alive. Thread-safe.
class ORL_API Manager
{
protected:
    static void AddRef(Managed* inManaged); ///< adds one reference

    /// Removes one reference, and calls Destroy if it was the last.
    static void Release(Managed* inManaged);
};

} // namespace ORL
