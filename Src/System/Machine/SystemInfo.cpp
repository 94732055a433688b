#include <ORLSystemInfo.h>

#include <Platform/SystemInfo.h>

#include <tvxcore/SystemInfo.h>

#include <atomic>
#include <cstdint>

namespace ORL {
namespace SystemInfo {

namespace {

// The bits are those of CPUID leaf 1. EDX is 0 until both words are filled.
std::atomic<std::uint32_t> sCPUFeaturesEDX{0};
std::atomic<std::uint32_t> sCPUFeaturesECX{0};

// Sets the features that every supported processor has. Does not query the processor.
void FillCPUFeatures()
{
    sCPUFeaturesECX.store(0x00000209, std::memory_order_relaxed);
    sCPUFeaturesEDX.store(0x06800000, std::memory_order_release);
}

bool HasFeature(const std::atomic<std::uint32_t>& inWord, int inBit)
{
    if (sCPUFeaturesEDX.load(std::memory_order_acquire) == 0) {
        FillCPUFeatures();
    }
    return ((inWord.load(std::memory_order_relaxed) >> inBit) & 1u) != 0;
}

} // namespace

unsigned int GetCPUCount()
{
    return static_cast<unsigned int>(tvxcore::utility::CPUCount());
}

unsigned __int64 GetTotalPhysicalMemory()
{
    return tvxcore::utility::TotalPhysicalMemory();
}

unsigned __int64 GetAvailablePhysicalMemory()
{
    return Platform::GetAvailablePhysicalMemory_Impl();
}

unsigned __int64 GetTotalVirtualMemory()
{
    return Platform::GetTotalVirtualMemory_Impl();
}

bool ProcessorSupportsRDTSCInstruction()
{
    return Platform::ProcessorSupportsRDTSCInstruction_Impl();
}

bool ProcessorSupportsAltivec()
{
    return false;
}

bool ProcessorSupportsMMX()
{
    return HasFeature(sCPUFeaturesEDX, 23);
}

bool ProcessorSupportsSSE()
{
    return HasFeature(sCPUFeaturesEDX, 25);
}

bool ProcessorSupportsSSE2()
{
    return HasFeature(sCPUFeaturesEDX, 26);
}

bool ProcessorSupportsSSE3()
{
    return HasFeature(sCPUFeaturesECX, 0);
}

bool ProcessorSupportsMONITOR()
{
    return HasFeature(sCPUFeaturesECX, 3);
}

bool ProcessorSupportsMNI()
{
    return HasFeature(sCPUFeaturesECX, 9);
}

bool ProcessorSupportsSSE4_1()
{
    return HasFeature(sCPUFeaturesECX, 19);
}

bool ProcessorSupportsSSE4_2()
{
    return HasFeature(sCPUFeaturesECX, 20);
}

} // namespace SystemInfo
} // namespace ORL
