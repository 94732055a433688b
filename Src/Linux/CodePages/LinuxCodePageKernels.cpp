#include "LinuxCodePageKernels.h"

namespace ORL {
namespace Linux {

namespace {

bool HasAVX512() noexcept
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vbmi")
           && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")
           && __builtin_cpu_supports("bmi2");
}

bool Always() noexcept
{
    return true;
}

const CodePageKernel& FirstSupported() noexcept
{
    const CodePageKernel* kernel = kCodePageKernels;
    while (!kernel->mIsSupported()) {
        ++kernel;
    }
    return *kernel;
}

} // namespace

const CodePageKernel kCodePageKernels[kKernelCount] = {
    {"AVX-512", HasAVX512, SinglesToUnitsAVX512, PairsToUnitsAVX512, PairsToBytesAVX512},
    {"plain", Always, SinglesToUnitsPlain, PairsToUnitsPlain, PairsToBytesPlain},
};

const CodePageKernel& BestCodePageKernel() noexcept
{
    static const CodePageKernel& best = FirstSupported();
    return best;
}

} // namespace Linux
} // namespace ORL
