// A tree with links that lead out of it, and the expected trees after each operation.
#pragma once

#include <ORLDirectory.h>

#include <TempFolder.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>

namespace ORLTest {

namespace fs = std::filesystem;

// Maps each name to the contents of the file, to "/" for a folder, or to "-> target" for a link.
using Tree = std::map<std::string, std::string>;

inline Tree Read(const fs::path& inFolder)
{
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(inFolder)) {
        std::string what = "/";
        if (entry.is_symlink()) {
            what = "-> " + fs::read_symlink(entry.path()).string();
        } else if (!entry.is_directory()) {
            std::ifstream file(entry.path(), std::ios::binary);
            what.assign(std::istreambuf_iterator<char>(file), {});
        }
        tree[entry.path().lexically_relative(inFolder).string()] = what;
    }
    return tree;
}

class DirectoryTreesOnLinux : public testing::Test
{
protected:
    explicit DirectoryTreesOnLinux(const fs::path& inAbove = fs::temp_directory_path()) : mFolder(inAbove) {}

    void MakeTree()
    {
        mFolder.MakeFolder("from/sub");
        mFolder.MakeFile("from/a", "A");
        mFolder.MakeFile("from/sub/b", "B");
        fs::create_symlink("a", mFolder.Host() / "from/link");
        mOutside.MakeFile("precious", "P");
        mOutside.MakeFolder("folder");
        fs::create_directory_symlink(mOutside.Host(), mFolder.Host() / "from/out");
        fs::create_directory_symlink("..", mFolder.Host() / "from/sub/up");
        mTree = Read(Host("from"));
        mOutsideTree = Read(mOutside.Host());
    }

    fs::path Host(const std::string& inName) const { return mFolder.Host() / inName; }
    UTF16String From() const { return mFolder.Path(u"from"); }
    UTF16String To() const { return mFolder.Path(u"to"); }
    void ExpectNothingOutsideChanged() const { EXPECT_EQ(mOutsideTree, Read(mOutside.Host())); }

    TempFolder mFolder;
    TempFolder mOutside;
    Tree mTree;
    Tree mOutsideTree;
};

} // namespace ORLTest
