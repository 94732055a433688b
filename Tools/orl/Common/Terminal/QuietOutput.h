// Discards standard output.
#pragma once

namespace orl {

/// Discards everything that the program writes to std::cout from now on. Standard output then does not count as a
/// terminal, so no progress is shown.
void SilenceOutput();

/// Returns whether SilenceOutput was called.
bool IsOutputSilenced();

} // namespace orl
