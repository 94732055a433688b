#include <ORLSharedObjectBase.h>
#include <Objects/SharedObjectPool.h>

namespace ORL {

namespace {

SharedObjectPool sPool;

} // namespace

SharedObjectPool& TheSharedObjectPool()
{
    return sPool;
}

CriticalSection& SharedObjectBase::GetCriticalSection()
{
    return sPool.Next();
}

} // namespace ORL
