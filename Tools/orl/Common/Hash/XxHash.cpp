#include "XxHash.h"

#include <new>

// The header alone contains the algorithms, so both platforms need no library.
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace orl {

struct XxHash::State
{
    struct Free
    {
        void operator()(XXH64_state_t* inState) const { ::XXH64_freeState(inState); }
        void operator()(XXH3_state_t* inState) const { ::XXH3_freeState(inState); }
    };

    XxHashKind mKind = XxHashKind::kXxh64;
    std::unique_ptr<XXH64_state_t, Free> m64; // set only for kXxh64
    std::unique_ptr<XXH3_state_t, Free> m3;   // set for the other kinds
};

namespace {

template <class Canonical>
std::vector<unsigned char> BytesOf(const Canonical& inDigest)
{
    return {std::begin(inDigest.digest), std::end(inDigest.digest)};
}

} // namespace

XxHash::XxHash(XxHashKind inKind) : mState(std::make_unique<State>())
{
    mState->mKind = inKind;
    if (inKind == XxHashKind::kXxh64) {
        mState->m64.reset(::XXH64_createState());
    } else {
        mState->m3.reset(::XXH3_createState());
    }
    if (!mState->m64 && !mState->m3) {
        throw std::bad_alloc();
    }
    switch (inKind) {
    case XxHashKind::kXxh64: ::XXH64_reset(mState->m64.get(), 0); break;
    case XxHashKind::kXxh3: ::XXH3_64bits_reset(mState->m3.get()); break;
    case XxHashKind::kXxh128: ::XXH3_128bits_reset(mState->m3.get()); break;
    }
}

XxHash::~XxHash() = default;

void XxHash::Add(const void* inBytes, std::size_t inCount)
{
    switch (mState->mKind) {
    case XxHashKind::kXxh64: ::XXH64_update(mState->m64.get(), inBytes, inCount); break;
    case XxHashKind::kXxh3: ::XXH3_64bits_update(mState->m3.get(), inBytes, inCount); break;
    case XxHashKind::kXxh128: ::XXH3_128bits_update(mState->m3.get(), inBytes, inCount); break;
    }
}

std::vector<unsigned char> XxHash::Finish() const
{
    if (mState->mKind == XxHashKind::kXxh128) {
        XXH128_canonical_t canonical;
        ::XXH128_canonicalFromHash(&canonical, ::XXH3_128bits_digest(mState->m3.get()));
        return BytesOf(canonical);
    }
    XXH64_canonical_t canonical;
    ::XXH64_canonicalFromHash(&canonical, mState->mKind == XxHashKind::kXxh64 ? ::XXH64_digest(mState->m64.get())
                                                                              : ::XXH3_64bits_digest(mState->m3.get()));
    return BytesOf(canonical);
}

} // namespace orl
