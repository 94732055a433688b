// Floor: Foundation
// Converts signals to exception records. All this code may run in a signal handler.
#include <ORLExceptionRecordLinux.h>
#include <Platform/ExceptionRecords.h>

#include <cstdint>
#include <cstring>
#include <ucontext.h>

static_assert(sizeof(_EXCEPTION_RECORD) == 152, "the layout differs from that on Windows");

namespace ORL {
namespace Linux {

namespace {

enum Code : std::uint32_t {
    kDatatypeMisalignment = 0x80000002,
    kBreakpoint = 0x80000003,
    kSingleStep = 0x80000004,
    kAccessViolation = 0xC0000005,
    kInPageError = 0xC0000006,
    kIllegalInstruction = 0xC000001D,
    kArrayBoundsExceeded = 0xC000008C,
    kFloatDenormalOperand = 0xC000008D,
    kFloatDivideByZero = 0xC000008E,
    kFloatInexactResult = 0xC000008F,
    kFloatInvalidOperation = 0xC0000090,
    kFloatOverflow = 0xC0000091,
    kFloatStackCheck = 0xC0000092,
    kFloatUnderflow = 0xC0000093,
    kIntegerDivideByZero = 0xC0000094,
    kIntegerOverflow = 0xC0000095,
    kPrivilegedInstruction = 0xC0000096,
};

// The processor's exception numbers.
constexpr std::uint64_t kTrapBreakpoint = 3;
constexpr std::uint64_t kTrapGeneralProtection = 13;
constexpr std::uint64_t kTrapFloatX87 = 16;

// Bits of the processor's page-fault error code.
constexpr std::uint64_t kPageFaultOnWrite = 1u << 1;
constexpr std::uint64_t kPageFaultOnExecute = 1u << 4;

// Bits of the floating-point status words, the same for x87 and SSE unless the name says otherwise.
constexpr unsigned kStatusInvalid = 1u << 0;
constexpr unsigned kStatusDenormal = 1u << 1;
constexpr unsigned kStatusStackFaultX87 = 1u << 6;
constexpr unsigned kMaskShiftSse = 7;

// The processor state that the kernel saved when it raised the signal.
class Registers
{
public:
    explicit Registers(const void* inContext) noexcept : mContext(static_cast<const ucontext_t*>(inContext)) {}

    bool AreKnown() const noexcept { return mContext != nullptr; }

    std::uint64_t Get(int inRegister) const noexcept
    {
        return AreKnown() ? static_cast<std::uint64_t>(mContext->uc_mcontext.gregs[inRegister]) : 0;
    }

    std::uint64_t Instruction() const noexcept { return Get(REG_RIP); }

    std::uint64_t Trap() const noexcept { return Get(REG_TRAPNO); }

    /// Returns the floating-point exceptions that are raised and not masked.
    unsigned FloatExceptions() const noexcept
    {
        const _libc_fpstate* const state = AreKnown() ? mContext->uc_mcontext.fpregs : nullptr;
        if (state == nullptr) {
            return 0;
        }
        if (Trap() == kTrapFloatX87) {
            return static_cast<unsigned>(state->swd) & (~static_cast<unsigned>(state->cwd) | kStatusStackFaultX87);
        }
        return state->mxcsr & ~(state->mxcsr >> kMaskShiftSse);
    }

private:
    const ucontext_t* mContext;
};

// The processor reports a privileged instruction as a general protection fault; only the bytes of the instruction
// identify it.
bool IsPrivilegedInstruction(const unsigned char* inCode) noexcept
{
    const unsigned char first = inCode[0];
    if (first == 0x0F) { // the second byte is readable, since the processor has decoded it
        const unsigned char second = inCode[1];
        return second == 0x01 || second == 0x06 || second == 0x08 || second == 0x09 || second == 0x30 || second == 0x32
               || (second >= 0x20 && second <= 0x23);
    }
    const bool isPort =
        (first >= 0xE4 && first <= 0xE7) || (first >= 0xEC && first <= 0xEF) || (first >= 0x6C && first <= 0x6F);
    return isPort || first == 0xF4 || first == 0xFA || first == 0xFB; // hlt, cli, sti
}

// Returns true unless the kernel raised the signal for a failed instruction, as a positive si_code shows.
bool IsSent(const siginfo_t& inInfo) noexcept
{
    return inInfo.si_code <= 0;
}

void* AsAddress(std::uint64_t inValue) noexcept
{
    return reinterpret_cast<void*>(inValue);
}

void SetAccess(_EXCEPTION_RECORD& ioRecord, std::uint64_t inAccess, std::uint64_t inAddress) noexcept
{
    ioRecord.NumberParameters = 2;
    ioRecord.ExceptionInformation[0] = inAccess;
    ioRecord.ExceptionInformation[1] = inAddress;
}

std::uint64_t AccessOf(const Registers& inRegisters) noexcept
{
    const std::uint64_t error = inRegisters.Get(REG_ERR);
    if ((error & kPageFaultOnExecute) != 0) {
        return 8;
    }
    return (error & kPageFaultOnWrite) != 0 ? 1 : 0;
}

void FillFromSegmentationFault(const siginfo_t& inInfo, const Registers& inRegisters,
                               _EXCEPTION_RECORD& ioRecord) noexcept
{
    ioRecord.ExceptionCode = kAccessViolation;
    if (IsSent(inInfo)) {
        return;
    }
    if (inRegisters.Trap() != kTrapGeneralProtection) {
        SetAccess(ioRecord, AccessOf(inRegisters), reinterpret_cast<std::uint64_t>(inInfo.si_addr));
        return;
    }
    if (IsPrivilegedInstruction(static_cast<const unsigned char*>(AsAddress(inRegisters.Instruction())))) {
        ioRecord.ExceptionCode = kPrivilegedInstruction;
        return;
    }
    SetAccess(ioRecord, 0, ~std::uint64_t{0}); // the processor does not report a non-canonical address
}

void FillFromBusError(const siginfo_t& inInfo, const Registers& inRegisters, _EXCEPTION_RECORD& ioRecord) noexcept
{
    const bool isMisaligned = inInfo.si_code == BUS_ADRALN;
    ioRecord.ExceptionCode = isMisaligned ? kDatatypeMisalignment : kInPageError;
    if (!isMisaligned && !IsSent(inInfo)) {
        SetAccess(ioRecord, AccessOf(inRegisters), reinterpret_cast<std::uint64_t>(inInfo.si_addr));
    }
}

std::uint32_t CodeOfArithmeticFailure(const siginfo_t& inInfo, const Registers& inRegisters) noexcept
{
    switch (inInfo.si_code) {
    case FPE_INTDIV: return kIntegerDivideByZero;
    case FPE_INTOVF: return kIntegerOverflow;
    case FPE_FLTDIV: return kFloatDivideByZero;
    case FPE_FLTOVF: return kFloatOverflow;
    case FPE_FLTUND: // the kernel also reports a denormal operand with this code
        return (inRegisters.FloatExceptions() & kStatusDenormal) != 0 ? kFloatDenormalOperand : kFloatUnderflow;
    case FPE_FLTRES: return kFloatInexactResult;
    case FPE_FLTSUB: return kArrayBoundsExceeded;
    default: {
        constexpr unsigned kStackCheck = kStatusInvalid | kStatusStackFaultX87;
        const bool isStack =
            inRegisters.Trap() == kTrapFloatX87 && (inRegisters.FloatExceptions() & kStackCheck) == kStackCheck;
        return isStack ? kFloatStackCheck : kFloatInvalidOperation;
    }
    }
}

std::uint32_t CodeOfIllegalInstruction(const siginfo_t& inInfo) noexcept
{
    return inInfo.si_code == ILL_PRVOPC || inInfo.si_code == ILL_PRVREG ? kPrivilegedInstruction : kIllegalInstruction;
}

void FillFromTrap(const siginfo_t& inInfo, const Registers& inRegisters, _EXCEPTION_RECORD& ioRecord) noexcept
{
    const bool isStep = inInfo.si_code == TRAP_TRACE || inInfo.si_code == TRAP_HWBKPT;
    ioRecord.ExceptionCode = isStep ? kSingleStep : kBreakpoint;
    if (inRegisters.Trap() == kTrapBreakpoint && !IsSent(inInfo)) {
        // The instruction pointer is after the breakpoint instruction, which is one byte long.
        ioRecord.ExceptionAddress = AsAddress(inRegisters.Instruction() - 1);
    }
}

} // namespace

bool MakeExceptionRecord(const siginfo_t& inInfo, const void* inContext, _EXCEPTION_RECORD& outRecord) noexcept
{
    const Registers registers(inContext);
    _EXCEPTION_RECORD record;
    std::memset(&record, 0, sizeof(record));
    if (!IsSent(inInfo)) {
        record.ExceptionAddress = AsAddress(registers.Instruction());
    }
    switch (inInfo.si_signo) {
    case SIGSEGV: FillFromSegmentationFault(inInfo, registers, record); break;
    case SIGBUS: FillFromBusError(inInfo, registers, record); break;
    case SIGFPE: record.ExceptionCode = CodeOfArithmeticFailure(inInfo, registers); break;
    case SIGILL: record.ExceptionCode = CodeOfIllegalInstruction(inInfo); break;
    case SIGTRAP: FillFromTrap(inInfo, registers, record); break;
    default: return false;
    }
    outRecord = record;
    return true;
}

} // namespace Linux

namespace FailureReport {
namespace Platform {

ExceptionFacts ReadExceptionRecord_Impl(const _EXCEPTION_RECORD* inRecord) noexcept
{
    return {inRecord->ExceptionCode, inRecord->ExceptionFlags,
            reinterpret_cast<std::uint64_t>(inRecord->ExceptionAddress), inRecord->ExceptionInformation[0],
            inRecord->ExceptionInformation[1]};
}

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
