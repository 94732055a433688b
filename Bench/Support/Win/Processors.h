// Selects the processors on which the threads of a benchmark run.
#pragma once

#include <algorithm>
#include <thread>

#include <windows.h>

namespace Bench {

/// Pins the calling thread to one processor, modulo the number of processors. Best effort.
inline void PinThread(unsigned inProcessor)
{
    const unsigned processor = inProcessor % std::max(1u, std::thread::hardware_concurrency());
    ::SetThreadAffinityMask(::GetCurrentThread(), DWORD_PTR{1} << processor);
}

} // namespace Bench
