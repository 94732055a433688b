#include <ORLDebug.h>

#include <tvxcore/ErrorManager.h>

namespace ORL {

bool IsValidAddress(const void* inAddress, bool inAllowNull)
{
    return inAllowNull || inAddress != nullptr;
}

bool IsValidAddressRange(const void* inAddress, std::size_t, bool inAllowNull)
{
    return IsValidAddress(inAddress, inAllowNull);
}

bool IsValidAddressRange(const void* inBegin, const void* inEnd, bool inAllowNull)
{
    if (inAllowNull && inBegin == nullptr) {
        return true;
    }
    ORL_INPUT_CONTRACT_AT(inBegin < inEnd, "Debug", 61);
    return inBegin != nullptr;
}

namespace Debug {

namespace {

// Contract errors belong to package 105 and are raised at level 0 with no replacement values.
void ThrowContractError(const char* inZString, long inErrorID)
{
    using tvxcore::config::ReplacementValue;
    const ReplacementValue first, second, third, fourth;
    tvxcore::config::ThrowError(tvxcore::config::kErrorLevel_Error, inZString, 105, inErrorID, true, first, second,
                                third, fourth);
}

} // namespace

bool ReportAssert(IgnoreFlag& ioIgnore, const char* inExpression, const char* inMessage, const char* inFile,
                  long inLine, const char* inFunction)
{
    bool ignore = false;
    const bool wantsBreak = tvxcore::debug::BreakAfterAssertDialog(
        ignore, inExpression, reinterpret_cast<const unsigned char*>(inMessage), inFile, inLine, inFunction);
    if (ignore) { // otherwise keeps the flag, which a concurrent report of the same site may have set
        ioIgnore.store(true, std::memory_order_relaxed);
    }
    return wantsBreak && tvxcore::debug::IsDebuggerAttached();
}

bool ReportContract(const char* inExpression, const char* inFile, long inLine)
{
    return tvxcore::debug::BreakAfterContractDialog(inExpression, inFile, inLine)
           && tvxcore::debug::IsDebuggerAttached();
}

void ThrowInputContractError()
{
    ThrowContractError("$$$/tvxcore/utility/Error/Contract/InputContractViolation="
                       "An input contract violation has occurred!",
                       25);
}

void ThrowOutputContractError()
{
    ThrowContractError("$$$/tvxcore/utility/Error/Contract/OutputContractViolation="
                       "An output contract violation has occurred!",
                       26);
}

} // namespace Debug
} // namespace ORL
