// Floor: Core
// The property key that the library keeps to itself.
#pragma once

#include <tvxcore/String.h>

namespace ORL {

extern const UTF16String kPropertyKey_WorkBarAdjusted; // workbar.adjusted

} // namespace ORL
