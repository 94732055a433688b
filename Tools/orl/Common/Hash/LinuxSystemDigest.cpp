#include "Failure.h"
#include "SystemDigest.h"

#include <openssl/evp.h>

namespace orl {

struct SystemDigest::State
{
    struct Free
    {
        void operator()(EVP_MD_CTX* inContext) const { ::EVP_MD_CTX_free(inContext); }
    };

    const std::unique_ptr<EVP_MD_CTX, Free> mContext{::EVP_MD_CTX_new()};
};

namespace {

// A system in FIPS mode provides no MD5.
void Check(int inAnswer)
{
    if (inAnswer != 1) {
        throw Failure("the checksum is not available from the system's library");
    }
}

const EVP_MD* MethodOf(SystemDigestKind inKind)
{
    switch (inKind) {
    case SystemDigestKind::kMd5: return ::EVP_md5();
    case SystemDigestKind::kSha1: return ::EVP_sha1();
    case SystemDigestKind::kSha256: return ::EVP_sha256();
    case SystemDigestKind::kSha512: break;
    }
    return ::EVP_sha512();
}

} // namespace

SystemDigest::SystemDigest(SystemDigestKind inKind) : mState(std::make_unique<State>())
{
    Check(mState->mContext ? ::EVP_DigestInit_ex(mState->mContext.get(), MethodOf(inKind), nullptr) : 0);
}

SystemDigest::~SystemDigest() = default;

void SystemDigest::Add(const void* inBytes, std::size_t inCount)
{
    Check(::EVP_DigestUpdate(mState->mContext.get(), inBytes, inCount));
}

std::vector<unsigned char> SystemDigest::Finish()
{
    std::vector<unsigned char> digest(EVP_MAX_MD_SIZE);
    unsigned int size = 0;
    Check(::EVP_DigestFinal_ex(mState->mContext.get(), digest.data(), &size));
    digest.resize(size);
    return digest;
}

} // namespace orl
