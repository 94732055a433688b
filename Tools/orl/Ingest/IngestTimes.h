// Whether a copy has its source's last-write time, on a file system that may keep less of it.
#pragma once

#include <tvxcore/String.h>

namespace orl {

/// Compares what the target has with what its file system makes of the source's time, which is found out by a file that is
/// made for it under inTemporary, in the folder of the target, and deleted. True where the times are equal at once.
bool HasTimeOf(const UTF16String& inSource, const UTF16String& inTarget, const UTF16String& inTemporary);

} // namespace orl
