// Floor: Core
// Contract checks and assertions. They stay compiled in, in every build.
//
//   ORL_ASSERT(expression)           an internal inconsistency: reports and goes on; each site can be ignored for good
//   ORL_INPUT_CONTRACT(expression)   a caller broke its promise: reports, then raises error 25 of package 105
//   ORL_OUTPUT_CONTRACT(expression)  we broke ours: reports, then raises error 26 of package 105
//
// A site is named by source, line and function. Crash triage and users' ignore lists are keyed by these, so a site
// whose identity is published states it (the forms that end in _AT) and keeps it when code moves. _IN states the
// function only; _MESSAGE adds a text for the person who reads the report.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/Debug.h>

#include <atomic>
#include <cstddef>

namespace ORL {

/// True when inAllowNull is true or the address is not null. The memory is not looked at.
ORL_API bool IsValidAddress(const void* inAddress, bool inAllowNull);

/// As IsValidAddress of inAddress; the size is not looked at.
ORL_API bool IsValidAddressRange(const void* inAddress, std::size_t inSize, bool inAllowNull);

/// True for a null inBegin when inAllowNull is true. Otherwise fires the input contract unless inBegin < inEnd, and
/// tells whether inBegin is not null.
ORL_API bool IsValidAddressRange(const void* inBegin, const void* inEnd, bool inAllowNull);

namespace Debug {

/// The ignore flag of one assertion site. It is read and written without a lock on purpose: two threads may both
/// report one failing site.
using IgnoreFlag = std::atomic<bool>;

/// Reports a failed assertion and stores the user's wish to ignore the site. True asks for a breakpoint trap.
ORL_API bool ReportAssert(IgnoreFlag& ioIgnore, const char* inExpression, const char* inMessage, const char* inFile,
                          long inLine, const char* inFunction);

/// Reports a broken contract. True asks for a breakpoint trap.
ORL_API bool ReportContract(const char* inExpression, const char* inFile, long inLine);

/// Raises the error of a broken contract through tvxcore::config::ThrowError. May return.
ORL_API void ThrowInputContractError();
ORL_API void ThrowOutputContractError();

} // namespace Debug
} // namespace ORL

#define ORL_BREAKPOINT_TRAP() __asm__ volatile("int3")

#define ORL_ASSERT_MESSAGE_AT(expression, text, message, file, line, function)                                \
    do {                                                                                                      \
        static ::ORL::Debug::IgnoreFlag sOrlIgnore{false};                                                    \
        if (!sOrlIgnore.load(std::memory_order_relaxed) && !(expression)) {                                   \
            if (::ORL::Debug::ReportAssert(sOrlIgnore, text, message, file, line, function)) {                \
                ORL_BREAKPOINT_TRAP();                                                                        \
            }                                                                                                 \
        }                                                                                                     \
    } while (false)

// Each form turns its own argument into text, so that a macro inside the expression is shown as it was written.
#define ORL_ASSERT_AT(expression, file, line, function)                                                       \
    ORL_ASSERT_MESSAGE_AT(expression, #expression, "", file, line, function)
#define ORL_ASSERT_IN(expression, function)                                                                   \
    ORL_ASSERT_MESSAGE_AT(expression, #expression, "", __FILE__, __LINE__, function)
#define ORL_ASSERT_MESSAGE_IN(expression, message, function)                                                  \
    ORL_ASSERT_MESSAGE_AT(expression, #expression, message, __FILE__, __LINE__, function)
#define ORL_ASSERT(expression) ORL_ASSERT_MESSAGE_AT(expression, #expression, "", __FILE__, __LINE__, __func__)

#define ORL_CONTRACT_AT_(expression, text, file, line, raise)                                                 \
    do {                                                                                                      \
        if (!(expression)) {                                                                                  \
            if (::ORL::Debug::ReportContract(text, file, line)) {                                             \
                ORL_BREAKPOINT_TRAP();                                                                        \
            }                                                                                                 \
            raise();                                                                                          \
        }                                                                                                     \
    } while (false)

#define ORL_INPUT_CONTRACT_AT(expression, file, line)                                                         \
    ORL_CONTRACT_AT_(expression, #expression, file, line, ::ORL::Debug::ThrowInputContractError)
#define ORL_OUTPUT_CONTRACT_AT(expression, file, line)                                                        \
    ORL_CONTRACT_AT_(expression, #expression, file, line, ::ORL::Debug::ThrowOutputContractError)
#define ORL_INPUT_CONTRACT(expression)                                                                        \
    ORL_CONTRACT_AT_(expression, #expression, __FILE__, __LINE__, ::ORL::Debug::ThrowInputContractError)
#define ORL_OUTPUT_CONTRACT(expression)                                                                       \
    ORL_CONTRACT_AT_(expression, #expression, __FILE__, __LINE__, ::ORL::Debug::ThrowOutputContractError)
