#include <ORLImpl.h>
#include <ORLManaged.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

using namespace ORL;

namespace {

class Item : public Managed
{
public:
    ~Item() override = default;
    int mDestroyed = 0;

private:
    void Destroy() override { ++mDestroyed; }
};

class Keeper : public Manager
{
public:
    void Keep(Managed& inItem) { AddRef(&inItem); }
    void Drop(Managed& inItem) { Release(&inItem); }
};

AtomicValue CountOf(const Managed& inItem)
{
    AtomicValue count;
    std::memcpy(&count, reinterpret_cast<const char*>(&inItem) + sizeof(void*), sizeof(count));
    return count;
}

} // namespace

TEST(Managed, NewObject_HasNoOwner)
{
    const Item item;
    EXPECT_EQ(0, CountOf(item));
}

TEST(Managed, LastReleaseThroughAManager_CallsDestroyAndDeletesNothing)
{
    Item item; // the object is on the stack, so a delete would crash
    Keeper keeper;
    keeper.Keep(item);
    keeper.Keep(item);
    EXPECT_EQ(2, CountOf(item));
    keeper.Drop(item);
    EXPECT_EQ(0, item.mDestroyed);
    keeper.Drop(item);
    EXPECT_EQ(1, item.mDestroyed);
    EXPECT_EQ(0, CountOf(item));
}

TEST(Managed, KeptAgainAfterDestroy_IsDestroyedAgain)
{
    Item item;
    Keeper keeper;
    for (int round = 1; round <= 2; ++round) {
        keeper.Keep(item);
        keeper.Drop(item);
        EXPECT_EQ(round, item.mDestroyed);
    }
}

// Only a Release that reaches 0 destroys the object; going below 0, or back up to 0 by AddRef, does not.
TEST(Managed, ReleasedTooOften_IsNotDestroyedAgain)
{
    Item item;
    Keeper keeper;
    keeper.Keep(item);
    keeper.Drop(item);
    EXPECT_EQ(1, item.mDestroyed);
    keeper.Drop(item);
    keeper.Drop(item);
    EXPECT_EQ(-2, CountOf(item));
    EXPECT_EQ(1, item.mDestroyed);
    keeper.Keep(item);
    keeper.Keep(item);
    EXPECT_EQ(0, CountOf(item));
    EXPECT_EQ(1, item.mDestroyed);
    keeper.Keep(item);
    keeper.Drop(item);
    EXPECT_EQ(2, item.mDestroyed) << "whose count reaches 0 once more";
}

TEST(Managed, NeverKept_IsNotDestroyedByARelease)
{
    Item item;
    Keeper().Drop(item);
    EXPECT_EQ(0, item.mDestroyed);
    EXPECT_EQ(-1, CountOf(item));
}

TEST(Managed, KeptAndDroppedOnManyThreads_IsDestroyedOnce)
{
    Item item;
    Keeper keeper;
    keeper.Keep(item);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10000; ++round) {
                keeper.Keep(item);
                keeper.Drop(item);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, item.mDestroyed);
    keeper.Drop(item);
    EXPECT_EQ(1, item.mDestroyed);
}

TEST(Impl, DeletedThroughItsBase_RunsTheDerivedDestructor)
{
    static bool sGone = false;
    struct PrivateImpl : Impl
    {
        ~PrivateImpl() override { sGone = true; }
    };
    std::unique_ptr<Impl> record(new PrivateImpl);
    record.reset();
    EXPECT_TRUE(sGone);
    EXPECT_EQ(sizeof(void*), sizeof(Impl)) << "a table of virtual functions and nothing else";
}
