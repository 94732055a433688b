#include "RegKeyName.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <cstring>

namespace orl {

namespace {

constexpr unsigned short kSeparator = '\\';

struct Root
{
    const char* mName;
    ORL::RegistryRootKeys::Type mRoot;
};

constexpr Root kRoots[] = {
    {"HKCU", ORL::RegistryRootKeys::kUser},
    {"HKEY_CURRENT_USER", ORL::RegistryRootKeys::kUser},
    {"HKLM", ORL::RegistryRootKeys::kMachine},
    {"HKEY_LOCAL_MACHINE", ORL::RegistryRootKeys::kMachine},
};

constexpr Root kPrefixes[] = {
    {"user:", ORL::RegistryRootKeys::kUser},
    {"machine:", ORL::RegistryRootKeys::kMachine},
};

unsigned Lower(unsigned inCharacter)
{
    return inCharacter >= 'A' && inCharacter <= 'Z' ? inCharacter + ('a' - 'A') : inCharacter;
}

// Ignores the case of ASCII letters.
bool BeginsWith(const UTF16String& inText, const char* inBeginning)
{
    const std::size_t length = std::strlen(inBeginning);
    if (inText.size() < length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (Lower(inText[i]) != Lower(static_cast<unsigned char>(inBeginning[i]))) {
            return false;
        }
    }
    return true;
}

UTF16String WithoutEndingSeparators(UTF16String inPath)
{
    while (!inPath.empty() && inPath.back() == kSeparator) {
        inPath.pop_back();
    }
    return inPath;
}

bool SplitPrefix(const UTF16String& inName, RegKeyName& outKey)
{
    for (const Root& prefix : kPrefixes) {
        if (BeginsWith(inName, prefix.mName)) {
            outKey = {prefix.mRoot, WithoutEndingSeparators(inName.substr(std::strlen(prefix.mName)))};
            return true;
        }
    }
    return false;
}

} // namespace

bool SplitRegRoot(const UTF16String& inName, RegKeyName& outKey)
{
    for (const Root& root : kRoots) {
        const std::size_t length = std::strlen(root.mName);
        if (!BeginsWith(inName, root.mName) || (inName.size() > length && inName[length] != kSeparator)) {
            continue;
        }
        const UTF16String rest = inName.size() > length ? inName.substr(length + 1) : UTF16String();
        outKey = {root.mRoot, WithoutEndingSeparators(rest)};
        return true;
    }
    return false;
}

std::string RegPathError(const UTF16String& inPath)
{
    if (inPath.find(static_cast<unsigned short>(0)) != UTF16String::npos) {
        return "the name of a key cannot contain a zero character";
    }
    std::size_t levels = 0;
    for (std::size_t at = 0; at < inPath.size(); ++levels) {
        const std::size_t end = std::min(inPath.find(kSeparator, at), inPath.size());
        if (end == at) {
            return "the name of a key cannot be empty";
        }
        if (end - at > kMaxKeyNameUnits) {
            return "the name of a key has at most 255 characters";
        }
        at = end + 1;
    }
    return levels > kMaxKeyLevels ? "a key is at most 512 levels deep" : "";
}

RegKeyName ReadRegKeyName(const std::string& inText, ORL::RegistryRootKeys::Type inRoot)
{
    const UTF16String text = ToUTF16(inText);
    RegKeyName key;
    if (!SplitPrefix(text, key) && !SplitRegRoot(text, key)) {
        key = {inRoot, WithoutEndingSeparators(text)};
    }
    const std::string error = RegPathError(key.mPath);
    if (!error.empty()) {
        throw Failure("reg: \"" + inText + "\" is not a valid key: " + error, kExitUsage);
    }
    return key;
}

std::string ShowRegKeyName(const RegKeyName& inKey)
{
    const std::string root = inKey.mRoot == ORL::RegistryRootKeys::kUser ? "HKCU" : "HKLM";
    return inKey.mPath.empty() ? root : root + '\\' + ToUTF8(inKey.mPath);
}

UTF16String LongRegKeyName(const RegKeyName& inKey)
{
    const bool isUser = inKey.mRoot == ORL::RegistryRootKeys::kUser;
    UTF16String name = ToUTF16(isUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE");
    if (!inKey.mPath.empty()) {
        name += kSeparator;
        name += inKey.mPath;
    }
    return name;
}

std::string ShowRegValueName(const UTF16String& inName)
{
    return inName.empty() ? "the default value" : '"' + ToUTF8(inName) + '"';
}

} // namespace orl
