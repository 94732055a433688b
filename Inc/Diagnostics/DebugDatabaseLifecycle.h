// Destroys the debug database. The caller holds the foundation lock.
#pragma once

namespace ORL {

/// Destroys the database if it exists. The registry keeps the settings.
void ReleaseDebugDatabase();

} // namespace ORL
