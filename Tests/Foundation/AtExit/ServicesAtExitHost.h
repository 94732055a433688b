// What the host that ends amid its threads needs of the system.
#pragma once

namespace AtExit {

/// Waits until each thread has used every service again. A process that is killed in it never gets so far.
void LetEachThreadGoOn();

/// Has LetEachThreadGoOn run once more after the static objects of every library have been destroyed, where threads still run
/// then. Windows has stopped them by that time. Called first of all by main.
void GoOnAfterEveryLibrary();

} // namespace AtExit
