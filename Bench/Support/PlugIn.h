// The names of the resources in the benchmarks' plug-in, which PlugIn.cmake builds.
#pragma once

#include <cstdio>
#include <string>

namespace Bench {

inline constexpr int kNames = 1000;

inline std::string NameOf(int inNumber)
{
    char name[32];
    std::snprintf(name, sizeof(name), "PICTURE_%04d", inNumber);
    return name;
}

} // namespace Bench
