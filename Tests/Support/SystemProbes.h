// Properties of the operating system that differ between the systems the tests run on.
#pragma once

namespace ORLTest {

/// Whether the Windows build runs on Wine.
bool RunsOnEmulator();

/// Whether a plain path may have 260 units or more. On Windows only if the process enables long paths; elsewhere
/// always.
bool SystemTakesLongPlainPaths();

/// Whether the read-only mark keeps this user from writing. Our Linux platform refuses every user; Wine lets the
/// superuser write.
bool SystemKeepsReadOnlyMark();

/// Whether the OS calls the progress routine of a copy. Wine 8 does not.
bool SystemTellsCopyProgress();

/// Whether the OS refuses unaligned unbuffered reads. Wine 8 does not.
bool SystemKeepsAlignment();

/// Returns the number of open descriptors or handles of the process, or 0 if the OS does not report it.
unsigned OpenHandles();

} // namespace ORLTest
