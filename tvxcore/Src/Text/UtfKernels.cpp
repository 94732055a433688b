// Selects the kernels on the first conversion. Until then the pointers refer to functions that select, so conversions
// also work in the host's static constructors; two threads that select concurrently select the same kernels.
#include <Text/Utf.h>

#include <atomic>

namespace tvxcore {
namespace utf {

namespace {

bool HasAvx512() noexcept
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vbmi")
           && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")
           && __builtin_cpu_supports("bmi2");
}

bool HasAvx2() noexcept
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt");
}

bool Always() noexcept
{
    return true;
}

const Kernel& Best() noexcept
{
    const Kernel* kernel = kKernels;
    while (!kernel->mIsSupported()) {
        ++kernel;
    }
    return *kernel;
}

ToUTF16Function ChooseToUTF16;
ToUTF8Function ChooseToUTF8;

std::atomic<ToUTF16Function*> sToUTF16{&ChooseToUTF16};
std::atomic<ToUTF8Function*> sToUTF8{&ChooseToUTF8};

std::size_t ChooseToUTF16(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    ToUTF16Function* const best = Best().mToUTF16;
    sToUTF16.store(best, std::memory_order_relaxed);
    return best(inText, inLength, outText);
}

std::size_t ChooseToUTF8(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    ToUTF8Function* const best = Best().mToUTF8;
    sToUTF8.store(best, std::memory_order_relaxed);
    return best(inText, inLength, outText);
}

} // namespace

const Kernel kKernels[kKernelCount] = {
    {"AVX-512", HasAvx512, ToUTF16Avx512, ToUTF8Avx512},
    {"AVX2", HasAvx2, ToUTF16Avx2, ToUTF8Avx2},
    {"SSE2", Always, ToUTF16Sse2, ToUTF8Sse2},
    {"plain", Always, ToUTF16Plain, ToUTF8Plain},
};

std::size_t ToUTF16(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    return sToUTF16.load(std::memory_order_relaxed)(inText, inLength, outText);
}

std::size_t ToUTF8(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    return sToUTF8.load(std::memory_order_relaxed)(inText, inLength, outText);
}

} // namespace utf
} // namespace tvxcore
