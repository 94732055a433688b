// Registry values and changes as JSON.
#pragma once

#include "Json.h"

#include <ORLRegistryStore.h>

namespace orl {

/// Returns an object: name, type, and the value, or its bytes as hexadecimal digits under "data".
Json JsonOfRegValue(const ORL::RegistryValue& inValue);

/// Returns an object: the kind of the change, the key, and the value that is set, or the name of the value that is
/// deleted.
Json JsonOfRegEdit(const ORL::RegistryEdit& inEdit);

} // namespace orl
