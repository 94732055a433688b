// Floor: Core
// Contract checks and assertions. The checks are compiled into every build.
//
//   ORL_ASSERT(expression)           an internal inconsistency: reports, continues; the user can mute each site
//   ORL_INPUT_CONTRACT(expression)   the caller violated a precondition: reports, then raises error 25 of package 105
//   ORL_OUTPUT_CONTRACT(expression)  the library violated a postcondition: reports, then raises error 26 of package 105
//
// Source, line and function identify a site. Crash triage and users' ignore lists use them as keys. The forms ending in
// _AT take the source file and the line (those of assertions also the function) as arguments, so that a site that
// triage already refers to keeps its identity when code moves. The _IN forms take only the function; the _MESSAGE forms
// add a message to the report.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/Debug.h>

#include <atomic>
#include <cstddef>

namespace ORL {

/// Returns true if inAllowNull is true or the address is not null. Never accesses the memory.
ORL_API bool IsValidAddress(const void* inAddress, bool inAllowNull);

/// Same as IsValidAddress(inAddress, inAllowNull). The size is ignored.
ORL_API bool IsValidAddressRange(const void* inAddress, std::size_t inSize, bool inAllowNull);

/// Returns true if inBegin is null and inAllowNull is true. Otherwise fires an input contract if inBegin is not below
/// inEnd, and returns whether inBegin is not null.
ORL_API bool IsValidAddressRange(const void* inBegin, const void* inEnd, bool inAllowNull);

namespace Debug {

/// The ignore flag of one assertion site. The flag is deliberately tested and set without a lock, so two threads may
/// both report the same site.
using IgnoreFlag = std::atomic<bool>;

/// Reports a failed assertion and stores whether the user chose to ignore the site. Returns true to request a
/// breakpoint trap.
ORL_API bool ReportAssert(IgnoreFlag& ioIgnore, const char* inExpression, const char* inMessage, const char* inFile,
                          long inLine, const char* inFunction);

/// Reports a broken contract. Returns true to request a breakpoint trap.
ORL_API bool ReportContract(const char* inExpression, const char* inFile, long inLine);

/// Raises the error of a broken contract through tvxcore::config::ThrowError. May return.
ORL_API void ThrowInputContractError();
ORL_API void ThrowOutputContractError();

} // namespace Debug
} // namespace ORL

#define ORL_BREAKPOINT_TRAP() __asm__ volatile("int3")

#define ORL_ASSERT_MESSAGE_AT(expression, text, message, file, line, function)                                         \
  do {                                                                                                                 \
    static ::ORL::Debug::IgnoreFlag sOrlIgnore{false};                                                                 \
    if (!sOrlIgnore.load(std::memory_order_relaxed) && !(expression)) {                                                \
      if (::ORL::Debug::ReportAssert(sOrlIgnore, text, message, file, line, function)) {                               \
        ORL_BREAKPOINT_TRAP();                                                                                         \
      }                                                                                                                \
    }                                                                                                                  \
  } while (false)

// Each form stringises its own argument, so that a macro inside the expression is shown as written.
#define ORL_ASSERT_AT(expression, file, line, function)                                                                \
  ORL_ASSERT_MESSAGE_AT(expression, #expression, "", file, line, function)
#define ORL_ASSERT_IN(expression, function)                                                                            \
  ORL_ASSERT_MESSAGE_AT(expression, #expression, "", __FILE__, __LINE__, function)
#define ORL_ASSERT_MESSAGE_IN(expression, message, function)                                                           \
  ORL_ASSERT_MESSAGE_AT(expression, #expression, message, __FILE__, __LINE__, function)
#define ORL_ASSERT(expression) ORL_ASSERT_MESSAGE_AT(expression, #expression, "", __FILE__, __LINE__, __func__)

#define ORL_CONTRACT_AT_(expression, text, file, line, raise)                                                          \
  do {                                                                                                                 \
    if (!(expression)) {                                                                                               \
      if (::ORL::Debug::ReportContract(text, file, line)) {                                                            \
        ORL_BREAKPOINT_TRAP();                                                                                         \
      }                                                                                                                \
      raise();                                                                                                         \
    }                                                                                                                  \
  } while (false)

#define ORL_INPUT_CONTRACT_AT(expression, file, line)                                                                  \
  ORL_CONTRACT_AT_(expression, #expression, file, line, ::ORL::Debug::ThrowInputContractError)
#define ORL_OUTPUT_CONTRACT_AT(expression, file, line)                                                                 \
  ORL_CONTRACT_AT_(expression, #expression, file, line, ::ORL::Debug::ThrowOutputContractError)
#define ORL_INPUT_CONTRACT(expression)                                                                                 \
  ORL_CONTRACT_AT_(expression, #expression, __FILE__, __LINE__, ::ORL::Debug::ThrowInputContractError)
#define ORL_OUTPUT_CONTRACT(expression)                                                                                \
  ORL_CONTRACT_AT_(expression, #expression, __FILE__, __LINE__, ::ORL::Debug::ThrowOutputContractError)
