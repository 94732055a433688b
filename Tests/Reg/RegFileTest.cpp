// Tests reading and writing the registry text format: accepted forms, errors in invalid lines, and the output.
#include "../../Fuzz/RegFileFuzzTarget.h"

#include <Reg/RegFile.h>
#include <Reg/RegValueText.h>
#include <TextHelpers.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <tvxcore/Text.h>

using namespace orl;
using namespace ORLTest;
using ORL::RegistryEdit;
using ORL::RegistryValue;
using Types = ORL::RegistryValueTypes;

namespace {

constexpr char kHeader[] = "Windows Registry Editor Version 5.00\r\n";

std::string InKey(const std::string& inLines)
{
    return kHeader + std::string("\r\n[HKEY_CURRENT_USER\\Software\\A]\r\n") + inLines;
}

// Returns the edits of a file with one key, except the one that creates the key.
std::vector<RegistryEdit> EditsInKey(const std::string& inLines)
{
    std::vector<RegistryEdit> edits = ReadRegFile(InKey(inLines));
    EXPECT_FALSE(edits.empty());
    EXPECT_EQ(RegistryEdit::kCreateKey, edits[0].mKind);
    edits.erase(edits.begin());
    return edits;
}

RegistryValue ValueInKey(const std::string& inLines)
{
    const std::vector<RegistryEdit> edits = EditsInKey(inLines);
    EXPECT_EQ(1u, edits.size());
    EXPECT_EQ(RegistryEdit::kSetValue, edits[0].mKind);
    EXPECT_EQ("Software\\A", Show(edits[0].mPath));
    return edits[0].mValue;
}

// Returns "line: message", or "read" for a valid file.
std::string FaultOf(const std::string& inBytes)
{
    try {
        ReadRegFile(inBytes);
    } catch (const RegFileFault& fault) {
        return std::to_string(fault.Line()) + ": " + fault.what();
    }
    return "read";
}

RegistryValue Value(const std::u16string& inName, unsigned inType, const std::vector<unsigned char>& inData)
{
    RegistryValue value;
    value.mName = Units(inName);
    value.mType = inType;
    value.mData = inData;
    return value;
}

RegistryValue Text(const std::u16string& inName, const std::u16string& inText)
{
    return Value(inName, Types::kString, RegDataOfText(Units(inText)));
}

std::string Written(const std::vector<RegistryValue>& inValues)
{
    return Show(WriteRegFile({{Units(u"HKEY_CURRENT_USER\\A"), inValues}}));
}

} // namespace

TEST(RegFileReading, EveryFormOfData_IsItsTypeAndBytes)
{
    struct Row
    {
        int mLine;
        const char* mLines;
        unsigned mType;
        std::vector<unsigned char> mData;
    };
    const Row rows[] = {
        {__LINE__, "\"n\"=\"ab\"", 1, {'a', 0, 'b', 0, 0, 0}},
        {__LINE__, "\"n\"=\"\"", 1, {0, 0}},
        {__LINE__, "\"n\"=\"\\\"\\\\\"", 1, {'"', 0, '\\', 0, 0, 0}},
        {__LINE__, "\"n\"=dword:0000002a", 4, {0x2A, 0, 0, 0}},
        {__LINE__, "\"n\"=dword:FfEeDdCc", 4, {0xCC, 0xDD, 0xEE, 0xFF}},
        {__LINE__, "\"n\"=DWORD:1", 4, {1, 0, 0, 0}},
        {__LINE__, "\"n\"=hex:00,ff,1", 3, {0, 0xFF, 1}},
        {__LINE__, "\"n\"=hex:", 3, {}},
        {__LINE__, "\"n\"=hex(b):01,02,03,04,05,06,07,08", 11, {1, 2, 3, 4, 5, 6, 7, 8}},
        {__LINE__, "\"n\"=hex(2):25,00,00,00", 2, {0x25, 0, 0, 0}},
        {__LINE__, "\"n\"=hex(7):61,00,00,00,00,00", 7, {0x61, 0, 0, 0, 0, 0}},
        {__LINE__, "\"n\"=hex(0):", 0, {}},
        {__LINE__, "\"n\"=hex(FFFFFFFF):aA", 0xFFFFFFFF, {0xAA}},
        {__LINE__, "  \"n\" \t= hex: 01 , 02 ; comment", 3, {1, 2}},
        {__LINE__, "\"n\"=hex:01,\\\r\n  02,03,\\\r\n04", 3, {1, 2, 3, 4}},
        {__LINE__, "\"n\"=hex:\\\r\n  01", 3, {1}},
        {__LINE__, "\"n\"=hex:01,\\ \t\r\n; between\r\n  02", 3, {1, 2}},
        {__LINE__, "\"n\"=dword:1;comment", 4, {1, 0, 0, 0}},
        {__LINE__, "\"n\"=\"a;b\" ; comment", 1, {'a', 0, ';', 0, 'b', 0, 0, 0}},
        {__LINE__, "\"n\"=\"a\r\nb\"", 1, {'a', 0, '\r', 0, '\n', 0, 'b', 0, 0, 0}},
    };
    for (const Row& row : rows) {
        const RegistryValue value = ValueInKey(row.mLines);
        EXPECT_EQ("n", Show(value.mName)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mType, value.mType) << "row at line " << row.mLine;
        EXPECT_EQ(row.mData, value.mData) << "row at line " << row.mLine;
    }
}

TEST(RegFileReading, Names_AreTheDefaultOrQuoted)
{
    EXPECT_EQ("", Show(ValueInKey("@=\"x\"").mName));
    EXPECT_EQ("", Show(ValueInKey("\"\"=\"x\"").mName));
    EXPECT_EQ("@", Show(ValueInKey("\"@\"=\"x\"").mName));
    EXPECT_EQ("a\\\"=;b", Show(ValueInKey("\"a\\\\\\\"=;b\"=\"x\"").mName));
    EXPECT_EQ("a<000d><000a>b", Show(ValueInKey("\"a\r\nb\"=\"x\"").mName));
    EXPECT_EQ("caf<00e9>", Show(ValueInKey("\"caf\xC3\xA9\"=\"x\"").mName));
}

TEST(RegFileReading, KeysAndDeletions_ComeInTheirOrder)
{
    const std::vector<RegistryEdit> edits = ReadRegFile(std::string(kHeader)
                                                        + "[HKEY_LOCAL_MACHINE\\a\\b]\n"
                                                          "\"gone\"=-\n@=-\n"
                                                          "[-hkey_current_user\\c]\n"
                                                          "; comment\n\n"
                                                          "[HKCU]\n\"x\"=dword:0\n"
                                                          "[HKLM\\d\\] ; comment\n"
                                                          "[HKCU\\e]f[g]\n");
    struct Row
    {
        RegistryEdit::Kind mKind;
        ORL::RegistryRootKeys::Type mRoot;
        const char* mPath;
        const char* mName;
    };
    const auto kUser = ORL::RegistryRootKeys::kUser;
    const auto kMachine = ORL::RegistryRootKeys::kMachine;
    const Row rows[] = {
        {RegistryEdit::kCreateKey, kMachine, "a\\b", ""},   {RegistryEdit::kDeleteValue, kMachine, "a\\b", "gone"},
        {RegistryEdit::kDeleteValue, kMachine, "a\\b", ""}, {RegistryEdit::kDeleteKey, kUser, "c", ""},
        {RegistryEdit::kSetValue, kUser, "", "x"},          {RegistryEdit::kCreateKey, kMachine, "d", ""},
        {RegistryEdit::kCreateKey, kUser, "e]f[g", ""},
    };
    ASSERT_EQ(std::size(rows), edits.size());
    for (std::size_t i = 0; i < edits.size(); ++i) {
        EXPECT_EQ(rows[i].mKind, edits[i].mKind) << i;
        EXPECT_EQ(rows[i].mRoot, edits[i].mRoot) << i;
        EXPECT_EQ(rows[i].mPath, Show(edits[i].mPath)) << i;
        EXPECT_EQ(rows[i].mName, Show(edits[i].mValue.mName)) << i;
    }
}

TEST(RegFileReading, Encodings_AreToldByTheirMark)
{
    const std::string plain = InKey("\"caf\xC3\xA9\"=\"\xF0\x9F\x98\x80\"\r\n");
    const std::vector<unsigned char> data = RegDataOfText(Units(u"\U0001F600"));
    const UTF16String units = tvxcore::utility::UTF8to16(Bytes(plain));
    std::string bigEndian = EncodeRegFile(units);
    for (std::size_t i = 0; i < bigEndian.size(); i += 2) {
        std::swap(bigEndian[i], bigEndian[i + 1]);
    }
    for (const std::string& bytes : {plain, "\xEF\xBB\xBF" + plain, EncodeRegFile(units), bigEndian}) {
        const std::vector<RegistryEdit> edits = ReadRegFile(bytes);
        ASSERT_EQ(2u, edits.size());
        EXPECT_EQ("caf<00e9>", Show(edits[1].mValue.mName));
        EXPECT_EQ(data, edits[1].mValue.mData);
    }
}

TEST(RegFileReading, WrongLines_AreNamedByNumber)
{
    struct Row
    {
        int mLine;
        std::string mBytes;
        const char* mFault;
    };
    const std::string header = kHeader;
    const Row rows[] = {
        {__LINE__, "", "1: the first line is not \"Windows Registry Editor Version 5.00\""},
        {__LINE__, "REGEDIT4\r\n", "1: the first line is not \"Windows Registry Editor Version 5.00\""},
        {__LINE__, "\r\n" + header, "1: the first line is not \"Windows Registry Editor Version 5.00\""},
        {__LINE__, header + "\r\nx", "3: this is neither a key, a value nor a comment"},
        {__LINE__, header + "\n\r\rx", "5: this is neither a key, a value nor a comment"},
        {__LINE__, header + "\"a\"=\"b\"", "2: there is no key before this value"},
        {__LINE__, header + "[-HKCU\\a]\n\"a\"=\"b\"", "3: the key of this value is deleted"},
        {__LINE__, header + "[HKCU\\a", "2: \"]\" is missing after the key"},
        {__LINE__, header + "[HKCU\\a]x", "2: unexpected text after the key"},
        {__LINE__, header + "[HKEY_USERS\\a]",
         "2: the key is neither below HKEY_CURRENT_USER nor below HKEY_LOCAL_MACHINE"},
        {__LINE__, header + "[HKCUx\\a]", "2: the key is neither below HKEY_CURRENT_USER nor below HKEY_LOCAL_MACHINE"},
        {__LINE__, header + "[]", "2: the key is neither below HKEY_CURRENT_USER nor below HKEY_LOCAL_MACHINE"},
        {__LINE__, header + "[-]", "2: the key is neither below HKEY_CURRENT_USER nor below HKEY_LOCAL_MACHINE"},
        {__LINE__, header + "[-HKCU]", "2: a root cannot be deleted"},
        {__LINE__, header + "[-HKCU\\]", "2: a root cannot be deleted"},
        {__LINE__, header + "[HKCU\\a\\\\b]", "2: the name of a key cannot be empty"},
        {__LINE__, header + "[HKCU\\\\a]", "2: the name of a key cannot be empty"},
        {__LINE__, header + "[HKCU\\" + std::string(256, 'n') + "]", "2: the name of a key has at most 255 characters"},
        {__LINE__, header + "[HKCU\\" + std::string(255, 'n') + "]", "read"},
        {__LINE__, header + std::string("[HKCU\\a\0b]", 10), "2: the name of a key cannot contain a zero character"},
        {__LINE__, InKey("\"a\""), "4: a value must be a name, \"=\" and its data"},
        {__LINE__, InKey("\"a\"="), "4: the data is neither text in quotes nor dword:, hex: or hex(type):"},
        {__LINE__, InKey("\"a\"=word:1"), "4: the data is neither text in quotes nor dword:, hex: or hex(type):"},
        {__LINE__, InKey("\"a\"=dword:"), "4: expected one to eight hexadecimal digits after \"dword:\""},
        {__LINE__, InKey("\"a\"=dword:123456789"), "4: expected one to eight hexadecimal digits after \"dword:\""},
        {__LINE__, InKey("\"a\"=dword:1g"), "4: unexpected text after the value"},
        {__LINE__, InKey("\"a\"=\"b\" c"), "4: unexpected text after the value"},
        {__LINE__, InKey("\"a\"=-1"), "4: unexpected text after the value"},
        {__LINE__, InKey("\"a\"=hex(:1"), "4: expected one to eight hexadecimal digits after \"hex(\""},
        {__LINE__, InKey("\"a\"=hex(2:1"), "4: \")\" is missing after the type"},
        {__LINE__, InKey("\"a\"=hex(2)1"), "4: \":\" is missing after the type"},
        {__LINE__, InKey("\"a\"=hex:01,"), "4: a byte is missing after the last comma"},
        {__LINE__, InKey("\"a\"=hex:01,\\"), "4: a byte is missing after the last comma"},
        {__LINE__, InKey("\"a\"=hex:01,\\\r\n02,\r\n"), "5: a byte is missing after the last comma"},
        {__LINE__, InKey("\"a\"=hex:01,,02"),
         "4: a byte must be one or two hexadecimal digits, with commas between bytes"},
        {__LINE__, InKey("\"a\"=hex:001"),
         "4: a byte must be one or two hexadecimal digits, with commas between bytes"},
        {__LINE__, InKey("\"a\"=hex:01,\\\r\n\\x\r\n"), "5: a backslash in data must end its line"},
        {__LINE__, InKey("\"a\"=\"b\r\n\"c\"=\"d\"\r\n"), "5: unexpected text after the value"},
        {__LINE__, InKey("\"a\"=\"b\r\nc\r\n"), "4: the text that begins here has no closing quote"},
        {__LINE__, InKey("\"a\r\n"), "4: the text that begins here has no closing quote"},
        {__LINE__, InKey("\"a\"=\"\\n\""), "4: in quotes a backslash must be followed by a quote or a backslash"},
        {__LINE__, InKey("\"a\"=\"C:\\Program\""),
         "4: in quotes a backslash must be followed by a quote or a backslash"},
        {__LINE__, InKey(std::string("\"a\0\"=\"b\"", 8)), "4: a text in quotes must not contain a zero character"},
        {__LINE__, InKey("\"" + std::string(16384, 'n') + "\"=-"),
         "4: the name of a value has at most 16383 characters"},
        {__LINE__, InKey("\"" + std::string(16383, 'n') + "\"=-"), "read"},
        {__LINE__, header + "\r\n[HKCU\\caf\xE9]", "3: this is neither UTF-16 with a byte order mark nor UTF-8"},
        {__LINE__, "\xFF\xFE" + std::string("W"), "1: the file ends in the middle of a character"},
        {__LINE__, header, "read"},
        {__LINE__, header.substr(0, header.size() - 2) + " \t", "read"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mFault, FaultOf(row.mBytes)) << "row at line " << row.mLine;
    }
    std::string deep = "[HKCU";
    for (int i = 0; i < 512; ++i) {
        deep += "\\a";
    }
    EXPECT_EQ("read", FaultOf(kHeader + deep + "]"));
    EXPECT_EQ("2: a key is at most 512 levels deep", FaultOf(kHeader + deep + "\\a]"));
}

TEST(RegFileWriting, EachType_HasItsForm)
{
    const std::string begin = "Windows Registry Editor Version 5.00<000d><000a><000d><000a>"
                              "[HKEY_CURRENT_USER\\A]<000d><000a>";
    const std::string end = "<000d><000a><000d><000a>";
    struct Row
    {
        int mLine;
        RegistryValue mValue;
        const char* mExpected;
    };
    const Row rows[] = {
        {__LINE__, Text(u"n", u"a\"b\\c"), "\"n\"=\"a\\\"b\\\\c\""},
        {__LINE__, Text(u"", u""), "@=\"\""},
        {__LINE__, Text(u"@", u"\u65e5"), "\"@\"=\"<65e5>\""},
        {__LINE__, Text(u"n", u"a\nb"), "\"n\"=hex(1):61,00,0a,00,62,00,00,00"},
        {__LINE__, Text(u"n", std::u16string(u"a\0b", 3)), "\"n\"=hex(1):61,00,00,00,62,00,00,00"},
        {__LINE__, Value(u"n", 1, {'a', 0}), "\"n\"=hex(1):61,00"},
        {__LINE__, Value(u"n", 1, {'a', 0, 0, 0, 0}), "\"n\"=hex(1):61,00,00,00,00"},
        {__LINE__, Value(u"n", 1, {}), "\"n\"=hex(1):"},
        {__LINE__, Value(u"n", 2, {0x25, 0, 0, 0}), "\"n\"=hex(2):25,00,00,00"},
        {__LINE__, Value(u"n", 3, {1, 0xAB}), "\"n\"=hex:01,ab"},
        {__LINE__, Value(u"n", 3, {}), "\"n\"=hex:"},
        {__LINE__, Value(u"n", 4, {0x2A, 0, 0, 0xF0}), "\"n\"=dword:f000002a"},
        {__LINE__, Value(u"n", 4, {0x2A, 0}), "\"n\"=hex(4):2a,00"},
        {__LINE__, Value(u"n", 11, {1, 2, 3, 4, 5, 6, 7, 8}), "\"n\"=hex(b):01,02,03,04,05,06,07,08"},
        {__LINE__, Value(u"n", 0x4D, {7}), "\"n\"=hex(4d):07"},
        {__LINE__, Value(u"n", 0xFFFFFFFF, {}), "\"n\"=hex(ffffffff):"},
        {__LINE__, Value(u"n", 0, {}), "\"n\"=hex(0):"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(begin + row.mExpected + end, Written({row.mValue})) << "row at line " << row.mLine;
    }
}

TEST(RegFileWriting, LongData_GoesOnInLinesOfEightyCharacters)
{
    const UTF16String text =
        WriteRegFile({{Units(u"HKEY_CURRENT_USER\\A"), {Value(u"n", 3, std::vector<unsigned char>(100, 0xCD))}}});
    std::size_t column = 0;
    for (const unsigned short unit : text) {
        column = unit == '\n' ? 0 : column + 1;
        EXPECT_LE(column, 81u); // 80 columns and the line's CR
    }
    EXPECT_EQ(std::vector<unsigned char>(100, 0xCD), ReadRegFile(EncodeRegFile(text))[1].mValue.mData);
}

TEST(RegFileWriting, ValuesOfAnyOrder_MakeOneFile)
{
    const std::vector<RegistryValue> values = {Text(u"", u"d"), Text(u"_", u"u"), Text(u"A", u"a"), Text(u"b", u"b"),
                                               Text(u"\u00E9", u"e")};
    std::vector<RegistryValue> shuffled = values;
    const std::string expected = Written(values);
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i) {
        std::shuffle(shuffled.begin(), shuffled.end(), random);
        EXPECT_EQ(expected, Written(shuffled));
    }
    EXPECT_LT(expected.find("@="), expected.find("\"_\"="));
    EXPECT_LT(expected.find("\"A\"="), expected.find("\"b\"="));
}

TEST(RegFileWriting, LineEndsInKeyNames_CannotBeWritten)
{
    EXPECT_TRUE(CanWriteRegKey(Units(u"HKEY_CURRENT_USER\\a]b\t\u2028")));
    EXPECT_FALSE(CanWriteRegKey(Units(u"HKEY_CURRENT_USER\\a\nb")));
    EXPECT_FALSE(CanWriteRegKey(Units(u"HKEY_CURRENT_USER\\a\rb")));
}

TEST(RegFileRoundTrip, RandomKeysAndValues_ComeBackToTheUnit)
{
    std::mt19937 random(20261122);
    const auto below = [&random](unsigned inLimit) { return static_cast<unsigned>(random() % inLimit); };
    for (int round = 0; round < 2000; ++round) {
        RegFileKey key{Units(u"HKEY_LOCAL_MACHINE\\"), {}};
        for (unsigned left = 1 + below(20); left != 0; --left) {
            const unsigned short unit =
                static_cast<unsigned short>(below(3) == 0 ? 1 + below(0xFFFF) : ' ' + below(95));
            key.mName.push_back(unit == '\\' || unit == '\r' || unit == '\n' ? '_' : unit);
        }
        for (unsigned i = below(6); i != 0; --i) {
            RegistryValue value;
            for (unsigned left = below(20); left != 0; --left) {
                value.mName.push_back(static_cast<unsigned short>(1 + below(below(2) == 0 ? 0x7F : 0xFFFF)));
            }
            value.mName.push_back(static_cast<unsigned short>('0' + i)); // makes the name unique
            const unsigned types[] = {1, 1, 2, 3, 4, 7, 11, below(20)};
            value.mType = types[below(8)];
            value.mData.resize(value.mType == 4 && below(2) == 0 ? 4 : below(60));
            for (unsigned char& byte : value.mData) {
                byte = static_cast<unsigned char>(below(below(2) == 0 ? 4 : 256));
            }
            if (value.mType == 1 && below(2) == 0) {
                value.mData = RegDataOfText(value.mName);
            }
            key.mValues.push_back(value);
        }
        const std::string file = EncodeRegFile(WriteRegFile({key}));
        const std::vector<RegistryEdit> edits = ReadRegFile(file);
        ASSERT_EQ(1 + key.mValues.size(), edits.size());
        RegFileKey again{key.mName, {}};
        for (std::size_t i = 1; i < edits.size(); ++i) {
            again.mValues.push_back(edits[i].mValue);
        }
        const auto byName = [](const RegistryValue& inFirst, const RegistryValue& inSecond) {
            return IsRegNameBefore(inFirst.mName, inSecond.mName);
        };
        std::sort(key.mValues.begin(), key.mValues.end(), byName);
        for (std::size_t i = 0; i < key.mValues.size(); ++i) {
            ASSERT_EQ(key.mValues[i].mName, again.mValues[i].mName) << round;
            ASSERT_EQ(key.mValues[i].mType, again.mValues[i].mType) << round;
            ASSERT_EQ(key.mValues[i].mData, again.mValues[i].mData) << round;
        }
        ASSERT_EQ(key.mName, Units(u"HKEY_LOCAL_MACHINE\\") + edits[0].mPath);
    }
}

TEST(RegFileFuzzReplay, EveryInputOfTheCorpus_Holds)
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_FUZZ_CORPUS "/RegFile")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const char* const fault = ORLFuzz::CheckRegFile(bytes);
        EXPECT_EQ(nullptr, fault) << entry.path().filename().string() << ": " << (fault != nullptr ? fault : "");
        ++count;
    }
    EXPECT_GE(count, 38u) << "the corpus is there";
}

// Reads each file truncated at each byte, and with each byte changed.
TEST(RegFileFuzzReplay, CutAndChangedFiles_Hold)
{
    const std::string file = EncodeRegFile(
        WriteRegFile({{Units(u"HKEY_CURRENT_USER\\A\\B"),
                       {Text(u"t", u"a\"b"), Value(u"d", 4, {1, 2, 3, 4}),
                        Value(u"h", 3, std::vector<unsigned char>(30, 7)), Value(u"e", 2, {0x25, 0, 0, 0})}}}));
    for (std::size_t length = 0; length <= file.size(); ++length) {
        ASSERT_EQ(nullptr, ORLFuzz::CheckRegFile(file.substr(0, length))) << length;
    }
    for (std::size_t at = 0; at < file.size(); ++at) {
        for (const char byte : {'\0', '\n', '\\', '"', ']', ',', ';', '\xFF'}) {
            std::string changed = file;
            changed[at] = byte;
            ASSERT_EQ(nullptr, ORLFuzz::CheckRegFile(changed)) << at << ' ' << static_cast<int>(byte);
        }
    }
}
