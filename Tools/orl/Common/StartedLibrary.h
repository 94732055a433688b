#pragma once

#include <ORLFoundation.h>

namespace orl {

/// The library runs for as long as this lives.
struct StartedLibrary
{
    StartedLibrary() { ORL::Foundation::Initialize(); }
    ~StartedLibrary() { ORL::Foundation::Terminate(); }
    StartedLibrary(const StartedLibrary&) = delete;
    StartedLibrary& operator=(const StartedLibrary&) = delete;
};

} // namespace orl
