// Tests the machine code of AtomicRead and AtomicReadPtr, which by contract is a compare-exchange of 17 with 17. Tests
// of behaviour can show that a read writes, but not which number it compares with.
#include <ORLAtomic.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

using namespace ORL;

// A separate section, so that no other function follows within the examined bytes.
#define ORL_ALONE(name) __attribute__((noinline, used, section(name)))

namespace {

ORL_ALONE("orlread") std::int32_t ReadNumber(std::int32_t& ioNumber)
{
    return AtomicRead(ioNumber);
}

ORL_ALONE("orlptr") void* ReadPointer(void*& ioPointer)
{
    return AtomicReadPtr(ioPointer);
}

// Looks for "mov $17, %eax" followed by the locked compare-exchange, which compares with that register. The 64-bit form
// has a prefix from 0x48 to 0x4F between these two bytes.
template <class Function>
bool ComparesWithSeventeen(Function inFunction, bool inIs64Bit)
{
    constexpr std::size_t kLooked = 96;
    const unsigned char* const code = reinterpret_cast<const unsigned char*>(inFunction);
    const unsigned char* const end = code + kLooked;
    const unsigned char seventeen[] = {0xB8, 17, 0, 0, 0};
    const unsigned char* at = std::search(code, end, std::begin(seventeen), std::end(seventeen));
    for (; at + 4 < end; ++at) {
        const bool hasWidth = !inIs64Bit || (at[1] & 0xF8) == 0x48;
        const unsigned char* const operation = inIs64Bit ? at + 2 : at + 1;
        if (at[0] == 0xF0 && hasWidth && operation[0] == 0x0F && operation[1] == 0xB1) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(AtomicForm, BothReads_AreLockedCompareAndSetsOfSeventeen)
{
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__) || defined(__clang__)
    GTEST_SKIP() << "the compiler calls a function of the sanitizer's, or loads the number in another way";
#endif
    EXPECT_TRUE(ComparesWithSeventeen(&ReadNumber, false));
    EXPECT_TRUE(ComparesWithSeventeen(&ReadPointer, true));
    std::int32_t number = 17;
    void* pointer = &number;
    EXPECT_EQ(17, ReadNumber(number));
    EXPECT_EQ(&number, ReadPointer(pointer));
}
