// The text form of C4 identifiers (SMPTE ST 2114).
#pragma once

#include <string>
#include <vector>

namespace orl {

/// Returns the 90 characters for the 64 bytes of a SHA-512 digest.
std::string C4Of(std::vector<unsigned char> inDigest);

} // namespace orl
