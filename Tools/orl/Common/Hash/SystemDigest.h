// Cryptographic digests from the OS's own library: libcrypto on Linux, the cryptography services on Windows.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace orl {

enum class SystemDigestKind { kMd5, kSha1, kSha256, kSha512 };

class SystemDigest
{
public:
    /// Throws Failure if the library does not provide the digest.
    explicit SystemDigest(SystemDigestKind inKind);
    ~SystemDigest();
    SystemDigest(const SystemDigest&) = delete;
    SystemDigest& operator=(const SystemDigest&) = delete;

    void Add(const void* inBytes, std::size_t inCount);

    /// Returns the bytes of the digest. The object cannot be used afterwards.
    std::vector<unsigned char> Finish();

private:
    struct State;

    std::unique_ptr<State> mState;
};

} // namespace orl
