// orl reg list
#pragma once

#include "RegKeyName.h"

namespace orl {

struct RegListPlan
{
    RegKeyName mKey;
    bool mIsRecursive = false;
    bool mAsJson = false;
};

/// Prints the key, its values and the keys below it on standard output.
void ListRegKey(const RegListPlan& inPlan);

} // namespace orl
