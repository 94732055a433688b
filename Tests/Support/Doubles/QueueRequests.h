// A work queue request that calls a function.
#pragma once

#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>

#include <functional>
#include <utility>

namespace ORLTest {

class FunctionRequest : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    explicit FunctionRequest(std::function<void()> inFunction) : mFunction(std::move(inFunction)) {}
    void Process() override { mFunction(); }

private:
    const std::function<void()> mFunction;
};

inline ORL::ThreadedWorkQueue::Request MakeRequest(std::function<void()> inFunction)
{
    return ORL::ThreadedWorkQueue::Request(new FunctionRequest(std::move(inFunction)));
}

} // namespace ORLTest
