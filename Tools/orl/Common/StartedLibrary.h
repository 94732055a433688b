#pragma once

#include <ORLFoundation.h>

namespace orl {

/// Starts the library; the destructor stops it.
struct StartedLibrary
{
    StartedLibrary() { ORL::Foundation::Initialize(); }
    ~StartedLibrary() { ORL::Foundation::Terminate(); }
    StartedLibrary(const StartedLibrary&) = delete;
    StartedLibrary& operator=(const StartedLibrary&) = delete;
};

} // namespace orl
