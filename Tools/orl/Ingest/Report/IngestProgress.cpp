#include "IngestProgress.h"

#include "Text.h"
#include "TextWidth.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace orl {

namespace {

constexpr std::size_t kWidestBar = 24;
constexpr std::size_t kNarrowestBar = 8;

std::string FormatClock(double inSeconds)
{
    const auto seconds = static_cast<long long>(inSeconds + 0.5);
    char text[32];
    std::snprintf(text, sizeof(text), "%lld:%02lld", seconds / 60, seconds % 60);
    return text;
}

std::string Bar(double inShare, std::size_t inWidth)
{
    const auto filled = static_cast<std::size_t>(inShare * static_cast<double>(inWidth));
    return "[" + std::string(filled, '#') + std::string(inWidth - filled, '-') + "] ";
}

} // namespace

std::string ProgressText(std::uint64_t inBytesRead, std::uint64_t inBytesToRead, std::size_t inFilesDone,
                         std::size_t inFiles, double inSeconds, std::size_t inColumns)
{
    const double share =
        inBytesToRead != 0 ? std::min(1.0, static_cast<double>(inBytesRead) / static_cast<double>(inBytesToRead)) : 1.0;
    char percent[16];
    std::snprintf(percent, sizeof(percent), "%3d %%", static_cast<int>(share * 100));
    std::vector<ProgressPart> parts{{percent, 0},
                                    {FormatSize(inBytesRead / 2) + " of " + FormatSize(inBytesToRead / 2), 2}};
    if (inSeconds > 0 && inBytesRead != 0) {
        parts.push_back({Rounded(static_cast<double>(inBytesRead) / 2e6 / inSeconds) + " MB/s", 3});
        parts.push_back({FormatClock(inSeconds / share - inSeconds) + " left", 1});
    }
    parts.push_back({std::to_string(inFilesDone) + " of " + std::to_string(inFiles) + " files", 4});
    const std::string text = FitProgress(parts, inColumns);
    // The bar takes the remaining columns, including its brackets and a blank.
    const std::size_t used = ColumnsOf(text) + 3;
    const std::size_t bar = std::min(kWidestBar, inColumns - std::min(inColumns, used));
    return (bar >= kNarrowestBar ? Bar(share, bar) : std::string()) + text;
}

IngestProgress::IngestProgress(bool inIsShown, std::uint64_t inBytesToRead, std::size_t inFiles)
    : mLine(inIsShown), mBytesToRead(inBytesToRead), mFiles(inFiles), mStart(std::chrono::steady_clock::now())
{
}

void IngestProgress::Show(std::uint64_t inBytesRead, std::size_t inFilesDone)
{
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
    mLine.Show(ProgressText(inBytesRead, mBytesToRead, inFilesDone, mFiles, seconds, ProgressLine::AvailableColumns()));
}

} // namespace orl
