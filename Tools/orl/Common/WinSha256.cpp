#include "Failure.h"
#include "Sha256.h"
#include "Text.h"

#include <windows.h>

#include <bcrypt.h>

namespace orl {

struct Sha256::State
{
    BCRYPT_HASH_HANDLE mHash = nullptr;
};

namespace {

void Check(NTSTATUS inStatus)
{
    if (inStatus < 0) {
        throw Failure("SHA-256 is not available from the system's cryptography services");
    }
}

// Returns the SHA-256 provider that the process shares and never closes.
BCRYPT_ALG_HANDLE Provider()
{
    static const BCRYPT_ALG_HANDLE sProvider = [] {
        BCRYPT_ALG_HANDLE provider = nullptr;
        Check(::BCryptOpenAlgorithmProvider(&provider, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
        return provider;
    }();
    return sProvider;
}

} // namespace

Sha256::Sha256() : mState(std::make_unique<State>())
{
    Check(::BCryptCreateHash(Provider(), &mState->mHash, nullptr, 0, nullptr, 0, 0));
}

Sha256::~Sha256()
{
    ::BCryptDestroyHash(mState->mHash);
}

void Sha256::Add(const void* inBytes, std::size_t inCount)
{
    // The cast is safe: BCryptHashData does not modify its input.
    UCHAR* const bytes = static_cast<UCHAR*>(const_cast<void*>(inBytes));
    Check(::BCryptHashData(mState->mHash, bytes, static_cast<ULONG>(inCount), 0));
}

std::string Sha256::Finish()
{
    unsigned char digest[32];
    Check(::BCryptFinishHash(mState->mHash, digest, sizeof(digest), 0));
    return Hexadecimal(digest, sizeof(digest));
}

} // namespace orl
