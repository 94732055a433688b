#include "RegistryStage.h"

#include <cstdio>

namespace ORLTest {

using namespace ORL::Registry::Platform;

namespace {

UTF16String Text(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

std::string Hex(const std::vector<unsigned char>& inData)
{
    std::string text;
    for (const unsigned char byte : inData) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", byte);
        text += digits;
    }
    return text;
}

} // namespace

RegistryStage::RegistryStage(const UTF16String& inPath) : mPath(inPath)
{
    EXPECT_EQ(0u, CreateKey_Impl(GetUserRoot_Impl(), inPath.c_str(), kAll, mKey, nullptr));
}

RegistryStage::~RegistryStage()
{
    for (const KeyHandle key : mMade) {
        CloseKey_Impl(key);
    }
    CloseKey_Impl(mKey);
}

std::string RegistryStage::OpenIn(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess)
{
    KeyHandle key = nullptr;
    const ORL::SystemError error = OpenKey_Impl(inParent, inPath, inAccess, key);
    EXPECT_EQ(error == 0, key != nullptr);
    if (key != nullptr) {
        EXPECT_EQ(0u, CloseKey_Impl(key));
    }
    return std::to_string(error);
}

std::string RegistryStage::Open(const std::u16string& inPath, unsigned inAccess) const
{
    return OpenIn(mKey, Text(inPath).c_str(), inAccess);
}

std::string RegistryStage::CreateIn(KeyHandle inParent, const unsigned short* inPath)
{
    KeyHandle key = nullptr;
    unsigned disposition = 0;
    const ORL::SystemError error = CreateKey_Impl(inParent, inPath, kAll, key, &disposition);
    if (error != 0) {
        return std::to_string(error);
    }
    EXPECT_EQ(0u, CloseKey_Impl(key));
    return "0 " + std::to_string(disposition);
}

std::string RegistryStage::Create(const std::u16string& inPath) const
{
    return CreateIn(mKey, Text(inPath).c_str());
}

RegistryStage::KeyHandle RegistryStage::Make(const std::u16string& inPath, unsigned inAccess)
{
    KeyHandle key = nullptr;
    EXPECT_EQ(0u, CreateKey_Impl(mKey, Text(inPath).c_str(), kAll, key, nullptr));
    EXPECT_EQ(0u, CloseKey_Impl(key));
    EXPECT_EQ(0u, OpenKey_Impl(mKey, Text(inPath).c_str(), inAccess, key));
    mMade.push_back(key);
    return key;
}

std::string RegistryStage::Delete(const std::u16string& inPath) const
{
    return std::to_string(DeleteKey_Impl(mKey, Text(inPath).c_str()));
}

std::string RegistryStage::Set(const std::u16string& inName, unsigned inType, const void* inData, unsigned inSize) const
{
    return std::to_string(SetValue_Impl(mKey, Text(inName).c_str(), inType, inData, inSize));
}

std::string RegistryStage::Query(const std::u16string& inName) const
{
    const UTF16String name = Text(inName);
    unsigned type = 0;
    unsigned size = 0;
    const ORL::SystemError asked = QueryValue_Impl(mKey, name.c_str(), nullptr, nullptr, &size);
    if (asked != 0) {
        return std::to_string(asked);
    }
    std::vector<unsigned char> data(size + 8);
    unsigned read = static_cast<unsigned>(data.size());
    const ORL::SystemError error = QueryValue_Impl(mKey, name.c_str(), &type, data.data(), &read);
    data.resize(read);
    return std::to_string(error) + " type=" + std::to_string(type) + " size=" + std::to_string(read)
           + " bytes=" + Hex(data) + "; size query 0 " + std::to_string(size);
}

std::string RegistryStage::SetAndQuery(unsigned inType, const void* inData, unsigned inSize) const
{
    const std::string set = Set(u"v", inType, inData, inSize);
    return set == "0" ? Query(u"v") : set;
}

std::string RegistryStage::List(KeyHandle inKey) const
{
    std::string names;
    for (unsigned index = 0;; ++index) {
        unsigned short name[512];
        unsigned length = 512;
        const ORL::SystemError error = EnumerateKey_Impl(inKey, index, name, length);
        if (error != 0) {
            return names + "end=" + std::to_string(error);
        }
        names += Show(UTF16String(name, length)) + "|";
    }
}

void ExpectRegistrySituations(const UTF16String& inPath, const std::vector<RegistrySituation>& inRows)
{
    const bool isEmulated = RunsOnEmulator();
    for (const RegistrySituation& row : inRows) {
        const std::string record = row.mRecord;
        RegistryStage stage(inPath + Units(u"\\" + std::u16string(record.begin(), record.end())));
        const std::string answer = row.mRun(stage);
        const std::set<std::string>& expected =
            isEmulated && !row.mWineResults.empty() ? row.mWineResults : row.mWindowsResults;
        EXPECT_EQ(1u, expected.count(answer)) << record << ", " << row.mText << ": \"" << answer << "\"";
    }
}

} // namespace ORLTest
