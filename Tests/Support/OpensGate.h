// A request that tells when it runs.
#pragma once

#include <ORLInterface.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLWaitableGate.h>

namespace ORLTest {

/// Opens a gate, which must outlive the request's run.
class OpensGate : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    explicit OpensGate(ORL::WaitableGate& inGate) : mGate(inGate) {}
    void Process() override { mGate.Open(); }

private:
    ORL::WaitableGate& mGate;
};

} // namespace ORLTest
