#include <ORLWaitableGate.h>

#include <UntilUnload.h>
#include <WaitableGatePoolAlgorithm.h>
#include <tvxcore/Unload.h>

#include <boost/thread/once.hpp>

namespace ORL {
namespace WaitableGatePool {

namespace {

using Pool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;

boost::once_flag sPoolOnce = BOOST_ONCE_INIT;

// At the end of the process idle gates go, but the pool stays for threads that nobody has stopped.
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
