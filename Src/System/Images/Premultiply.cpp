// Premultiplies pixels. With t = c * a + 128, the result (t + (t >> 8)) >> 8 equals t * 257 >> 16, which is one
// multiplication for a vector of 16-bit lanes. Alpha 0 and 255 have no special cases: the formula is exact for them,
// and mispredicted branches are expensive (a factor of twenty on an alpha ramp).
#include <Images/Premultiply.h>

#include <atomic>
#include <immintrin.h>

namespace ORL {
namespace Images {

namespace {

#define ORL_AVX2 __attribute__((target("avx2")))
#define ORL_AVX2_INLINE ORL_AVX2 __attribute__((always_inline)) inline

std::uint32_t Scaled(std::uint32_t inPixel, unsigned int inShift, std::uint32_t inAlpha) noexcept
{
    const std::uint32_t t = (inPixel >> inShift & 0xFF) * inAlpha + 128;
    return (t + (t >> 8)) >> 8 << inShift;
}

void PremultiplyPlain(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept
{
    for (std::size_t i = 0; i < inCount; ++i) {
        const std::uint32_t pixel = inPixels[i];
        const std::uint32_t alpha = pixel >> 24;
        outPixels[i] = Scaled(pixel, 0, alpha) | Scaled(pixel, 8, alpha) | Scaled(pixel, 16, alpha) | alpha << 24;
    }
}

// Scales two pixels in lanes of 16 bits. The lane of alpha is multiplied by 255, which leaves it unchanged.
inline __m128i ScaleLanes(__m128i inLanes) noexcept
{
    const __m128i alpha = _mm_shufflehi_epi16(_mm_shufflelo_epi16(inLanes, 0xFF), 0xFF);
    const __m128i factors = _mm_or_si128(alpha, _mm_set1_epi64x(0x00FF000000000000));
    const __m128i sums = _mm_add_epi16(_mm_mullo_epi16(inLanes, factors), _mm_set1_epi16(128));
    return _mm_mulhi_epu16(sums, _mm_set1_epi16(257));
}

void PremultiplySse2(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept
{
    const __m128i zero = _mm_setzero_si128();
    std::size_t i = 0;
    for (; i + 4 <= inCount; i += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inPixels + i));
        const __m128i low = ScaleLanes(_mm_unpacklo_epi8(pixels, zero));
        const __m128i high = ScaleLanes(_mm_unpackhi_epi8(pixels, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(outPixels + i), _mm_packus_epi16(low, high));
    }
    PremultiplyPlain(inPixels + i, outPixels + i, inCount - i);
}

ORL_AVX2_INLINE __m256i ScaleLanes(__m256i inLanes, __m256i inAlpha)
{
    const __m256i factors = _mm256_or_si256(inAlpha, _mm256_set1_epi64x(0x00FF000000000000));
    const __m256i sums = _mm256_add_epi16(_mm256_mullo_epi16(inLanes, factors), _mm256_set1_epi16(128));
    return _mm256_mulhi_epu16(sums, _mm256_set1_epi16(257));
}

ORL_AVX2 void PremultiplyAvx2(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i alphaOfLow =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(3, -1, 3, -1, 3, -1, 3, -1, 7, -1, 7, -1, 7, -1, 7, -1));
    const __m256i alphaOfHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(11, -1, 11, -1, 11, -1, 11, -1, 15, -1, 15, -1, 15, -1, 15, -1));
    std::size_t i = 0;
    for (; i + 8 <= inCount; i += 8) {
        const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(inPixels + i));
        const __m256i low = ScaleLanes(_mm256_unpacklo_epi8(pixels, zero), _mm256_shuffle_epi8(pixels, alphaOfLow));
        const __m256i high = ScaleLanes(_mm256_unpackhi_epi8(pixels, zero), _mm256_shuffle_epi8(pixels, alphaOfHigh));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(outPixels + i), _mm256_packus_epi16(low, high));
    }
    PremultiplyPlain(inPixels + i, outPixels + i, inCount - i);
}

bool HasAvx2() noexcept
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
}

bool Always() noexcept
{
    return true;
}

PremultiplyFunction Choose;

std::atomic<PremultiplyFunction*> sPremultiply{&Choose};

// The first call selects a kernel. Threads that select at the same time select the same kernel.
void Choose(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept
{
    const PremultiplyKernel* kernel = kPremultiplyKernels;
    while (!kernel->mIsSupported()) {
        ++kernel;
    }
    sPremultiply.store(kernel->mPremultiply, std::memory_order_relaxed);
    kernel->mPremultiply(inPixels, outPixels, inCount);
}

} // namespace

const PremultiplyKernel kPremultiplyKernels[kPremultiplyKernelCount] = {
    {"AVX2", HasAvx2, PremultiplyAvx2},
    {"SSE2", Always, PremultiplySse2},
    {"plain", Always, PremultiplyPlain},
};

void Premultiply(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept
{
    sPremultiply.load(std::memory_order_relaxed)(inPixels, outPixels, inCount);
}

} // namespace Images
} // namespace ORL
