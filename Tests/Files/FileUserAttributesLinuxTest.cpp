// Tests user extended attributes of copied, moved and replaced files: kept if possible, never a cause of failure.
#include <FileSupport.h>

#include <ORLDirectory.h>

#include <FaultySystemCallsLinux.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <sys/xattr.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

class UserAttributes : public testing::Test
{
protected:
    void SetUp() override
    {
        mFolder.MakeFile("probe");
        if (!Set("probe", "user.probe", "x")) {
            GTEST_SKIP() << "this file system keeps no attributes";
        }
        mFolder.MakeFile("f", "contents");
        ASSERT_TRUE(Set("f", "user.reel", "A001"));
        ASSERT_TRUE(Set("f", "user.empty", ""));
    }

    bool Set(const std::string& inName, const char* inAttribute, const std::string& inValue) const
    {
        return ::setxattr((mFolder.Host() / inName).c_str(), inAttribute, inValue.data(), inValue.size(), 0) == 0;
    }

    std::string Get(const std::string& inName, const char* inAttribute) const
    {
        char value[65536];
        const ssize_t size = ::getxattr((mFolder.Host() / inName).c_str(), inAttribute, value, sizeof(value));
        return size < 0 ? "<none>" : std::string(value, static_cast<std::size_t>(size));
    }

    UTF16String Path(const char16_t* inName) const { return mFolder.Path(inName); }

    TempFolder mFolder;
};

} // namespace

TEST_F(UserAttributes, ACopy_HasThem)
{
    EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(u"c")));
    EXPECT_EQ("A001", Get("c", "user.reel"));
    EXPECT_EQ("", Get("c", "user.empty"));
}

TEST_F(UserAttributes, ACopyOverAFile_HasNoOthers)
{
    mFolder.MakeFile("c");
    ASSERT_TRUE(Set("c", "user.old", "x"));
    ASSERT_TRUE(Set("c", "user.reel", "B002 which is longer"));
    EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(u"c")));
    EXPECT_EQ("A001", Get("c", "user.reel"));
    EXPECT_EQ("<none>", Get("c", "user.old"));
}

// Linux lets only root write attributes of a file without write permission.
TEST_F(UserAttributes, ACopyOfAReadOnlyFile_IsACopy)
{
    ASSERT_EQ(0, ::chmod((mFolder.Host() / "f").c_str(), 0444));
    EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(u"c")));
    EXPECT_EQ("contents", ContentsOf(mFolder, "c"));
    EXPECT_EQ(1u, (std::set<std::string>{"A001", "<none>"}.count(Get("c", "user.reel"))));
}

TEST_F(UserAttributes, ATree_KeepsThem)
{
    mFolder.MakeFolder("from");
    mFolder.MakeFolder("to");
    EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(u"from\\f")));
    EXPECT_EQ(kSuccess, Directory::Copy(Path(u"from"), Path(u"to")));
    EXPECT_EQ("contents", ContentsOf(mFolder, "to/f"));
    EXPECT_EQ("A001", Get("to/f", "user.reel"));
}

TEST_F(UserAttributes, AMoveToAnotherVolume_KeepsThem)
{
    Faults calls;
    calls.Fail(Faults::kRenameTo, 1, EXDEV);
    EXPECT_EQ(kSuccess, File::Move(Path(u"f"), Path(u"m")));
    EXPECT_EQ("A001", Get("m", "user.reel"));
}

// Like permissions, the attributes of the replaced file are kept, unless the new file has the same attribute.
TEST_F(UserAttributes, ASwap_AddsThoseOfTheRealFile)
{
    mFolder.MakeFile("temp", "new");
    ASSERT_TRUE(Set("temp", "user.reel", "T003"));
    ASSERT_TRUE(Set("f", "user.scene", "12"));
    EXPECT_EQ(kSuccess, File::SwapTempFile(Path(u"temp"), Path(u"f")));
    EXPECT_EQ("new", ContentsOf(mFolder, "f"));
    EXPECT_EQ("T003", Get("f", "user.reel"));
    EXPECT_EQ("12", Get("f", "user.scene"));
}

TEST_F(UserAttributes, WhateverTheyMeet_ACopyIsACopy)
{
    mFolder.MakeFile("over");
    ASSERT_TRUE(Set("over", "user.old", "x"));
    for (const Faults::Call call :
         {Faults::kFListXAttr, Faults::kFGetXAttr, Faults::kFSetXAttr, Faults::kFRemoveXAttr}) {
        for (const int error : {EOPNOTSUPP, ENOSPC, EDQUOT, EPERM, EACCES, EIO, ERANGE, E2BIG, ENODATA}) {
            for (const char16_t* name : {u"new", u"over"}) {
                std::filesystem::remove(mFolder.Host() / "new");
                Faults calls;
                calls.Fail(call, 1, error, Faults::kForEver);
                EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(name)));
                EXPECT_EQ("contents", ContentsOf(mFolder, name[0] == u'n' ? "new" : "over"));
            }
        }
    }
}

TEST_F(UserAttributes, AVolumeThatKeepsNone_TakesTheCopy)
{
    Faults calls;
    calls.Fail(Faults::kFSetXAttr, 1, EOPNOTSUPP, Faults::kForEver);
    EXPECT_EQ(kSuccess, File::Copy(Path(u"f"), Path(u"c")));
    EXPECT_EQ("contents", ContentsOf(mFolder, "c"));
    EXPECT_EQ("<none>", Get("c", "user.reel"));
}
