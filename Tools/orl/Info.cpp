// orl info [PATH]
#include "Commands.h"
#include "Failure.h"
#include "Text.h"

#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>
#include <ORLVersion.h>
#include <iomanip>
#include <iostream>
#include <memory>

namespace orl {

namespace {

struct Options
{
    std::string mPath = ".";
    bool mAsJson = false;
};

struct Facts
{
    std::string mPath;
    std::string mHostPath;
    const char* mKind;
    std::string mFileSystem; // empty where the system does not tell
    unsigned int mSectorSize;
    unsigned long long mFreeBytes;
    std::vector<ORL::PathUtils::MountPoint> mDrives;
};

const char* KindOf(const UTF16String& inPath)
{
    if (ORL::PathUtils::IsDirectory(inPath)) {
        return "directory";
    }
    return ORL::PathUtils::ExistsOnDisk(inPath) ? "file" : "missing";
}

Facts Gather(const std::string& inArgument)
{
    const UTF16String path = PathOfArgument(inArgument);
    Facts facts;
    facts.mPath = ToUTF8(path);
    ORL::Result result = ORL::PathUtils::ToHostPath(path, facts.mHostPath);
    if (ORL::ResultSucceeded(result)) {
        result = ORL::DiskUtils::GetEfficientDiskBufferSizeFromPath(path, facts.mSectorSize);
    }
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("info: cannot ask about the volume of \"" + inArgument + "\": " + Describe(result));
    }
    UTF16String name;
    if (ORL::ResultSucceeded(ORL::DiskUtils::GetFileSystemName(path, name))) {
        facts.mFileSystem = ToUTF8(name);
    }
    facts.mKind = KindOf(path);
    facts.mFreeBytes = ORL::DiskUtils::GetFreeSpaceFromPath(path);
    facts.mDrives = ORL::PathUtils::GetMountPoints();
    return facts;
}

void PrintText(const Facts& inFacts)
{
    const auto row = [](const char* inName) -> std::ostream& {
        return std::cout << std::left << std::setw(13) << inName;
    };
    row("version") << ORL_VERSION << '\n';
    row("platform") << ORL_PLATFORM_NAME << '\n';
    row("path") << OnOneLine(inFacts.mPath) << '\n';
    row("host path") << OnOneLine(inFacts.mHostPath) << '\n';
    row("kind") << inFacts.mKind << '\n';
    row("file system") << (inFacts.mFileSystem.empty() ? "unknown" : inFacts.mFileSystem) << '\n';
    row("sector size") << inFacts.mSectorSize << " bytes\n";
    row("free space") << ToUTF8(ORL::DiskUtils::MakeDiskSpaceString(inFacts.mFreeBytes)) << " (" << inFacts.mFreeBytes
                      << " bytes)\n";
    const char* title = "drives";
    for (const ORL::PathUtils::MountPoint& drive : inFacts.mDrives) {
        row(title) << OnOneLine(ToUTF8(drive.mRoot) + "  " + drive.mHostFolder) << '\n';
        title = "";
    }
}

void PrintJson(const Facts& inFacts)
{
    std::cout << "{\n  \"version\": " << JsonQuoted(ORL_VERSION)
              << ",\n  \"platform\": " << JsonQuoted(ORL_PLATFORM_NAME)
              << ",\n  \"path\": " << JsonQuoted(inFacts.mPath)
              << ",\n  \"hostPath\": " << JsonQuoted(inFacts.mHostPath)
              << ",\n  \"kind\": " << JsonQuoted(inFacts.mKind)
              << ",\n  \"fileSystem\": " << JsonQuoted(inFacts.mFileSystem)
              << ",\n  \"sectorSize\": " << inFacts.mSectorSize << ",\n  \"freeBytes\": " << inFacts.mFreeBytes
              << ",\n  \"drives\": [";
    const char* separator = "\n";
    for (const ORL::PathUtils::MountPoint& drive : inFacts.mDrives) {
        std::cout << separator << "    {\"root\": " << JsonQuoted(ToUTF8(drive.mRoot))
                  << ", \"hostFolder\": " << JsonQuoted(drive.mHostFolder) << '}';
        separator = ",\n";
    }
    std::cout << "\n  ]\n}\n";
}

void Run(const Options& inOptions)
{
    const Facts facts = Gather(inOptions.mPath);
    if (inOptions.mAsJson) {
        PrintJson(facts);
    } else {
        PrintText(facts);
    }
}

} // namespace

void AddInfo(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = ioProgram.add_subcommand(
        "info", "Show version, platform, drive table, and the sector size and free space of a path");
    command->add_option("PATH", options->mPath, "host path or library path; the current folder when left out");
    command->add_flag("--json", options->mAsJson, "write one JSON object");
    command->callback([options] { Run(*options); });
}

} // namespace orl
