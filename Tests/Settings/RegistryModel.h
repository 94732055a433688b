// Random operations on registry keys beside a plain map that says what each of them must answer. Two processes with the
// same seed do the same, so a process can follow in its map what another one does.
#pragma once

#include <ORLRegistryKey.h>

#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace ORLTest {

class RegistryModel
{
public:
    /// Works below a key that exists.
    explicit RegistryModel(const UTF16String& inBase);

    /// Does one random operation after the other, on the map and, unless inMapOnly, on the registry. Returns the number
    /// of the first operation whose answer is not the map's, or 0. Handles are closed at the beginning.
    unsigned Run(std::uint32_t inSeed, unsigned inCount, bool inMapOnly);

    /// Every key and value of the map is in the registry, and nothing else is.
    bool IsSame() const;

private:
    struct Value
    {
        char mType = 0; // 'n' 32-bit number, 'l' 64-bit number, 's' text, 'b' bytes
        unsigned __int64 mNumber = 0;
        std::string mText;
    };
    struct Key
    {
        unsigned mIdentity = 0; // a key that is created anew is another one
        std::map<std::string, Value> mValues;
    };
    struct Handle
    {
        ORL::RegistryKey mKey;
        std::string mPath;
        unsigned mIdentity = 0; // 0 while closed
    };

    bool Step(std::mt19937& ioRandom, bool inMapOnly);
    bool Retarget(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly);
    bool DeleteTree(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly);
    bool SetValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly);
    bool GetValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly);
    bool DeleteValue(Handle& ioHandle, std::mt19937& ioRandom, bool inMapOnly);
    bool Enumerate(Handle& ioHandle, bool inMapOnly);
    Key* KeyOf(const Handle& inHandle);
    UTF16String PathOf(const std::string& inPath) const;
    std::vector<std::string> ChildrenOf(const std::string& inPath) const;

    const UTF16String mBase;
    std::map<std::string, Key> mKeys; // by path below the base in lower case; "" is the base
    std::array<Handle, 3> mHandles;
    unsigned mIdentities = 1;
};

} // namespace ORLTest
