// Floor: Objects
// Objects with an intrusive reference count, the smart pointers that own them, and interface queries.
//
// A concrete class derives from UnknownImpl, and InterfaceRefs own its objects:
//
//   class Work : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
//   {
//       void Process() override {}
//   };
//   ORL::InterfaceRef<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest> work(new Work);
//   const auto same = work.As<ORL::ORLUnknown>(); // queries the object; null if it does not implement the interface
#pragma once

#include <ORLAtomic.h>
#include <ORLDebug.h>
#include <ORLException.h>
#include <ORLResult.h>

#include <tvxcore/Guid.h>

#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ORL {

using tvxcore::utility::Guid;

// Identifiers of the published interfaces, each as two 64-bit words.
inline constexpr Guid kInterfaceID_ORLUnknown(0x4F33C5DF4F9CB3F7u, 0xB93F9CDF4C78A5B5u);
inline constexpr Guid kInterfaceID_ThreadedWorkQueue(0x424584A420974874u, 0x998149164AB27293u);
inline constexpr Guid kInterfaceID_ThreadedWorkQueueFlush(0x4055FE55793307D6u, 0x740A4DB1AF3A34B1u);
inline constexpr Guid kInterfaceID_IThreadedQueueRequest(0x42E70EE71DF08FEDu, 0xE09C394DB38CF492u);

/// Root interface of the class system. The order of the virtual functions is fixed. A derived interface appends its
/// functions and declares its own kInterfaceID, since an inherited one identifies the base.
///
/// Owner:    references own the object; the last Release deletes it.
/// Threads:  AddRef, Release and QueryInterface are thread-safe in classes derived from UnknownImpl.
/// Failure:  QueryInterface returns kNoSuchInterface for an interface that the object does not implement.
class ORL_API ORLUnknown
{
public:
    static constexpr Guid kInterfaceID = kInterfaceID_ORLUnknown;

    /// Adds one reference. A new object has none.
    virtual void AddRef() = 0;

    /// Removes one reference. Deletes the object if that was the last one.
    virtual void Release() = 0;

    virtual ~ORLUnknown();

    /// Stores the object as the requested interface, with one reference added for the caller, and returns kSuccess.
    /// Otherwise stores null and returns kNoSuchInterface.
    virtual Result QueryInterface(const Guid& inInterfaceID, void** outInterface) = 0;

protected:
    ORLUnknown() = default;
    ORLUnknown(const ORLUnknown&) = default;
    ORLUnknown& operator=(const ORLUnknown&) = default;
};

namespace Internal {

// Compares the addresses as template arguments: under some sanitizers "==" on addresses is not a constant expression.
template <const Guid* inAddress>
struct IdentifierAt
{
};

// Returns whether two classes share one kInterfaceID because one of them inherits it.
template <class First, class Second>
constexpr bool ShareIdentifier()
{
    return !std::is_same_v<
               First,
               Second> && std::is_same_v<IdentifierAt<&First::kInterfaceID>, IdentifierAt<&Second::kInterfaceID>>;
}

template <class Answer, class... Others>
constexpr bool HasOwnIdentifier()
{
    return !(ShareIdentifier<Answer, Others>() || ...);
}

// Returns whether Asked declares its identifier. If Asked shares its identifier with a class that does not derive from
// Asked, it inherits that identifier.
template <class Asked, class... Others>
constexpr bool DeclaresIdentifier()
{
    return ((!ShareIdentifier<Asked, Others>() || std::is_base_of_v<Asked, Others>)&&...);
}

// The compilers' names of these functions contain the class that declares the constant ("... = (& N::IShape::k...)]"),
// and the class Asked ("... Asked = N::IShape]").
template <const Guid* inAddress>
constexpr const char* NameWithDeclaringClass()
{
    return __PRETTY_FUNCTION__;
}
template <class Asked>
constexpr const char* NameWithClass()
{
    return __PRETTY_FUNCTION__;
}

// Returns the C++ identifier that ends just before a position, or an empty string if none does.
constexpr std::string_view IdentifierBefore(std::string_view inText, std::size_t inEnd)
{
    const std::string_view before = inText.substr(0, inEnd);
    const std::size_t last = before.find_last_of(" :<>(){}[]&*,;=");
    return before.substr(last == std::string_view::npos ? 0 : last + 1);
}

// Returns whether Asked may declare its identifier. Compares the unqualified names of Asked and of the class that
// declares it, since no type trait reports where an inherited constant is declared. Accepts class templates unchecked.
template <class Asked>
constexpr bool IsNamedAsDeclaringClass()
{
    const std::string_view declaring = NameWithDeclaringClass<&Asked::kInterfaceID>();
    const std::string_view asked = NameWithClass<Asked>();
    const std::string_view declaringName = IdentifierBefore(declaring, declaring.rfind("::kInterfaceID"));
    const std::string_view askedName = IdentifierBefore(asked, asked.find_last_of(']'));
    return declaringName.empty() || askedName.empty() || declaringName == askedName;
}

/// Throws NullInterfaceException. A function of the library, so that this header compiles with -fno-exceptions.
[[noreturn]] ORL_API void ThrowNullInterface();

} // namespace Internal

/// A smart pointer that owns one reference, or is null. Base is the root interface of T, whose AddRef and Release are
/// called: ORLUnknown for classes of the class system, T itself for a standalone interface.
///
/// Owner:    each InterfaceRef owns one reference to its object.
/// Threads:  one thread at a time per InterfaceRef. Several threads may own references to one object, and copy and
///           destroy them.
/// Failure:  operator-> throws NullInterfaceException. As() throws what the object's QueryInterface throws.
template <class T, class Base = ORLUnknown>
class InterfaceRef
{
public:
    InterfaceRef() noexcept : mIPtr(nullptr) {}

    /// Adds one reference if inPtr is not null.
    InterfaceRef(T* inPtr) : mIPtr(inPtr) { AddRef(mIPtr); }

    InterfaceRef(const InterfaceRef& inOther) : InterfaceRef(inOther.mIPtr) {}

    /// Constructs from a reference to a derived class or interface. Adds one reference.
    template <class Other, class OtherBase,
              std::enable_if_t<
                  !std::is_same_v<InterfaceRef<Other, OtherBase>, InterfaceRef> && std::is_convertible_v<Other*, T*>,
                  int> = 0>
    InterfaceRef(const InterfaceRef<Other, OtherBase>& inOther) : InterfaceRef(static_cast<T*>(inOther.GetPtr()))
    {
    }

    /// Moves the reference; ioOther becomes null.
    InterfaceRef(InterfaceRef&& ioOther) noexcept : mIPtr(std::exchange(ioOther.mIPtr, nullptr)) {}

    ~InterfaceRef() { Release(mIPtr); }

    /// Adds the new reference before it releases the old one, so self-assignment is safe.
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

    /// Returns the object. If the reference is null, reports an assertion and throws NullInterfaceException.
    T* operator->() const
    {
        if (__builtin_expect(mIPtr == nullptr, 0)) {
            FailOnNull();
        }
        return mIPtr;
    }

    /// Returns the object or null, without a check.
    T* GetPtr() const noexcept { return mIPtr; }

    explicit operator bool() const noexcept { return mIPtr != nullptr; }

    /// Returns a reference to another interface of the object, by QueryInterface, or null if the object does not
    /// implement it or this reference is null. OtherBase is the second template argument of the result. Does not
    /// compile for an interface that inherits its identifier. Throws what the object's
    /// QueryInterface throws; that of UnknownImpl never throws.
    template <class Other, class OtherBase = ORLUnknown>
    InterfaceRef<Other, OtherBase> As() const
    {
        static_assert(std::is_base_of_v<ORLUnknown, Other>, "a queried interface derives from ORLUnknown");
        static_assert(Internal::DeclaresIdentifier<Other, ORLUnknown, T>()
                          && Internal::IsNamedAsDeclaringClass<Other>(),
                      "a queried interface declares a kInterfaceID of its own");
        InterfaceRef<Other, OtherBase> found;
        void* object = nullptr;
        if (mIPtr != nullptr && ResultSucceeded(mIPtr->QueryInterface(Other::kInterfaceID, &object))) {
            found.mIPtr = static_cast<Other*>(static_cast<ORLUnknown*>(object)); // QueryInterface has added a reference
        }
        return found;
    }

private:
    template <class, class>
    friend class InterfaceRef;

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
        Internal::ThrowNullInterface();
    }

    T* mIPtr;
};

/// Two references are equal if they refer to the same object through the same address, or are both null.
template <class Left, class LeftBase, class Right, class RightBase>
auto operator==(const InterfaceRef<Left, LeftBase>& inLeft, const InterfaceRef<Right, RightBase>& inRight) noexcept
    -> decltype(inLeft.GetPtr() == inRight.GetPtr())
{
    return inLeft.GetPtr() == inRight.GetPtr();
}
template <class Left, class LeftBase, class Right, class RightBase>
auto operator!=(const InterfaceRef<Left, LeftBase>& inLeft, const InterfaceRef<Right, RightBase>& inRight) noexcept
    -> decltype(inLeft.GetPtr() != inRight.GetPtr())
{
    return inLeft.GetPtr() != inRight.GetPtr();
}
template <class T, class Base>
bool operator==(const InterfaceRef<T, Base>& inRef, std::nullptr_t) noexcept
{
    return inRef.GetPtr() == nullptr;
}
template <class T, class Base>
bool operator==(std::nullptr_t, const InterfaceRef<T, Base>& inRef) noexcept
{
    return inRef.GetPtr() == nullptr;
}
template <class T, class Base>
bool operator!=(const InterfaceRef<T, Base>& inRef, std::nullptr_t) noexcept
{
    return inRef.GetPtr() != nullptr;
}
template <class T, class Base>
bool operator!=(std::nullptr_t, const InterfaceRef<T, Base>& inRef) noexcept
{
    return inRef.GetPtr() != nullptr;
}

/// Creates an object of the class system from constructor arguments, and returns the first reference to it:
/// MakeInterfaceRef<Work>(). Base is the second template argument of the returned reference. Throws std::bad_alloc, or
/// what the constructor throws.
template <class T, class Base = ORLUnknown, class... Arguments>
InterfaceRef<T, Base> MakeInterfaceRef(Arguments&&... inArguments)
{
    return InterfaceRef<T, Base>(new T(std::forward<Arguments>(inArguments)...));
}

/// Implements the reference count and the interface queries for a concrete class. Base is the interface that it
/// extends, or ORLUnknown. Answers are the classes and interfaces that QueryInterface supports, the class itself first.
/// Each of them must declare its own kInterfaceID: a class that inherits the identifier of another listed class, of
/// Base or of ORLUnknown does not compile. ORLUnknown is supported without being listed. The count directly follows the
/// vtable pointer and starts at 0.
///
/// Owner:    references own the object; the last Release deletes it.
/// Threads:  the count is thread-safe.
/// Failure:  never throws.
/// All listed interfaces must have the object's address, so a class may inherit only a single chain of
/// interfaces.
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

    /// Returns the object as its root interface, with one reference added.
    virtual InterfaceRef<ORLUnknown, ORLUnknown> GetUnknown() { return InterfaceRef<ORLUnknown, ORLUnknown>(this); }

protected:
    UnknownImpl() = default;
    ~UnknownImpl() override = default;

    // A copy is a new object without references.
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
