#include <ORLWaitableGate.h>

#include <WaitableGatePoolAlgorithm.h>

#include <boost/thread/once.hpp>

namespace ORL {
namespace WaitableGatePool {

namespace {

using Pool = Sync::WaitableGatePoolAlgorithm<Sync::SystemPolicy>;

boost::once_flag sPoolOnce = BOOST_ONCE_INIT;

void BuildPool()
{
    static Pool pool;
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
