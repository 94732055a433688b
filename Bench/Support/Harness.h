// A small benchmark harness. A group compares rivals that do the same work: the library ("ours") and its peers.
//
// Method
//   - In each repetition of a group every rival runs once, in turn, so machine noise affects all alike. Each
//     repetition starts with the next rival.
//   - Before the first repetition each rival warms up, and its operation count is chosen so that one round takes about
//     20 ms; a disturbed calibration is repeated (Calibration.h). A round's figure is its wall time divided by its
//     operations (with several threads: by one thread's operations, from the common start until the last thread
//     finishes).
//   - 11 repetitions by default, at least 9 unless quick. A row shows the median, the fastest and the 90th percentile.
//   - The ratio of ours to a peer is computed in each repetition; the median of these ratios is printed and compared
//     with the goal. The peer is the one named by the goal, else the one with the best median.
//   - If the rounds of a row or of its peer differ by more than a hundredfold, the row is unusable: its goal is neither
//     met nor missed.
//   - Threads stay alive for the whole group and are pinned: thread 0 (the caller) to processor 0, thread 1 to 1.
//   - ORL_BENCH_QUICK=1 makes rounds of 1 ms and 3 repetitions: it shows that a benchmark runs, not how fast it is.
//   - ORL_BENCH_STRICT=1 makes Finish() return 1 if a goal was missed or its row is unusable.
//   - The first argument of a program, if any, selects the groups whose title contains it.
//
// Example
//   int main(int argc, char** argv)
//   {
//       Bench::Start(argc, argv);
//       Bench::Group("lock and unlock, uncontended")
//           .Ours("CriticalSection", Bench::AtMost(0.85), [&](std::uint64_t n) { LockAndUnlock(a, n); })
//           .Peer("std::recursive_mutex", [&](std::uint64_t n) { LockAndUnlock(b, n); })
//           .Run();
//       Bench::Group("lock and unlock, two threads").Threads(2)
//           .Ours("...", Bench::AtMost(1.1, "boost"), [&](std::uint64_t n, unsigned thread) { ... }) // one named peer
//           .Peer("boost", ...)
//           .Run();
//       return Bench::Finish();
//   }
//
// A body receives the number of operations and, if it takes a second argument, its thread's number. If a body returns a
// double, that is the round's figure (its own clock, MB/s, processor time); Unit() sets its unit.
#pragma once

#include <Calibration.h>
#include <Processors.h>
#include <Verdict.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace Bench {

/// Prevents the compiler from removing the computation of a value.
template <class T>
inline void DoNotOptimize(T const& inValue)
{
    __asm__ volatile("" : : "r,m"(inValue) : "memory");
}

/// Prevents the compiler from keeping memory in registers across this point.
inline void ClobberMemory()
{
    __asm__ volatile("" : : : "memory");
}

inline bool IsQuick()
{
    static const bool quick = std::getenv("ORL_BENCH_QUICK") != nullptr;
    return quick;
}

inline double NowInNanoseconds()
{
    using namespace std::chrono;
    return static_cast<double>(duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count());
}

namespace Detail {

struct State
{
    std::string mFilter;
    int mGoals = 0;
    int mMet = 0;
    int mUnusable = 0;
};

inline State& TheState()
{
    static State state;
    return state;
}

// The part of a round that one thread runs. Its result is used only if the body returns a figure.
using Body = std::function<double(std::uint64_t inOperations, unsigned inThread)>;

template <class Function, class... Arguments>
double Call(Function& inFunction, Arguments... inArguments)
{
    if constexpr (std::is_convertible_v<std::invoke_result_t<Function&, Arguments...>, double>) {
        return static_cast<double>(inFunction(inArguments...));
    } else {
        inFunction(inArguments...);
        return 0;
    }
}

template <class Function>
constexpr bool ReturnsFigure()
{
    if constexpr (std::is_invocable_v<Function&, std::uint64_t, unsigned>) {
        return std::is_convertible_v<std::invoke_result_t<Function&, std::uint64_t, unsigned>, double>;
    } else {
        return std::is_convertible_v<std::invoke_result_t<Function&, std::uint64_t>, double>;
    }
}

template <class Function>
Body MakeBody(Function inFunction)
{
    return [function = std::move(inFunction)](std::uint64_t inOperations, unsigned inThread) mutable {
        if constexpr (std::is_invocable_v<Function&, std::uint64_t, unsigned>) {
            return Call(function, inOperations, inThread);
        } else {
            (void)inThread;
            return Call(function, inOperations);
        }
    };
}

// Helper threads that spin between rounds, so that starting a round needs no wake-up.
class ThreadTeam
{
public:
    explicit ThreadTeam(unsigned inThreads) : mHelpers(inThreads - 1)
    {
        PinThread(0);
        for (unsigned i = 1; i < inThreads; ++i) {
            mThreads.emplace_back([this, i] { Help(i); });
        }
    }

    ~ThreadTeam()
    {
        mBody = nullptr;
        mRound.fetch_add(1);
        for (std::thread& thread : mThreads) {
            thread.join();
        }
    }

    /// Runs the body once on every thread and returns the wall time, or the figure of thread 0's body.
    double Run(const Body& inBody, std::uint64_t inOperations, bool inReturnsFigure)
    {
        mBody = &inBody;
        mOperations = inOperations;
        mDone.store(0);
        const double start = NowInNanoseconds();
        mRound.fetch_add(1);
        const double figure = inBody(inOperations, 0);
        while (mDone.load() != mHelpers) {
            Relax();
        }
        return inReturnsFigure ? figure : NowInNanoseconds() - start;
    }

private:
    void Help(unsigned inThread)
    {
        PinThread(inThread);
        for (std::uint64_t round = 1;; ++round) {
            while (mRound.load() < round) {
                Relax();
            }
            if (mBody == nullptr) {
                return;
            }
            (*mBody)(mOperations, inThread);
            mDone.fetch_add(1);
        }
    }

    // On one processor, a spinning thread would starve the thread that it waits for.
    static void Relax()
    {
        if (std::thread::hardware_concurrency() < 2) {
            std::this_thread::yield();
        }
        __asm__ volatile("pause");
    }

    const unsigned mHelpers;
    std::vector<std::thread> mThreads;
    std::atomic<std::uint64_t> mRound{0};
    std::atomic<unsigned> mDone{0};
    const Body* mBody = nullptr;
    std::uint64_t mOperations = 0;
};

inline double Percentile(std::vector<double> inValues, double inShare)
{
    std::sort(inValues.begin(), inValues.end());
    return inValues[static_cast<std::size_t>(inShare * static_cast<double>(inValues.size() - 1) + 0.5)];
}

} // namespace Detail

/// Reads the program's arguments. Must be called first.
inline void Start(int inCount, char** inArguments)
{
    Detail::TheState().mFilter = inCount > 1 ? inArguments[1] : "";
    if (IsQuick()) {
        std::printf("Quick rounds: these figures show that the benchmark runs, no more.\n");
    }
}

/// Prints how many goals were met, and how many rows were unusable if there were any. Returns the exit code for main.
inline int Finish()
{
    const Detail::State& state = Detail::TheState();
    std::printf("\n%d of %d goals met", state.mMet, state.mGoals);
    if (state.mUnusable != 0) {
        std::printf(", %d unusable", state.mUnusable);
    }
    std::printf("\n");
    return std::getenv("ORL_BENCH_STRICT") != nullptr && state.mMet != state.mGoals ? 1 : 0;
}

/// Rivals that do the same work. Configure, add rivals, then Run().
class Group
{
public:
    explicit Group(std::string inTitle) : mTitle(std::move(inTitle)) {}

    /// Sets the number of threads that run each body concurrently; 1 by default.
    Group& Threads(unsigned inCount)
    {
        mThreads = inCount;
        return *this;
    }

    /// Makes operation counts multiples of inStep, for instance of a batch size.
    Group& Step(std::uint64_t inStep)
    {
        mStep = inStep;
        return *this;
    }

    /// Sets a fixed number of operations per round instead of a calibrated one.
    Group& Operations(std::uint64_t inOperations)
    {
        mFixedOperations = inOperations;
        return *this;
    }

    /// Sets the number of repetitions, at least 9.
    Group& Repetitions(unsigned inCount)
    {
        mRepetitions = std::max(9u, inCount);
        return *this;
    }

    /// Sets the unit of the figure, and whether more is better. The default is "ns", less is better.
    Group& Unit(std::string inUnit, bool inMoreIsBetter = false)
    {
        mUnit = std::move(inUnit);
        mMoreIsBetter = inMoreIsBetter;
        return *this;
    }

    template <class Function>
    Group& Peer(std::string inName, Function inBody)
    {
        return Add(std::move(inName), std::move(inBody), false, Goal{});
    }

    /// Adds a library row. A group may have several such rows (with different goals, or none if the ratio is 0).
    template <class Function>
    Group& Ours(std::string inName, Goal inGoal, Function inBody)
    {
        return Add(std::move(inName), std::move(inBody), true, std::move(inGoal));
    }

    void Run()
    {
        if (mTitle.find(Detail::TheState().mFilter) == std::string::npos) {
            return;
        }
        {
            Detail::ThreadTeam team(mThreads);
            for (Rival& rival : mRivals) {
                Calibrate(team, rival);
            }
            Measure(team);
        }
        Print();
    }

private:
    struct Rival
    {
        std::string mName;
        Detail::Body mBody;
        bool mReturnsFigure = false;
        bool mIsOurs = false;
        Goal mGoal{};
        std::uint64_t mOperations = 0;
        std::vector<double> mFigures;
    };

    template <class Function>
    Group& Add(std::string inName, Function inBody, bool inIsOurs, Goal inGoal)
    {
        Rival rival;
        rival.mName = std::move(inName);
        rival.mReturnsFigure = Detail::ReturnsFigure<Function>();
        rival.mBody = Detail::MakeBody(std::move(inBody));
        rival.mIsOurs = inIsOurs;
        rival.mGoal = std::move(inGoal);
        mRivals.push_back(std::move(rival));
        return *this;
    }

    // The calibration also warms up, as does the single round of a fixed count.
    void Calibrate(Detail::ThreadTeam& inTeam, Rival& ioRival)
    {
        const auto trial = [&](std::uint64_t inOperations) {
            const double start = NowInNanoseconds();
            inTeam.Run(ioRival.mBody, inOperations, false);
            return NowInNanoseconds() - start;
        };
        if (mFixedOperations != 0) {
            trial(mFixedOperations);
            ioRival.mOperations = mFixedOperations;
        } else {
            ioRival.mOperations = Detail::Calibration(trial, IsQuick() ? 1e6 : 20e6, mStep).Run();
        }
    }

    void Measure(Detail::ThreadTeam& inTeam)
    {
        const std::size_t repetitions = IsQuick() ? 3 : mRepetitions;
        for (std::size_t repetition = 0; repetition < repetitions; ++repetition) {
            for (std::size_t i = 0; i < mRivals.size(); ++i) {
                Rival& rival = mRivals[(repetition + i) % mRivals.size()];
                const double figure = inTeam.Run(rival.mBody, rival.mOperations, rival.mReturnsFigure);
                rival.mFigures.push_back(rival.mReturnsFigure ? figure
                                                              : figure / static_cast<double>(rival.mOperations));
            }
        }
    }

    static double Median(const Rival& inRival) { return Detail::Percentile(inRival.mFigures, 0.5); }

    const Rival* PeerOf(const Goal& inGoal) const
    {
        const Rival* best = nullptr;
        for (const Rival& rival : mRivals) {
            const bool fits = inGoal.mPeer.empty() ? !rival.mIsOurs : rival.mName == inGoal.mPeer;
            if (fits && (best == nullptr || (Median(rival) < Median(*best)) != mMoreIsBetter)) {
                best = &rival;
            }
        }
        return best;
    }

    static double Ratio(const Rival& inOurs, const Rival& inPeer)
    {
        std::vector<double> ratios;
        for (std::size_t i = 0; i < inOurs.mFigures.size(); ++i) {
            ratios.push_back(inOurs.mFigures[i] / inPeer.mFigures[i]);
        }
        return Detail::Percentile(ratios, 0.5);
    }

    void Print() const
    {
        std::printf("\n%s (%s, median [min..p90] of %zu)\n", mTitle.c_str(), mUnit.c_str(),
                    mRivals.empty() ? 0 : mRivals.front().mFigures.size());
        for (const Rival& rival : mRivals) {
            std::printf("  %-34s %9.4g [%.4g..%.4g]", rival.mName.c_str(), Median(rival),
                        Detail::Percentile(rival.mFigures, 0.0), Detail::Percentile(rival.mFigures, 0.9));
            PrintGoal(rival);
            std::printf("\n");
        }
        std::fflush(stdout);
    }

    void PrintGoal(const Rival& inRival) const
    {
        const Rival* peer = inRival.mIsOurs ? PeerOf(inRival.mGoal) : nullptr;
        if (peer == nullptr) {
            return;
        }
        const double ratio = Ratio(inRival, *peer);
        std::printf("  %.2f of %s", ratio, peer->mName.c_str());
        if (inRival.mGoal.mRatio > 0) {
            const Detail::Verdict verdict = Detail::VerdictOf(inRival.mGoal, ratio, inRival.mFigures, peer->mFigures);
            std::printf(", goal at %s %.2f: %s", inRival.mGoal.mAtMost ? "most" : "least", inRival.mGoal.mRatio,
                        Detail::NameOf(verdict));
            Detail::State& state = Detail::TheState();
            ++state.mGoals;
            state.mMet += verdict == Detail::Verdict::Met ? 1 : 0;
            state.mUnusable += verdict == Detail::Verdict::Unusable ? 1 : 0;
        }
    }

    std::string mTitle;
    std::string mUnit = "ns";
    bool mMoreIsBetter = false;
    unsigned mThreads = 1;
    unsigned mRepetitions = 11;
    std::uint64_t mStep = 1;
    std::uint64_t mFixedOperations = 0;
    std::vector<Rival> mRivals;
};

} // namespace Bench
