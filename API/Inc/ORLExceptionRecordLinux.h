// Floor: Core
// On Linux: the Windows record of a hardware exception, built from a signal. On Windows the system's headers define
//           the record and this header is empty.
//
//   void OnSignal(int, siginfo_t* inInfo, void* inContext)
//   {
//       _EXCEPTION_RECORD record;
//       if (ORL::Linux::MakeExceptionRecord(*inInfo, inContext, record)) {
//           write(sReportPipe, &record, sizeof(record)); // a process or thread at the other end writes the report
//       }
//       _exit(1);
//   }
#pragma once

#include <ORLConfig.h>

#if ORL_EXCEPTION_RECORD_IS_OURS

#  include <cstdint>
#  include <signal.h>

/// Has the layout of the 64-bit Windows record: 152 bytes.
struct _EXCEPTION_RECORD
{
    std::uint32_t ExceptionCode;
    std::uint32_t ExceptionFlags;       ///< 0: execution can continue; 1: it cannot
    _EXCEPTION_RECORD* ExceptionRecord; ///< the exception during whose handling this one occurred, or null
    void* ExceptionAddress;             ///< address of the faulting instruction
    std::uint32_t NumberParameters;     ///< number of values set in ExceptionInformation; the others are 0
    std::uint64_t ExceptionInformation[15];
};

namespace ORL {
namespace Linux {

/// Fills outRecord from the arguments of a signal handler that was installed with SA_SIGINFO. inContext is the
/// handler's third argument and may be null: the record then lacks the details found only in the processor's registers.
///
/// | signal            | code of the record                                                                       |
/// |---|---|
/// | SIGSEGV           | 0xC0000005 access violation; its parameters are 0 for a read, 1 for a write or 8 for an  |
/// |                   | instruction fetch, and the address. A non-canonical address is reported as all ones.     |
/// |                   | 0xC0000096 if the cause is a privileged instruction                                      |
/// | SIGBUS            | 0x80000002 for a misaligned address, else 0xC0000006 in-page error, same parameters      |
/// | SIGFPE            | 0xC000008C to 0xC0000095, depending on the error                                         |
/// | SIGILL            | 0xC0000096 for a privileged instruction, else 0xC000001D illegal instruction             |
/// | SIGTRAP           | 0x80000003 for a breakpoint, 0x80000004 for a single step or a hardware breakpoint       |
///
/// A signal sent by a process, for example with kill() or raise(), yields the same code with no address and no
/// parameters. Returns false for every other signal and leaves outRecord unchanged. Async-signal-safe: allocates
/// nothing, takes no lock and makes no system call. Thread-safe. Never throws.
ORL_API bool MakeExceptionRecord(const siginfo_t& inInfo, const void* inContext, _EXCEPTION_RECORD& outRecord) noexcept;

} // namespace Linux
} // namespace ORL

#endif
