// Runs searches over one model, counts the interleavings, and requires that the mutants are detected.
#pragma once

#include <RelacyPolicy.h>

#include <tvxcore/Debug.h>

#include <cstdio>
#include <cstring>
#include <ostream>
#include <streambuf>

namespace Model {

/// Keeps the beginning of the checker's output. The checker replaces the allocator under the standard streams, so this
/// buffer does not allocate.
class Transcript : public std::streambuf
{
public:
    Transcript() { Clear(); }
    void Clear() { setp(mText, mText + sizeof(mText)); }
    void Print() const { std::fwrite(mText, 1, static_cast<std::size_t>(pptr() - pbase()), stdout); }

protected:
    int_type overflow(int_type inCharacter) override { return traits_type::not_eof(inCharacter); }

private:
    char mText[200000];
};

/// A failed check in the code under test makes the interleaving fail.
inline void FailOnBrokenChecks()
{
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool&, const char* inExpression, const unsigned char*, const char*, long, const char*) {
        rl::ctx().fail_test(inExpression, rl::test_result_user_assert_failed, $);
        return false;
    };
    dialogs.mContract = [](const char* inExpression, const char*, long) {
        rl::ctx().fail_test(inExpression, rl::test_result_user_assert_failed, $);
        return false;
    };
    tvxcore::debug::InstallDialogs(dialogs);
}

class Run
{
public:
    /// With the argument "deep", the search allows one more preemption and runs ten times as many random interleavings.
    Run(int inArgumentCount, char** inArguments)
        : mIsDeep(inArgumentCount > 1 && std::strcmp(inArguments[1], "deep") == 0)
    {
        FailOnBrokenChecks();
    }

    /// Runs every interleaving with up to inSwitches preemptions. Do not use it for models with a timed sleep: in
    /// this search the checker ends a thread of such a model several times.
    template <class Test>
    void Exhaust(const char* inName, unsigned inSwitches)
    {
        rl::test_params params;
        params.search_type = rl::sched_bound;
        params.context_bound = inSwitches + (mIsDeep ? 1 : 0);
        char how[40];
        std::snprintf(how, sizeof(how), "all with %u switches", params.context_bound);
        Search<Test>(params, true, inName, how);
    }

    /// Runs inCount random interleavings, with spurious wake-ups.
    template <class Test>
    void Random(const char* inName, unsigned inCount)
    {
        rl::test_params params;
        params.search_type = rl::sched_random;
        params.iteration_count = mIsDeep ? 10 * inCount : inCount;
        Search<Test>(params, true, inName, "random");
    }

    /// Runs a model without one of the steps: some interleaving must fail.
    template <class Test>
    void FindMutant(const char* inName)
    {
        rl::test_params params;
        params.search_type = rl::sched_random;
        params.iteration_count = 1000000;
        Search<Test>(params, false, inName, "mutant, random");
    }

    /// Runs a mutant by exhaustive search. Needed if the mutant has a thread that never lets another one run, because
    /// then a random search would not end.
    template <class Test>
    void FindMutant(const char* inName, unsigned inSwitches)
    {
        rl::test_params params;
        params.search_type = rl::sched_bound;
        params.context_bound = inSwitches;
        Search<Test>(params, false, inName, "mutant, bounded");
    }

    /// Prints a summary and returns the exit code of the program.
    int Finish() const
    {
        std::printf("%llu interleavings of the code as it ships, %d of %d mutants found, %d failures\n", mExplored,
                    mMutantsFound, mMutants, mFailures);
        return mFailures == 0 ? 0 : 1;
    }

private:
    template <class Test>
    void Search(rl::test_params& ioParams, bool inMustHold, const char* inName, const char* inHow)
    {
        static Transcript sTranscript;
        static Transcript sProgress;
        sTranscript.Clear();
        std::ostream output(&sTranscript);
        std::ostream progress(&sProgress);
        ioParams.output_stream = &output;
        ioParams.progress_stream = &progress;
        ioParams.execution_depth_limit = 10000;
        const bool held = rl::simulate<Test>(ioParams);
        Count(ioParams, inMustHold, held);
        std::printf("%-6s %-46s %-21s %9llu interleavings, %s\n", held == inMustHold ? "ok" : "FAILED", inName, inHow,
                    static_cast<unsigned long long>(ioParams.stop_iteration),
                    rl::test_result_str(ioParams.test_result));
        if (inMustHold && !held) {
            sTranscript.Print();
        }
        std::fflush(stdout);
    }

    void Count(const rl::test_params& inParams, bool inMustHold, bool inHeld)
    {
        mFailures += inHeld == inMustHold ? 0 : 1;
        if (inMustHold) {
            mExplored += inParams.stop_iteration;
        } else {
            ++mMutants;
            mMutantsFound += inHeld ? 0 : 1;
        }
    }

    const bool mIsDeep;
    unsigned long long mExplored = 0;
    int mMutants = 0;
    int mMutantsFound = 0;
    int mFailures = 0;
};

} // namespace Model
