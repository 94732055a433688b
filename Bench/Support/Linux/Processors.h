// Selects the processors on which the threads of a benchmark run.
#pragma once

#include <algorithm>
#include <pthread.h>
#include <sched.h>
#include <thread>

namespace Bench {

/// Pins the calling thread to one processor, modulo the number of processors. Best effort.
inline void PinThread(unsigned inProcessor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(inProcessor % std::max(1u, std::thread::hardware_concurrency()), &set);
    ::pthread_setaffinity_np(::pthread_self(), sizeof(set), &set);
}

/// Lets the calling thread and the threads it starts run on every processor again. Use this for work done by several
/// threads or by a different process.
inline void UseAllProcessors()
{
    cpu_set_t all;
    CPU_ZERO(&all);
    for (unsigned i = 0; i < CPU_SETSIZE; ++i) {
        CPU_SET(i, &all);
    }
    ::pthread_setaffinity_np(::pthread_self(), sizeof(all), &all);
}

} // namespace Bench
