// Tests StaleNames, which tracks the values of a key that other processes have changed.
#include <Linux/Settings/LinuxRegistryStaleNames.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>

using namespace ORL::Registry::Linux;

namespace {

Units NameOf(const char16_t* inText)
{
    const std::u16string text(inText);
    return Units(text.begin(), text.end());
}

constexpr std::uint64_t kHash = 77;
constexpr std::uint64_t kOtherHash = 78;

} // namespace

TEST(RegistryStaleNames, ChangedHash_MakesItsNamesStaleUntilTheyAreLoaded)
{
    StaleNames names;
    EXPECT_TRUE(names.IsEmpty());
    EXPECT_FALSE(names.Contains(kHash, NameOf(u"A")));
    names.Add(kHash);
    EXPECT_FALSE(names.IsEmpty());
    EXPECT_TRUE(names.Contains(kHash, NameOf(u"A")));
    EXPECT_FALSE(names.Contains(kOtherHash, NameOf(u"A")));
    names.Remove(kHash, NameOf(u"A"));
    EXPECT_FALSE(names.Contains(kHash, NameOf(u"A")));
    names.Add(kHash);
    EXPECT_TRUE(names.Contains(kHash, NameOf(u"A"))) << "a second change";
}

// The hash does not identify which of the two values was changed, so both values are loaded.
TEST(RegistryStaleNames, TwoNamesOfOneHash_AreLoadedEach)
{
    StaleNames names;
    names.Add(kHash);
    names.Remove(kHash, NameOf(u"A"));
    EXPECT_TRUE(names.Contains(kHash, NameOf(u"B")));
    names.Remove(kHash, NameOf(u"B"));
    names.Remove(kHash, NameOf(u"B"));
    EXPECT_FALSE(names.Contains(kHash, NameOf(u"A")));
    EXPECT_FALSE(names.Contains(kHash, NameOf(u"B")));
    names.Add(kHash);
    EXPECT_TRUE(names.Contains(kHash, NameOf(u"A")));
    EXPECT_TRUE(names.Contains(kHash, NameOf(u"B")));
}

TEST(RegistryStaleNames, MoreHashesThanTheLimit_AreToldAndForgotten)
{
    StaleNames names;
    for (std::uint64_t hash = 0; hash < StaleNames::kMaxHashes; ++hash) {
        EXPECT_FALSE(names.IsFull());
        names.Add(hash);
    }
    EXPECT_TRUE(names.IsFull());
    names.Clear();
    EXPECT_TRUE(names.IsEmpty());
    EXPECT_FALSE(names.IsFull());
}
