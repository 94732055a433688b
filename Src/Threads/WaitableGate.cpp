#include <ORLWaitableGate.h>

#include <ORLAllocator.h>
#include <Threads/WaitableGateAlgorithm.h>

namespace ORL {

using Algorithm = Sync::WaitableGateAlgorithm<Sync::SystemPolicy>;

WaitableGate::WaitableGate() : mIsOpen(false), mGeneration(0), mWaiterCount(0)
{
}

WaitableGate::~WaitableGate()
{
    Open();
}

Result WaitableGate::Wait(int inMilliseconds)
{
    return Algorithm::Wait(*this, inMilliseconds);
}

void WaitableGate::Open()
{
    Algorithm::Open(*this);
}

void WaitableGate::Close()
{
    Algorithm::Close(*this);
}

void* WaitableGate::operator new(std::size_t inSize)
{
    return Allocator::Allocate(inSize);
}

void WaitableGate::operator delete(void* inGate, std::size_t inSize)
{
    Allocator::Dispose(inGate, inSize);
}

} // namespace ORL
