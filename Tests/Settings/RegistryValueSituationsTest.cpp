// Compares the results of registry value calls with those recorded on Windows. Calls the platform functions.
#include "RegistryStage.h"

#include <cstring>

using namespace ORLTest;
using namespace ORL::Registry::Platform;
using RegistrySituations = RegistryTest;

namespace {

using Stage = RegistryStage;
constexpr unsigned char kNumber[] = {0x44, 0x33, 0x22, 0x11};
constexpr unsigned char kLongNumber[] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr unsigned short kEmptyName[] = {0};

UTF16String Name()
{
    return Units(u"v");
}

std::string SetNumber(Stage& ioStage)
{
    return ioStage.Set(u"v", kTypeUInt32, kNumber, 4);
}

// Returns "status type size", and after a failure whether the buffer is untouched (1 or 0).
std::string QueryInto(Stage& ioStage, unsigned inCapacity)
{
    unsigned char buffer[8];
    std::memset(buffer, 0xEE, sizeof(buffer));
    unsigned type = 0;
    unsigned size = inCapacity;
    const ORL::SystemError error = QueryValue_Impl(ioStage.mKey, Name().c_str(), &type, buffer, &size);
    std::string answer = std::to_string(error) + " " + std::to_string(type) + " " + std::to_string(size);
    if (error != 0) {
        answer += buffer[0] == 0xEE ? " 1" : " 0";
    }
    return answer;
}

std::string QueryNumberInto8(Stage& ioStage)
{
    SetNumber(ioStage);
    unsigned char buffer[8];
    std::memset(buffer, 0xEE, sizeof(buffer));
    unsigned type = 0;
    unsigned size = 8;
    const ORL::SystemError error = QueryValue_Impl(ioStage.mKey, Name().c_str(), &type, buffer, &size);
    constexpr unsigned char kExpected[] = {0x44, 0x33, 0x22, 0x11, 0xEE, 0xEE, 0xEE, 0xEE};
    return std::to_string(error) + " " + std::to_string(type) + " " + std::to_string(size)
           + (std::memcmp(kExpected, buffer, 8) == 0 ? " same" : " other");
}

std::string Number(ORL::SystemError inError)
{
    return std::to_string(inError);
}

std::string QueryIn(KeyHandle inKey, const unsigned short* inName)
{
    unsigned size = 0;
    return Number(QueryValue_Impl(inKey, inName, nullptr, nullptr, &size));
}

std::string DeleteIn(KeyHandle inKey, const unsigned short* inName)
{
    return Number(DeleteValue_Impl(inKey, inName));
}

std::string SetIn(KeyHandle inKey)
{
    return Number(SetValue_Impl(inKey, Name().c_str(), kTypeUInt32, kNumber, 4));
}

std::string ListIn(KeyHandle inKey)
{
    unsigned short name[256];
    unsigned length = 256;
    return Number(EnumerateKey_Impl(inKey, 0, name, length));
}

std::string SeenThroughAnother(Stage& ioStage)
{
    const KeyHandle first = ioStage.Make(u"k");
    const KeyHandle second = ioStage.Make(u"k");
    SetIn(second);
    return QueryIn(first, Name().c_str());
}

// Data of 6 bytes, followed by one more unit.
constexpr char16_t kAbcZero[] = u"abc";
constexpr char16_t kAbcd[] = u"abcd";

// clang-format off
const std::vector<RegistrySituation> kNumbers = {
    {"rv01", "missing", {"2"}, [](Stage& s) { return s.Query(u"v"); }},
    {"rv02", "missing default value", {"2"}, [](Stage& s) { return s.Query(u""); }},
    {"rv03", "set a 32-bit number", {"0"}, &SetNumber},
    {"rv04", "in other case", {"0 type=4 size=4 bytes=44332211; size query 0 4"},
     [](Stage& s) { SetNumber(s); return s.Query(u"V"); }},
    {"rv05", "capacity 2", {"234 4 4 1"}, [](Stage& s) { SetNumber(s); return QueryInto(s, 2); }},
    {"rv06", "capacity 0 with a buffer", {"234 4 4 1"}, [](Stage& s) { SetNumber(s); return QueryInto(s, 0); }},
    {"rv07", "no buffer", {"0 4 4"},
     [](Stage& s) { SetNumber(s); unsigned type = 0; unsigned size = 0;
                    const auto error = QueryValue_Impl(s.mKey, Name().c_str(), &type, nullptr, &size);
                    return Number(error) + " " + std::to_string(type) + " " + std::to_string(size); }},
    {"rv08", "buffer without size", {"87"},
     [](Stage& s) { SetNumber(s); char buffer[8]; return Number(QueryValue_Impl(s.mKey, Name().c_str(), nullptr, buffer, nullptr)); }},
    {"rv09", "no outputs", {"0"},
     [](Stage& s) { SetNumber(s); return Number(QueryValue_Impl(s.mKey, Name().c_str(), nullptr, nullptr, nullptr)); }},
    {"rv10", "larger capacity", {"0 4 4"}, [](Stage& s) { SetNumber(s); return QueryInto(s, 8); }},
    {"rv11", "missing, no buffer", {"2"},
     [](Stage& s) { unsigned size = 456; return Number(QueryValue_Impl(s.mKey, Name().c_str(), nullptr, nullptr, &size)); }},
    {"rv12", "64-bit number into 4 bytes", {"234 11 8 1"},
     [](Stage& s) { s.Set(u"v", kTypeUInt64, kLongNumber, 8); return QueryInto(s, 4); }},
    {"rv13", "32-bit number into 8 bytes", {"0 4 4 same"}, &QueryNumberInto8},
};

const std::vector<RegistrySituation> kTexts = {
    {"rv14", "text with a terminator behind it", {"0 type=1 size=8 bytes=6100620063000000; size query 0 8"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, kAbcZero, 6); }},
    {"rv14b", "text with a letter behind it", {"0 type=1 size=6 bytes=610062006300; size query 0 6"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, kAbcd, 6); }},
    {"rv14c", "expandable text with a terminator behind it", {"0 type=2 size=8 bytes=6100620063000000; size query 0 8"},
     [](Stage& s) { return s.SetAndQuery(kTypeExpandString, kAbcZero, 6); }},
    {"rv14d", "binary data with zeros behind it", {"0 type=3 size=6 bytes=610062006300; size query 0 6"},
     [](Stage& s) { return s.SetAndQuery(kTypeBinary, kAbcZero, 6); }},
    {"rv15", "text with its terminator", {"0 type=1 size=8 bytes=6100620063000000; size query 0 8"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, kAbcZero, 8); }},
    {"rv16", "zero unit inside", {"0 type=1 size=8 bytes=6100000062000000; size query 0 8"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, u"a\0b", 8); }},
    {"rv17", "text of no bytes", {"0 type=1 size=0 bytes=; size query 0 0"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, u"", 0); }},
    {"rv18", "text of 3 bytes", {"0 type=1 size=3 bytes=610062; size query 0 3"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, u"abc", 3); }},
    {"rv19", "text of 1 byte", {"0 type=1 size=1 bytes=61; size query 0 1"},
     [](Stage& s) { const char16_t text[] = u"xabc"; return s.SetAndQuery(kTypeString, text + 1, 1); }},
    {"rv20", "expandable text", {"0 type=2 size=14 bytes=2500500041005400480025000000; size query 0 14"},
     [](Stage& s) { return s.SetAndQuery(kTypeExpandString, u"%PATH%", 14); }},
    {"rv21", "empty text with terminator", {"0 type=1 size=2 bytes=0000; size query 0 2"},
     [](Stage& s) { return s.SetAndQuery(kTypeString, u"", 2); }},
    {"rv22", "null data of 4 bytes", {"998"}, [](Stage& s) { return s.Set(u"v", kTypeUInt32, nullptr, 4); }},
    {"rv23", "null data of no bytes", {"0"}, [](Stage& s) { return s.Set(u"v", kTypeBinary, nullptr, 0); }},
    {"rv24", "binary data of no bytes", {"0 type=3 size=0 bytes=; size query 0 0"},
     [](Stage& s) { return s.SetAndQuery(kTypeBinary, "", 0); }},
    {"rv25", "set the default value", {"0"}, [](Stage& s) { return s.Set(u"", kTypeUInt32, kNumber, 4); }},
    {"rv26", "query it by empty name", {"0 type=4 size=4 bytes=44332211; size query 0 4"},
     [](Stage& s) { s.Set(u"", kTypeUInt32, kNumber, 4); return s.Query(u""); }},
    {"rv27", "query it by null name", {"0"},
     [](Stage& s) { s.Set(u"", kTypeUInt32, kNumber, 4); return QueryIn(s.mKey, nullptr); }},
    {"rv28", "a number overwritten by a text", {"0 type=1 size=4 bytes=78000000; size query 0 4"},
     [](Stage& s) { SetNumber(s); return s.SetAndQuery(kTypeString, u"x", 4); }},
};

const std::vector<RegistrySituation> kNamesAndSizes = {
    {"rv29", "name of 16383 units", {"0"}, [](Stage& s) { return s.Set(std::u16string(16383, 'n'), 4, kNumber, 4); }},
    {"rv30", "name of 16384 units", {"87"}, [](Stage& s) { return s.Set(std::u16string(16384, 'n'), 4, kNumber, 4); }},
    {"rv31", "1 MiB", {"0"},
     [](Stage& s) { const std::vector<char> data(1 << 20, 'x'); return s.Set(u"v", kTypeBinary, data.data(), 1 << 20); }},
    {"rv32", "its size", {"0 1048576"},
     [](Stage& s) { const std::vector<char> data(1 << 20, 'x'); s.Set(u"v", kTypeBinary, data.data(), 1 << 20);
                    unsigned size = 0; const auto error = QueryValue_Impl(s.mKey, Name().c_str(), nullptr, nullptr, &size);
                    return Number(error) + " " + std::to_string(size); }},
    {"rv33", "name with backslash", {"0"}, [](Stage& s) { return s.Set(u"a\\b", 4, kNumber, 4); }},
    {"rv34", "query it", {"0"}, [](Stage& s) { s.Set(u"a\\b", 4, kNumber, 4); return QueryIn(s.mKey, Units(u"a\\b").c_str()); }},
    {"rv35", "unknown type", {"0"}, [](Stage& s) { return s.Set(u"v", 77, kNumber, 4); }},
    {"rv36", "query it", {"0 type=77 size=4 bytes=44332211; size query 0 4"},
     [](Stage& s) { return s.SetAndQuery(77, kNumber, 4); }},
    {"rv37", "32-bit number of 2 bytes", {"0"}, [](Stage& s) { return s.Set(u"v", 4, kNumber, 2); }},
    {"rv38", "query it", {"0 type=4 size=2 bytes=4433; size query 0 2"},
     [](Stage& s) { return s.SetAndQuery(4, kNumber, 2); }},
};

const std::vector<RegistrySituation> kHandles = {
    {"rv39", "set on a null handle", {"6"}, [](Stage&) { return SetIn(nullptr); }},
    {"rv40", "set through a handle for reading", {"5"}, [](Stage& s) { return SetIn(s.Make(u"k", Stage::kReading)); }},
    {"rv41", "delete through a handle for reading", {"5"},
     [](Stage& s) { SetIn(s.Make(u"k")); return DeleteIn(s.Make(u"k", Stage::kReading), Name().c_str()); }},
    {"rv42", "query through a handle for writing", {"5"},
     [](Stage& s) { SetIn(s.Make(u"k")); return QueryIn(s.Make(u"k", Stage::kWriting), Name().c_str()); }},
    {"rv43", "enumerate through a handle for writing", {"5"}, [](Stage& s) { return ListIn(s.Make(u"k", Stage::kWriting)); }},
    {"rv44", "delete a missing value", {"2"}, [](Stage& s) { return DeleteIn(s.mKey, Name().c_str()); }},
    {"rv45", "delete in other case", {"0"}, [](Stage& s) { SetNumber(s); return DeleteIn(s.mKey, Units(u"V").c_str()); }},
    {"rv46", "delete the default value", {"0"},
     [](Stage& s) { s.Set(u"", 4, kNumber, 4); return DeleteIn(s.mKey, kEmptyName); }},
    {"rv47", "delete it again", {"2"},
     [](Stage& s) { s.Set(u"", 4, kNumber, 4); DeleteIn(s.mKey, kEmptyName); return DeleteIn(s.mKey, kEmptyName); }},
    {"rv48", "delete on a null handle", {"6"}, [](Stage&) { return DeleteIn(nullptr, Name().c_str()); }},
    {"rv49", "set through another handle", {"0"}, &SeenThroughAnother},
};
// clang-format on

} // namespace

TEST_F(RegistrySituations, Numbers_AnswerAsAtHome)
{
    ExpectRegistrySituations(mPath, kNumbers);
}

TEST_F(RegistrySituations, Texts_AnswerAsAtHome)
{
    ExpectRegistrySituations(mPath, kTexts);
}

TEST_F(RegistrySituations, NamesAndSizes_AnswerAsAtHome)
{
    ExpectRegistrySituations(mPath, kNamesAndSizes);
}

TEST_F(RegistrySituations, RightsOfHandles_AnswerAsAtHome)
{
    ExpectRegistrySituations(mPath, kHandles);
}
