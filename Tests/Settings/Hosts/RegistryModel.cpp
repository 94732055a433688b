#include "RegistryModel.h"

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <algorithm>
#include <iterator>

namespace ORLTest {

using namespace ORL;

namespace {

const char* const kPaths[] = {"a", "b", "a\\b", "a\\c", "a\\b\\d", "b\\e", "b\\e\\f\\g", "c"};

unsigned Pick(std::mt19937& ioRandom, unsigned inCount)
{
    return static_cast<unsigned>(ioRandom() % inCount);
}

// Chooses the case of each letter at random.
std::string AnyCase(std::string inText, std::mt19937& ioRandom)
{
    for (char& letter : inText) {
        letter = ioRandom() % 2 != 0 && letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    }
    return inText;
}

std::string ValueName(std::mt19937& ioRandom)
{
    const unsigned number = Pick(ioRandom, 12);
    return number == 0 ? std::string() : "value" + std::to_string(number);
}

bool IsBelow(const std::string& inPath, const std::string& inAbove)
{
    return inPath == inAbove || inPath.compare(0, inAbove.size() + 1, inAbove + "\\") == 0;
}

std::string Lower(std::string inText)
{
    std::transform(inText.begin(), inText.end(), inText.begin(), [](char inLetter) {
        return inLetter >= 'A' && inLetter <= 'Z' ? static_cast<char>(inLetter + 32) : inLetter;
    });
    return inText;
}

} // namespace

RegistryModel::RegistryModel(const UTF16String& inBase) : mBase(inBase)
{
    mKeys[""].mIdentity = mIdentities++;
}

UTF16String RegistryModel::PathOf(const std::string& inPath) const
{
    return inPath.empty() ? mBase : mBase + MakeString("\\" + inPath);
}

RegistryModel::Key* RegistryModel::KeyOf(const Handle& inHandle)
{
    const auto found = mKeys.find(inHandle.mPath);
    return found != mKeys.end() && found->second.mIdentity == inHandle.mIdentity ? &found->second : nullptr;
}

unsigned RegistryModel::Run(std::uint32_t inSeed, unsigned inCount, bool inMapOnly)
{
    std::mt19937 random(inSeed);
    for (Handle& handle : mHandles) {
        RegistryKey().Swap(handle.mKey);
        handle.mIdentity = 0;
    }
    for (unsigned number = 1; number <= inCount; ++number) {
        if (!Step(random, inMapOnly)) {
            return number;
        }
    }
    return 0;
}

bool RegistryModel::Step(std::mt19937& ioRandom, bool inMapOnly)
{
    Handle& handle = mHandles[Pick(ioRandom, 3)];
    const unsigned kind = Pick(ioRandom, 100);
    if (kind < 12 || handle.mIdentity == 0) {
        return Retarget(handle, ioRandom, inMapOnly);
    }
    if (kind < 15) {
        return DeleteTree(handle, ioRandom, inMapOnly);
    }
    if (kind < 40) {
        return SetValue(handle, ioRandom, inMapOnly);
    }
    if (kind < 90) {
        return GetValue(handle, ioRandom, inMapOnly);
    }
    return kind < 97 ? DeleteValue(handle, ioRandom, inMapOnly) : Enumerate(handle, inMapOnly);
}

// Makes a handle refer to another key, which it opens or creates.
bool RegistryModel::Retarget(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly)
{
    const std::string path = kPaths[Pick(ioRandom, std::size(kPaths))];
    const bool creates = Pick(ioRandom, 3) != 0;
    const UTF16String written = PathOf(AnyCase(path, ioRandom));
    const bool exists = mKeys.count(path) != 0;
    Result expected = exists ? kSuccess : kFileNotFound;
    if (creates) {
        expected = exists ? kRegistryKeyExisted : kSuccess;
        for (std::size_t end = path.find('\\');; end = path.find('\\', end + 1)) {
            Key& key = mKeys[path.substr(0, end)];
            key.mIdentity = key.mIdentity != 0 ? key.mIdentity : mIdentities++;
            if (end == std::string::npos) {
                break;
            }
        }
    }
    if (exists || creates) {
        ioHandle.mPath = path;
        ioHandle.mIdentity = mKeys[path].mIdentity;
    }
    if (inMapOnly) {
        return true;
    }
    if (exists || creates) {
        RegistryKey().Swap(ioHandle.mKey); // a new object: copies in other handles must keep their key
    }
    constexpr auto kAll = static_cast<RegistryKeyAccess::Type>(0);
    const Result result = creates ? ioHandle.mKey.Create(RegistryRootKeys::kUser, written)
                                  : ioHandle.mKey.Open(RegistryRootKeys::kUser, written, kAll);
    return result == expected;
}

bool RegistryModel::DeleteTree(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly)
{
    const std::string name(1, static_cast<char>('a' + Pick(ioRandom, 7)));
    Result expected = kRegistryFailure;
    if (KeyOf(ioHandle) != nullptr) {
        const std::string path = ioHandle.mPath.empty() ? name : ioHandle.mPath + "\\" + name;
        expected = mKeys.count(path) != 0 ? kSuccess : kFileNotFound;
        for (auto key = mKeys.begin(); key != mKeys.end();) {
            key = IsBelow(key->first, path) ? mKeys.erase(key) : std::next(key);
        }
    }
    return inMapOnly || ioHandle.mKey.DeleteSubKey(MakeString(name)) == expected;
}

bool RegistryModel::SetValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly)
{
    const std::string name = ValueName(ioRandom);
    const UTF16String written = MakeString(AnyCase(name, ioRandom));
    Value value;
    value.mType = "nlsb"[Pick(ioRandom, 4)];
    value.mNumber = static_cast<unsigned __int64>(ioRandom()) << (value.mType == 'l' ? 32 : 0);
    value.mText = std::string(Pick(ioRandom, 50), static_cast<char>('A' + Pick(ioRandom, 26)));
    Key* const key = KeyOf(ioHandle);
    if (key != nullptr) {
        key->mValues[name] = value;
    }
    if (inMapOnly) {
        return true;
    }
    std::vector<char> data(value.mText.begin(), value.mText.end());
    RegistryKey& handle = ioHandle.mKey;
    const Result result = value.mType == 'n'   ? handle.SetUInt32Value(written, static_cast<unsigned>(value.mNumber))
                          : value.mType == 'l' ? handle.SetUInt64Value(written, value.mNumber)
                          : value.mType == 's' ? handle.SetStringValue(written, value.mText)
                                               : handle.SetBinaryValue(written, data);
    return result == (key != nullptr ? kSuccess : kRegistryFailure);
}

bool RegistryModel::GetValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly)
{
    const std::string name = ValueName(ioRandom);
    const UTF16String written = MakeString(AnyCase(name, ioRandom));
    const char type = "nlsb"[Pick(ioRandom, 4)];
    if (inMapOnly) {
        return true;
    }
    Key* const key = KeyOf(ioHandle);
    const auto found = key != nullptr ? key->mValues.find(name) : std::map<std::string, Value>::iterator();
    const bool isThere = key != nullptr && found != key->mValues.end() && found->second.mType == type;
    const Result expected = isThere ? kSuccess : kRegistryFailure;
    unsigned number = 0;
    unsigned __int64 large = 0;
    std::string text;
    std::vector<char> data;
    const RegistryKey& handle = ioHandle.mKey;
    const Result result = type == 'n'   ? handle.GetUInt32Value(written, number)
                          : type == 'l' ? handle.GetUInt64Value(written, large)
                          : type == 's' ? handle.GetStringValue(written, text)
                                        : handle.GetBinaryValue(written, data);
    if (result != expected || !isThere) {
        return result == expected;
    }
    const Value& value = found->second;
    return type == 'n'   ? number == static_cast<unsigned>(value.mNumber)
           : type == 'l' ? large == value.mNumber
           : type == 's' ? text == value.mText
                         : std::string(data.begin(), data.end()) == value.mText;
}

bool RegistryModel::DeleteValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly)
{
    const std::string name = ValueName(ioRandom);
    const UTF16String written = MakeString(AnyCase(name, ioRandom));
    Key* const key = KeyOf(ioHandle);
    const bool wasThere = key != nullptr && key->mValues.erase(name) != 0;
    return inMapOnly || ioHandle.mKey.DeleteValue(written) == (wasThere ? kSuccess : kRegistryFailure);
}

std::vector<std::string> RegistryModel::ChildrenOf(const std::string& inPath) const
{
    std::vector<std::string> names;
    const std::string prefix = inPath.empty() ? "" : inPath + "\\";
    for (const auto& key : mKeys) {
        const bool isBelow = key.first.size() > prefix.size() && key.first.compare(0, prefix.size(), prefix) == 0;
        if (isBelow && key.first.find('\\', prefix.size()) == std::string::npos) {
            names.push_back(key.first.substr(prefix.size()));
        }
    }
    return names;
}

bool RegistryModel::Enumerate(Handle& ioHandle, bool inMapOnly)
{
    if (inMapOnly) {
        return true;
    }
    std::vector<RegistryKey> keys;
    ioHandle.mKey.EnumerateSubKeys(keys);
    std::vector<std::string> names;
    for (const RegistryKey& key : keys) {
        names.push_back(Lower(MakeStdString(key.GetParentKeyPath())));
    }
    std::sort(names.begin(), names.end());
    return names == (KeyOf(ioHandle) != nullptr ? ChildrenOf(ioHandle.mPath) : std::vector<std::string>());
}

bool RegistryModel::IsSame() const
{
    for (const auto& [path, key] : mKeys) {
        std::vector<UTF16String> children;
        std::vector<RegistryValue> values;
        if (RegistryStore::ListSubKeys(RegistryRootKeys::kUser, PathOf(path), children) != kSuccess
            || RegistryStore::ListValues(RegistryRootKeys::kUser, PathOf(path), values) != kSuccess
            || children.size() != ChildrenOf(path).size() || values.size() != key.mValues.size()) {
            return false;
        }
        for (const RegistryValue& value : values) {
            const auto found = key.mValues.find(Lower(MakeStdString(value.mName)));
            const unsigned types[] = {4, 11, 1, 3};
            if (found == key.mValues.end() || value.mType != types[std::string("nlsb").find(found->second.mType)]) {
                return false;
            }
        }
    }
    return true;
}

} // namespace ORLTest
