// Floor: Threads
// Queues functions as requests of a work queue, and returns futures for their results.
//
//   queue->QueueRequest(ORL::MakeFunctionRequest([] { Scan("C:\\Media"); })); // runs later; no thread waits
//   auto count = ORL::QueueFunction(queue, [] { return Scan("D:\\Media"); });
//   std::cout << count.get();                                                // waits for this one request
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>

#include <future>
#include <optional>
#include <type_traits>
#include <utility>

namespace ORL {

namespace Internal {

/// A request that owns a function object, which it calls once.
template <class Function>
class FunctionRequest : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    template <class Argument>
    explicit FunctionRequest(Argument&& inFunction) : mFunction(std::forward<Argument>(inFunction))
    {
    }

    void Process() override { static_cast<void>(mFunction()); }

private:
    Function mFunction;
};

/// A function object that is destroyed when its only call ends.
template <class Function>
class CalledOnce
{
public:
    template <class Argument>
    explicit CalledOnce(std::in_place_t, Argument&& inFunction)
        : mFunction(std::in_place, std::forward<Argument>(inFunction))
    {
    }

    decltype(auto) operator()()
    {
        struct Destroy
        {
            ~Destroy() { mOwner.reset(); }
            std::optional<Function>& mOwner;
        } const atEnd{mFunction};
        return (*mFunction)();
    }

private:
    std::optional<Function> mFunction;
};

} // namespace Internal

/// Returns a request that calls a copy of the function, or the moved function itself, each time it is processed. The
/// function takes no arguments; the result is ignored. An exception is handled like that of any request: it is reported
/// as a warning. The last reference to the request destroys the function, usually on a thread of the queue. Throws
/// std::bad_alloc, or what copying the function throws.
template <class Function>
ThreadedWorkQueue::Request MakeFunctionRequest(Function&& inFunction)
{
    static_assert(std::is_invocable_v<std::decay_t<Function>&>,
                  "the function of a request is called without arguments");
    return ThreadedWorkQueue::Request(
        new Internal::FunctionRequest<std::decay_t<Function>>(std::forward<Function>(inFunction)));
}

/// Queues one call of a function and returns its future: wait() returns when the call has returned, and get() returns
/// its result or throws its exception, which is not reported as a warning. The caller need not wait: the future's
/// destructor does not wait.
///
/// If the queue refuses the request, because it has no threads or has been stopped, get() throws std::future_error with
/// std::future_errc::broken_promise. On a thread of a single-threaded queue, waiting for a request of the same queue
/// deadlocks. The function object is destroyed before the future becomes ready, on the thread that called it.
///
/// Throws NullInterfaceException for a null queue, std::bad_alloc, or what copying the function throws; in these cases
/// nothing is queued. Thread-safe.
template <class Function>
auto QueueFunction(const InterfaceRef<ThreadedWorkQueue, ORLUnknown>& inQueue, Function&& inFunction)
    -> std::future<std::invoke_result_t<std::decay_t<Function>&>>
{
    std::packaged_task<std::invoke_result_t<std::decay_t<Function>&>()> task(
        Internal::CalledOnce<std::decay_t<Function>>(std::in_place, std::forward<Function>(inFunction)));
    auto result = task.get_future();
    inQueue->QueueRequest(MakeFunctionRequest(std::move(task)));
    return result;
}

} // namespace ORL
