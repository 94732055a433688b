// What the system below the tests is like, where they cannot ask the same of every one.
#pragma once

namespace ORLTest {

/// The Windows build runs on Wine, not on Windows.
bool RunsOnEmulator();

/// A plain path may have 260 units and more. At home only where the process takes long paths; elsewhere always.
bool SystemTakesLongPlainPaths();

/// This user is kept from writing a file that is marked read-only: our Linux platform keeps everybody from it, Wine lets
/// the superuser through.
bool SystemKeepsReadOnlyMark();

/// The system calls the progress routine of a copy: Wine 8 does not.
bool SystemTellsCopyProgress();

/// The system refuses unbuffered reads that are not aligned: Wine 8 does not.
bool SystemKeepsAlignment();

/// Descriptors or handles that the process has open now. 0 where the system does not tell.
unsigned OpenHandles();

} // namespace ORLTest
