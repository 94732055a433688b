// The checksums that orl computes for files, each with the name that users type and the text form of its digests.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace orl {

enum class ChecksumKind {
    kSha256,
    kXxh64,
    kXxh3, // the 64-bit form
    kXxh128,
    kMd5,
    kSha1,
    kC4, // SMPTE ST 2114: "c4" and the SHA-512 as a number of 88 digits in base 58
};

/// Returns the names of all kinds, "sha256" first.
std::vector<std::string> ChecksumNames();

/// Returns the kind that a name denotes. Throws Failure if there is none.
ChecksumKind FindChecksum(const std::string& inName);

class Checksum
{
public:
    /// Throws Failure if the system does not provide the checksum.
    explicit Checksum(ChecksumKind inKind);
    ~Checksum();
    Checksum(const Checksum&) = delete;
    Checksum& operator=(const Checksum&) = delete;

    void Add(const void* inBytes, std::size_t inCount);

    /// Returns lower-case hexadecimal digits, most significant first, or the identifier of kC4. The object cannot be
    /// used afterwards.
    std::string Finish();

private:
    struct State;

    std::unique_ptr<State> mState;
};

} // namespace orl
