// Sleep until somebody changes a word: the one thing that locks and parked threads need of the system.
#pragma once

#include <atomic>
#include <cstdint>

namespace tvxcore {
namespace threads {
namespace Platform {

constexpr std::int64_t kEndless = -1;

/// Sleeps while ioWord holds inExpected: until a wake, for at most inNanoseconds (kEndless: no limit). It may also
/// return for no reason, so the caller looks again. False only when the time is over.
bool WaitOnWord_Impl(std::atomic<std::uint32_t>& ioWord, std::uint32_t inExpected, std::int64_t inNanoseconds);

/// Wakes one thread, or all, that sleep on the word. The word is not read, so it may be gone by then.
void WakeOneOnWord_Impl(std::atomic<std::uint32_t>& ioWord);
void WakeAllOnWord_Impl(std::atomic<std::uint32_t>& ioWord);

} // namespace Platform
} // namespace threads
} // namespace tvxcore
