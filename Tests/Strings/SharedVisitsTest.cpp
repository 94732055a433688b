#include <SharedVisits.h>

#include <Stress.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

using ORL::SharedVisits;

TEST(SharedVisits, WhileAWriterWorks_NobodyIsLetIn)
{
    SharedVisits visits;
    {
        const SharedVisits::ShutOut shutOut(visits);
        EXPECT_FALSE(SharedVisits::Visit(visits).IsIn());
    }
    EXPECT_TRUE(SharedVisits::Visit(visits).IsIn());
}

TEST(SharedVisits, WriterThatMustNotWait_IsShutOnlyWhereNobodyVisits)
{
    SharedVisits visits;
    {
        const SharedVisits::Visit visit(visits);
        EXPECT_FALSE(SharedVisits::TryShutOut(visits).IsShut());
        EXPECT_TRUE(SharedVisits::Visit(visits).IsIn()) << "a try that failed has left it open";
    }
    {
        const SharedVisits::TryShutOut shutOut(visits);
        EXPECT_TRUE(shutOut.IsShut());
        EXPECT_FALSE(SharedVisits::Visit(visits).IsIn());
    }
    EXPECT_TRUE(SharedVisits::Visit(visits).IsIn());
}

TEST(SharedVisits, OneVisitInsideAnother_BothAreIn)
{
    SharedVisits visits;
    const SharedVisits::Visit outer(visits);
    const SharedVisits::Visit inner(visits);
    EXPECT_TRUE(outer.IsIn());
    EXPECT_TRUE(inner.IsIn());
}

TEST(SharedVisits, NoPlaceLeft_IsNotInAndDoesNotWait)
{
    SharedVisits visits;
    std::vector<std::unique_ptr<SharedVisits::Visit>> held;
    do {
        ASSERT_LT(held.size(), 65u) << "there are no more places than that";
        held.push_back(std::make_unique<SharedVisits::Visit>(visits));
    } while (held.back()->IsIn());
    held.clear();
    EXPECT_TRUE(SharedVisits::Visit(visits).IsIn()) << "the places are free again";
}

// The numbers are not atomic: a visitor concurrent with the writer is a data race and sees unequal numbers.
TEST(SharedVisits, VisitorsBesideAWriter_NeverSeeHalfOfAChange)
{
    SharedVisits visits;
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
                    const SharedVisits::Visit visit(visits);
                    if (visit.IsIn()) {
                        unequal += first != second;
                        ++looks;
                    }
                }
                std::this_thread::yield(); // not inside the visit: a preempted visitor stalls the writer
            }
        });
    }
    const int changes = ORLTest::Rounds(200);
    for (int i = 0; i < changes || looks == 0; ++i) {
        const SharedVisits::ShutOut shutOut(visits);
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
