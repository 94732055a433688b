// Waiting for a word to change: the only system function that locks and parked threads need.
#pragma once

#include <atomic>
#include <cstdint>

namespace tvxcore {
namespace threads {
namespace Platform {

constexpr std::int64_t kEndless = -1;

/// Sleeps while ioWord holds inExpected, until a wake, for at most inNanoseconds (kEndless: no limit). May wake
/// spuriously, so the caller checks the word again. Returns false only on a timeout.
bool WaitOnWord_Impl(std::atomic<std::uint32_t>& ioWord, std::uint32_t inExpected, std::int64_t inNanoseconds);

/// Wake one or all threads that sleep on the word. The functions do not read the word, so it may already be destroyed.
void WakeOneOnWord_Impl(std::atomic<std::uint32_t>& ioWord);
void WakeAllOnWord_Impl(std::atomic<std::uint32_t>& ioWord);

} // namespace Platform
} // namespace threads
} // namespace tvxcore
