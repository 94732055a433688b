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

// At process exit idle gates are destroyed, but the pool stays for threads that still run.
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
