// Floor: System
// What the tests need of the language beside its public face.
#pragma once

namespace ORL {
namespace Internal {

/// Makes the language unknown again, as at load. The next reader fetches it from the registry.
void ForgetLanguage();

} // namespace Internal
} // namespace ORL
