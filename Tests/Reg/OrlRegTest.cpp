// Tests the command line of orl reg.
#include <JsonLayout.h>
#include <PrivateHost.h>
#include <ProcessRunner.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <ORLRegistryKey.h>
#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace ORL;
using namespace ORLTest;

namespace {

class OrlReg : public testing::Test
{
protected:
    void SetUp() override
    {
        mKey = "HKCU\\Software\\Zerin\\" + UsePrivateHost();
        DeletePrivateHostSettings();
    }

    static ProcessResult Orl(std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), "reg");
        return RunBesideThisProgram("orl", inArguments);
    }

    // Returns the output of a command, and expects success without a message on standard error.
    static std::string Output(const std::vector<std::string>& inArguments)
    {
        const ProcessResult result = Orl(inArguments);
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ("", result.mErrors);
        return result.mOutput;
    }

    // Returns the error line of a command, and expects the command to fail.
    static std::string Error(const std::vector<std::string>& inArguments, int inExitCode = 1)
    {
        const ProcessResult result = Orl(inArguments);
        EXPECT_EQ(inExitCode, result.mExitCode) << result.mErrors;
        EXPECT_EQ("", result.mOutput);
        return result.mErrors;
    }

    std::string FileWith(const std::string& inBytes) const
    {
        const std::string path = (mFolder.Host() / "settings.reg").u8string();
        std::ofstream(path, std::ios::binary) << inBytes;
        return path;
    }

    static std::string BytesOf(const std::string& inFile)
    {
        std::ifstream file(inFile, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    }

    std::string LongKey() const { return "HKEY_CURRENT_USER" + mKey.substr(4); }

    std::string mKey;
    const TempFolder mFolder;
};

} // namespace

TEST_F(OrlReg, SetAndGet_OfEachType)
{
    struct Row
    {
        int mLine;
        std::vector<std::string> mSet; // value and options
        const char* mExpected;
        unsigned mType;
    };
    const Row rows[] = {
        {__LINE__, {"plain text"}, "plain text\n", 1},
        {__LINE__, {""}, "\n", 1},
        {__LINE__, {"caf\xC3\xA9 \xF0\x9F\x98\x80", "--type", "string"}, "caf\xC3\xA9 \xF0\x9F\x98\x80\n", 1},
        {__LINE__, {"%PATH%", "--type", "expand"}, "%PATH%\n", 2},
        {__LINE__, {"1920", "--type", "u32"}, "1920\n", 4},
        {__LINE__, {"0xFFFFFFFF", "--type", "u32"}, "4294967295\n", 4},
        {__LINE__, {"18446744073709551615", "--type", "u64"}, "18446744073709551615\n", 11},
        {__LINE__, {"00ff 1A", "--type", "binary"}, "00ff1a\n", 3},
        {__LINE__, {"", "--type", "binary"}, "\n", 3},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments = {"set", mKey, "name"};
        arguments.insert(arguments.end(), row.mSet.begin(), row.mSet.end());
        EXPECT_EQ("", Output(arguments)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mExpected, Output({"get", mKey, "NAME"})) << "row at line " << row.mLine;
        RegistryValue value;
        EXPECT_EQ(kSuccess, RegistryStore::GetValue(RegistryRootKeys::kUser, MakeString(mKey.substr(5)),
                                                    MakeString("name"), value));
        EXPECT_EQ(row.mType, value.mType) << "row at line " << row.mLine;
    }
}

TEST_F(OrlReg, KeysAreWrittenInFourWays)
{
    EXPECT_EQ("", Output({"set", mKey + "\\a", "n", "v"}));
    const std::string path = mKey.substr(5) + "\\a";
    for (const std::string& key : {"hkcu\\" + path, "HKEY_CURRENT_USER\\" + path + "\\", "user:" + path, path}) {
        EXPECT_EQ("v\n", Output({"get", key, "n"})) << key;
    }
    EXPECT_EQ("orl: reg get: cannot read \"n\" of \"HKLM\\" + path + "\": no such key or value\n",
              Error({"get", "machine:" + path, "n"}));
    EXPECT_EQ("orl: reg get: cannot read \"n\" of \"HKLM\\" + path + "\": no such key or value\n",
              Error({"get", path, "n", "--machine"}));
}

TEST_F(OrlReg, DefaultValue_HasTheEmptyName)
{
    EXPECT_EQ("", Output({"set", mKey, "", "default"}));
    EXPECT_EQ("default\n", Output({"get", mKey, ""}));
    EXPECT_NE(std::string::npos, Output({"list", mKey}).find("(default)  string  \"default\""));
    EXPECT_EQ("", Output({"unset", mKey, ""}));
    EXPECT_EQ("orl: reg get: cannot read the default value of \"" + mKey + "\": no such key or value\n",
              Error({"get", mKey, ""}));
}

TEST_F(OrlReg, List_ShowsValuesAndKeysAsATree)
{
    Output({"set", mKey, "Width", "1920", "--type", "u32"});
    Output({"set", mKey, "Name", "a\nb"});
    Output({"set", mKey, "Data", "000102030405060708090a0b0c0d0e0f101112131415161718", "--type", "binary"});
    Output({"set", mKey + "\\Sub\\Deeper", "x", "y"});
    EXPECT_EQ(mKey
                  + "\n"
                    "  Data   binary  000102030405060708090a0b0c0d0e0f1011121314151617... (25 bytes)\n"
                    "  Name   string  \"a?b\"\n"
                    "  Width  u32     1920 (0x780)\n"
                    "  Sub\\\n",
              Output({"list", mKey}));
    EXPECT_EQ(mKey
                  + "\n"
                    "  Data   binary  000102030405060708090a0b0c0d0e0f1011121314151617... (25 bytes)\n"
                    "  Name   string  \"a?b\"\n"
                    "  Width  u32     1920 (0x780)\n"
                    "  Sub\\\n"
                    "    Deeper\\\n"
                    "      x  string  \"y\"\n",
              Output({"list", mKey, "--recursive"}));
    EXPECT_EQ("orl: reg list: cannot read \"" + mKey + "\\None\": no such key\n", Error({"list", mKey + "\\None"}));
}

TEST_F(OrlReg, ListAsJson_IsOneObject)
{
    Output({"set", mKey, "Width", "1920", "--type", "u32"});
    Output({"set", mKey, "Name", "a\"b"});
    Output({"set", mKey, "Data", "00ff", "--type", "binary"});
    Output({"set", mKey + "\\Sub", "x", "y"});
    const std::string values = R"(","values":[{"name":"Data","type":"binary","data":"00ff"},)"
                               R"({"name":"Name","type":"string","value":"a\"b"},)"
                               R"({"name":"Width","type":"u32","value":1920}],"keys":[{"name":"Sub")";
    const std::string begin = R"({"name":"HKCU\\Software\\Zerin\\)" + UsePrivateHost();
    EXPECT_EQ(begin + values + "}]}", WithoutLayout(Output({"list", mKey, "--json"})));
    EXPECT_EQ(begin + values + R"(,"values":[{"name":"x","type":"string","value":"y"}],"keys":[]}]})",
              WithoutLayout(Output({"list", mKey, "--json", "--recursive"})));
}

TEST_F(OrlReg, GetAsJson_IsOneObject)
{
    Output({"set", mKey, "Width", "1920", "--type", "u32"});
    Output({"set", mKey, "", "a\"b"});
    Output({"set", mKey, "Data", "00ff", "--type", "binary"});
    EXPECT_EQ("{\"name\":\"Width\",\"type\":\"u32\",\"value\":1920}\n", Output({"get", mKey, "Width", "--json"}));
    EXPECT_EQ("{\"name\":\"\",\"type\":\"string\",\"value\":\"a\\\"b\"}\n", Output({"get", mKey, "", "--json"}));
    EXPECT_EQ("{\"name\":\"Data\",\"type\":\"binary\",\"data\":\"00ff\"}\n", Output({"get", mKey, "Data", "--json"}));
    Error({"get", mKey, "None", "--json"});
}

TEST_F(OrlReg, GetAsJson_ShowsTheNameAsItIsStored)
{
    const std::string stored = "Gr\u00F6\u00DFe X";
    const std::string asked = "gR\u00D6\u00DFE x";
    const std::string longer = "Gr\u00F6SSe X"; // another value
    for (const std::string& name : {longer, stored}) {
        Output({"set", mKey, name, "1", "--type", "u32"});
    }
    const std::string expected = "{\"name\":\"" + stored + "\",\"type\":\"u32\",\"value\":2}\n";
    Output({"set", mKey, asked, "2", "--type", "u32"});
    EXPECT_EQ(expected, Output({"get", mKey, asked, "--json"}));
    EXPECT_EQ(expected, Output({"get", mKey, stored, "--json"}));
}

TEST_F(OrlReg, CheckAsJson_IsOneObject)
{
    Output({"set", mKey, "n", "v"});
    const std::string output = WithoutLayout(Output({"check", "--json"}));
    EXPECT_EQ(0u, output.find(R"({"stores":[{"name":"user","whole":true,"problem":"","place":")")) << output;
    EXPECT_NE(std::string::npos, output.find(R"(]},{"name":"machine","whole":true,)")) << output;
    EXPECT_EQ("]}]}", output.substr(output.size() - 4));
}

TEST_F(OrlReg, UnsetAndDelete_RemoveWhatIsThereAndReportWhatIsNot)
{
    Output({"set", mKey + "\\a", "n", "v"});
    EXPECT_EQ("", Output({"unset", mKey + "\\a", "n"}));
    EXPECT_EQ("orl: reg unset: cannot read \"n\" of \"" + mKey + "\\a\": no such key or value\n",
              Error({"unset", mKey + "\\a", "n"}));
    Output({"set", mKey + "\\a\\b", "n", "v"});
    EXPECT_EQ("orl: reg delete: \"" + mKey + "\\a\" has keys below it (1); --recursive deletes them too\n",
              Error({"delete", mKey + "\\a"}));
    EXPECT_EQ("", Output({"delete", mKey + "\\a\\b"}));
    Output({"set", mKey + "\\a\\b", "n", "v"});
    EXPECT_EQ("", Output({"delete", mKey + "\\a", "--recursive"}));
    EXPECT_EQ("orl: reg delete: cannot read \"" + mKey + "\\a\": no such key\n", Error({"delete", mKey + "\\a"}));
}

TEST_F(OrlReg, WrongCommandLines_ChangeNothingAndEndWith2)
{
    const std::string number = "it is not a whole number (decimal, or hexadecimal with 0x)";
    struct Row
    {
        int mLine;
        std::vector<std::string> mArguments;
        std::string mError;
    };
    const Row rows[] = {
        {__LINE__, {"set", mKey, "n", "x", "--type", "u32"}, "reg set: cannot use \"x\": " + number},
        {__LINE__, {"set", mKey, "n", "", "--type", "u32"}, "reg set: cannot use \"\": " + number},
        {__LINE__, {"set", mKey, "n", "0x", "--type", "u64"}, "reg set: cannot use \"0x\": " + number},
        {__LINE__, {"set", mKey, "n", "1f", "--type", "u32"}, "reg set: cannot use \"1f\": " + number},
        {__LINE__,
         {"set", mKey, "n", "4294967296", "--type", "u32"},
         "reg set: cannot use \"4294967296\": the largest number of this type is 4294967295"},
        {__LINE__,
         {"set", mKey, "n", "18446744073709551616", "--type", "u64"},
         "reg set: cannot use \"18446744073709551616\": the largest number of this type is 18446744073709551615"},
        {__LINE__,
         {"set", mKey, "n", "0g", "--type", "binary"},
         "reg set: cannot use \"0g\": bytes are pairs of hexadecimal digits, with or without blanks between them"},
        {__LINE__,
         {"set", mKey, "n", "012", "--type", "binary"},
         "reg set: cannot use \"012\": the last byte has one digit"},
        {__LINE__, {"set", "HKCU", "n", "x"}, "reg: \"HKCU\" is a root; name a key below it"},
        {__LINE__, {"delete", "user:", "--recursive"}, "reg: \"user:\" is a root; name a key below it"},
        {__LINE__,
         {"list", "HKCU\\a\\\\b"},
         "reg: \"HKCU\\a\\\\b\" is not a valid key: the name of a key cannot be empty"},
        {__LINE__,
         {"get", mKey, "n", "--machine"},
         "reg: \"" + mKey + "\" is below the root of the user, but --machine selects the machine's root"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ("orl: " + row.mError + "\n", Error(row.mArguments, 2)) << "row at line " << row.mLine;
    }
    Error({"list", mKey});
}

TEST_F(OrlReg, ExportAndImport_ComeBackToTheByte)
{
    Output({"set", mKey, "Text", "a \"b\" \\ caf\xC3\xA9"});
    Output({"set", mKey, "", "default"});
    Output({"set", mKey + "\\Window", "Width", "1920", "--type", "u32"});
    Output({"set", mKey + "\\Window", "Long", std::string(400, 'a'), "--type", "binary"});
    Output({"set", mKey + "\\Window\\Sub", "Big", "0x123456789abcdef0", "--type", "u64"});
    Output({"set", mKey + "\\Window", "Path", "%PATH%", "--type", "expand"});
    const std::string first = (mFolder.Host() / "first.reg").u8string();
    const std::string second = (mFolder.Host() / "second.reg").u8string();
    EXPECT_EQ("", Output({"export", mKey, first}));
    const std::string bytes = BytesOf(first);
    EXPECT_EQ("\xFF\xFE", bytes.substr(0, 2));
    EXPECT_EQ("", Output({"delete", mKey, "--recursive"}));
    EXPECT_EQ("", Output({"import", first}));
    EXPECT_EQ("", Output({"export", mKey, second}));
    EXPECT_EQ(bytes, BytesOf(second));
    EXPECT_EQ("", Output({"export", mKey, second})); // replaces an existing file
    EXPECT_EQ(bytes, BytesOf(second));
    EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(mFolder.Host()), {}));
}

TEST_F(OrlReg, ExportToStandardOutput_IsTheFile)
{
    Output({"set", mKey, "n", "v"});
    const std::string file = (mFolder.Host() / "file.reg").u8string();
    const std::string redirected = (mFolder.Host() / "redirected.reg").u8string();
    Output({"export", mKey, file});
    const std::string command = FolderOfThisProgram() + "orl reg export \"" + mKey + "\" > \"" + redirected + '"';
    EXPECT_EQ(0, std::system(command.c_str()));
    EXPECT_EQ(BytesOf(file), BytesOf(redirected));
}

TEST_F(OrlReg, ImportOfAFileWithAWrongLine_NamesItAndWritesNothing)
{
    Output({"set", mKey, "kept", "as it was"});
    const std::string file = FileWith("Windows Registry Editor Version 5.00\n\n[" + LongKey()
                                      + "\\New]\n\"a\"=\"b\"\n[-" + LongKey() + "]\n\"n\"=dword:xyz\n");
    EXPECT_EQ("orl: reg import: line 6 of \"" + file + "\": the key of this value is deleted (nothing was written)\n",
              Error({"import", file}));
    EXPECT_EQ("as it was\n", Output({"get", mKey, "kept"}));
    EXPECT_EQ(mKey + "\n  kept  string  \"as it was\"\n", Output({"list", mKey, "--recursive"}));
}

TEST_F(OrlReg, Import_DeletesKeysAndValuesToo)
{
    Output({"set", mKey + "\\Gone\\Sub", "n", "v"});
    Output({"set", mKey, "gone", "v"});
    const std::string file =
        FileWith("Windows Registry Editor Version 5.00\n[-" + LongKey() + "\\Gone]\n[-" + LongKey() + "\\NeverThere]\n["
                 + LongKey() + "]\n\"gone\"=-\n\"never there\"=-\n\"new\"=dword:10\n");
    EXPECT_EQ("", Output({"import", file}));
    EXPECT_EQ(mKey + "\n  new  u32     16 (0x10)\n", Output({"list", mKey, "--recursive"}));
}

TEST_F(OrlReg, DryRun_ShowsTheChangesAndMakesNone)
{
    const std::string file = FileWith("Windows Registry Editor Version 5.00\n[" + LongKey()
                                      + "]\n\"a\"=\"b\"\n@=dword:1\n\"c\"=-\n[-" + LongKey() + "\\Gone]\n");
    EXPECT_EQ("create  " + mKey + "\nset     " + mKey + "  \"a\" = string \"b\"\nset     " + mKey
                  + "  the default value = u32 1 (0x1)\nunset   " + mKey + "  \"c\"\ndelete  " + mKey + "\\Gone\n",
              Output({"import", file, "--dry-run"}));
    const std::string key = R"("key":"HKCU\\Software\\Zerin\\)" + UsePrivateHost();
    EXPECT_EQ(R"([{"change":"create",)" + key + R"("},{"change":"set",)" + key
                  + R"(","value":{"name":"a","type":"string","value":"b"}},{"change":"set",)" + key
                  + R"(","value":{"name":"","type":"u32","value":1}},{"change":"unset",)" + key
                  + R"(","name":"c"},{"change":"delete",)" + key + R"(\\Gone"}])",
              WithoutLayout(Output({"import", file, "--dry-run", "--json"})));
    Error({"list", mKey});
}

TEST_F(OrlReg, FilesThatCannotBeReadOrWritten_AreNamed)
{
    const std::string missing = (mFolder.Host() / "missing" / "file.reg").u8string();
    EXPECT_EQ("orl: reg import: cannot read \"" + missing + "\"\n", Error({"import", missing}));
    EXPECT_EQ("orl: reg import: cannot read \"" + mFolder.Host().u8string() + "\"\n",
              Error({"import", mFolder.Host().u8string()}));
    Output({"set", mKey, "n", "v"});
    EXPECT_EQ("orl: reg export: cannot write \"" + missing + "\": No such file or directory\n",
              Error({"export", mKey, missing}));
    EXPECT_EQ("orl: reg export: cannot read \"" + mKey + "\\None\": no such key\n",
              Error({"export", mKey + "\\None", (mFolder.Host() / "none.reg").u8string()}));
    EXPECT_FALSE(std::filesystem::exists(mFolder.Host() / "none.reg"));
}

TEST_F(OrlReg, Check_SaysThatBothStoresAreWhole)
{
    Output({"set", mKey, "n", "v"});
    const std::string output = Output({"check"});
    EXPECT_EQ(0u, output.find("user     intact   ")) << output;
    EXPECT_NE(std::string::npos, output.find("\nmachine  intact   ")) << output;
}
