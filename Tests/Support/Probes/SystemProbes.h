// Properties of the operating system that differ between the systems the tests run on.
#pragma once

namespace ORLTest {

/// Returns whether the Windows build runs on Wine.
bool RunsOnEmulator();

/// Returns whether a plain path may have 260 units or more: on Windows only if the process enables long paths,
/// elsewhere always.
bool SystemAcceptsLongPlainPaths();

/// Returns whether the read-only attribute prevents this user from writing. The library on Linux refuses every user;
/// Wine lets the superuser write.
bool SystemEnforcesReadOnly();

/// Returns whether the OS calls the progress routine of a copy. Wine 8 does not call the routine.
bool SystemReportsCopyProgress();

/// Returns whether the OS refuses unaligned unbuffered reads. Wine 8 accepts such reads.
bool SystemEnforcesAlignment();

/// Returns the number of open descriptors or handles of the process, or 0 if the OS does not report it.
unsigned OpenHandles();

} // namespace ORLTest
