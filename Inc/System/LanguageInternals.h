// Access to the language setting for tests.
#pragma once

namespace ORL {
namespace Internal {

/// Resets the language to unknown, as at load. The next read fetches it from the registry.
void ForgetLanguage();

} // namespace Internal
} // namespace ORL
