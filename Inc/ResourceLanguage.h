// Floor: System
// The language that localised lookups ask for.
#pragma once

namespace ORL {

/// The process-wide language. Thread-safe.
unsigned short CurrentLanguage();

} // namespace ORL
