#include "IngestProgress.h"

#include "Text.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace orl {

namespace {

constexpr std::size_t kBarWidth = 24;

std::string Clocked(double inSeconds)
{
    const auto seconds = static_cast<long long>(inSeconds + 0.5);
    char text[32];
    std::snprintf(text, sizeof(text), "%lld:%02lld", seconds / 60, seconds % 60);
    return text;
}

} // namespace

std::string ProgressText(std::uint64_t inPassed, std::uint64_t inToPass, std::size_t inFilesDone, std::size_t inFiles,
                         double inSeconds)
{
    const double share =
        inToPass != 0 ? std::min(1.0, static_cast<double>(inPassed) / static_cast<double>(inToPass)) : 1.0;
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(kBarWidth));
    char percent[16];
    std::snprintf(percent, sizeof(percent), "%3d %%", static_cast<int>(share * 100));
    std::string text = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + "] " + percent + "   "
                       + InWords(inPassed / 2) + " of " + InWords(inToPass / 2);
    if (inSeconds > 0 && inPassed != 0) {
        const double rate = static_cast<double>(inPassed) / 2e6 / inSeconds;
        text += "   " + Rounded(rate) + " MB/s   " + Clocked(inSeconds / share - inSeconds) + " left";
    }
    return text + "   " + std::to_string(inFilesDone) + " of " + std::to_string(inFiles) + " files";
}

IngestProgress::IngestProgress(bool inIsShown, std::uint64_t inToPass, std::size_t inFiles)
    : mIsShown(inIsShown), mToPass(inToPass), mFiles(inFiles), mStart(std::chrono::steady_clock::now())
{
}

void IngestProgress::Show(std::uint64_t inPassed, std::size_t inFilesDone)
{
    if (!mIsShown) {
        return;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
    std::cout << '\r' << ProgressText(inPassed, mToPass, inFilesDone, mFiles, seconds) << "\x1b[K" << std::flush;
    mHasText = true;
}

void IngestProgress::Clear()
{
    if (mHasText) {
        std::cout << "\r\x1b[K" << std::flush;
        mHasText = false;
    }
}

} // namespace orl
