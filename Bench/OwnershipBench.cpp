// Question: what do the reference-counted pointers, checks included, cost compared with unchecked ones?
#include <Harness.h>

#include <ORLInterface.h>
#include <ORLObjectPtr.h>

#include <atomic>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <thread>

namespace {

// A fixed count, because on a busy machine a preempted thread must not shorten the rounds.
constexpr std::uint64_t kOperations = 500000;

struct Object
{
    int mNumber = 1;
};

class Ours : public ORL::UnknownImpl<ORL::ORLUnknown>
{
};

/// The peer's object: it contains a count, changed through virtual functions.
class Counted
{
public:
    virtual ~Counted() = default;
    virtual void AddRef() { mCount.fetch_add(1, std::memory_order_relaxed); }
    virtual void Release()
    {
        if (mCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

private:
    std::atomic<int> mCount{0};
};

void intrusive_ptr_add_ref(Counted* inObject)
{
    inObject->AddRef();
}

void intrusive_ptr_release(Counted* inObject)
{
    inObject->Release();
}

// A call by value that is not inlined: one copy, one destruction.
template <class Pointer>
__attribute__((noinline)) void Take(Pointer inPointer)
{
    Bench::DoNotOptimize(inPointer);
}

template <class Pointer>
auto CopyAndDestroy(const Pointer& inPointer)
{
    return [&inPointer](std::uint64_t inCount, unsigned) {
        while (inCount-- != 0) {
            Take<Pointer>(inPointer);
        }
    };
}

template <class Make>
auto MakeAndDestroy(Make inMake)
{
    return [inMake](std::uint64_t inCount) {
        while (inCount-- != 0) {
            const auto pointer = inMake();
            Bench::DoNotOptimize(pointer);
        }
    };
}

void ObjectPointers(unsigned inThreads)
{
    const ORL::ObjectPtr<Object> ours(new Object);
    const boost::shared_ptr<Object> boosts(new Object);
    const std::shared_ptr<Object> standard(new Object);
    const bool isGoal = inThreads == 1;
    Bench::Group(isGoal ? "ObjectPtr copy and destroy" : "ObjectPtr copy and destroy, 2 threads on one object")
        .Threads(inThreads)
        .Operations(kOperations)
        .Ours("ObjectPtr", Bench::AtMost(isGoal ? 1.1 : 0, "boost::shared_ptr"), CopyAndDestroy(ours))
        .Peer("boost::shared_ptr", CopyAndDestroy(boosts))
        .Peer("std::shared_ptr", CopyAndDestroy(standard))
        .Run();
}

void References(unsigned inThreads)
{
    const ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown> ours(new Ours);
    const boost::intrusive_ptr<Counted> boosts(new Counted);
    const bool isGoal = inThreads == 1;
    Bench::Group(isGoal ? "InterfaceRef copy and destroy" : "InterfaceRef copy and destroy, 2 threads on one object")
        .Threads(inThreads)
        .Operations(kOperations)
        .Ours("InterfaceRef", Bench::AtMost(isGoal ? 1.1 : 0, "boost::intrusive_ptr"), CopyAndDestroy(ours))
        .Peer("boost::intrusive_ptr", CopyAndDestroy(boosts))
        .Run();
}

void Making()
{
    Bench::Group("ObjectPtr make and destroy")
        .Ours("ObjectPtr", Bench::AtMost(0), MakeAndDestroy([] { return ORL::ObjectPtr<Object>(new Object); }))
        .Peer("boost::shared_ptr", MakeAndDestroy([] { return boost::shared_ptr<Object>(new Object); }))
        .Peer("std::shared_ptr", MakeAndDestroy([] { return std::shared_ptr<Object>(new Object); }))
        .Run();
}

void Reading()
{
    std::int32_t number = 5;
    std::atomic<std::int32_t> word{5};
    Bench::Group("read of a 32-bit number")
        .Ours("AtomicRead", Bench::AtMost(0),
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      Bench::DoNotOptimize(ORL::AtomicRead(number));
                  }
              })
        .Peer("compare-and-set of 17, bare",
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      std::int32_t seen = 17;
                      word.compare_exchange_strong(seen, 17);
                      Bench::DoNotOptimize(seen);
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    // Some counted pointers use no atomic operations until the process starts a thread; hosts have threads.
    std::thread([] {}).join();
    ObjectPointers(1);
    References(1);
    Making();
    Reading();
    ObjectPointers(2);
    References(2);
    return Bench::Finish();
}
