// Performs random operations on registry keys and on a plain map that predicts each result. Two processes with the same
// seed perform the same operations, so one process can follow the other in its map.
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
    /// inBase must name an existing key. All operations are on keys below inBase.
    explicit RegistryModel(const UTF16String& inBase);

    /// Performs inCount random operations on the map and, unless inMapOnly, on the registry. Returns the number of the
    /// first operation whose result differs from the map's, or 0. Starts with closed handles.
    unsigned Run(std::uint32_t inSeed, unsigned inCount, bool inMapOnly);

    /// Returns whether the registry holds exactly the keys and values of the map.
    bool IsSame() const;

private:
    struct Value
    {
        char mType = 0; // 'n' 32-bit number, 'l' 64-bit number, 's' string, 'b' bytes
        unsigned __int64 mNumber = 0;
        std::string mText;
    };
    struct Key
    {
        unsigned mIdentity = 0; // a recreated key gets a new identifier
        std::map<std::string, Value> mValues;
    };
    struct Handle
    {
        ORL::RegistryKey mKey;
        std::string mPath;
        unsigned mIdentity = 0; // 0 if closed
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
    std::map<std::string, Key> mKeys; // the key is the lower-case path below the base; "" is the base
    std::array<Handle, 3> mHandles;
    unsigned mIdentities = 1;
};

} // namespace ORLTest
