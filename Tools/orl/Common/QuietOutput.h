// Standard output that shows nothing.
#pragma once

namespace orl {

/// Discards everything that the program writes to std::cout from now on. Standard output then counts as no terminal, so
/// that no progress is shown.
void SilenceOutput();

/// Returns whether SilenceOutput was called.
bool IsOutputSilenced();

} // namespace orl
