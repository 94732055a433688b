// orl reg check
#pragma once

namespace orl {

/// Reads both stores and prints on standard output whether they are intact. Throws PartialFailure if a store is
/// damaged.
void CheckRegStores(bool inAsJson);

} // namespace orl
