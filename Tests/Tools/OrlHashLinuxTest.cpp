// Compares the checksums of orl hash with those of coreutils, xxhsum and Python.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

constexpr std::size_t kBlock = 1 << 20;

class OrlHashOnLinux : public testing::Test
{
protected:
    OrlHashOnLinux() { mFolder.MakeFolder("files"); }

    void MakeFiles()
    {
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{16}, std::size_t{17},
                                       std::size_t{128}, std::size_t{129}, std::size_t{240}, std::size_t{241},
                                       std::size_t{1025}, kBlock - 1, kBlock, kBlock + 1, 3 * kBlock + 4321}) {
            std::string bytes(size, '\0');
            for (std::size_t i = 0; i < size; ++i) {
                bytes[i] = static_cast<char>(i * 31 + i / 251);
            }
            mFolder.MakeFile("files/f" + std::to_string(size), bytes);
        }
    }

    // Runs a shell command in the folder of the files. "orl" is the program that is built next to the tests.
    int Shell(const std::string& inCommand)
    {
        const std::string start = "cd '" + (mFolder.Host() / "files").string() + "' && orl() { '"
                                  + FolderOfThisProgram() + "orl' \"$@\"; } && ";
        return std::system((start + inCommand).c_str());
    }

    void ExpectSame(const std::string& inOurs, const std::string& inTheirs)
    {
        EXPECT_EQ(0, Shell("orl hash --hash " + inOurs + " f* >../ours." + inOurs + " && " + inTheirs + " >../theirs."
                           + inOurs + " && test -s ../ours." + inOurs + " && diff ../ours." + inOurs + " ../theirs."
                           + inOurs))
            << inOurs;
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(OrlHashOnLinux, Checksums_AreThoseOfCoreutils)
{
    MakeFiles();
    ExpectSame("sha256", "sha256sum f*");
    ExpectSame("md5", "md5sum f*");
    ExpectSame("sha1", "sha1sum f*");
}

TEST_F(OrlHashOnLinux, FastChecksums_AreThoseOfXxhsum)
{
    MakeFiles();
    ExpectSame("xxh64", "xxhsum -q -H1 f*");
    ExpectSame("xxh128", "xxhsum -q -H2 f*");
    ExpectSame("xxh3", "xxhsum -q -H3 f* | sed -E 's/^XXH3 \\((.*)\\) = (.*)$/\\2  \\1/'");
}

TEST_F(OrlHashOnLinux, C4Identifiers_AreThoseOfPython)
{
    MakeFiles();
    ExpectSame("c4", R"(python3 -c '
import hashlib, sys
digits = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"
for name in sys.argv[1:]:
    number = int.from_bytes(hashlib.sha512(open(name, "rb").read()).digest(), "big")
    text = ""
    while number:
        number, digit = divmod(number, 58)
        text = digits[digit] + text
    print("c4" + text.rjust(88, "1") + "  " + name)
' f*)");
}

TEST_F(OrlHashOnLinux, AwkwardNames_AreReadByCoreutils)
{
    for (const char* const name : {"a\\b", "\\x", "new\nline", "return\r", "both\\\n", "\xff", " blank ", "\x1b[31m"}) {
        mFolder.MakeFile(std::string("files/") + name, name);
    }
    EXPECT_EQ(0, Shell("orl hash --hash md5 ./* >../list && test $(md5sum --strict -c ../list | grep -c ': OK$') = 8"));
}

TEST_F(OrlHashOnLinux, AFullOutput_IsAnError)
{
    mFolder.MakeFile("files/file", "abc");
    EXPECT_NE(0, Shell("orl hash --hash md5 file >/dev/full 2>/dev/null"));
}
