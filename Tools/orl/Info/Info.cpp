// orl info [PATH]
#include "Commands.h"
#include "Failure.h"
#include "Json.h"
#include "Text.h"

#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLHostSettings.h>
#include <ORLPathUtils.h>
#include <ORLRegistryStore.h>
#include <ORLStringUtils.h>
#include <ORLSystemInfo.h>
#include <ORLTimeStamp.h>
#include <ORLVersion.h>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <memory>
#include <thread>

namespace orl {

namespace {

struct Options
{
    std::string mPath = ".";
    bool mAsJson = false;
};

// Where the settings are stored.
struct Store
{
    const char* mName;
    std::string mPlace; // empty if the OS keeps the registry
    unsigned long long mBytes;
};

struct Facts
{
    std::string mPath;
    std::string mHostPath;
    const char* mKind;
    std::string mFileSystem; // empty if the OS does not report the name
    unsigned int mSectorSize;
    unsigned long long mFreeBytes;
    std::vector<ORL::PathUtils::MountPoint> mDrives;
    unsigned int mProcessors;
    unsigned long long mPhysicalMemory;
    unsigned long long mAvailableMemory;
    unsigned long long mVirtualMemory;
    int mLoad;               // percent
    long long mProcessClock; // milliseconds since the library was loaded
    std::string mLanguage;
    unsigned mLanguageID;
    unsigned mCodePage;
    std::vector<Store> mStores;
};

// On a machine with one processor, this interval is long enough to measure the load to a whole percent.
constexpr std::chrono::milliseconds kLoadInterval(200);

void GatherMachine(Facts& outFacts)
{
    outFacts.mProcessors = ORL::SystemInfo::GetCPUCount();
    outFacts.mPhysicalMemory = ORL::SystemInfo::GetTotalPhysicalMemory();
    outFacts.mAvailableMemory = ORL::SystemInfo::GetAvailablePhysicalMemory();
    outFacts.mVirtualMemory = ORL::SystemInfo::GetTotalVirtualMemory();
    ORL::SystemInfo::GetSystemLoad();
    std::this_thread::sleep_for(kLoadInterval);
    outFacts.mLoad = static_cast<int>(ORL::SystemInfo::GetSystemLoad());
    outFacts.mProcessClock = static_cast<long long>(ORL::TimeStamp().GetMilliSeconds());
}

const char* KindOf(const UTF16String& inPath)
{
    if (ORL::PathUtils::IsDirectory(inPath)) {
        return "directory";
    }
    return ORL::PathUtils::ExistsOnDisk(inPath) ? "file" : "missing";
}

Store StoreOf(const char* inName, ORL::RegistryRootKeys::Type inRoot)
{
    const ORL::RegistryStoreState state = ORL::RegistryStore::GetState(inRoot);
    return {inName, state.mPlace, state.mBytes};
}

void GatherSettings(Facts& outFacts)
{
    outFacts.mLanguageID = ORL::GetLanguageID();
    outFacts.mLanguage = ToUTF8(ORL::GetLanguageString());
    outFacts.mCodePage = ORL::StringUtils::GetDefaultCodePage();
    outFacts.mStores = {StoreOf("user", ORL::RegistryRootKeys::kUser),
                        StoreOf("machine", ORL::RegistryRootKeys::kMachine)};
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
        throw Failure("info: cannot query the volume of \"" + inArgument + "\": " + Describe(result));
    }
    UTF16String name;
    if (ORL::ResultSucceeded(ORL::DiskUtils::GetFileSystemName(path, name))) {
        facts.mFileSystem = ToUTF8(name);
    }
    facts.mKind = KindOf(path);
    facts.mFreeBytes = ORL::DiskUtils::GetFreeSpaceFromPath(path);
    facts.mDrives = ORL::PathUtils::GetMountPoints();
    GatherMachine(facts);
    GatherSettings(facts);
    return facts;
}

std::ostream& Row(const char* inName)
{
    return std::cout << std::left << std::setw(15) << inName;
}

void PrintMachine(const Facts& inFacts)
{
    Row("processors") << inFacts.mProcessors << '\n';
    Row("memory") << FormatSize(inFacts.mPhysicalMemory) << ", " << FormatSize(inFacts.mAvailableMemory)
                  << " available\n";
    Row("address space") << FormatSize(inFacts.mVirtualMemory) << '\n';
    Row("load") << inFacts.mLoad << " % of all processors\n";
    Row("process clock") << inFacts.mProcessClock << " ms\n";
}

void PrintSettings(const Facts& inFacts)
{
    Row("language") << inFacts.mLanguage << " (" << inFacts.mLanguageID << ")\n";
    Row("code page") << inFacts.mCodePage << '\n';
    const char* title = "settings";
    for (const Store& store : inFacts.mStores) {
        Row(title) << PaddedTo(9, store.mName);
        if (store.mPlace.empty()) {
            std::cout << "kept by the system\n";
        } else {
            std::cout << WithoutControlCharacters(store.mPlace) << "  " << store.mBytes << " bytes\n";
        }
        title = "";
    }
}

void PrintText(const Facts& inFacts)
{
    Row("version") << ORL_VERSION << '\n';
    Row("platform") << ORL_PLATFORM_NAME << '\n';
    Row("path") << WithoutControlCharacters(inFacts.mPath) << '\n';
    Row("host path") << WithoutControlCharacters(inFacts.mHostPath) << '\n';
    Row("kind") << inFacts.mKind << '\n';
    Row("file system") << (inFacts.mFileSystem.empty() ? "unknown" : inFacts.mFileSystem) << '\n';
    Row("sector size") << inFacts.mSectorSize << " bytes\n";
    Row("free space") << FormatSize(inFacts.mFreeBytes) << " (" << inFacts.mFreeBytes << " bytes)\n";
    const char* title = "drives";
    for (const ORL::PathUtils::MountPoint& drive : inFacts.mDrives) {
        Row(title) << WithoutControlCharacters(ToUTF8(drive.mRoot) + "  " + drive.mHostFolder) << '\n';
        title = "";
    }
    PrintMachine(inFacts);
    PrintSettings(inFacts);
}

Json DrivesOf(const Facts& inFacts)
{
    Json drives = Json::Array();
    for (const ORL::PathUtils::MountPoint& drive : inFacts.mDrives) {
        drives.Append({{"root", ToUTF8(drive.mRoot)}, {"hostFolder", drive.mHostFolder}});
    }
    return drives;
}

Json StoresOf(const Facts& inFacts)
{
    Json stores = Json::Array();
    for (const Store& store : inFacts.mStores) {
        stores.Append({{"root", store.mName}, {"place", store.mPlace}, {"bytes", store.mBytes}});
    }
    return stores;
}

void PrintJson(const Facts& inFacts)
{
    const Json facts = {{"version", ORL_VERSION},
                        {"platform", ORL_PLATFORM_NAME},
                        {"path", inFacts.mPath},
                        {"hostPath", inFacts.mHostPath},
                        {"kind", inFacts.mKind},
                        {"fileSystem", inFacts.mFileSystem},
                        {"sectorSize", inFacts.mSectorSize},
                        {"freeBytes", inFacts.mFreeBytes},
                        {"drives", DrivesOf(inFacts)},
                        {"processors", inFacts.mProcessors},
                        {"physicalMemory", inFacts.mPhysicalMemory},
                        {"availableMemory", inFacts.mAvailableMemory},
                        {"virtualMemory", inFacts.mVirtualMemory},
                        {"loadPercent", inFacts.mLoad},
                        {"processClockMilliseconds", inFacts.mProcessClock},
                        {"language", inFacts.mLanguage},
                        {"languageId", inFacts.mLanguageID},
                        {"codePage", inFacts.mCodePage},
                        {"stores", StoresOf(inFacts)}};
    std::cout << facts.Document();
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
        "info", "Show version, platform, drive table, a path's volume, and the machine: processors, memory, load");
    command->add_option("PATH", options->mPath, "host path or library path; default: the current folder");
    command->add_flag("--json", options->mAsJson, "write one JSON object");
    command->callback([options] { Run(*options); });
}

} // namespace orl
