// Runs the shipped reader slots with readers and a writer, under a model checker. The writer changes a plain variable,
// so a simultaneous reader is a data race, which the checker reports. The checker also reorders operations as the
// memory orders allow; one mutant is the same code with weaker orders.
//
// Extent: every interleaving with up to three preemptions, then 100000 random ones. The model has two slots, not 64,
// and all readers start at the same slot, so that they collide.
#include <ModelRun.h>

#include <Strings/ReaderSlots.h>

#include <atomic>
#include <cstdint>

namespace {

using ORL::ReaderSlotStep;

constexpr rl::memory_order Order(std::memory_order inOrder, bool inIsWeak)
{
    return inOrder == std::memory_order_seq_cst ? (inIsWeak ? rl::mo_acq_rel : rl::mo_seq_cst) : rl::mo_release;
}

/// The interface of std::atomic over the checker's atomic type. With kIsWeak, operations are not sequentially
/// consistent.
template <class T, bool kIsWeak>
class Atomic
{
public:
    explicit Atomic(T inValue) : mValue(inValue) {}

    T load() const { return mValue($).load(kIsWeak ? rl::mo_acquire : rl::mo_seq_cst); }
    void store(T inValue, std::memory_order inOrder = std::memory_order_seq_cst)
    {
        const rl::memory_order order = Order(inOrder, kIsWeak);
        mValue($).store(inValue, order == rl::mo_acq_rel ? rl::mo_release : order);
    }
    T exchange(T inValue) { return mValue($).exchange(inValue, Order(std::memory_order_seq_cst, kIsWeak)); }

private:
    rl::atomic<T> mValue;
};

template <bool kIsWeak, ReaderSlotStep... kLeftOut>
struct VisitPolicy
{
    static constexpr bool Executes(ReaderSlotStep inStep) { return ((inStep != kLeftOut) && ...); }

    template <class T>
    using Atomic = ::Atomic<T, kIsWeak>;

    static constexpr std::size_t kSlots = 2;
    static constexpr std::size_t kTries = 2;
    static std::size_t FirstSlot() { return 1; }
    static void BackOff(int) { rl::yield(1, $); }
};

/// The number of times that each outcome was seen.
struct Outcomes
{
    unsigned long long mVisits = 0;
    unsigned long long mRefusals = 0;
    unsigned long long mShutOuts = 0;
    unsigned long long mTriesThatFailed = 0;

    bool HasEach() const { return mVisits && mRefusals && mShutOuts && mTriesThatFailed; }
};
Outcomes sOutcomes;

/// The first thread writes, with or without waiting for readers; each other thread reads twice.
template <class Policy, bool kWaits, unsigned kVisitors>
struct Visitors : rl::test_suite<Visitors<Policy, kWaits, kVisitors>, kVisitors + 1>
{
    using Slots = ORL::ReaderSlotsOf<Policy>;

    Slots mVisits;
    rl::var<int> mValue;

    void before() { mValue($) = 0; }

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            kWaits ? Write() : TryToWrite();
            kWaits ? Write() : TryToWrite();
        } else {
            Read();
            Read();
        }
    }

    void Write()
    {
        const typename Slots::WriterAccess writer(mVisits);
        mValue($) = static_cast<int>(mValue($)) + 1;
        ++sOutcomes.mShutOuts;
    }

    void TryToWrite()
    {
        const typename Slots::TryWriterAccess writer(mVisits);
        if (writer.IsGranted()) {
            mValue($) = static_cast<int>(mValue($)) + 1;
        } else {
            ++sOutcomes.mTriesThatFailed;
        }
    }

    void Read()
    {
        const typename Slots::ReaderAccess access(mVisits);
        if (access.IsGranted()) {
            const int before = mValue($);
            RL_ASSERT(before == static_cast<int>(mValue($)));
            ++sOutcomes.mVisits;
        } else {
            ++sOutcomes.mRefusals;
        }
    }
};

using AsItShips = VisitPolicy<false>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<Visitors<AsItShips, true, 1>>("a writer that waits, 1 visitor", 3);
    run.Exhaust<Visitors<AsItShips, false, 1>>("a writer that does not wait, 1 visitor", 3);
    run.Exhaust<Visitors<AsItShips, true, 2>>("a writer that waits, 2 visitors", 2);
    run.Exhaust<Visitors<AsItShips, false, 2>>("a writer that does not wait, 2 visitors", 2);
    run.Random<Visitors<AsItShips, true, 3>>("a writer that waits, 3 visitors", 100000);
    run.Random<Visitors<AsItShips, false, 3>>("a writer that does not wait, 3 visitors", 100000);
    std::printf("%-6s seen: %llu visits, %llu refusals, %llu times shut out, %llu tries that failed\n",
                sOutcomes.HasEach() ? "ok" : "FAILED", sOutcomes.mVisits, sOutcomes.mRefusals, sOutcomes.mShutOuts,
                sOutcomes.mTriesThatFailed);
    const bool hasEach = sOutcomes.HasEach(); // read before the mutants add their outcomes
    run.FindMutant<Visitors<VisitPolicy<false, ReaderSlotStep::kReaderTakesSlotFirst>, true, 1>>(
        "a visitor looks before it takes a place");
    run.FindMutant<Visitors<VisitPolicy<false, ReaderSlotStep::kWriterExcludesFirst>, true, 1>>(
        "a writer looks before it shuts");
    run.FindMutant<Visitors<VisitPolicy<true>, true, 1>>("orders that are not sequentially consistent");
    run.FindMutant<Visitors<VisitPolicy<true>, false, 1>>("the same, with a writer that does not wait");
    const int code = run.Finish();
    return hasEach ? code : 1;
}
