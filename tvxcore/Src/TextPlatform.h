// What the text and machine services ask of the system. Src/Linux and Src/Win each answer all of it.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace platform {

/// Fills outBytes from the system's source of random numbers. False when the system gives none.
bool FillRandom(void* outBytes, std::size_t inCount) noexcept;

} // namespace platform
} // namespace tvxcore
