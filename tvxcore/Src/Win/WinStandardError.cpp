#include <CorePlatform/StandardError.h>

#include <algorithm>
#include <windows.h>

namespace tvxcore {
namespace debug {
namespace Platform {

namespace {

// Maximum bytes per write; a cancelled write loses all of them.
constexpr std::size_t kPiece = 4096;
constexpr DWORD kWriteTimeout = 100;    // milliseconds
constexpr DWORD kShortWriteTimeout = 1; // milliseconds to wait for a reader that is stuck

// Cancels the writes of the constructing thread after the timeout, repeatedly until destruction: the first cancellation
// may come before the write has begun.
class Watch
{
public:
    explicit Watch(DWORD inTimeout) noexcept
    {
        const HANDLE process = ::GetCurrentProcess();
        if (!::DuplicateHandle(process, ::GetCurrentThread(), process, &mThread, THREAD_TERMINATE, FALSE, 0)) {
            return;
        }
        mTimer = ::CreateThreadpoolTimer(&CancelWrite, mThread, nullptr);
        if (mTimer != nullptr) {
            // Negative: relative to now, in units of 100 ns.
            ULARGE_INTEGER due;
            due.QuadPart = static_cast<ULONGLONG>(-10'000LL * static_cast<LONGLONG>(inTimeout));
            FILETIME time{due.LowPart, due.HighPart};
            ::SetThreadpoolTimer(mTimer, &time, inTimeout, 0);
        }
    }

    ~Watch()
    {
        if (mTimer != nullptr) {
            ::SetThreadpoolTimer(mTimer, nullptr, 0, 0);
            ::WaitForThreadpoolTimerCallbacks(mTimer, TRUE);
            ::CloseThreadpoolTimer(mTimer);
        }
        if (mThread != nullptr) {
            ::CloseHandle(mThread);
        }
    }

    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    bool IsArmed() const noexcept { return mTimer != nullptr; }

private:
    static void CALLBACK CancelWrite(PTP_CALLBACK_INSTANCE, void* inThread, PTP_TIMER)
    {
        ::CancelSynchronousIo(inThread);
    }

    HANDLE mThread = nullptr;
    PTP_TIMER mTimer = nullptr;
};

std::size_t Write(HANDLE inFile, const char* inBytes, std::size_t inCount) noexcept
{
    DWORD written = 0;
    const BOOL isDone = ::WriteFile(inFile, inBytes, static_cast<DWORD>(inCount), &written, nullptr);
    return isDone ? written : 0;
}

std::size_t WriteToPipe(HANDLE inPipe, const char* inBytes, std::size_t inCount, bool& ioReaderIsStuck) noexcept
{
    const Watch watch(ioReaderIsStuck ? kShortWriteTimeout : kWriteTimeout);
    if (!watch.IsArmed()) {
        return 0; // out of memory: the message is dropped too
    }
    const std::size_t written = Write(inPipe, inBytes, inCount);
    ioReaderIsStuck = written == 0 && ::GetLastError() == ERROR_OPERATION_ABORTED;
    return written;
}

} // namespace

// A GUI process has no standard error; its messages are dropped.
std::size_t WriteStandardError_Impl(const char* inBytes, std::size_t inCount, bool& ioReaderIsStuck) noexcept
{
    const HANDLE file = ::GetStdHandle(STD_ERROR_HANDLE);
    if (file == nullptr || file == INVALID_HANDLE_VALUE) {
        return 0;
    }
    const std::size_t count = std::min(inCount, kPiece);
    return ::GetFileType(file) == FILE_TYPE_PIPE ? WriteToPipe(file, inBytes, count, ioReaderIsStuck)
                                                 : Write(file, inBytes, count);
}

SystemErrorKeeper::SystemErrorKeeper() noexcept : mError(::GetLastError())
{
}

SystemErrorKeeper::~SystemErrorKeeper()
{
    ::SetLastError(mError);
}

} // namespace Platform
} // namespace debug
} // namespace tvxcore
