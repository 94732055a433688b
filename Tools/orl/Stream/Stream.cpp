// orl stream FILE...
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Json.h"
#include "ProgressLine.h"
#include "StartedLibrary.h"
#include "StopRequest.h"
#include "StreamFile.h"
#include "Text.h"
#include "TextWidth.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace orl {

namespace {

struct Options
{
    std::vector<std::string> mFiles;
    StreamSettings mSettings;
    bool mVerifies = false;
    bool mAsJson = false;
};

struct Row
{
    std::string mFile;
    StreamFigures mFigures;
};

double MegabytesPerSecond(const StreamFigures& inFigures)
{
    return inFigures.mSeconds > 0 ? static_cast<double>(inFigures.mBytes) / 1e6 / inFigures.mSeconds : 0;
}

// Returns the last component of a host path or library path.
std::string NameOf(const std::string& inFile)
{
    const std::size_t at = inFile.find_last_of("/\\");
    return at == std::string::npos ? inFile : inFile.substr(at + 1);
}

void ShowProgress(ProgressLine& ioLine, const std::string& inFile, std::uint64_t inDone, std::uint64_t inSize)
{
    if (ioLine.IsDue()) {
        char percent[16];
        std::snprintf(percent, sizeof(percent), "%3d %%  ",
                      inSize != 0 ? static_cast<int>(inDone * 100 / inSize) : 100);
        const std::size_t room = ProgressLine::AvailableColumns();
        ioLine.Show(percent + TruncateFront(NameOf(inFile), room - std::min(room, std::strlen(percent))));
    }
}

std::string Hexadecimal(std::uint32_t inNumber)
{
    char text[9];
    std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(inNumber));
    return text;
}

// Returns the time in milliseconds with two decimals.
std::string Milliseconds(double inSeconds)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f ms", inSeconds * 1e3);
    return text;
}

void PrintTable(const std::vector<Row>& inRows, bool inVerified)
{
    std::size_t width = 4;
    for (const Row& row : inRows) {
        width = std::max(width, ColumnsOf(WithoutControlCharacters(NameOf(row.mFile))));
    }
    const auto line = [&](const std::string& inFile, const std::vector<std::string>& inCells) {
        static constexpr int kWidths[] = {13, 9, 7, 8, 12, 12, 10};
        std::cout << PaddedTo(width, inFile) << std::right;
        for (std::size_t i = 0; i < inCells.size(); ++i) {
            std::cout << std::setw(kWidths[i]) << inCells[i];
        }
        std::cout << '\n';
    };
    line("file", {"bytes", "MB/s", "reads", "sector", "median", "99 %", "CRC-32"});
    for (const Row& row : inRows) {
        const StreamFigures& figures = row.mFigures;
        line(NameOf(row.mFile),
             {std::to_string(figures.mBytes), Rounded(MegabytesPerSecond(figures)), std::to_string(figures.mReads),
              std::to_string(figures.mSectorSize), Milliseconds(figures.mMedianLatency),
              Milliseconds(figures.mPercentile99Latency), Hexadecimal(figures.mCRC)});
    }
    if (inVerified && !inRows.empty()) {
        std::cout << "Each CRC-32 equals the one of a plain buffered read.\n";
    }
}

void PrintJson(const std::vector<Row>& inRows)
{
    Json rows = Json::Array();
    for (const Row& row : inRows) {
        const StreamFigures& figures = row.mFigures;
        rows.Append({{"file", row.mFile},
                     {"bytes", figures.mBytes},
                     {"megabytesPerSecond", MegabytesPerSecond(figures)},
                     {"reads", figures.mReads},
                     {"sectorSize", figures.mSectorSize},
                     {"medianLatencySeconds", figures.mMedianLatency},
                     {"percentile99LatencySeconds", figures.mPercentile99Latency},
                     {"crc32", Hexadecimal(figures.mCRC)}});
    }
    std::cout << rows.Document();
}

StreamFigures StreamOne(const std::string& inFile, const Options& inOptions)
{
    ProgressLine line(OutputIsTerminal() && !inOptions.mAsJson);
    const StreamFigures figures =
        StreamFile(inFile, inOptions.mSettings, [&](std::uint64_t inDone, std::uint64_t inSize) {
            ShowProgress(line, inFile, inDone, inSize);
            return !IsStopRequested();
        });
    if (inOptions.mVerifies && PlainCRC(inFile) != figures.mCRC) {
        throw Failure("stream: \"" + inFile + "\" differs when read through the cache: CRC-32 "
                      + Hexadecimal(PlainCRC(inFile)) + " buffered, " + Hexadecimal(figures.mCRC) + " unbuffered");
    }
    return figures;
}

// If one file fails, the others are still streamed.
bool TryStream(const std::string& inFile, const Options& inOptions, std::vector<Row>& ioRows)
{
    try {
        ioRows.push_back(Row{inFile, StreamOne(inFile, inOptions)});
        return true;
    } catch (const NoAnswer&) {
        throw;
    } catch (const Interrupted&) {
        throw;
    } catch (const Failure& failure) {
        ReportError(failure.what());
        return false;
    }
}

void Run(const Options& inOptions)
{
    const StartedLibrary library;
    ListenForStop();
    std::vector<Row> rows;
    const auto print = [&] {
        if (inOptions.mAsJson) {
            PrintJson(rows);
        } else if (!rows.empty()) {
            PrintTable(rows, inOptions.mVerifies);
        }
    };
    bool hasFailed = false;
    try {
        for (const std::string& file : inOptions.mFiles) {
            hasFailed |= !TryStream(file, inOptions, rows);
        }
    } catch (const NoAnswer& failure) {
        print(); // the figures measured so far remain valid
        ReportError(failure.what());
        std::_Exit(kExitFailure);
    } catch (...) {
        print();
        throw;
    }
    print();
    if (hasFailed) {
        throw PartialFailure();
    }
}

} // namespace

void AddStream(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = ioProgram.add_subcommand(
        "stream", "Read files past the system's cache, many reads in flight, and show the throughput");
    command->add_option("FILE", options->mFiles, "host paths or library paths")->required();
    command
        ->add_option("--block", options->mSettings.mBlockSize,
                     "bytes per read, 1 to 64Mi (default 1Mi); k, M are powers of 1000, Ki, Mi of 1024")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(true).description(""))
        ->check(CLI::Range(std::size_t{1}, std::size_t{64} << 20).description(""));
    command->add_option("--depth", options->mSettings.mDepth, "reads in flight, 1 to 2048 (default 32)")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 2048).description(""));
    command
        ->add_option("--patience", options->mSettings.mTimeoutSeconds,
                     "timeout in seconds without an answer from the disk, 1 to 86400 (default 60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(1u, 86400u).description(""));
    command->add_flag("--verify", options->mVerifies, "compare with a plain buffered read");
    command->add_flag("--json", options->mAsJson, "write one JSON array");
    command->callback([options] { Run(*options); });
}

} // namespace orl
