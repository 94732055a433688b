// orl reg check
#pragma once

namespace orl {

/// Reads both stores and says on standard output whether they are whole. Throws PartialFailure if one is not.
void CheckRegStores(bool inAsJson);

} // namespace orl
