// Compares a key's values in memory with a plain map.
#include <Linux/Settings/LinuxRegistryValueTable.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>

using namespace ORL::Registry::Linux;

namespace {

Units NameOf(const std::string& inText)
{
    return Units(inText.begin(), inText.end());
}

StoredValue::Ptr Value(const Units& inFolded, const Units& inName, unsigned inType, const std::string& inBytes)
{
    return StoredValue::Make(inFolded, inName, {inType, inBytes.data(), inBytes.size()});
}

std::string BytesOf(const StoredValue& inValue)
{
    return std::string(reinterpret_cast<const char*>(inValue.Bytes()), inValue.Size());
}

} // namespace

TEST(RegistryValueTable, EmptyTable_FindsNothing)
{
    ValueTable table;
    EXPECT_EQ(nullptr, table.Find(0, UnitsView()));
    table.Erase(0, UnitsView());
    table.SetStale(0);
    table.Clear();
    EXPECT_TRUE(table.List().empty());
}

// Stores data of each size from 0 to 19 between two strings.
TEST(RegistryValueTable, Value_KeepsItsParts)
{
    for (std::size_t size = 0; size < 20; ++size) {
        for (const std::string& name : {std::string(), std::string("a"), std::string(300, 'n')}) {
            const std::string bytes(size, 'd');
            const Units folded = NameOf(name + "F");
            const StoredValue::Ptr value = Value(folded, NameOf(name), 7, bytes);
            EXPECT_EQ(7u, value->Type());
            EXPECT_EQ(bytes, BytesOf(*value));
            EXPECT_EQ(UnitsView(folded), value->Folded());
            EXPECT_EQ(NameOf(name), value->Name());
            EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(value->Name().data()) % alignof(unsigned short));
            EXPECT_FALSE(value->IsStale());
        }
    }
}

TEST(RegistryValueTable, Assign_TakesDataOfTheSameSizeOnly)
{
    const StoredValue::Ptr value = Value(NameOf("A"), NameOf("a"), 1, "four");
    EXPECT_FALSE(value->Assign({2, "five5", 5}));
    EXPECT_FALSE(value->Assign({2, "", 0}));
    EXPECT_EQ("four", BytesOf(*value));
    EXPECT_EQ(1u, value->Type());
    EXPECT_TRUE(value->Assign({2, "FOUR", 4}));
    EXPECT_EQ("FOUR", BytesOf(*value));
    EXPECT_EQ(2u, value->Type());
    EXPECT_EQ(NameOf("A"), value->Folded());
    EXPECT_EQ(NameOf("a"), value->Name());
}

TEST(RegistryValueTable, NamesOfOneHash_AreValuesOfTheirOwn)
{
    ValueTable table;
    for (const char* const name : {"A", "B", "C"}) {
        table.Put(5, Value(NameOf(name), NameOf(name), 1, name));
    }
    table.Put(6, Value(NameOf("D"), NameOf("D"), 1, "D"));
    table.SetStale(5);
    EXPECT_TRUE(table.Find(5, NameOf("C"))->IsStale());
    EXPECT_FALSE(table.Find(6, NameOf("D"))->IsStale());
    table.Put(5, Value(NameOf("B"), NameOf("B"), 1, "new"));
    EXPECT_FALSE(table.Find(5, NameOf("B"))->IsStale());
    EXPECT_TRUE(table.Find(5, NameOf("A"))->IsStale());
    table.Erase(5, NameOf("A"));
    EXPECT_EQ(nullptr, table.Find(5, NameOf("A")));
    EXPECT_EQ("new", BytesOf(*table.Find(5, NameOf("B"))));
    EXPECT_EQ("C", BytesOf(*table.Find(5, NameOf("C"))));
    EXPECT_EQ("D", BytesOf(*table.Find(6, NameOf("D"))));
    EXPECT_EQ(3u, table.List().size());
}

// Few distinct hashes, some of them at the end of the index, so that values are displaced and wrap around.
TEST(RegistryValueTable, RandomOperations_AgreeWithAMap)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        std::mt19937 generator(seed);
        const auto random = [&] { return static_cast<unsigned>(generator()); };
        ValueTable table;
        std::map<std::string, std::pair<std::string, bool>> model; // the bytes, and whether they are stale
        const unsigned names = 1 + random() % 40;
        const unsigned spread = 1 + random() % 9;
        const auto hash = [&](const std::string& inName) {
            return std::stoull(inName) % spread - (seed % 2 == 0 ? 4 : 0);
        };
        for (unsigned step = 0; step < 2000; ++step) {
            const std::string name = std::to_string(random() % names);
            const std::string bytes(random() % 5, static_cast<char>('a' + random() % 26));
            const unsigned action = random() % 8;
            if (action < 4) {
                table.Put(hash(name), Value(NameOf(name), NameOf(name), 3, bytes));
                model[name] = {bytes, false};
            } else if (action < 7) {
                table.Erase(hash(name), NameOf(name));
                model.erase(name);
            } else {
                table.SetStale(hash(name));
                for (auto& entry : model) {
                    entry.second.second = entry.second.second || hash(entry.first) == hash(name);
                }
            }
            ASSERT_EQ(model.size(), table.List().size()) << "seed " << seed << ", step " << step;
            for (unsigned i = 0; i < names; ++i) {
                const std::string asked = std::to_string(i);
                const StoredValue* const found = table.Find(hash(asked), NameOf(asked));
                const auto expected = model.find(asked);
                ASSERT_EQ(expected != model.end(), found != nullptr) << "seed " << seed << ", step " << step;
                if (found != nullptr) {
                    ASSERT_EQ(expected->second.first, BytesOf(*found));
                    ASSERT_EQ(expected->second.second, found->IsStale());
                }
            }
        }
    }
}

// Tests names on both sides of the length up to which they are folded in place.
TEST(RegistryValueTable, FoldedName_IsThatOfTheStore)
{
    for (const std::size_t length : {0u, 1u, 63u, 64u, 65u, 255u, 16383u}) {
        Units name(length, 'q');
        if (length > 1) {
            name.back() = 0xE9; // e with an acute accent
        }
        Units folded;
        FoldName(name, folded);
        const FoldedName quick{UnitsView(name)};
        EXPECT_EQ(UnitsView(folded), quick.Text());
        EXPECT_EQ(HashName(folded), quick.Hash());
    }
}
