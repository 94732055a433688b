#include <ORLObjectPtr.h>

#include <AllocationFaults.h>
#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::ExpectReport;

namespace {

struct Base
{
    virtual ~Base() = default;
};

/// Counts the living objects and records what each destructor sees.
struct Object : Base
{
    explicit Object(int inNumber = 0) : mNumber(inNumber) { ++sLiving; }
    ~Object() override { --sLiving; }

    int mNumber;
    static int sLiving;
};

int Object::sLiving = 0;

/// The two members of ObjectPtr, in the layout that hosts rely on.
struct Members
{
    AtomicValue* mCounter;
    void* mPtr;
};

template <class T>
Members MembersOf(const ObjectPtr<T>& inPtr)
{
    static_assert(sizeof(Members) == sizeof(inPtr));
    Members members;
    std::memcpy(&members, static_cast<const void*>(&inPtr), sizeof(members));
    return members;
}

template <class T>
int CountOf(const ObjectPtr<T>& inPtr)
{
    const Members members = MembersOf(inPtr);
    return members.mCounter != nullptr ? *members.mCounter : 0;
}

} // namespace

TEST(ObjectPtr, DefaultAndMadeFromNull_HaveNoCounter)
{
    const ObjectPtr<Object> empty;
    const ObjectPtr<Object> fromNull(nullptr);
    for (const ObjectPtr<Object>* each : {&empty, &fromNull}) {
        EXPECT_EQ(nullptr, MembersOf(*each).mCounter);
        EXPECT_EQ(nullptr, MembersOf(*each).mPtr);
        EXPECT_FALSE(*each);
        EXPECT_EQ(nullptr, each->GetPtr());
    }
}

TEST(ObjectPtr, CopyingAndDestroyingAnEmptyOne_DoesNothing)
{
    CheckRecorder recorder;
    {
        ObjectPtr<Object> empty(nullptr);
        ObjectPtr<Object> copy(empty);
        copy = empty;
        empty = ObjectPtr<Object>();
        EXPECT_FALSE(copy);
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(ObjectPtr, MadeFromAnObject_CountsOneOwner)
{
    Object* const object = new Object(7);
    const ObjectPtr<Object> pointer(object);
    EXPECT_EQ(object, MembersOf(pointer).mPtr);
    EXPECT_EQ(1, CountOf(pointer));
    EXPECT_EQ(7, pointer->mNumber);
    EXPECT_EQ(7, (*pointer).mNumber);
    EXPECT_EQ(object, pointer.GetPtr());
    EXPECT_TRUE(pointer);
}

TEST(ObjectPtr, Copies_ShareOneCounterAndTheLastDeletesOnce)
{
    {
        const ObjectPtr<Object> first(new Object);
        {
            const ObjectPtr<Object> second(first);
            const ObjectPtr<Object> third = second;
            EXPECT_EQ(3, CountOf(first));
            EXPECT_EQ(MembersOf(first).mCounter, MembersOf(third).mCounter);
        }
        EXPECT_EQ(1, CountOf(first));
        EXPECT_EQ(1, Object::sLiving);
    }
    EXPECT_EQ(0, Object::sLiving);
}

TEST(ObjectPtr, Assigned_CountsTheNewAndReleasesTheOld)
{
    ObjectPtr<Object> target(new Object(1));
    const ObjectPtr<Object> source(new Object(2));
    target = source;
    EXPECT_EQ(1, Object::sLiving);
    EXPECT_EQ(2, CountOf(source));
    EXPECT_EQ(2, target->mNumber);
    target = ObjectPtr<Object>();
    EXPECT_EQ(1, CountOf(source));
    EXPECT_FALSE(target);
}

TEST(ObjectPtr, AssignedToItself_StaysAsItWas)
{
    ObjectPtr<Object> pointer(new Object(3));
    const ObjectPtr<Object>& same = pointer;
    pointer = same;
    EXPECT_EQ(1, CountOf(pointer));
    EXPECT_EQ(3, pointer->mNumber);
}

TEST(ObjectPtr, AssignedWhatItsOwnObjectHolds_KeepsThatAlive)
{
    struct Node
    {
        ObjectPtr<Node> mNext;
        int mNumber = 0;
    };
    ObjectPtr<Node> list(new Node);
    list->mNext = ObjectPtr<Node>(new Node);
    list->mNext->mNumber = 5;
    list = list->mNext;
    EXPECT_EQ(5, list->mNumber);
    EXPECT_EQ(1, CountOf(list));
}

TEST(ObjectPtr, Moved_HandsItsShareOnAndIsEmpty)
{
    ObjectPtr<Object> first(new Object(4));
    ObjectPtr<Object> second(std::move(first));
    EXPECT_EQ(1, CountOf(second));
    EXPECT_EQ(0, CountOf(first));
    EXPECT_FALSE(first);
    ObjectPtr<Object> third(new Object(5));
    third = std::move(second);
    EXPECT_EQ(4, third->mNumber);
    EXPECT_EQ(1, Object::sLiving);
    EXPECT_FALSE(second);
}

TEST(ObjectPtr, OfABaseWithAVirtualDestructor_DeletesTheDerivedObject)
{
    {
        const ObjectPtr<Base> pointer(new Object);
        EXPECT_EQ(1, Object::sLiving);
    }
    EXPECT_EQ(0, Object::sLiving);
}

TEST(ObjectPtr, LastOwner_DestroysTheObjectWhileTheCounterStillStands)
{
    struct Watcher
    {
        Watcher(int& outCount, bool& outIsGivenBack) : mCount(outCount), mIsGivenBack(outIsGivenBack) {}
        ~Watcher()
        {
            mCount = *mCounter;
            // The allocator reuses the most recently freed block first.
            void* const block = Allocator::Allocate(sizeof(AtomicValue));
            mIsGivenBack = block == mCounter;
            Allocator::Dispose(block, sizeof(AtomicValue));
        }
        int& mCount;
        bool& mIsGivenBack;
        const AtomicValue* mCounter = nullptr;
    };
    int count = -1;
    bool isGivenBack = true;
    {
        const ObjectPtr<Watcher> pointer(new Watcher(count, isGivenBack));
        pointer->mCounter = MembersOf(pointer).mCounter;
    }
    EXPECT_EQ(0, count);
    EXPECT_FALSE(isGivenBack) << "the object goes first, the counter second";
}

TEST(ObjectPtr, Counter_IsABlockOfFourBytesOfItsOwn)
{
    using Metrics = tvxcore::utility::SmallBlockAllocator::Metrics;
    Metrics::Snapshot before{}, between{}, after{};
    Object* const object = new Object;
    ASSERT_TRUE(Metrics::GetSnapshot(before));
    {
        const ObjectPtr<Object> pointer(object);
        Metrics::GetSnapshot(between);
    }
    Metrics::GetSnapshot(after);
    EXPECT_EQ(before.mSmallBlockCountCurrent + 1, between.mSmallBlockCountCurrent);
    EXPECT_EQ(before.mSmallBlockBytesCurrent + 4, between.mSmallBlockBytesCurrent);
    EXPECT_EQ(before.mSmallBlockCountCurrent, after.mSmallBlockCountCurrent);
    EXPECT_EQ(before.mSmallBlockBytesCurrent, after.mSmallBlockBytesCurrent);
    EXPECT_EQ(0, Object::sLiving);
}

TEST(ObjectPtr, NoMemoryForTheCounter_DeletesTheObjectAndThrowsBadAlloc)
{
    tvxcore::utility::AllocationFaults::Plan plan;
    plan.mOfThisThreadOnly = true;
    Object* const object = new Object;
    const tvxcore::utility::AllocationFaults::Scope faults(plan);
    try {
        const ObjectPtr<Object> pointer(object);
        ADD_FAILURE() << "made without a counter";
    } catch (const std::bad_alloc& exception) {
        EXPECT_STREQ("bad allocation", exception.what());
    }
    EXPECT_EQ(1u, faults.Refused());
    EXPECT_EQ(0, Object::sLiving);
    EXPECT_NO_THROW(ObjectPtr<Object>(new Object));
    EXPECT_EQ(0, Object::sLiving);
}

TEST(ObjectPtr, CountBelowOne_IsReportedAndTheObjectIsLeftAlone)
{
    CheckRecorder recorder;
    Object* const object = new Object;
    AtomicValue* counter = nullptr;
    {
        const ObjectPtr<Object> pointer(object);
        counter = MembersOf(pointer).mCounter;
        *counter = 0; // simulates a missing AddRef by a second owner
    }
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Expression("*mCounter > CounterType(0)");
    EXPECT_EQ(-1, *counter);
    EXPECT_EQ(1, Object::sLiving);
    delete object;
    Allocator::Dispose(counter, sizeof(*counter));
}

TEST(ObjectPtr, CopiedAndDestroyedOnManyThreads_DeletesOnceAndLosesNoCount)
{
    std::vector<std::thread> threads;
    {
        const ObjectPtr<Object> shared(new Object(6));
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([own = shared] {
                int sum = 0;
                for (int round = 0; round < 10000; ++round) {
                    const ObjectPtr<Object> copy(own);
                    sum += copy->mNumber;
                }
                EXPECT_EQ(60000, sum);
            });
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, Object::sLiving);
}

TEST(ObjectPtr, OwnershipFromARawPointer_IsNeverTakenByAccident)
{
    EXPECT_FALSE((std::is_convertible_v<Object*, ObjectPtr<Object>>));
    EXPECT_TRUE((std::is_constructible_v<ObjectPtr<Object>, Object*>));
    EXPECT_TRUE((std::is_nothrow_move_constructible_v<ObjectPtr<Object>>));
}
