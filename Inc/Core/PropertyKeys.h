// The library's private property key.
#pragma once

#include <tvxcore/String.h>

namespace ORL {

extern const UTF16String kPropertyKey_WorkBarAdjusted; // workbar.adjusted

} // namespace ORL
