// Floor: System
// Premultiplies colours by alpha.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Images {

/// Premultiplies pixels: alpha in bits 24 to 31, colours below. Each colour becomes colour * alpha / 255, rounded to
/// nearest. The blocks must be identical or disjoint, and need not be aligned.
void Premultiply(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept;

using PremultiplyFunction = void(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept;

/// An implementation of Premultiply. The implementations are sorted from the fastest to the slowest; the last ones run
/// on every processor.
struct PremultiplyKernel
{
    const char* mName;
    bool (*mIsSupported)() noexcept;
    PremultiplyFunction* mPremultiply;
};

inline constexpr std::size_t kPremultiplyKernelCount = 3;
extern const PremultiplyKernel kPremultiplyKernels[kPremultiplyKernelCount];

} // namespace Images
} // namespace ORL
