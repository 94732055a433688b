// The exception for exhausted memory, with one text on every platform.
#pragma once

#include <new>

namespace ORL {

// The text of std::bad_alloc differs between standard libraries; this text is the same on every platform.
class BadAllocation : public std::bad_alloc
{
public:
    const char* what() const noexcept override { return "bad allocation"; }
};

} // namespace ORL
