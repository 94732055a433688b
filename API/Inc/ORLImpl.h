// Floor: Objects
// The base of every private implementation record.
#pragma once

#include <ORLConfig.h>

namespace ORL {

/// A class with hidden state owns one record derived from Impl, and deletes it through this base.
struct ORL_API Impl
{
    Impl() = default;
    Impl(const Impl&) = default;
    Impl& operator=(const Impl&) = default;
    virtual ~Impl();
};

} // namespace ORL
