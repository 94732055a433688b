// Floor: Core
// Atomic operations on 32-bit integers and on pointers.
//
// Every operation is sequentially consistent and thread-safe. Each asserts that the target is aligned to its size, and
// is performed even if the assertion fails. Never throws, unless the host's assertion handler does.
#pragma once

#include <ORLDebug.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace ORL {

/// The reference count type of ObjectPtr. Change such a count only with AtomicIncrement and AtomicDecrement.
using AtomicValue = std::int32_t;

namespace Internal {

// A parameter of this type does not take part in template argument deduction.
template <class T>
using Plain = std::common_type_t<T>;

template <class T>
inline constexpr bool kIs32BitNumber = std::is_integral_v<T> && sizeof(T) == 4;

// The compiler may assume that every reference is aligned and drop the check. The empty asm prevents that: it hides the
// address's origin.
inline bool IsAligned(const volatile void* inAddress, std::uintptr_t inMask)
{
    std::uintptr_t address = reinterpret_cast<std::uintptr_t>(inAddress);
    __asm__("" : "+r"(address));
    return (address & inMask) == 0;
}

} // namespace Internal
} // namespace ORL

// An operation on a misaligned target reports an assertion and is then performed, so the alignment sanitizer must not
// abort the program first.
#define ORL_ATOMIC_SERVES_MISALIGNED __attribute__((no_sanitize("alignment")))

#define ORL_ASSERT_ALIGNED_32_(target, line, function)                                                                 \
  ORL_ASSERT_MESSAGE_AT(::ORL::Internal::IsAligned(&target, 3), "(intptr_t(&" #target ") & 3L) == 0", "", "ORLAtomic", \
                        line, function)
#define ORL_ASSERT_ALIGNED_PTR_(target, line, function)                                                                \
  ORL_ASSERT_MESSAGE_AT(::ORL::Internal::IsAligned(&target, sizeof(T*) - 1),                                           \
                        "(intptr_t(&" #target ") & (sizeof(T*)-1)) == 0", "", "ORLAtomic", line, function)

namespace ORL {

/// Adds one and returns the new value.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T AtomicIncrement(T& ioValue)
{
    static_assert(Internal::kIs32BitNumber<T>, "a 32-bit number");
    ORL_ASSERT_ALIGNED_32_(ioValue, 275, "ORL::AtomicIncrement");
    return static_cast<T>(__atomic_add_fetch(&ioValue, T(1), __ATOMIC_SEQ_CST));
}

/// Subtracts one and returns the new value.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T AtomicDecrement(T& ioValue)
{
    static_assert(Internal::kIs32BitNumber<T>, "a 32-bit number");
    ORL_ASSERT_ALIGNED_32_(ioValue, 298, "ORL::AtomicDecrement");
    return static_cast<T>(__atomic_sub_fetch(&ioValue, T(1), __ATOMIC_SEQ_CST));
}

/// Returns the current value. The read is a compare-and-set that replaces 17 with 17: it changes nothing, but is a full
/// barrier. It acquires the cache line exclusively, so it costs as much as a write.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T AtomicRead(T& ioAddend)
{
    static_assert(Internal::kIs32BitNumber<T>, "a 32-bit number");
    ORL_ASSERT_ALIGNED_32_(ioAddend, 90, "ORL::AtomicRead");
    T value = 17;
    __atomic_compare_exchange_n(&ioAddend, &value, T(17), false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return value;
}

/// Stores inNew if the target equals inExpected. Returns whether inNew was stored.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline bool AtomicCompareAndSet(T& ioAddend, Internal::Plain<T> inExpected,
                                                             Internal::Plain<T> inNew)
{
    static_assert(Internal::kIs32BitNumber<T>, "a 32-bit number");
    ORL_ASSERT_ALIGNED_32_(ioAddend, 137, "ORL::AtomicCompareAndSet");
    return __atomic_compare_exchange_n(&ioAddend, &inExpected, inNew, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
}

/// Stores inNew and returns the old value.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T AtomicExchange(T& ioTarget, Internal::Plain<T> inNew)
{
    static_assert(Internal::kIs32BitNumber<T>, "a 32-bit number");
    ORL_ASSERT_ALIGNED_32_(ioTarget, 214, "ORL::AtomicExchange");
    return __atomic_exchange_n(&ioTarget, inNew, __ATOMIC_SEQ_CST);
}

/// Returns the current pointer. Reads it with the same kind of compare-and-set as AtomicRead.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T* AtomicReadPtr(T*& ioValue)
{
    ORL_ASSERT_ALIGNED_PTR_(ioValue, 421, "ORL::AtomicReadPtr");
    T* const seventeen = reinterpret_cast<T*>(std::uintptr_t{17});
    T* value = seventeen;
    __atomic_compare_exchange_n(&ioValue, &value, seventeen, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return value;
}

/// Stores null and returns the old pointer.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline T* AtomicNullifyPtr(T*& ioValue)
{
    ORL_ASSERT_ALIGNED_PTR_(ioValue, 448, "ORL::AtomicNullifyPtr");
    return __atomic_exchange_n(&ioValue, static_cast<T*>(nullptr), __ATOMIC_SEQ_CST);
}

/// Stores inNew if the target is null. Returns whether inNew was stored.
template <class T>
ORL_ATOMIC_SERVES_MISALIGNED inline bool AtomicSetPtrIfNull(T*& ioTarget, Internal::Plain<T*> inNew)
{
    ORL_ASSERT_ALIGNED_PTR_(ioTarget, 476, "ORL::AtomicSetPtrIfNull");
    T* expected = nullptr;
    return __atomic_compare_exchange_n(&ioTarget, &expected, inNew, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
}

} // namespace ORL
