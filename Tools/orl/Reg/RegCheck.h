// orl reg check
#pragma once

namespace orl {

/// Reads both stores and prints on standard output whether they are intact. Throws PartialFailure if one is not.
void CheckRegStores(bool inAsJson);

} // namespace orl
