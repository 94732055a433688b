#include "Checksum.h"

#include "C4.h"
#include "Failure.h"
#include "SystemDigest.h"
#include "Text.h"
#include "XxHash.h"

#include <optional>

namespace orl {

namespace {

struct NamedChecksum
{
    const char* mName;
    ChecksumKind mKind;
};

constexpr NamedChecksum kNames[] = {
    {"sha256", ChecksumKind::kSha256}, {"xxh64", ChecksumKind::kXxh64}, {"xxh3", ChecksumKind::kXxh3},
    {"xxh128", ChecksumKind::kXxh128}, {"md5", ChecksumKind::kMd5},     {"sha1", ChecksumKind::kSha1},
    {"c4", ChecksumKind::kC4},
};

} // namespace

struct Checksum::State
{
    explicit State(ChecksumKind inKind) : mKind(inKind)
    {
        switch (inKind) {
        case ChecksumKind::kSha256: mSystem.emplace(SystemDigestKind::kSha256); break;
        case ChecksumKind::kXxh64: mXxHash.emplace(XxHashKind::kXxh64); break;
        case ChecksumKind::kXxh3: mXxHash.emplace(XxHashKind::kXxh3); break;
        case ChecksumKind::kXxh128: mXxHash.emplace(XxHashKind::kXxh128); break;
        case ChecksumKind::kMd5: mSystem.emplace(SystemDigestKind::kMd5); break;
        case ChecksumKind::kSha1: mSystem.emplace(SystemDigestKind::kSha1); break;
        case ChecksumKind::kC4: mSystem.emplace(SystemDigestKind::kSha512); break;
        }
    }

    const ChecksumKind mKind;
    std::optional<SystemDigest> mSystem; // exactly one of the two is set
    std::optional<XxHash> mXxHash;
};

std::vector<std::string> ChecksumNames()
{
    std::vector<std::string> names;
    for (const NamedChecksum& named : kNames) {
        names.emplace_back(named.mName);
    }
    return names;
}

ChecksumKind FindChecksum(const std::string& inName)
{
    for (const NamedChecksum& named : kNames) {
        if (inName == named.mName) {
            return named.mKind;
        }
    }
    throw Failure("there is no checksum \"" + WithoutControlCharacters(inName) + "\"", kExitUsage);
}

Checksum::Checksum(ChecksumKind inKind) : mState(std::make_unique<State>(inKind))
{
}

Checksum::~Checksum() = default;

void Checksum::Add(const void* inBytes, std::size_t inCount)
{
    if (mState->mXxHash) {
        mState->mXxHash->Add(inBytes, inCount);
    } else {
        mState->mSystem->Add(inBytes, inCount);
    }
}

std::string Checksum::Finish()
{
    const std::vector<unsigned char> digest = mState->mXxHash ? mState->mXxHash->Finish() : mState->mSystem->Finish();
    return mState->mKind == ChecksumKind::kC4 ? C4Of(digest) : Hexadecimal(digest.data(), digest.size());
}

} // namespace orl
