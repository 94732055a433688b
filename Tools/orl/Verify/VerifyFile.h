// Compares one file with its line in a list of checksums.
#pragma once

#include "Ingest/Plan/IngestRoots.h"
#include "VerifyFolder.h"

#include <cstddef>
#include <functional>

namespace orl {

struct VerifyContext
{
    const IngestRoots& mRoots;
    unsigned __int64 mListTime; // last-write time of the list
    bool mIsQuick;
    std::function<void(std::size_t inBytes)> mPass; // called on any thread, after each block; may throw
};

/// Sets the state of a file and its related members. outIdentity receives the identity of the file, if it exists.
/// Throws NoAnswer, and the exceptions of mPass.
void VerifyFile(VerifiedFile& ioFile, const VerifyContext& inContext, EntryIdentity& outIdentity);

} // namespace orl
