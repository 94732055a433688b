// Destroys the debug database. Runs under the foundation lock.
#pragma once

namespace ORL {

/// Destroys the database if there is one. The registry keeps the settings.
void ReleaseDebugDatabase();

} // namespace ORL
