#include <Strings/ReaderSlots.h>

#include <Stress.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

using ORL::ReaderSlots;

TEST(SharedVisits, WhileAWriterWorks_NobodyIsLetIn)
{
    ReaderSlots slots;
    {
        const ReaderSlots::WriterAccess writer(slots);
        EXPECT_FALSE(ReaderSlots::ReaderAccess(slots).IsGranted());
    }
    EXPECT_TRUE(ReaderSlots::ReaderAccess(slots).IsGranted());
}

TEST(SharedVisits, WriterThatMustNotWait_IsShutOnlyWhereNobodyVisits)
{
    ReaderSlots slots;
    {
        const ReaderSlots::ReaderAccess access(slots);
        EXPECT_FALSE(ReaderSlots::TryWriterAccess(slots).IsGranted());
        EXPECT_TRUE(ReaderSlots::ReaderAccess(slots).IsGranted()) << "a try that failed has left it open";
    }
    {
        const ReaderSlots::TryWriterAccess writer(slots);
        EXPECT_TRUE(writer.IsGranted());
        EXPECT_FALSE(ReaderSlots::ReaderAccess(slots).IsGranted());
    }
    EXPECT_TRUE(ReaderSlots::ReaderAccess(slots).IsGranted());
}

TEST(SharedVisits, OneVisitInsideAnother_BothAreIn)
{
    ReaderSlots slots;
    const ReaderSlots::ReaderAccess outer(slots);
    const ReaderSlots::ReaderAccess inner(slots);
    EXPECT_TRUE(outer.IsGranted());
    EXPECT_TRUE(inner.IsGranted());
}

TEST(SharedVisits, NoPlaceLeft_IsNotInAndDoesNotWait)
{
    ReaderSlots slots;
    std::vector<std::unique_ptr<ReaderSlots::ReaderAccess>> held;
    do {
        ASSERT_LT(held.size(), 65u) << "there are no more places than that";
        held.push_back(std::make_unique<ReaderSlots::ReaderAccess>(slots));
    } while (held.back()->IsGranted());
    held.clear();
    EXPECT_TRUE(ReaderSlots::ReaderAccess(slots).IsGranted()) << "the places are free again";
}

// The numbers are not atomic: a reader concurrent with the writer is a data race and reads unequal numbers.
TEST(SharedVisits, VisitorsBesideAWriter_NeverSeeHalfOfAChange)
{
    ReaderSlots slots;
    int first = 0;
    int second = 0;
    std::atomic<bool> isOver{false};
    std::atomic<int> unequal{0};
    std::atomic<int> looks{0};
    std::vector<std::thread> visitors;
    for (int i = 0; i < 4; ++i) {
        visitors.emplace_back([&] {
            while (!isOver) {
                {
                    const ReaderSlots::ReaderAccess access(slots);
                    if (access.IsGranted()) {
                        unequal += first != second;
                        ++looks;
                    }
                }
                std::this_thread::yield(); // outside the slot: a reader preempted inside would stall the writer
            }
        });
    }
    const int changes = ORLTest::Rounds(200);
    for (int i = 0; i < changes || looks == 0; ++i) {
        const ReaderSlots::WriterAccess writer(slots);
        ++first;
        std::this_thread::yield();
        ++second;
    }
    isOver = true;
    for (std::thread& visitor : visitors) {
        visitor.join();
    }
    EXPECT_EQ(0, unequal.load());
    EXPECT_EQ(first, second);
}
