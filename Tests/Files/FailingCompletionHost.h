// What the host whose read fails when it completes needs of the system.
#pragma once

#include <cstdint>
#include <string>

namespace FailingCompletion {

/// Before the library starts: the engine that reads are to go through.
void UseEngine(const std::string& inEngine);

/// From now on the next read of the process fails when it completes, if it asks for what stands there. Gives where.
std::uint64_t MakeNextReadFail(std::uint64_t inFileSize);

/// Returns once the thread that drains completions has ended.
void AwaitEndOfCompletionThread();

} // namespace FailingCompletion
