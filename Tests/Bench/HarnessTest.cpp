// Tests groups of the benchmark harness, whose bodies return chosen figures: no test measures real time.
#include <Harness.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned kRepetitions = 9;

// Returns 0 for the warm-up call, then one figure per repetition; repetitions beyond the list repeat the last.
class Figures
{
public:
    explicit Figures(std::vector<double> inFigures) : mFigures(std::move(inFigures)) {}

    double operator()(std::uint64_t)
    {
        const std::size_t call = mCalls++;
        return call == 0 ? 0 : mFigures[std::min(call, mFigures.size()) - 1];
    }

private:
    std::vector<double> mFigures;
    std::size_t mCalls = 0;
};

struct Table
{
    std::string mText;
    int mExitCode = -1;
};

// Runs a group of one row and one peer, then Finish(), on a separate thread, because a group pins its thread.
Table TableOf(const Bench::Goal& inGoal, const std::vector<double>& inOurs, const std::vector<double>& inPeer)
{
    Table table;
    testing::internal::CaptureStdout();
    std::thread([&] {
        Bench::Detail::TheState() = Bench::Detail::State();
        Bench::Group("invented figures")
            .Operations(1)
            .Repetitions(kRepetitions)
            .Ours("ours", inGoal, Figures(inOurs))
            .Peer("peer", Figures(inPeer))
            .Run();
        table.mExitCode = Bench::Finish();
    }).join();
    table.mText = testing::internal::GetCapturedStdout();
    return table;
}

bool Contains(const Table& inTable, const std::string& inText)
{
    return inTable.mText.find(inText) != std::string::npos;
}

// Returns four figures, of which one differs from the others by inFactor.
std::vector<double> Spread(double inFactor)
{
    return {10, 10, 10 * inFactor, 10};
}

TEST(BenchHarness, GoalThatIsReached_IsMet)
{
    const Table table = TableOf(Bench::AtMost(0.5), {10}, {20});
    EXPECT_TRUE(Contains(table, "0.50 of peer, goal at most 0.50: met\n")) << table.mText;
    EXPECT_TRUE(Contains(table, "\n1 of 1 goals met\n")) << table.mText;
}

TEST(BenchHarness, GoalThatIsNotReached_IsMissed)
{
    const Table table = TableOf(Bench::AtMost(0.5), {11}, {20});
    EXPECT_TRUE(Contains(table, "0.55 of peer, goal at most 0.50: MISSED\n")) << table.mText;
    EXPECT_TRUE(Contains(table, "\n0 of 1 goals met\n")) << table.mText;
}

TEST(BenchHarness, RoundsThatDifferNinetyNinefold_AreMetOrMissedByTheGoal)
{
    EXPECT_TRUE(Contains(TableOf(Bench::AtMost(1.0), Spread(99), {10}), ": met\n"));
    EXPECT_TRUE(Contains(TableOf(Bench::AtMost(0.9), Spread(99), {10}), ": MISSED\n"));
    EXPECT_TRUE(Contains(TableOf(Bench::AtLeast(1.0), Spread(100), {10}), ": met\n"));
    EXPECT_TRUE(Contains(TableOf(Bench::AtLeast(1.1), Spread(1.0 / 99), {10}), ": MISSED\n"));
}

TEST(BenchHarness, RoundsThatDifferMoreThanAHundredfold_AreUnusable)
{
    for (const Bench::Goal& goal : {Bench::AtMost(1.0), Bench::AtMost(0.9), Bench::AtLeast(1.1)}) {
        for (const double factor : {101.0, 1 / 101.0, 1e6}) {
            const Table table = TableOf(goal, Spread(factor), {10});
            EXPECT_TRUE(Contains(table, ": unusable\n")) << table.mText;
            EXPECT_TRUE(Contains(table, "\n0 of 1 goals met, 1 unusable\n")) << table.mText;
        }
    }
}

TEST(BenchHarness, PeerWhoseRoundsDifferMoreThanAHundredfold_MakesTheRowUnusable)
{
    const Table table = TableOf(Bench::AtMost(1.0), {10}, Spread(101));
    EXPECT_TRUE(Contains(table, ": unusable\n")) << table.mText;
    EXPECT_TRUE(Contains(table, "\n0 of 1 goals met, 1 unusable\n")) << table.mText;
}

TEST(BenchHarness, RowWithoutAGoal_IsNotCounted)
{
    const Table table = TableOf(Bench::AtMost(0), Spread(1000), {10});
    EXPECT_FALSE(Contains(table, "unusable")) << table.mText;
    EXPECT_TRUE(Contains(table, "\n0 of 0 goals met\n")) << table.mText;
}

} // namespace
