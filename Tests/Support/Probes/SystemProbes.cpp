#include <SystemProbes.h>

#include <Platform/File.h>
#include <TempFolder.h>

#include <filesystem>

namespace ORLTest {

using namespace ORL::Files::Platform;

bool SystemEnforcesReadOnly()
{
    namespace fs = std::filesystem;
    const TempFolder folder;
    folder.MakeFile("f");
    fs::permissions(folder.Host() / "f", fs::perms(0444));
    Handle file = nullptr;
    const bool opens =
        CreateFile_Impl(folder.Path(u"f"), kGenericWrite, kShareRead, kOpenExisting, kAttributeNormal, file) == 0;
    if (opens) {
        CloseFile_Impl(file);
    }
    fs::permissions(folder.Host() / "f", fs::perms(0666));
    return !opens;
}

bool SystemReportsCopyProgress()
{
    const TempFolder folder;
    folder.MakeFile("f");
    bool told = false;
    CopyFile_Impl(
        folder.Path(u"f"), folder.Path(u"g"),
        [](std::uint64_t, std::uint64_t, void* outTold) { return *static_cast<bool*>(outTold) = true; }, &told);
    return told;
}

bool SystemEnforcesAlignment()
{
    const TempFolder folder;
    folder.MakeFile("f", std::string(8192, 'x'));
    Handle file = nullptr;
    if (CreateFile_Impl(folder.Path(u"f"), kGenericRead, kShareRead, kOpenExisting, kFlagNoBuffering, file) != 0) {
        return false;
    }
    alignas(4096) char bytes[4096];
    std::uint32_t count = 0;
    const bool refuses = ReadFile_Impl(file, bytes, 100, count) != 0;
    CloseFile_Impl(file);
    return refuses;
}

} // namespace ORLTest
