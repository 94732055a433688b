// The exception for exhausted memory, with the same message on every platform.
#pragma once

#include <new>

namespace ORL {

// The message of std::bad_alloc differs between standard libraries; this one is the same on every platform.
class BadAllocation : public std::bad_alloc
{
public:
    const char* what() const noexcept override { return "bad allocation"; }
};

} // namespace ORL
