// Compares one file with its line in a checksum list.
#pragma once

#include "Ingest/Plan/IngestRoots.h"
#include "VerifyFolder.h"

#include <cstddef>
#include <functional>
#include <string>

namespace orl {

struct VerifyContext
{
    const IngestRoots& mRoots;
    unsigned __int64 mListTime; // last-write time of the list
    bool mIsQuick;

    // Called on any thread, after each block; may throw.
    std::function<void(const std::string& inName, std::size_t inBytes)> mPass;
};

/// Sets mState, mSize, mDigest and mReason of a file. outIdentity receives the identity of the file, if it exists.
/// Throws NoAnswer, and whatever mPass throws.
void VerifyFile(VerifiedFile& ioFile, const VerifyContext& inContext, EntryIdentity& outIdentity);

} // namespace orl
