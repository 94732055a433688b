// Floor: Objects
// Objects that count their owners themselves, the references that own them, and the interfaces they answer for.
//
// A concrete class derives from UnknownImpl and is held by InterfaceRef:
//
//   class Work : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
//   {
//       void Process() override {}
//   };
//   ORL::InterfaceRef<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest> work(new Work);
#pragma once

#include <ORLAtomic.h>
#include <ORLDebug.h>
#include <ORLException.h>
#include <ORLResult.h>

#include <tvxcore/Guid.h>

#include <type_traits>
#include <utility>

namespace ORL {

using tvxcore::utility::Guid;

// The identifiers of the published interfaces, as the two 64-bit words that they are compared by.
inline constexpr Guid kInterfaceID_ORLUnknown(0x4F33C5DF4F9CB3F7u, 0xB93F9CDF4C78A5B5u);
inline constexpr Guid kInterfaceID_ThreadedWorkQueue(0x424584A420974874u, 0x998149164AB27293u);
inline constexpr Guid kInterfaceID_ThreadedWorkQueueFlush(0x4055FE55793307D6u, 0x740A4DB1AF3A34B1u);
inline constexpr Guid kInterfaceID_IThreadedQueueRequest(0x42E70EE71DF08FEDu, 0xE09C394DB38CF492u);

/// Root interface of the class system. The order of the operations is fixed. An interface adds its own behind them and
/// names its identifier in a constant kInterfaceID of its own: one that it inherits is that of another interface.
class ORL_API ORLUnknown
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_ORLUnknown;

    /// Adds one owner. A new object has none.
    virtual void AddRef() = 0;

    /// Takes one owner away. The last one deletes the object.
    virtual void Release() = 0;

    virtual ~ORLUnknown();

    /// Stores the object as the wanted interface, with one owner counted for the caller, and gives kSuccess. Otherwise
    /// stores null and gives kNoSuchInterface.
    virtual Result QueryInterface(const Guid& inInterfaceID, void** outInterface) = 0;

protected:
    ORLUnknown() = default;
    ORLUnknown(const ORLUnknown&) = default;
    ORLUnknown& operator=(const ORLUnknown&) = default;
};

/// Owns one count of the object it points to, or points to nothing. Base is the root interface of T, through which
/// the count is changed: ORLUnknown for classes of the class system, T itself for a lone interface.
///
/// The count may be changed from any thread. One InterfaceRef itself is a plain member: assigning it while another
/// thread uses it needs a lock.
template <class T, class Base = ORLUnknown>
class InterfaceRef
{
public:
    InterfaceRef() noexcept : mIPtr(nullptr) {}

    /// Counts one owner when inPtr is not null.
    InterfaceRef(T* inPtr) : mIPtr(inPtr) { AddRef(mIPtr); }

    InterfaceRef(const InterfaceRef& inOther) : InterfaceRef(inOther.mIPtr) {}

    /// Takes the other's count and leaves it null.
    InterfaceRef(InterfaceRef&& ioOther) noexcept : mIPtr(std::exchange(ioOther.mIPtr, nullptr)) {}

    ~InterfaceRef() { Release(mIPtr); }

    /// The new object is counted before the old one is released, so assigning a reference to itself is safe.
    InterfaceRef& operator=(const InterfaceRef& inOther)
    {
        AddRef(inOther.mIPtr);
        Release(std::exchange(mIPtr, inOther.mIPtr));
        return *this;
    }

    InterfaceRef& operator=(InterfaceRef&& ioOther) noexcept
    {
        InterfaceRef(std::move(ioOther)).Swap(*this);
        return *this;
    }

    void Swap(InterfaceRef& ioOther) noexcept { std::swap(mIPtr, ioOther.mIPtr); }

    /// The object. A null reference is reported, and then NullInterfaceException leaves.
    T* operator->() const
    {
        if (__builtin_expect(mIPtr == nullptr, 0)) {
            FailOnNull();
        }
        return mIPtr;
    }

    /// The object or null, without a check.
    T* GetPtr() const noexcept { return mIPtr; }

    explicit operator bool() const noexcept { return mIPtr != nullptr; }

private:
    static void AddRef(T* inPtr)
    {
        if (inPtr != nullptr) {
            static_cast<Base*>(inPtr)->AddRef();
        }
    }

    static void Release(T* inPtr)
    {
        if (inPtr != nullptr) {
            static_cast<Base*>(inPtr)->Release();
        }
    }

    [[noreturn]] __attribute__((noinline, cold)) void FailOnNull() const
    {
        ORL_ASSERT_MESSAGE_AT(mIPtr != nullptr, "mIPtr != NULL", "Attempt to use a NULL InterfaceRef\r\n",
                              "ORLInterface", 359, "ORL::InterfaceRef::operator->");
        throw NullInterfaceException();
    }

    T* mIPtr;
};

namespace Internal {

// Two classes that name the same constant: one of them inherits it.
template <class First, class Second>
constexpr bool ShareIdentifier()
{
    return !std::is_same_v<First, Second> && &First::kInterfaceID == &Second::kInterfaceID;
}

template <class Answer, class... Others>
constexpr bool HasOwnIdentifier()
{
    return !(ShareIdentifier<Answer, Others>() || ...);
}

} // namespace Internal

/// What a concrete class needs to be counted and asked. Base is the interface that it extends, or ORLUnknown; Answers
/// are the classes and interfaces it answers QueryInterface for, itself first. Each names a kInterfaceID of its own; a
/// class that inherits the one of another listed class, of Base or of ORLUnknown does not compile. ORLUnknown is
/// answered last, without being listed. The count stands right behind the table of virtual functions and starts at 0.
///
/// All of them must share one address with the object, so a class has one chain of interfaces above it.
template <class Base, class... Answers>
class UnknownImpl : public Base
{
public:
    void AddRef() override { AtomicIncrement(mRefCount); }

    void Release() override
    {
        if (AtomicDecrement(mRefCount) == 0) {
            delete this;
        }
    }

    Result QueryInterface(const Guid& inInterfaceID, void** outInterface) override
    {
        static_assert((Internal::HasOwnIdentifier<Answers, ORLUnknown, Base, Answers...>() && ...),
                      "each answered class and interface declares a kInterfaceID of its own");
        const bool isOwn = ((inInterfaceID == Answers::kInterfaceID) || ...);
        *outInterface = nullptr;
        if (!isOwn && inInterfaceID != kInterfaceID_ORLUnknown) {
            return kNoSuchInterface;
        }
        *outInterface = static_cast<ORLUnknown*>(this);
        static_cast<ORLUnknown*>(*outInterface)->AddRef();
        return kSuccess;
    }

    /// The object as its root interface; one owner is counted.
    virtual InterfaceRef<ORLUnknown, ORLUnknown> GetUnknown() { return InterfaceRef<ORLUnknown, ORLUnknown>(this); }

protected:
    UnknownImpl() = default;
    ~UnknownImpl() override = default;

    // A copy is an object of its own, with no owner yet.
    UnknownImpl(const UnknownImpl& inOther) : Base(inOther) {}
    UnknownImpl& operator=(const UnknownImpl& inOther)
    {
        Base::operator=(inOther);
        return *this;
    }

private:
    AtomicValue mRefCount = 0;
};

} // namespace ORL
