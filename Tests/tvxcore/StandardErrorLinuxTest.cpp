// Tests that a report to a standard error whose writes fail does not change the calling thread's errno.
#include <tvxcore/Debug.h>
#include <tvxcore/ErrorManager.h>
#include <tvxcore/Localizer.h>
#include <tvxcore/Trace.h>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

/// While an instance exists, standard error is a full device: it is ready for a write, and the write fails.
class FullStandardError
{
public:
    FullStandardError() : mOld(::dup(STDERR_FILENO))
    {
        const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        ::dup2(full, STDERR_FILENO);
        ::close(full);
    }
    ~FullStandardError()
    {
        ::dup2(mOld, STDERR_FILENO);
        ::close(mOld);
    }
    FullStandardError(const FullStandardError&) = delete;
    FullStandardError& operator=(const FullStandardError&) = delete;

private:
    const int mOld;
};

struct Report
{
    const char* mName;
    std::function<void()> mMake;
};

const unsigned char* Bytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

} // namespace

TEST(StandardErrorWithoutRoom, EveryReport_LeavesErrnoAsItWas)
{
    using namespace tvxcore;
    const Report reports[] = {
        {"trace", [] { debug::Trace(Bytes("a line")); }},
        {"assertion",
         [] {
             bool ignore = false;
             debug::BreakAfterAssertDialog(ignore, "expression", Bytes("message"), "file", 1, "function");
         }},
        {"contract", [] { debug::BreakAfterContractDialog("expression", "file", 1); }},
        {"display", [] { debug::DisplayAssert("title", "text"); }},
        {"warning",
         [] {
             const config::ReplacementValue none;
             config::ThrowError(config::kErrorLevel_Warning, "$$$/a=b", 1, 2, true, none, none, none, none);
         }},
    };
    debug::ShutdownTraceManager();
    debug::InstallTraceSink(nullptr);
    const debug::Dialogs oldDialogs = debug::InstallDialogs(debug::Dialogs());
    config::ErrorManager* const oldManager = config::InstallErrorManager(nullptr);
    {
        const FullStandardError full;
        errno = 0;
        ASSERT_EQ(-1, ::write(STDERR_FILENO, "x", 1));
        ASSERT_EQ(ENOSPC, errno) << "a write that fails is what this is about";
        for (const Report& report : reports) {
            errno = EXDEV;
            report.mMake();
            EXPECT_EQ(EXDEV, errno) << report.mName;
        }
    }
    config::InstallErrorManager(oldManager);
    debug::InstallDialogs(oldDialogs);
    debug::ShutdownTraceManager();
}

TEST(ErrorReport, LocaliserWhoseCallsFail_LeavesErrnoAsItWas)
{
    using namespace tvxcore;
    class Failing : public config::Localizer
    {
    public:
        UTF16String Localize(const char* inZString) override
        {
            EXPECT_EQ(-1, ::open("/no such catalogue", O_RDONLY | O_CLOEXEC));
            mError = errno;
            return Localizer::Localize(inZString);
        }
        int mError = 0;
    };
    Failing localizer;
    config::Localizer* const oldLocalizer = config::InstallLocalizer(&localizer);
    config::ErrorManager* const oldManager = config::InstallErrorManager(nullptr);
    const config::ReplacementValue none;
    testing::internal::CaptureStderr();
    errno = EXDEV;
    config::ThrowError(config::kErrorLevel_Warning, "$$$/a=b", 1, 2, true, none, none, none, none);
    EXPECT_EQ(EXDEV, errno);
    EXPECT_EQ("Error 2 of package 1, level 1: b\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(ENOENT, localizer.mError);
    config::InstallErrorManager(oldManager);
    config::InstallLocalizer(oldLocalizer);
}
