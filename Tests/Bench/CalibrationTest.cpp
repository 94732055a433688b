// Tests Calibration with simulated times, so every run is the same.
#include <Calibration.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

namespace {

using Bench::Detail::Calibration;

constexpr double kWished = 20e6;
constexpr double kOperation = 100; // ns
constexpr std::uint64_t kCount = 200000;
constexpr double kTimeSlice = 4e6;

// A simulated machine on which one operation takes kOperation; inDelay returns the delay of a trial.
class Machine
{
public:
    explicit Machine(std::function<double(unsigned inTrial)> inDelay) : mDelay(std::move(inDelay)) {}

    Calibration::Trial Trial()
    {
        return [this](std::uint64_t inOperations) {
            mLongest = std::max(mLongest, inOperations);
            return kOperation * static_cast<double>(inOperations) + mDelay(++mTrials);
        };
    }

    std::uint64_t Longest() const { return mLongest; }
    unsigned Trials() const { return mTrials; }

private:
    std::function<double(unsigned)> mDelay;
    unsigned mTrials = 0;
    std::uint64_t mLongest = 0;
};

double Never(unsigned)
{
    return 0;
}

double Always(unsigned)
{
    return kTimeSlice;
}

void ExpectNear(std::uint64_t inCount, std::uint64_t inExpected)
{
    EXPECT_GE(inCount, inExpected - inExpected / 100);
    EXPECT_LE(inCount, inExpected + inExpected / 100);
}

TEST(Calibration, Undisturbed_IsNotRepeated)
{
    Machine machine(Never);
    Calibration calibration(machine.Trial(), kWished, 1);
    ExpectNear(calibration.Run(), kCount);
    EXPECT_EQ(calibration.Attempts(), 1u);
}

TEST(Calibration, MostTrialsDelayed_UsesTheFastest)
{
    // Two of every three trials are delayed by a time slice.
    Machine machine([](unsigned inTrial) { return inTrial % 3 == 0 ? 0.0 : kTimeSlice; });
    Calibration calibration(machine.Trial(), kWished, 1);
    const std::uint64_t count = calibration.Run();
    EXPECT_GE(count, kCount / 2);
    EXPECT_LE(count, kCount * 2);
}

TEST(Calibration, EachTrialDelayedByATimeSlice_IsRepeatedUntilTheOperationsTakeMostOfTheTime)
{
    Machine machine(Always);
    Calibration calibration(machine.Trial(), kWished, 1);
    const std::uint64_t count = calibration.Run();
    EXPECT_GT(calibration.Attempts(), 1u);
    EXPECT_LT(calibration.Attempts(), Calibration::kMaxAttempts);
    EXPECT_GE(kOperation * static_cast<double>(count), kTimeSlice);
}

TEST(Calibration, FirstTrialsDelayed_IsRepeatedAndForgetsTheDelay)
{
    Machine machine([](unsigned inTrial) { return inTrial <= 6 ? kTimeSlice : 0; });
    Calibration calibration(machine.Trial(), kWished, 1);
    ExpectNear(calibration.Run(), kCount);
    EXPECT_EQ(calibration.Attempts(), 2u);
}

TEST(Calibration, OneTrialFarFasterThanTheOthers_IsRepeated)
{
    // Five of the first six trials that are long enough to measure are delayed, all but the third; no other trial is.
    unsigned longTrials = 0;
    const auto trial = [&](std::uint64_t inOperations) {
        const double time = kOperation * static_cast<double>(inOperations);
        const bool isLong = time >= kWished / 8;
        longTrials += isLong ? 1 : 0;
        return isLong && longTrials <= 6 && longTrials != 3 ? time * 2.5 : time;
    };
    Calibration calibration(trial, kWished, 1);
    ExpectNear(calibration.Run(), kCount);
    EXPECT_EQ(calibration.Attempts(), 2u);
}

TEST(Calibration, TimeThatNeverFits_EndsAfterTheLastAttemptWithTheLargestCount)
{
    Machine machine([](unsigned inTrial) { return inTrial % 2 == 0 ? kWished * 50 : kWished * 500; });
    Calibration calibration(machine.Trial(), kWished, 1000);
    EXPECT_EQ(calibration.Run() % 1000, 0u);

    // Only the first attempt finds a large count; later ones are delayed more and more.
    double delay = 0;
    std::uint64_t largest = 0;
    const auto trial = [&](std::uint64_t inOperations) {
        largest = std::max(largest, inOperations);
        delay = inOperations > 1000 || delay > 0 ? delay + kWished * 3 : 0;
        return inOperations < 30 ? 1e3 * static_cast<double>(inOperations) : 3e6 + delay;
    };
    Calibration delayed(trial, kWished, 1);
    const std::uint64_t count = delayed.Run();
    EXPECT_EQ(delayed.Attempts(), Calibration::kMaxAttempts);
    EXPECT_EQ(count, largest);
}

TEST(Calibration, SingleStepLongerThanTheWishedTime_IsNotRepeated)
{
    const auto trial = [](std::uint64_t inOperations) { return 1e9 * static_cast<double>(inOperations); };
    Calibration calibration(trial, kWished, 1);
    EXPECT_EQ(calibration.Run(), 1u);
    EXPECT_EQ(calibration.Attempts(), 1u);
}

TEST(Calibration, Count_IsAMultipleOfTheStep)
{
    Machine machine(Never);
    Calibration calibration(machine.Trial(), kWished, 1024);
    const std::uint64_t count = calibration.Run();
    EXPECT_EQ(count, 195u * 1024u);
    EXPECT_EQ(calibration.Attempts(), 1u);
}

} // namespace
