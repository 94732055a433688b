#include <ORLSingletonConstruction.h>

#include <ORLDebug.h>
#include <Objects/SingletonSection.h>

#include <atomic>
#include <boost/thread/once.hpp>

namespace {

boost::once_flag sOnce = BOOST_ONCE_INIT;
std::atomic<ORL::CriticalSection*> sSection{nullptr};

void BuildSection()
{
    static ORL::CriticalSection section; // destroyed at process exit
    sSection.store(&section, std::memory_order_release);
}

} // namespace

namespace ORL {

CriticalSection& CheckedSingletonSection(CriticalSection* sCriticalSectionPtr)
{
    ORL_INPUT_CONTRACT_AT(sCriticalSectionPtr != NULL, "ClassFactory", 62);
    return *sCriticalSectionPtr;
}

} // namespace ORL

ORL::CriticalSection& ORLGetGlobalCriticalSectionForSingletonConstruction()
{
    boost::call_once(sOnce, &BuildSection);
    return ORL::CheckedSingletonSection(sSection.load(std::memory_order_acquire));
}
