#include <ORLWaitableGate.h>

#include <Core/UntilUnload.h>
#include <Threads/WaitableGatePoolAlgorithm.h>
#include <tvxcore/Unload.h>

#include <boost/thread/once.hpp>

namespace ORL {
namespace WaitableGatePool {

namespace {

using Pool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;

boost::once_flag sPoolOnce = BOOST_ONCE_INIT;

// At process exit, destroys the idle gates but keeps the pool for threads that are still running.
struct ExitAction
{
    ~ExitAction()
    {
        if (!tvxcore::utility::AreOtherThreadsStopped()) {
            mPool.TryDestroyIdleGates();
        }
    }

    Pool& mPool;
};

void BuildPool()
{
    static UntilUnload<Pool> pool;
    static const ExitAction exitAction{pool.Get()};
}

} // namespace

WaitableGate* RetrieveGate()
{
    boost::call_once(&BuildPool, sPoolOnce);
    return Pool::RetrieveGate();
}

void ReturnGate(WaitableGate* inGate)
{
    boost::call_once(&BuildPool, sPoolOnce);
    Pool::ReturnGate(inGate);
}

} // namespace WaitableGatePool
} // namespace ORL
