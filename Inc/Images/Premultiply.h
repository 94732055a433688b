// Floor: System
// Colours times alpha.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Images {

/// Premultiplies pixels: alpha in bits 24 to 31, colours below. Each colour becomes colour times alpha by 255, rounded
/// exactly. The blocks are equal or do not overlap; alignment is free.
void Premultiply(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept;

using PremultiplyFunction = void(const std::uint32_t* inPixels, std::uint32_t* outPixels, std::size_t inCount) noexcept;

/// One way to do it, the best first; the last ones work everywhere.
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
