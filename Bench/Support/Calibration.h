// Chooses how many operations one round runs, so that the round takes about the wished time.
//
// Another process can only lengthen a trial. If it delays every trial by a time slice, a few operations seem to last
// as long as the wished round, and the count becomes far too small. So a calibration ends with a check, and is
// disturbed if
//   - its fastest trial is less than half as long as the second fastest: most trials were delayed, or
//   - a round of the chosen count takes less than half the wished time, or more than twice: the time is not in
//     proportion to the count, so it does not consist of the operations.
// A disturbed calibration is repeated, starting from the count that it chose.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

namespace Bench::Detail {

class Calibration
{
public:
    /// Runs a number of operations once and returns the wall time in nanoseconds.
    using Trial = std::function<double(std::uint64_t inOperations)>;

    static constexpr unsigned kMaxAttempts = 12;

    /// The count will be a multiple of inStep and a round of it will take about inWished nanoseconds.
    Calibration(Trial inTrial, double inWished, std::uint64_t inStep)
        : mTrial(std::move(inTrial)), mWished(inWished), mStep(inStep), mCount(inStep)
    {
    }

    /// Returns the operations of one round. The trials also warm up the caches.
    std::uint64_t Run()
    {
        std::uint64_t largest = 0;
        for (mAttempts = 1;; ++mAttempts) {
            const bool undisturbed = Attempt();
            if (undisturbed) {
                return mCount;
            }
            largest = std::max(largest, mCount);
            if (mAttempts == kMaxAttempts) {
                return largest; // a delay makes counts too small, so the largest is the least delayed
            }
        }
    }

    /// Returns how many times Run() calibrated: 1 if nothing disturbed it.
    unsigned Attempts() const { return mAttempts; }

private:
    static constexpr int kTrials = 5;
    static constexpr double kFar = 2; // times that differ by more than this factor do not agree

    struct Fastest
    {
        double mFirst;
        double mSecond;
    };

    Fastest Time(int inTrials) const
    {
        Fastest fastest{Once(), Once()};
        if (fastest.mSecond < fastest.mFirst) {
            std::swap(fastest.mFirst, fastest.mSecond);
        }
        for (int trial = 2; trial < inTrials; ++trial) {
            const double time = Once();
            fastest.mSecond = std::min(fastest.mSecond, std::max(time, fastest.mFirst));
            fastest.mFirst = std::min(fastest.mFirst, time);
        }
        return fastest;
    }

    double Once() const { return std::max(1.0, mTrial(mCount)); }

    // Doubles the count until a trial is long enough to measure, then fits it to the wished time. Returns whether the
    // trials agree and the check confirms the count.
    bool Attempt()
    {
        const double measurable = mWished / 8;
        Fastest fastest{};
        for (;; mCount *= 2) {
            // Five trials only for a count that one trial shows to be long enough.
            if (Once() < measurable) {
                continue;
            }
            fastest = Time(kTrials);
            if (fastest.mFirst >= measurable) {
                break;
            }
        }
        const std::uint64_t fitted = Fitted(fastest.mFirst);
        const bool agree = fastest.mSecond <= kFar * fastest.mFirst;
        const double check = fitted == mCount ? fastest.mFirst : CheckOf(fitted);
        mCount = fitted;
        const bool isTooLong = check > kFar * mWished && mCount > mStep; // a single step may take any time
        return agree && check * kFar >= mWished && !isTooLong;
    }

    double CheckOf(std::uint64_t inCount)
    {
        mCount = inCount;
        return Time(2).mFirst;
    }

    std::uint64_t Fitted(double inTime) const
    {
        const double steps = static_cast<double>(mCount) * mWished / inTime / static_cast<double>(mStep);
        return mStep * std::max<std::uint64_t>(1, static_cast<std::uint64_t>(steps));
    }

    Trial mTrial;
    double mWished;
    std::uint64_t mStep;
    std::uint64_t mCount;
    unsigned mAttempts = 0;
};

} // namespace Bench::Detail
