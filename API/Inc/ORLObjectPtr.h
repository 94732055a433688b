// Floor: Memory
// Shared ownership of any object, with an external reference count.
//
//   ORL::ObjectPtr<Picture> picture(new Picture); // owns
//   ORL::ObjectPtr<Picture> second = picture;     // shares; the last owner deletes the object
//   auto third = ORL::MakeObjectPtr<Picture>();   // same as the first line, but names the class once
#pragma once

#include <ORLAllocator.h>
#include <ORLAtomic.h>
#include <ORLDebug.h>

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace ORL {

/// A smart pointer whose copies share one object and one separately allocated 4-byte counter. The counter
/// is null if and only if the object is.
///
/// Owner:    the copies share ownership of the object; the last one deletes it.
/// Threads:  one thread at a time per ObjectPtr. Several threads may own copies of one pointer, and copy and destroy
///           them.
/// Failure:  the constructor throws std::bad_alloc. Dereferencing an empty pointer fires an assertion.
template <class T, class CounterType = AtomicValue>
class ObjectPtr
{
    static_assert(sizeof(CounterType) == 4, "the counter is a 32-bit number");

public:
    constexpr ObjectPtr() noexcept : mCounter(nullptr), mPtr(nullptr) {}

    /// Takes ownership of the object, which must have no other owner; null constructs an empty pointer. If there is no
    /// memory for the counter, deletes the object and throws std::bad_alloc. Explicit: an implicit conversion could
    /// create a second counter for an owned object, which would then be deleted twice. (InterfaceRef counts inside the
    /// object, so its constructor is implicit.)
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

    /// Moves the ownership; ioOther becomes empty.
    ObjectPtr(ObjectPtr&& ioOther) noexcept
        : mCounter(std::exchange(ioOther.mCounter, nullptr)), mPtr(std::exchange(ioOther.mPtr, nullptr))
    {
    }

    /// Shares an object as its base class, with the counter of inOther. The last owner deletes the object through its
    /// own T, so the base class must have a virtual destructor.
    template <class Other, std::enable_if_t<!std::is_same_v<Other, T> && std::is_convertible_v<Other*, T*>, int> = 0>
    ObjectPtr(const ObjectPtr<Other, CounterType>& inOther) : mCounter(inOther.mCounter), mPtr(inOther.mPtr)
    {
        static_assert(IsDeletableAs<Other>(), "an object that is shared as its base class has a virtual destructor");
        if (mCounter != nullptr) {
            AtomicIncrement(*mCounter);
        }
    }

    /// Moves the ownership; ioOther becomes empty.
    template <class Other, std::enable_if_t<!std::is_same_v<Other, T> && std::is_convertible_v<Other*, T*>, int> = 0>
    ObjectPtr(ObjectPtr<Other, CounterType>&& ioOther) noexcept
        : mCounter(std::exchange(ioOther.mCounter, nullptr)), mPtr(std::exchange(ioOther.mPtr, nullptr))
    {
        static_assert(IsDeletableAs<Other>(), "an object that is shared as its base class has a virtual destructor");
    }

    /// Acquires the new object before it releases the old one, so it is safe to assign a pointer to itself, or one that
    /// the old object owns.
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

    /// Returns the object. If the pointer is empty, fires an assertion, then dereferences null.
    T& operator*() const
    {
        ORL_ASSERT_MESSAGE_AT(IsValidAddress(mPtr, false), "IsValidAddress(mPtr)", "", "ORLObjectPtr", 199,
                              "ORL::ObjectPtr::operator*");
        return *mPtr;
    }

    /// Returns the object. If the pointer is empty, fires an assertion and returns null.
    T* operator->() const
    {
        ORL_ASSERT_MESSAGE_AT(IsValidAddress(mPtr, false), "IsValidAddress(mPtr)", "", "ORLObjectPtr", 209,
                              "ORL::ObjectPtr::operator->");
        return mPtr;
    }

    /// Returns the object or null, without a check.
    T* GetPtr() const noexcept { return mPtr; }

    explicit operator bool() const noexcept { return mPtr != nullptr; }

private:
    template <class, class>
    friend class ObjectPtr;

    // Adding const needs no virtual destructor.
    template <class Other>
    static constexpr bool IsDeletableAs()
    {
        return std::is_same_v<std::remove_cv_t<Other>, std::remove_cv_t<T>> || std::has_virtual_destructor_v<T>;
    }

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

    // Reads the count in relaxed order: other owners may change it concurrently.
    CounterType CurrentCount() const { return __atomic_load_n(mCounter, __ATOMIC_RELAXED); }

    CounterType* mCounter;
    T* mPtr;
};

/// Creates an object from constructor arguments and returns its first owner. Throws std::bad_alloc, or what the
/// constructor throws.
template <class T, class... Arguments>
ObjectPtr<T> MakeObjectPtr(Arguments&&... inArguments)
{
    return ObjectPtr<T>(new T(std::forward<Arguments>(inArguments)...));
}

/// Two pointers are equal if they refer to the same object, or are both empty.
template <class Left, class Right, class CounterType>
auto operator==(const ObjectPtr<Left, CounterType>& inLeft, const ObjectPtr<Right, CounterType>& inRight) noexcept
    -> decltype(inLeft.GetPtr() == inRight.GetPtr())
{
    return inLeft.GetPtr() == inRight.GetPtr();
}
template <class Left, class Right, class CounterType>
auto operator!=(const ObjectPtr<Left, CounterType>& inLeft, const ObjectPtr<Right, CounterType>& inRight) noexcept
    -> decltype(inLeft.GetPtr() != inRight.GetPtr())
{
    return inLeft.GetPtr() != inRight.GetPtr();
}
template <class T, class CounterType>
bool operator==(const ObjectPtr<T, CounterType>& inPtr, std::nullptr_t) noexcept
{
    return inPtr.GetPtr() == nullptr;
}
template <class T, class CounterType>
bool operator==(std::nullptr_t, const ObjectPtr<T, CounterType>& inPtr) noexcept
{
    return inPtr.GetPtr() == nullptr;
}
template <class T, class CounterType>
bool operator!=(const ObjectPtr<T, CounterType>& inPtr, std::nullptr_t) noexcept
{
    return inPtr.GetPtr() != nullptr;
}
template <class T, class CounterType>
bool operator!=(std::nullptr_t, const ObjectPtr<T, CounterType>& inPtr) noexcept
{
    return inPtr.GetPtr() != nullptr;
}

} // namespace ORL
