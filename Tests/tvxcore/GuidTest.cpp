#include <tvxcore/Guid.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <string>
#include <type_traits>

using ORLTest::Show;
using tvxcore::utility::Guid;

namespace {

constexpr Guid kByWords(0x424584A420974874u, 0x998149164AB27293u);
constexpr Guid kByFields(0x20974874, 0x84a4, 0x4245, 0x93, 0x72, 0xb2, 0x4a, 0x16, 0x49, 0x81, 0x99);

static_assert(kByWords == kByFields, "both forms are constants of the same value");
static_assert(Guid() == Guid(0, 0), "the default is zero");
static_assert(std::is_trivially_copyable_v<Guid> && std::is_standard_layout_v<Guid>, "16 bytes and no more");

} // namespace

TEST(Guid, ItsMemory_IsTwoLittleEndianWords)
{
    const unsigned char expected[16] = {0x74, 0x48, 0x97, 0x20, 0xa4, 0x84, 0x45, 0x42,
                                        0x93, 0x72, 0xb2, 0x4a, 0x16, 0x49, 0x81, 0x99};
    EXPECT_EQ(0, std::memcmp(expected, &kByFields, 16));
    EXPECT_EQ(0x424584A420974874u, kByFields.FirstWord());
    EXPECT_EQ(0x998149164AB27293u, kByFields.SecondWord());
}

TEST(Guid, AsString_IsTheRegistryForm)
{
    EXPECT_EQ("{20974874-84a4-4245-9372-b24a16498199}", Show(kByWords.AsString()));
    EXPECT_EQ("{00000000-0000-0000-0000-000000000000}", Show(Guid().AsString()));
    EXPECT_EQ("{ffffffff-ffff-ffff-ffff-ffffffffffff}", Show(Guid(~0ull, ~0ull).AsString()));
}

TEST(Guid, Order_IsByFirstWordThenSecond)
{
    const Guid rising[] = {Guid(0, 0), Guid(0, 1), Guid(0, ~0ull), Guid(1, 0), Guid(~0ull, 0), Guid(~0ull, ~0ull)};
    for (const Guid& left : rising) {
        for (const Guid& right : rising) {
            EXPECT_EQ(&left < &right, left < right);
            EXPECT_EQ(&left == &right, left == right);
            EXPECT_EQ(&left != &right, left != right);
        }
    }
}

TEST(Guid, CreateUnique_NeverRepeats)
{
    std::set<Guid> seen;
    for (int i = 0; i < 20000; ++i) {
        EXPECT_TRUE(seen.insert(Guid::CreateUnique()).second);
    }
}

TEST(Guid, CreateUnique_MarksVersionAndVariant_AndVariesEveryOtherBit)
{
    std::uint64_t everSet[2] = {0, 0};
    std::uint64_t everClear[2] = {0, 0};
    for (int i = 0; i < 1000; ++i) {
        const Guid guid = Guid::CreateUnique();
        everSet[0] |= guid.FirstWord();
        everSet[1] |= guid.SecondWord();
        everClear[0] |= ~guid.FirstWord();
        everClear[1] |= ~guid.SecondWord();
    }
    EXPECT_EQ(0x4FFFFFFFFFFFFFFFu, everSet[0]);
    EXPECT_EQ(0xBFFFFFFFFFFFFFFFu, everClear[0]);
    EXPECT_EQ(~std::uint64_t{0x40}, everSet[1]);
    EXPECT_EQ(~std::uint64_t{0x80}, everClear[1]);
}
