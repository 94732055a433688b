// Floor: Memory
// Shared ownership of any object, counted outside of it.
//
//   ORL::ObjectPtr<Picture> picture(new Picture); // owns
//   ORL::ObjectPtr<Picture> second = picture;     // shares; the last one deletes the object
#pragma once

#include <ORLAllocator.h>
#include <ORLAtomic.h>
#include <ORLDebug.h>

#include <memory>
#include <new>
#include <utility>

namespace ORL {

/// A pointer whose copies share one object and one counter, which stands in a block of 4 bytes of its own. The counter
/// is null exactly when the pointer is.
///
/// The count may be changed from any thread, so two threads may copy and destroy copies of one pointer. One ObjectPtr
/// itself is a plain pair of members: assigning it while another thread uses it needs a lock.
template <class T, class CounterType = AtomicValue>
class ObjectPtr
{
    static_assert(sizeof(CounterType) == 4, "the counter is a 32-bit number");

public:
    constexpr ObjectPtr() noexcept : mCounter(nullptr), mPtr(nullptr) {}

    /// Takes the object over; null gives an empty pointer. The object must have no other owner. When there is no memory
    /// for the counter the object is deleted and std::bad_alloc leaves. Explicit, since a pointer that becomes an owner
    /// unasked gets a counter of its own and its object two ends. (InterfaceRef counts inside the object and need not
    /// be.)
    explicit ObjectPtr(T* inPtr) : ObjectPtr()
    {
        if (inPtr != nullptr) {
            std::unique_ptr<T> owner(inPtr);
            mCounter = ::new (Allocator::Allocate(sizeof(CounterType))) CounterType(1);
            mPtr = owner.release();
        }
    }

    ObjectPtr(const ObjectPtr& inOther) : mCounter(inOther.mCounter), mPtr(inOther.mPtr)
    {
        if (mCounter != nullptr) {
            AtomicIncrement(*mCounter);
        }
    }

    /// Takes the other's share and leaves it empty.
    ObjectPtr(ObjectPtr&& ioOther) noexcept
        : mCounter(std::exchange(ioOther.mCounter, nullptr)), mPtr(std::exchange(ioOther.mPtr, nullptr))
    {
    }

    /// The new share is taken before the old one is given up, so assigning a pointer to itself is safe, and so is
    /// assigning one that the old object owns.
    ObjectPtr& operator=(const ObjectPtr& inOther)
    {
        ObjectPtr(inOther).Swap(*this);
        return *this;
    }

    ObjectPtr& operator=(ObjectPtr&& ioOther) noexcept
    {
        ObjectPtr(std::move(ioOther)).Swap(*this);
        return *this;
    }

    ~ObjectPtr() { Release(); }

    void Swap(ObjectPtr& ioOther) noexcept
    {
        std::swap(mCounter, ioOther.mCounter);
        std::swap(mPtr, ioOther.mPtr);
    }

    /// The object. An empty pointer is reported, and then dereferenced.
    T& operator*() const
    {
        ORL_ASSERT_MESSAGE_AT(IsValidAddress(mPtr, false), "IsValidAddress(mPtr)", "", "ORLObjectPtr", 199,
                              "ORL::ObjectPtr::operator*");
        return *mPtr;
    }

    /// The object. An empty pointer is reported, and then handed out.
    T* operator->() const
    {
        ORL_ASSERT_MESSAGE_AT(IsValidAddress(mPtr, false), "IsValidAddress(mPtr)", "", "ORLObjectPtr", 209,
                              "ORL::ObjectPtr::operator->");
        return mPtr;
    }

    /// The object or null, without a check.
    T* GetPtr() const noexcept { return mPtr; }

    explicit operator bool() const noexcept { return mPtr != nullptr; }

private:
    void Release()
    {
        if (mCounter == nullptr) {
            return;
        }
        ORL_ASSERT_MESSAGE_AT(CurrentCount() > CounterType(0), "*mCounter > CounterType(0)", "", "ORLObjectPtr", 119,
                              "ORL::ObjectPtr::Release");
        if (AtomicDecrement(*mCounter) != 0) {
            return;
        }
        delete mPtr;
        Allocator::Dispose(mCounter, sizeof(CounterType));
    }

    // A plain read as the machine sees it; other owners may be counting at this moment.
    CounterType CurrentCount() const { return __atomic_load_n(mCounter, __ATOMIC_RELAXED); }

    CounterType* mCounter;
    T* mPtr;
};

} // namespace ORL
