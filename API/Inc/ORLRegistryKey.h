// Floor: System
// Persistent settings: keys below two roots, with named numbers, strings and binary values.
//
//   ORL::RegistryKey key;
//   if (ORL::ResultSucceeded(key.Create(ORL::RegistryRootKeys::kUser, path))) {
//       key.SetUInt32Value(name, 1920);
//   }
//
// A path consists of key names separated by backslashes, without the root: "Software\Company\Product". Trailing
// backslashes are ignored; a leading backslash makes every operation fail. Names are case-insensitive and keep the case
// they were created with. A key name has at most 255 UTF-16 code units, a value name 16383. The value with the empty
// name is the default value of its key. A path or value name ends at its first zero unit.
#pragma once

#include <ORLConfig.h>
#include <ORLImpl.h>
#include <ORLResult.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace ORL {

struct RegistryRootKeys ///< The two roots.
{
    enum Type : int {
        kUser = 0,   ///< the settings of the user who runs the process
        kMachine = 1 ///< the settings of all users; read-only for ordinary users
    };
};

struct RegistryKeyAccess ///< The access a key is opened with. The values combine with |.
{
    enum Type : int { kRead = 1, kWrite = 2 };
};

constexpr RegistryKeyAccess::Type operator|(RegistryKeyAccess::Type inLeft, RegistryKeyAccess::Type inRight) noexcept
{
    return static_cast<RegistryKeyAccess::Type>(static_cast<int>(inLeft) | static_cast<int>(inRight));
}

/// A handle to one key. The handle is closed until Open or Create succeeds. There is no Close: the handle stays open
/// until its last copy is destroyed. If the key is deleted while handles to it are open, every operation on them fails,
/// even after a key of the same name is created.
///
/// When a write returns, the value is in the store: it survives a crash of this process, and other processes see it at
/// their next read. After a power failure the last writes may be missing.
///
/// Owner:    copies share one handle. An Open or Create on one copy affects all of them; each keeps its own path.
/// Threads:  reading and writing values is thread-safe, and so is copying and destroying copies. Not thread-safe: Open
///           and Create, which change the handle of all copies; assignment and Swap, which change the object.
/// Failure:  failed operations return kRegistryFailure unless stated otherwise, and always on a closed key.
///           Constructors and functions that take or return strings or vectors throw std::bad_alloc.
/// On Linux: the store is one database for each root (see Docs/settings.md). A forked child can use the store.
class ORL_API RegistryKey
{
public:
    /// Constructs a closed key with an empty path.
    RegistryKey();

    /// Shares the handle of the other key and copies its path.
    RegistryKey(const RegistryKey& inOther);

    ~RegistryKey();

    /// Shares the handle of the other key and copies its path. Releases the share in the previous handle.
    RegistryKey& operator=(const RegistryKey& inOther);

    /// Exchanges handles and paths. Never throws.
    void Swap(RegistryKey& ioOther);

    /// Opens a key below a root. inAccess 0 requests all access. Fires an assertion for an unknown root, which is
    /// treated as kUser, and for a non-zero access with neither kRead nor kWrite. Sets the path of this key to inPath
    /// even on failure, but then keeps the previous handle. Returns kFileNotFound if the key does not exist.
    /// A user without the right to write the machine's settings can open a key of kMachine only with kRead.
    Result Open(RegistryRootKeys::Type inRoot, const UTF16String& inPath, RegistryKeyAccess::Type inAccess);

    /// Opens a key below inParent with all access. An empty path opens the key of inParent itself.
    Result Open(RegistryKey& inParent, const UTF16String& inPath);

    /// Opens a key with all access, or creates it and its missing parents. One call creates at most 32 keys, and a path
    /// has at most 512 levels. Returns kSuccess if the key was created, kRegistryKeyExisted (also a success) if the key
    /// existed.
    Result Create(RegistryRootKeys::Type inRoot, const UTF16String& inPath);
    Result Create(RegistryKey& inParent, const UTF16String& inPath);

    /// Deletes a value. Fails if the value does not exist.
    Result DeleteValue(const UTF16String& inName);

    /// Deletes a key below this one with all its descendants. Returns kFileNotFound if the key does not exist. On Linux
    /// the deletion is atomic: after a failure or a crash no key is deleted.
    Result DeleteSubKey(const UTF16String& inPath);

    Result SetUInt32Value(const UTF16String& inName, unsigned int inValue);     ///< stores 4 bytes
    Result SetUInt64Value(const UTF16String& inName, unsigned __int64 inValue); ///< stores 8 bytes

    /// Stores the string with a terminator. GetStringValue stops at the first zero unit of a string.
    Result SetStringValue(const UTF16String& inName, const UTF16String& inValue);

    /// Converts a UTF-8 string with MakeString and stores it.
    Result SetStringValue(const UTF16String& inName, const std::string& inValue);

    static constexpr std::size_t kMaxBinarySize = 4096; ///< maximum size of a binary value, in bytes

    /// Stores inBytes bytes. If inBytes exceeds kMaxBinarySize, fires an assertion and fails.
    Result SetBinaryValue(const UTF16String& inName, const void* inData, std::size_t inBytes);
    Result SetBinaryValue(const UTF16String& inName, std::vector<char>& inData);

    /// Fails, with outValue unchanged, if the value does not exist or is not a 32-bit number.
    Result GetUInt32Value(const UTF16String& inName, unsigned int& outValue) const;

    /// Fails if the value does not exist or is not a 64-bit number. A value of another type may overwrite outValue.
    Result GetUInt64Value(const UTF16String& inName, unsigned __int64& outValue) const;

    /// Reads a value of at most *ioSize bytes and stores its size in *ioSize. Only the low 32 bits of *ioSize are used.
    /// If outData is null, stores only the size. Fails, with *ioSize unchanged, if the value does not exist, is not
    /// binary or does not fit. ioSize must not be null.
    Result GetBinaryValue(const UTF16String& inName, void* outData, unsigned __int64* ioSize) const;

    /// Resizes outData to the size of the value and reads it. Fails if the value does not exist or is not binary.
    Result GetBinaryValue(const UTF16String& inName, std::vector<char>& outData) const;

    /// Reads a string up to its first zero unit. An expandable string is not expanded. Fails, with outValue unchanged,
    /// if the value does not exist, is not a string, or was stored without a terminator.
    Result GetStringValue(const UTF16String& inName, UTF16String& outValue) const;

    /// Reads the string and converts it to UTF-8.
    Result GetStringValue(const UTF16String& inName, std::string& outValue) const;

    /// Appends each direct subkey, opened with all access if that is allowed and closed otherwise. The path of each is
    /// only its name. A failure ends the enumeration and is not reported.
    void EnumerateSubKeys(std::vector<RegistryKey>& ioKeys) const;

    /// Returns the path passed to the last Open or Create, even if that failed.
    UTF16String GetParentKeyPath() const;

    /// Despite its name, returns the whole path, as GetParentKeyPath does.
    UTF16String GetParentKeyPathLastPart() const;

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
    Impl* mImplOwner;
};

} // namespace ORL
