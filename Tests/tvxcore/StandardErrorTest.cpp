// Tests reports to a standard error that accepts them, is blocked, or is closed.
#include <StandardErrorPipe.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

using ORLTest::LastSystemError;
using ORLTest::NoStandardError;
using ORLTest::SetLastSystemError;
using ORLTest::StandardErrorPipe;

namespace {

void Emit(const std::string& inText)
{
    tvxcore::debug::Trace(reinterpret_cast<const unsigned char*>(inText.c_str()));
}

// If a write blocks forever, the test timeout kills the process.
void EmitMoreThanAPipeHolds()
{
    for (int i = 0; i < 100; ++i) {
        Emit(std::string(10'000, 'x'));
    }
}

class StandardError : public testing::Test
{
protected:
    StandardError()
    {
        tvxcore::debug::ShutdownTraceManager();
        tvxcore::debug::InstallTraceSink(nullptr);
    }
    ~StandardError() override { tvxcore::debug::ShutdownTraceManager(); }
};

} // namespace

TEST_F(StandardError, TextOfSeveralPieces_ComesWhole)
{
    StandardErrorPipe pipe;
    const std::string text(10'000, 'x');
    SetLastSystemError(17);
    Emit(text);
    EXPECT_EQ(17, LastSystemError());
    EXPECT_EQ(text + "\n", pipe.TakeAll());
}

TEST_F(StandardError, PipeThatNobodyReads_DoesNotHoldTheProcessBack)
{
    const StandardErrorPipe pipe;
    SetLastSystemError(17);
    EmitMoreThanAPipeHolds();
    EXPECT_EQ(17, LastSystemError());
}

TEST_F(StandardError, PipeThatIsReadAgain_GetsTextAgain)
{
    StandardErrorPipe pipe;
    EmitMoreThanAPipeHolds();
    EXPECT_NE("", pipe.TakeAll());
    Emit("again");
    EXPECT_EQ("again\n", pipe.TakeAll());
}

TEST_F(StandardError, PipeWhoseReaderIsGone_IsNoError)
{
    StandardErrorPipe pipe;
    pipe.CloseReader();
    SetLastSystemError(17);
    Emit("nobody reads this");
    EXPECT_EQ(17, LastSystemError());
}

TEST_F(StandardError, Closed_IsNoError)
{
    const NoStandardError none;
    SetLastSystemError(17);
    Emit("nobody reads this");
    EXPECT_EQ(17, LastSystemError());
}

TEST_F(StandardError, TextsOfSeveralThreads_AreWholeLines)
{
    constexpr int kTexts = 100;
    for (int round = 0; round < 5; ++round) {
        StandardErrorPipe pipe;
        std::vector<std::thread> threads;
        for (const char letter : {'a', 'b', 'c', 'd'}) {
            threads.emplace_back([letter] {
                for (int text = 0; text < kTexts; ++text) {
                    Emit(std::string(40, letter)); // no line end, so the trace appends one
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        std::istringstream lines(pipe.TakeAll());
        int count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            ASSERT_EQ(std::string(40, line.empty() ? '?' : line[0]), line);
        }
        ASSERT_EQ(4 * kTexts, count);
    }
}
