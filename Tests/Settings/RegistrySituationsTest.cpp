// Compares the results of registry key calls with those recorded on Windows. Calls the platform functions.
#include "RegistryStage.h"

using namespace ORLTest;
using namespace ORL::Registry::Platform;
using RegistrySituations = RegistryTest;

namespace {

using Stage = RegistryStage;
constexpr unsigned short kNothing[] = {0};
constexpr unsigned kViewOf32 = 0x200;

std::u16string Levels(unsigned inCount)
{
    std::u16string path = u"level";
    for (unsigned i = 1; i < inCount; ++i) {
        path += u"\\level";
    }
    return path;
}

std::string FirstOf(const std::string& inAnswer)
{
    return inAnswer.substr(0, inAnswer.find(' '));
}

std::string MakeLevelByLevel(Stage& ioStage, unsigned inCount)
{
    KeyHandle key = ioStage.mKey;
    std::string answer;
    for (unsigned i = 0; i < inCount; i += 30) {
        KeyHandle next = nullptr;
        const UTF16String path = Units(Levels(30));
        answer = std::to_string(CreateKey_Impl(key, path.c_str(), kAccessAll, next, nullptr));
        if (key != ioStage.mKey) {
            CloseKey_Impl(key);
        }
        key = next;
        if (answer != "0") {
            return answer;
        }
    }
    CloseKey_Impl(key);
    return answer;
}

std::string OpenFailing(Stage& ioStage)
{
    KeyHandle key = ioStage.mKey;
    const ORL::SystemError error = OpenKey_Impl(ioStage.mKey, Units(u"no").c_str(), kAccessAll, key);
    return std::to_string(error) + (key == nullptr ? " 1" : " 0");
}

KeyHandle ClosedHandle(Stage& ioStage)
{
    KeyHandle key = nullptr;
    CreateKey_Impl(ioStage.mKey, Units(u"closed").c_str(), kAccessAll, key, nullptr);
    CloseKey_Impl(key);
    return key;
}

// clang-format off
const std::vector<RegistrySituation> kOpening = {
    {"ro01", "missing key", {"2"}, [](Stage& s) { return s.Open(u"no"); }},
    {"ro02", "below a missing key", {"2"}, [](Stage& s) { return s.Open(u"no\\no"); }},
    {"ro03", "empty text", {"0"}, [](Stage& s) { return s.Open(u""); }},
    {"ro04", "null text", {"0"}, [](Stage& s) { return Stage::OpenIn(s.mKey, nullptr); }},
    {"ro05", "other case", {"0"}, [](Stage& s) { s.Make(u"AbC"); return s.Open(u"aBc"); }},
    {"ro06", "trailing backslash", {"0"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"a\\"); }},
    {"ro07", "nested, trailing backslash", {"0"}, [](Stage& s) { s.Make(u"a\\b"); return s.Open(u"a\\b\\"); }},
    {"ro08", "two trailing backslashes", {"0"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"a\\\\"); }},
    {"ro09", "doubled inner backslash", {"0"}, [](Stage& s) { s.Make(u"a\\b"); return s.Open(u"a\\\\b"); }},
    {"ro10", "leading backslash", {"161"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"\\a"); }},
    {"ro11", "a lone backslash", {"161"}, [](Stage& s) { return s.Open(u"\\"); }},
    {"ro12", "forward slash", {"2"}, [](Stage& s) { s.Make(u"a\\b"); return s.Open(u"a/b"); }},
    {"ro13", "below the user's root with leading backslash", {"161"},
     [](Stage&) { return Stage::OpenIn(GetUserRoot_Impl(), Units(u"\\Software").c_str()); }},
    {"ro14", "null handle", {"6"}, [](Stage&) { return Stage::OpenIn(nullptr, Units(u"Software").c_str()); }},
    {"ro15", "no access", {"0", "5"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"a", 0); }},
    {"ro16", "missing, trailing backslash", {"2"}, [](Stage& s) { return s.Open(u"no\\"); }},
    {"ro17", "handle after a failure", {"2 1"}, &OpenFailing},
    {"ro18", "both view bits", {"87"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"a", kAccessRead | kAccessViewBits); }, {"0"}},
    {"ro19", "32-bit view", {"0"}, [](Stage& s) { s.Make(u"a"); return s.Open(u"a", kAccessRead | kViewOf32); }},
    {"ro20", "name of 255 units, missing", {"2"}, [](Stage& s) { return s.Open(std::u16string(255, 'x')); }},
    {"ro21", "name of 256 units, missing", {"87", "2"}, [](Stage& s) { return s.Open(std::u16string(256, 'x')); }},
    {"ro22", "closed handle", {"6"}, [](Stage& s) { return Stage::OpenIn(ClosedHandle(s), Units(u"a").c_str()); }},
};

const std::vector<RegistrySituation> kCreating = {
    {"rc01", "new", {"0 1"}, [](Stage& s) { return s.Create(u"a"); }},
    {"rc02", "existing in other case", {"0 2"}, [](Stage& s) { s.Make(u"a"); return s.Create(u"A"); }},
    {"rc03", "four levels at once", {"0 1"}, [](Stage& s) { return s.Create(u"a\\b\\c\\d"); }},
    {"rc04", "the parents exist", {"0"}, [](Stage& s) { s.Create(u"a\\b\\c\\d"); return s.Open(u"a\\b\\c"); }},
    {"rc05", "trailing backslash", {"0 1 Abc|end=259"},
     [](Stage& s) { const std::string made = s.Create(u"Abc\\"); return made + " " + s.List(s.mKey); }},
    {"rc06", "two trailing backslashes", {"0 2"}, [](Stage& s) { s.Make(u"Abc"); return s.Create(u"Abc\\\\"); }},
    {"rc07", "open the same without backslash", {"0"}, [](Stage& s) { s.Create(u"Abc\\"); return s.Open(u"Abc"); }},
    {"rc08", "doubled inner backslash", {"0 1"}, [](Stage& s) { return s.Create(u"x1\\\\y1"); }},
    {"rc09", "open after it", {"0"}, [](Stage& s) { s.Create(u"x1\\\\y1"); return s.Open(u"x1\\y1"); }},
    {"rc10", "empty text", {"0 2"}, [](Stage& s) { return s.Create(u""); }, {"0 1"}},
    {"rc11", "null text", {"87", "161"}, [](Stage& s) { return Stage::CreateIn(s.mKey, nullptr); }, {"0 1"}},
    {"rc12", "leading backslash", {"161"}, [](Stage& s) { return s.Create(u"\\a"); }},
    {"rc13", "a lone backslash", {"161"}, [](Stage& s) { return s.Create(u"\\"); }},
    {"rc14", "name of 255 units", {"0 1"}, [](Stage& s) { return s.Create(std::u16string(255, 'n')); }},
    {"rc15", "name of 256 units", {"87"}, [](Stage& s) { return s.Create(std::u16string(256, 'n')); }, {"0 1"}},
    {"rc16", "open the name of 255 units", {"0"},
     [](Stage& s) { s.Make(std::u16string(255, 'n')); return s.Open(std::u16string(255, 'N')); }},
    {"rc17", "special characters", {"0 1"}, [](Stage& s) { return s.Create(u"*?<>:|\""); }},
    {"rc18", "blank ends", {"0 1"}, [](Stage& s) { return s.Create(u" blank "); }},
    {"rc19", "the name without the blanks", {"2"}, [](Stage& s) { s.Make(u" blank "); return s.Open(u"blank"); }},
    {"rc20", "forward slash", {"0 1"}, [](Stage& s) { return s.Create(u"a/b"); }},
    {"rc21", "outside ASCII", {"0 1"}, [](Stage& s) { return s.Create(u"caf\u00e9"); }},
    {"rc22", "the same in upper case", {"0"}, [](Stage& s) { s.Make(u"caf\u00e9"); return s.Open(u"CAF\u00c9"); }},
    {"rc23", "null handle", {"6"}, [](Stage&) { return Stage::CreateIn(nullptr, Units(u"a").c_str()); }},
    {"rc24", "below a handle for reading", {"0 1"},
     [](Stage& s) { return Stage::CreateIn(s.Make(u"r", Stage::kReading), Units(u"a").c_str()); }},
    {"rc25", "below a handle for writing", {"0 1"},
     [](Stage& s) { return Stage::CreateIn(s.Make(u"w", Stage::kWriting), Units(u"a").c_str()); }},
    {"rc26", "40 levels at once", {"87"}, [](Stage& s) { return s.Create(Levels(40) + u"\\"); }, {"0 1"}},
    {"rc27", "600 levels", {"87"}, [](Stage& s) { return MakeLevelByLevel(s, 600); }, {"0"}},
    {"rc28", "the user's root with empty text", {"0"},
     [](Stage&) { return FirstOf(Stage::CreateIn(GetUserRoot_Impl(), kNothing)); }},
};
// clang-format on

const char* const kOrdered = "1|A|a b|a10|a2|b|B2|c|Z|zz|_x|<00e9>|end=259";
const char* const kOrderedByWine = "1|_x|A|a b|a10|a2|b|B2|c|Z|zz|<00e9>|end=259";

std::string ListOrdered(Stage& ioStage)
{
    for (const char16_t* name : {u"b", u"A", u"c", u"a10", u"a2", u"B2", u"_x", u"Z", u"zz", u"1", u"\u00e9", u"a b"}) {
        ioStage.Create(name);
    }
    return ioStage.List(ioStage.mKey);
}

std::string Enumerate(Stage& ioStage, unsigned inIndex, unsigned inCapacity)
{
    unsigned short name[512] = {};
    unsigned length = inCapacity;
    const ORL::SystemError error = EnumerateKey_Impl(ioStage.mKey, inIndex, name, length);
    return std::to_string(error) + (error == 0 ? " " + std::to_string(length) : "");
}

// clang-format off
const std::vector<RegistrySituation> kEnumerating = {
    {"re01", "order", {kOrdered}, &ListOrdered, {kOrderedByWine}},
    {"re02", "name longer than the buffer", {"234"}, [](Stage& s) { s.Create(u"abc"); return Enumerate(s, 0, 2); }},
    {"re03", "capacity 0", {"234"}, [](Stage& s) { s.Create(u"abc"); return Enumerate(s, 0, 0); }},
    {"re04", "room for the name alone", {"234"}, [](Stage& s) { s.Create(u"abc"); return Enumerate(s, 0, 3); }},
    {"re05", "room for the terminator too", {"0 3"}, [](Stage& s) { s.Create(u"abc"); return Enumerate(s, 0, 4); }},
    {"re06", "past the end", {"259"}, [](Stage& s) { s.Create(u"abc"); return Enumerate(s, 1, 300); }},
    {"re07", "null handle", {"end=6"}, [](Stage& s) { return s.List(nullptr); }},
    {"re08", "255 units into 256", {"0 255"}, [](Stage& s) { s.Create(std::u16string(255, 'n')); return Enumerate(s, 0, 256); }},
    {"re09", "255 units into 255", {"234"}, [](Stage& s) { s.Create(std::u16string(255, 'n')); return Enumerate(s, 0, 255); }},
    {"re10", "created in two cases", {"CaSe|end=259"},
     [](Stage& s) { s.Create(u"CaSe"); s.Create(u"case"); return s.List(s.mKey); }},
};
// clang-format on

std::string Number(ORL::SystemError inError)
{
    return std::to_string(inError);
}

// Returns the handle of a key that has been deleted.
KeyHandle Deleted(Stage& ioStage)
{
    const KeyHandle key = ioStage.Make(u"gone");
    EXPECT_EQ("0", ioStage.Delete(u"gone"));
    return key;
}

std::string QueryIn(KeyHandle inKey)
{
    unsigned size = 0;
    return Number(QueryValue_Impl(inKey, Units(u"v").c_str(), nullptr, nullptr, &size));
}

std::string CloseTwice(Stage& ioStage)
{
    return Number(CloseKey_Impl(ClosedHandle(ioStage)));
}

// clang-format off
const std::vector<RegistrySituation> kDeleting = {
    {"rd01", "with subkeys", {"5"}, [](Stage& s) { s.Create(u"a\\b"); return s.Delete(u"a"); }},
    {"rd02", "missing", {"2"}, [](Stage& s) { return s.Delete(u"no"); }},
    {"rd03", "nested path", {"0"}, [](Stage& s) { s.Create(u"a\\b"); return s.Delete(u"a\\b"); }},
    {"rd04", "other case, trailing backslash", {"0"}, [](Stage& s) { s.Create(u"a"); return s.Delete(u"A\\"); }},
    {"rd05", "empty text", {"0"}, [](Stage& s) { return Number(DeleteKey_Impl(s.Make(u"a"), kNothing)); }},
    {"rd06", "open after it", {"2"}, [](Stage& s) { DeleteKey_Impl(s.Make(u"a"), kNothing); return s.Open(u"a"); }},
    {"rd07", "null text", {"87", "5"}, [](Stage& s) { return Number(DeleteKey_Impl(s.mKey, nullptr)); }},
    {"rd08", "in view 0, with subkeys", {"5"},
     [](Stage& s) { s.Create(u"a\\b"); return Number(DeleteKeyInView_Impl(s.mKey, Units(u"a").c_str(), 0)); }},
    {"rd09", "in view 0, nested", {"0"},
     [](Stage& s) { s.Create(u"a\\b"); return Number(DeleteKeyInView_Impl(s.mKey, Units(u"a\\b").c_str(), 0)); }},
    {"rd10", "in view 0x100", {"0"},
     [](Stage& s) { s.Create(u"a"); return Number(DeleteKeyInView_Impl(s.mKey, Units(u"a").c_str(), 0x100)); }},
    {"rd11", "null handle", {"6"}, [](Stage&) { return Number(DeleteKey_Impl(nullptr, Units(u"a").c_str())); }},
    {"rd12", "below a handle for reading", {"0"},
     [](Stage& s) { s.Create(u"r\\a"); return Number(DeleteKey_Impl(s.Make(u"r", Stage::kReading), Units(u"a").c_str())); }},
    {"rd13", "open elsewhere", {"0"}, [](Stage& s) { s.Make(u"a"); return s.Delete(u"a"); }},
    {"rd14", "query through a deleted key", {"1018"}, [](Stage& s) { return QueryIn(Deleted(s)); }},
    {"rd15", "set through it", {"1018"},
     [](Stage& s) { return Number(SetValue_Impl(Deleted(s), Units(u"v").c_str(), 4, "1234", 4)); }},
    {"rd16", "enumerate through it", {"end=1018"}, [](Stage& s) { return s.List(Deleted(s)); }},
    {"rd17", "create below it", {"1018"}, [](Stage& s) { return Stage::CreateIn(Deleted(s), Units(u"a").c_str()); }},
    {"rd18", "open below it", {"1018"}, [](Stage& s) { return Stage::OpenIn(Deleted(s), Units(u"a").c_str()); }},
    {"rd19", "open it with empty text", {"1018"}, [](Stage& s) { return Stage::OpenIn(Deleted(s), kNothing); }},
    {"rd20", "delete a value through it", {"1018"},
     [](Stage& s) { return Number(DeleteValue_Impl(Deleted(s), Units(u"v").c_str())); }},
    {"rd21", "delete it again", {"1018"}, [](Stage& s) { return Number(DeleteKey_Impl(Deleted(s), kNothing)); }},
    {"rd22", "create the name anew", {"0 1"}, [](Stage& s) { Deleted(s); return s.Create(u"gone"); }},
    {"rd23", "query through the old handle then", {"1018"},
     [](Stage& s) { const KeyHandle old = Deleted(s); s.Create(u"gone"); return QueryIn(old); }},
    {"rd24", "close the old handle", {"0"},
     [](Stage& s) { s.Create(u"gone"); KeyHandle key = nullptr; OpenKey_Impl(s.mKey, Units(u"gone").c_str(), kAccessAll, key);
                    s.Delete(u"gone"); return Number(CloseKey_Impl(key)); }},
    {"rd25", "close it twice", {"6"}, &CloseTwice},
    {"rd26", "close a null handle", {"6"}, [](Stage&) { return Number(CloseKey_Impl(nullptr)); }},
    // Row rm01 (an ordinary user's rights to the machine's keys) is in RegistryHomesLinuxTest, because Wine
    // permits everything.
    {"rm02", "the machine's software for reading", {"0"},
     [](Stage&) { return Stage::OpenIn(GetMachineRoot_Impl(), Units(u"Software").c_str(), Stage::kReading); }},
    {"rm03", "the user's root itself", {"0"}, [](Stage&) { return Stage::OpenIn(GetUserRoot_Impl(), kNothing); }},
    {"rm04", "close the user's root", {"0"}, [](Stage&) { return Number(CloseKey_Impl(GetUserRoot_Impl())); }},
};
// clang-format on

} // namespace

TEST_F(RegistrySituations, Opening_AnswersAsAtHome)
{
    ExpectRegistrySituations(mPath, kOpening);
}

TEST_F(RegistrySituations, Creating_AnswersAsAtHome)
{
    ExpectRegistrySituations(mPath, kCreating);
}

TEST_F(RegistrySituations, Enumerating_AnswersAsAtHome)
{
    ExpectRegistrySituations(mPath, kEnumerating);
}

TEST_F(RegistrySituations, Deleting_AnswersAsAtHome)
{
    ExpectRegistrySituations(mPath, kDeleting);
}
