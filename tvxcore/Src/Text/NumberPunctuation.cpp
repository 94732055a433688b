#include <tvxcore/NumberPunctuation.h>

#include <CorePlatform/NumberFormat.h>
#include <CorePlatform/SmallBlockSystem.h>

namespace tvxcore {
namespace utility {

namespace {

// Destroyed on unload, but not at process exit: threads may still format numbers then.
union Punctuation
{
    Punctuation() : mValue(Platform::FindUserPunctuation_Impl()) {}

    ~Punctuation()
    {
        if (Platform::IsUnloading_Impl()) {
            mValue.~NumberPunctuation();
        }
    }

    const NumberPunctuation mValue;
};

} // namespace

const NumberPunctuation& UserNumberPunctuation()
{
    static const Punctuation sPunctuation;
    return sPunctuation.mValue;
}

} // namespace utility
} // namespace tvxcore
