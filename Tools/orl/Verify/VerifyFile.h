// Compares one file with its line in a list of checksums.
#pragma once

#include "Ingest/IngestRoots.h"
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

/// Sets the state of a file, and what belongs to it. outIdentity is that of the file, if there is one. Throws NoAnswer,
/// and what mPass throws.
void VerifyFile(VerifiedFile& ioFile, const VerifyContext& inContext, EntryIdentity& outIdentity);

} // namespace orl
