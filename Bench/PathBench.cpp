// Path string functions compared with std::filesystem::path, built from the string and queried for the same parts.
#include <Harness.h>
#include <ORLPathUtils.h>

#include <filesystem>
#include <string>
#include <tvxcore/Text.h>

namespace PathUtils = ORL::PathUtils;

namespace {

// 84 characters: a clip deep inside a project.
const std::string kHostPath = "/media/projects/2024/documentary/season 02/episode 07/rushes/camera_b/A0042C0137.mov";

UTF16String LibraryPath()
{
    UTF16String path = tvxcore::utility::AsciiToUTF16(("C:" + kHostPath.substr(2)).c_str());
    for (unsigned short& unit : path) {
        unit = unit == '/' ? '\\' : unit;
    }
    path[2] = '\\';
    return path;
}

} // namespace

// Question: does returning all parts of a path as new strings cost less than parsing a std::filesystem::path once?
void SplitAPath()
{
    const UTF16String path = LibraryPath();
    Bench::Group("SplitPath, all four parts of 84 characters")
        .Ours("SplitPath", Bench::AtMost(0.3),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      UTF16String drive, directory, file, extension;
                      PathUtils::SplitPath(path, &drive, &directory, &file, &extension);
                      Bench::DoNotOptimize(extension.data());
                  }
              })
        .Peer("std::filesystem::path",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const std::filesystem::path whole(kHostPath);
                      const std::filesystem::path drive = whole.root_name();
                      const std::filesystem::path directory = whole.parent_path();
                      const std::filesystem::path file = whole.stem();
                      const std::filesystem::path extension = whole.extension();
                      Bench::DoNotOptimize(extension.native().data());
                  }
              })
        .Run();
}

// Question: is the cost of querying the extension, the most frequent query, independent of the rest of the path?
void GetExtension()
{
    const UTF16String path = LibraryPath();
    Bench::Group("GetExtensionPart of 84 characters")
        .Ours("GetExtensionPart", Bench::AtMost(0.3),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const UTF16String extension = PathUtils::GetExtensionPart(path);
                      Bench::DoNotOptimize(extension.data());
                  }
              })
        .Peer("std::filesystem::path",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const std::filesystem::path extension = std::filesystem::path(kHostPath).extension();
                      Bench::DoNotOptimize(extension.native().data());
                  }
              })
        .Run();
}

// Question: what does building a sibling file's path cost?
void MakeSiblingPath()
{
    const UTF16String path = LibraryPath();
    const UTF16String name(TVX_UTF16("A0042C0138.mov"));
    Bench::Group("GetFullDirectoryPart plus a name, 84 characters")
        .Ours("GetFullDirectoryPart + name", Bench::AtMost(0.3),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const UTF16String neighbour = PathUtils::GetFullDirectoryPart(path) + name;
                      Bench::DoNotOptimize(neighbour.data());
                  }
              })
        .Peer("std::filesystem::path",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const std::filesystem::path neighbour =
                          std::filesystem::path(kHostPath).parent_path() / "A0042C0138.mov";
                      Bench::DoNotOptimize(neighbour.native().data());
                  }
              })
        .Run();
}

// Question: what does the separate pass that resolves dots cost? This question has no goal.
void CombineWithDots()
{
    const UTF16String path = LibraryPath();
    const UTF16String more(TVX_UTF16("..\\..\\camera_a\\.\\A0042C0138.mov"));
    Bench::Group("CombinePaths with dots, 84 characters")
        .Ours("CombinePaths", Bench::AtMost(0),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const UTF16String combined = PathUtils::CombinePaths(path, more);
                      Bench::DoNotOptimize(combined.data());
                  }
              })
        .Peer("std::filesystem::path",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const std::filesystem::path combined =
                          (std::filesystem::path(kHostPath) / "../../camera_a/./A0042C0138.mov").lexically_normal();
                      Bench::DoNotOptimize(combined.native().data());
                  }
              })
        .Run();
}

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    SplitAPath();
    GetExtension();
    MakeSiblingPath();
    CombineWithDots();
    return Bench::Finish();
}
