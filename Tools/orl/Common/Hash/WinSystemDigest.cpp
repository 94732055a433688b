#include "Failure.h"
#include "SystemDigest.h"

#include <windows.h>

#include <bcrypt.h>

namespace orl {

struct SystemDigest::State
{
    ~State() { ::BCryptDestroyHash(mHash); }

    BCRYPT_HASH_HANDLE mHash = nullptr;
};

namespace {

// A system in FIPS mode provides no MD5.
void Check(NTSTATUS inStatus)
{
    if (inStatus < 0) {
        throw Failure("the checksum is not available from the system's cryptography services");
    }
}

BCRYPT_ALG_HANDLE Open(LPCWSTR inAlgorithm)
{
    BCRYPT_ALG_HANDLE provider = nullptr;
    Check(::BCryptOpenAlgorithmProvider(&provider, inAlgorithm, nullptr, 0));
    return provider;
}

// Returns the provider of an algorithm, which the process shares and never closes.
BCRYPT_ALG_HANDLE ProviderOf(SystemDigestKind inKind)
{
    switch (inKind) {
    case SystemDigestKind::kMd5: {
        static const BCRYPT_ALG_HANDLE sProvider = Open(BCRYPT_MD5_ALGORITHM);
        return sProvider;
    }
    case SystemDigestKind::kSha1: {
        static const BCRYPT_ALG_HANDLE sProvider = Open(BCRYPT_SHA1_ALGORITHM);
        return sProvider;
    }
    case SystemDigestKind::kSha256: {
        static const BCRYPT_ALG_HANDLE sProvider = Open(BCRYPT_SHA256_ALGORITHM);
        return sProvider;
    }
    case SystemDigestKind::kSha512: break;
    }
    static const BCRYPT_ALG_HANDLE sProvider = Open(BCRYPT_SHA512_ALGORITHM);
    return sProvider;
}

} // namespace

SystemDigest::SystemDigest(SystemDigestKind inKind) : mState(std::make_unique<State>())
{
    Check(::BCryptCreateHash(ProviderOf(inKind), &mState->mHash, nullptr, 0, nullptr, 0, 0));
}

SystemDigest::~SystemDigest() = default;

void SystemDigest::Add(const void* inBytes, std::size_t inCount)
{
    // The cast is safe: BCryptHashData does not modify its input.
    UCHAR* const bytes = static_cast<UCHAR*>(const_cast<void*>(inBytes));
    Check(::BCryptHashData(mState->mHash, bytes, static_cast<ULONG>(inCount), 0));
}

std::vector<unsigned char> SystemDigest::Finish()
{
    ULONG size = 0;
    ULONG written = 0;
    Check(::BCryptGetProperty(mState->mHash, BCRYPT_HASH_LENGTH, reinterpret_cast<UCHAR*>(&size), sizeof(size),
                              &written, 0));
    std::vector<unsigned char> digest(size);
    Check(::BCryptFinishHash(mState->mHash, digest.data(), size, 0));
    return digest;
}

} // namespace orl
