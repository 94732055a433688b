// The platform part of the host whose read fails when it completes.
#pragma once

#include <cstdint>
#include <string>

namespace FailingCompletion {

/// Selects the engine for reads. Must be called before the library starts.
void UseEngine(const std::string& inEngine);

/// Makes the process's next read fail when it completes, if it reads at the position that this function returns.
std::uint64_t MakeNextReadFail(std::uint64_t inFileSize);

/// Returns when the thread that handles completions has ended.
void AwaitEndOfCompletionThread();

} // namespace FailingCompletion
