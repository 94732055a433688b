#include <tvxcore/NumberPunctuation.h>

#include <CorePlatform/NumberFormat.h>

namespace tvxcore {
namespace utility {

// Never destroyed: threads may still format numbers while the process exits.
const NumberPunctuation& UserNumberPunctuation()
{
    static const NumberPunctuation& sPunctuation = *new NumberPunctuation(Platform::FindUserPunctuation_Impl());
    return sPunctuation;
}

} // namespace utility
} // namespace tvxcore
