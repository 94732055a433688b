#include "Failure.h"
#include "Sha256.h"
#include "Text.h"

#include <openssl/evp.h>

namespace orl {

struct Sha256::State
{
    EVP_MD_CTX* mContext = ::EVP_MD_CTX_new();
};

namespace {

void Check(int inAnswer)
{
    if (inAnswer != 1) {
        throw Failure("SHA-256 is not available from the system's library");
    }
}

} // namespace

Sha256::Sha256() : mState(std::make_unique<State>())
{
    Check(::EVP_DigestInit_ex(mState->mContext, ::EVP_sha256(), nullptr));
}

Sha256::~Sha256()
{
    ::EVP_MD_CTX_free(mState->mContext);
}

void Sha256::Add(const void* inBytes, std::size_t inCount)
{
    Check(::EVP_DigestUpdate(mState->mContext, inBytes, inCount));
}

std::string Sha256::Finish()
{
    unsigned char digest[32];
    Check(::EVP_DigestFinal_ex(mState->mContext, digest, nullptr));
    return Hexadecimal(digest, sizeof(digest));
}

} // namespace orl
