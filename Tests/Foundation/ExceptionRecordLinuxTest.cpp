// Tests exception records of real signals. Each signal is raised in a child process, whose handler sends the record to
// the test.
#include <ORLFailureReport.h>
#include <ORLString.h>

#include <cfenv>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int sPipe = -1;

// The child's handler may only make async-signal-safe calls.
void SendRecord(int, siginfo_t* inInfo, void* inContext)
{
    // Clears the alignment-check flag, which one test sets and the kernel leaves set in handlers.
    __asm__ volatile("pushfq\n\tandq $~0x40000, (%%rsp)\n\tpopfq" : : : "memory", "cc");
    _EXCEPTION_RECORD record;
    const bool isFilled = ORL::Linux::MakeExceptionRecord(*inInfo, inContext, record);
    const bool isSent = isFilled && write(sPipe, &record, sizeof(record)) == static_cast<ssize_t>(sizeof(record));
    _exit(isSent ? 0 : 1);
}

void HandleSignals()
{
    static char sStack[65536];
    stack_t stack{};
    stack.ss_sp = sStack;
    stack.ss_size = sizeof(sStack);
    sigaltstack(&stack, nullptr);
    struct sigaction action
    {
    };
    action.sa_sigaction = SendRecord;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP}) {
        sigaction(number, &action, nullptr);
    }
}

struct Crash
{
    bool mIsReported;
    _EXCEPTION_RECORD mRecord;
};

template <class Function>
Crash CrashOf(Function inFunction)
{
    int ends[2];
    EXPECT_EQ(0, pipe2(ends, O_CLOEXEC));
    const pid_t child = fork();
    if (child == 0) {
        sPipe = ends[1];
        HandleSignals();
        inFunction();
        _exit(2); // reached only if inFunction did not crash
    }
    close(ends[1]);
    Crash crash{};
    crash.mIsReported =
        read(ends[0], &crash.mRecord, sizeof(crash.mRecord)) == static_cast<ssize_t>(sizeof(crash.mRecord));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
    return crash;
}

std::uint64_t NumberOf(const void* inAddress)
{
    return reinterpret_cast<std::uint64_t>(inAddress);
}

// Returns a page of "return" instructions with the given protection.
void* ProtectedPage(int inProtection)
{
    void* const page = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    EXPECT_NE(MAP_FAILED, page);
    std::memset(page, 0xC3, 4096); // the "return" instruction, repeated
    EXPECT_EQ(0, mprotect(page, 4096, inProtection));
    return page;
}

void ExpectAccess(const Crash& inCrash, std::uint64_t inAccess, std::uint64_t inAddress)
{
    ASSERT_TRUE(inCrash.mIsReported);
    EXPECT_EQ(0xC0000005u, inCrash.mRecord.ExceptionCode);
    EXPECT_EQ(0u, inCrash.mRecord.ExceptionFlags);
    EXPECT_EQ(nullptr, inCrash.mRecord.ExceptionRecord);
    EXPECT_EQ(2u, inCrash.mRecord.NumberParameters);
    EXPECT_EQ(inAccess, inCrash.mRecord.ExceptionInformation[0]);
    EXPECT_EQ(inAddress, inCrash.mRecord.ExceptionInformation[1]);
}

void DivideFloats(volatile double& outQuotient, double inDividend, double inDivisor)
{
    // In assembly, so that sanitizers and the optimiser do not change it.
    double quotient = inDividend;
    __asm__ volatile("divsd %1, %0" : "+x"(quotient) : "x"(inDivisor));
    outQuotient = quotient;
}

template <class Function>
std::uint32_t CodeOf(Function inFunction)
{
    const Crash crash = CrashOf(inFunction);
    EXPECT_TRUE(crash.mIsReported);
    EXPECT_NE(nullptr, crash.mRecord.ExceptionAddress);
    return crash.mRecord.ExceptionCode;
}

} // namespace

TEST(ExceptionRecordFromSignal, Read_IsReportedWithItsAddress)
{
    void* const page = ProtectedPage(PROT_NONE);
    const Crash crash = CrashOf([page] { __asm__ volatile("movl 8(%0), %%eax" : : "r"(page) : "eax"); });
    ExpectAccess(crash, 0, NumberOf(page) + 8);
    EXPECT_NE(nullptr, crash.mRecord.ExceptionAddress);
    munmap(page, 4096);
}

TEST(ExceptionRecordFromSignal, Write_IsReportedWithItsAddress)
{
    void* const page = ProtectedPage(PROT_READ);
    const Crash crash = CrashOf([page] { __asm__ volatile("movl $1, 12(%0)" : : "r"(page) : "memory"); });
    ExpectAccess(crash, 1, NumberOf(page) + 12);
    const std::string report = ORL::MakeStdString(ORL::ReportStructuredExceptionRecordInformation(&crash.mRecord));
    EXPECT_NE(std::string::npos, report.find("While Writing to address:0x"));
    munmap(page, 4096);
}

TEST(ExceptionRecordFromSignal, Execution_IsReportedAtTheAddressItself)
{
    void* const page = ProtectedPage(PROT_READ);
    const Crash crash = CrashOf([page] { __asm__ volatile("call *%0" : : "r"(page) : "memory"); });
    ExpectAccess(crash, 8, NumberOf(page));
    EXPECT_EQ(page, crash.mRecord.ExceptionAddress);
    munmap(page, 4096);
}

TEST(ExceptionRecordFromSignal, AddressThatNoPageCanHave_IsAllOnes)
{
    const Crash crash = CrashOf([] { __asm__ volatile("movl (%0), %%eax" : : "r"(0x8000000000000000u) : "eax"); });
    ExpectAccess(crash, 0, ~std::uint64_t{0});
}

TEST(ExceptionRecordFromSignal, PageBehindTheEndOfAMappedFile_CannotBeRead)
{
    const int file = memfd_create("mapped", MFD_CLOEXEC);
    ASSERT_EQ(0, ftruncate(file, 4096));
    void* const view = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
    ASSERT_EQ(0, ftruncate(file, 0));
    const Crash crash = CrashOf([view] { __asm__ volatile("movl 4(%0), %%eax" : : "r"(view) : "eax"); });
    ASSERT_TRUE(crash.mIsReported);
    EXPECT_EQ(0xC0000006u, crash.mRecord.ExceptionCode);
    EXPECT_EQ(2u, crash.mRecord.NumberParameters);
    EXPECT_EQ(NumberOf(view) + 4, crash.mRecord.ExceptionInformation[1]);
    munmap(view, 4096);
    close(file);
}

TEST(ExceptionRecordFromSignal, MisalignedAddress_IsThatWhereTheProcessorChecks)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the Thread sanitizer's handler runs first and makes unaligned accesses while the flag is set";
#endif
    EXPECT_EQ(0x80000002u, CodeOf([] {
                  alignas(8) char bytes[16] = {};
                  // Sets the flag that makes the processor check the alignment of every access.
                  __asm__ volatile("pushfq\n\torq $0x40000, (%%rsp)\n\tpopfq\n\tmovl 1(%0), %%eax"
                                   :
                                   : "r"(bytes)
                                   : "eax", "memory", "cc");
              }));
}

TEST(ExceptionRecordFromSignal, ArithmeticFailures_AreToldApart)
{
    EXPECT_EQ(0xC0000094u, CodeOf([] {
                  __asm__ volatile("xorl %%edx, %%edx\n\tmovl $7, %%eax\n\txorl %%ecx, %%ecx\n\tdivl %%ecx"
                                   :
                                   :
                                   : "eax", "ecx", "edx", "cc");
              }));
    struct Row
    {
        int mEnabled;
        double mDividend;
        double mDivisor;
        std::uint32_t mCode;
    };
    const Row rows[] = {
        {FE_DIVBYZERO, 1.0, 0.0, 0xC000008E},      {FE_INEXACT, 1.0, 3.0, 0xC000008F},
        {FE_INVALID, 0.0, 0.0, 0xC0000090},        {FE_OVERFLOW, 1e308, 1e-308, 0xC0000091},
        {FE_UNDERFLOW, 1e-300, 1e300, 0xC0000093},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mCode, CodeOf([&row] {
                      volatile double quotient = 0;
                      feenableexcept(row.mEnabled);
                      DivideFloats(quotient, row.mDividend, row.mDivisor);
                  }))
            << std::hex << row.mCode;
    }
}

TEST(ExceptionRecordFromSignal, DenormalOperand_IsNoUnderflow)
{
    EXPECT_EQ(0xC000008Du, CodeOf([] {
                  const std::uint32_t allButDenormal = 0x1F80 & ~0x100u;
                  volatile double quotient = 0;
                  __asm__ volatile("ldmxcsr %0" : : "m"(allButDenormal));
                  DivideFloats(quotient, 5e-324, 2.0);
              }));
}

TEST(ExceptionRecordFromSignal, FloatStackOfX87_IsCheckedApartFromOtherInvalidOperations)
{
    EXPECT_EQ(0xC0000092u, CodeOf([] {
                  const std::uint16_t allButInvalid = 0x037E;
                  __asm__ volatile("fninit\n\tfldcw %0\n\tfaddp\n\tfwait" : : "m"(allButInvalid));
              }));
    EXPECT_EQ(0xC0000090u, CodeOf([] {
                  const std::uint16_t allButInvalid = 0x037E;
                  __asm__ volatile("fninit\n\tfldcw %0\n\tfldz\n\tfldz\n\tfdivp\n\tfwait" : : "m"(allButInvalid));
              }));
}

TEST(ExceptionRecordFromSignal, Instructions_AreIllegalOrPrivileged)
{
    EXPECT_EQ(0xC000001Du, CodeOf([] { __asm__ volatile("ud2"); }));
    EXPECT_EQ(0xC0000096u, CodeOf([] { __asm__ volatile("hlt"); }));
    EXPECT_EQ(0xC0000096u, CodeOf([] { __asm__ volatile("cli"); }));
    EXPECT_EQ(0xC0000096u, CodeOf([] { __asm__ volatile("inb $0x80, %%al" : : : "eax"); }));
    EXPECT_EQ(0xC0000096u, CodeOf([] { __asm__ volatile("movq %%cr0, %%rax" : : : "rax"); }));
    EXPECT_EQ(0xC0000096u, CodeOf([] { __asm__ volatile("rdmsr" : : "c"(0) : "eax", "edx"); }));
}

TEST(ExceptionRecordFromSignal, Breakpoint_IsReportedAtItsInstruction)
{
    void* const page = ProtectedPage(PROT_READ | PROT_WRITE);
    static_cast<unsigned char*>(page)[0] = 0xCC;
    ASSERT_EQ(0, mprotect(page, 4096, PROT_READ | PROT_EXEC));
    const Crash crash = CrashOf([page] { __asm__ volatile("call *%0" : : "r"(page) : "memory"); });
    ASSERT_TRUE(crash.mIsReported);
    EXPECT_EQ(0x80000003u, crash.mRecord.ExceptionCode);
    EXPECT_EQ(page, crash.mRecord.ExceptionAddress);
    EXPECT_EQ(0u, crash.mRecord.NumberParameters);
    munmap(page, 4096);
}

TEST(ExceptionRecordFromSignal, SingleStep_IsNoBreakpoint)
{
    EXPECT_EQ(0x80000004u, CodeOf([] {
                  __asm__ volatile("pushfq\n\torq $0x100, (%%rsp)\n\tpopfq\n\tnop\n\tnop" : : : "memory", "cc");
              }));
}

TEST(ExceptionRecordFromSignal, SentSignal_HasTheCodeAndNothingElse)
{
    struct Row
    {
        int mSignal;
        std::uint32_t mCode;
    };
    for (const Row& row : {Row{SIGSEGV, 0xC0000005}, Row{SIGBUS, 0xC0000006}, Row{SIGFPE, 0xC0000090},
                           Row{SIGILL, 0xC000001D}, Row{SIGTRAP, 0x80000003}}) {
        const Crash crash = CrashOf([&row] { raise(row.mSignal); });
        ASSERT_TRUE(crash.mIsReported) << row.mSignal;
        EXPECT_EQ(row.mCode, crash.mRecord.ExceptionCode) << row.mSignal;
        EXPECT_EQ(nullptr, crash.mRecord.ExceptionAddress) << row.mSignal;
        EXPECT_EQ(0u, crash.mRecord.NumberParameters) << row.mSignal;
        EXPECT_EQ(0u, crash.mRecord.ExceptionInformation[1]) << row.mSignal;
    }
}

TEST(ExceptionRecordFromSignal, OtherSignals_LeaveTheRecordUnchanged)
{
    for (const int number : {SIGABRT, SIGTERM, SIGUSR1, SIGCHLD, 0, -1}) {
        siginfo_t info{};
        info.si_signo = number;
        _EXCEPTION_RECORD record;
        std::memset(&record, 0x5A, sizeof(record));
        const _EXCEPTION_RECORD before = record;
        EXPECT_FALSE(ORL::Linux::MakeExceptionRecord(info, nullptr, record)) << number;
        EXPECT_EQ(0, std::memcmp(&before, &record, sizeof(record))) << number;
    }
}

TEST(ExceptionRecordFromSignal, WithoutRegisters_TheAddressIsStillReported)
{
    siginfo_t info{};
    info.si_signo = SIGSEGV;
    info.si_code = SEGV_MAPERR;
    info.si_addr = reinterpret_cast<void*>(0x1234);
    _EXCEPTION_RECORD record;
    ASSERT_TRUE(ORL::Linux::MakeExceptionRecord(info, nullptr, record));
    EXPECT_EQ(0xC0000005u, record.ExceptionCode);
    EXPECT_EQ(nullptr, record.ExceptionAddress);
    EXPECT_EQ(0u, record.ExceptionInformation[0]);
    EXPECT_EQ(0x1234u, record.ExceptionInformation[1]);
}
