// Floor: System
// Settings that survive the process: keys below two roots, with named values of five types.
//
//   ORL::RegistryKey key;
//   if (ORL::ResultSucceeded(key.Create(ORL::RegistryRootKeys::kUser, path))) {
//       key.SetUInt32Value(name, 1920);
//   }
//
// A path is key names separated by backslashes, without the root: "Software\Company\Product". Trailing backslashes are
// ignored, a leading one makes every operation fail. Names compare without regard to case and keep the case they were
// created with. A key name has at most 255 units, a value name 16383; the value with the empty name is a key's default
// value. A path or value name ends at its first zero unit.
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

struct RegistryRootKeys
{
    enum Type : int {
        kUser = 0,   ///< the settings of the user who runs the process
        kMachine = 1 ///< the settings of all users; ordinary users may only read them
    };
};

struct RegistryKeyAccess
{
    enum Type : int { kRead = 1, kWrite = 2 };
};

constexpr RegistryKeyAccess::Type operator|(RegistryKeyAccess::Type inLeft, RegistryKeyAccess::Type inRight) noexcept
{
    return static_cast<RegistryKeyAccess::Type>(static_cast<int>(inLeft) | static_cast<int>(inRight));
}

/// A handle to one key. It is closed until an Open or Create succeeds, and stays open until the last copy of it is
/// destroyed; there is no Close. Copies share one handle: an Open or Create on one of them re-targets all of them, while
/// each keeps its own path. A key that is deleted while handles to it are open is gone for them too: every operation on
/// it fails, even after a key of the same name is created.
///
/// Results: kSuccess, or kRegistryFailure unless stated otherwise. Every operation on a closed key fails with
/// kRegistryFailure. A write has reached the store when it returns: neither the end of this process, however it ends,
/// nor another process loses it. After a power failure the last writes may be missing. Another process sees a write at
/// its next read.
///
/// Thread-safe: different keys, and copying and destroying copies of one key. Reading and writing values through copies
/// is thread-safe as well. Open, Create and Swap are not: no other thread may use a copy of the key meanwhile.
/// Throws std::bad_alloc from constructors and wherever a text or vector is returned.
///
/// On Linux the store is one database for each root (see Docs/settings.md). It can be used in a child of fork.
class ORL_API RegistryKey
{
public:
    /// A closed key with an empty path.
    RegistryKey();

    /// Shares the other's handle and copies its path.
    RegistryKey(const RegistryKey& inOther);

    ~RegistryKey();

    /// Shares the other's handle and copies its path, as a copy does; this key's own share of its handle ends.
    RegistryKey& operator=(const RegistryKey& inOther);

    /// Exchanges handles and paths. Never throws.
    void Swap(RegistryKey& ioOther);

    /// Opens a key below a root. inAccess 0 asks for all access. A root other than the two is reported by an assertion
    /// and counts as kUser; an access without kRead and kWrite but with other bits is reported by an assertion.
    /// Whatever the outcome, inPath becomes the path of this key; after a failure the key keeps its earlier handle.
    /// Returns kFileNotFound if there is no such key. On Linux, as for ordinary users on Windows, a key of kMachine can
    /// be opened with kRead only, unless the process may write the machine's store.
    Result Open(RegistryRootKeys::Type inRoot, const UTF16String& inPath, RegistryKeyAccess::Type inAccess);

    /// Opens a key below inParent with all access. An empty path opens the same key again.
    Result Open(RegistryKey& inParent, const UTF16String& inPath);

    /// Opens a key with all access, or creates it and all missing keys above it: at most 32 of them in one call, at most
    /// 512 levels in all. Returns kRegistryKeyExisted (a success) if it existed, kSuccess if it was created.
    Result Create(RegistryRootKeys::Type inRoot, const UTF16String& inPath);
    Result Create(RegistryKey& inParent, const UTF16String& inPath);

    /// Fails if there is no such value.
    Result DeleteValue(const UTF16String& inName);

    /// Deletes a key below this one with all its descendants. Returns kFileNotFound if there is no such key. On Linux
    /// either all of them are deleted or, after a failure or a kill, none.
    Result DeleteSubKey(const UTF16String& inPath);

    Result SetUInt32Value(const UTF16String& inName, unsigned int inValue);
    Result SetUInt64Value(const UTF16String& inName, unsigned __int64 inValue);

    /// The text is stored with a terminator; it should hold no zero unit, since GetStringValue stops at the first one.
    Result SetStringValue(const UTF16String& inName, const UTF16String& inValue);

    /// The same for UTF-8, which is converted as MakeString does.
    Result SetStringValue(const UTF16String& inName, const std::string& inValue);

    static constexpr std::size_t kMaxBinarySize = 4096;

    /// More than kMaxBinarySize bytes are reported by an assertion and not written: kRegistryFailure.
    Result SetBinaryValue(const UTF16String& inName, const void* inData, std::size_t inBytes);
    Result SetBinaryValue(const UTF16String& inName, std::vector<char>& inData);

    /// Fails, with outValue unchanged, unless there is such a value and it is a 32-bit number.
    Result GetUInt32Value(const UTF16String& inName, unsigned int& outValue) const;

    /// Fails unless there is such a value and it is a 64-bit number. A value of another type may overwrite outValue.
    Result GetUInt64Value(const UTF16String& inName, unsigned __int64& outValue) const;

    /// Reads at most *ioSize bytes (its low 32 bits count) and stores their number; a null outData only asks for the
    /// number. Fails, with *ioSize unchanged, if the value is not binary or does not fit. ioSize must not be null.
    Result GetBinaryValue(const UTF16String& inName, void* outData, unsigned __int64* ioSize) const;

    /// Resizes outData to the value. Fails if the value is not binary.
    Result GetBinaryValue(const UTF16String& inName, std::vector<char>& outData) const;

    /// Returns the text up to its first zero unit; expandable text stays unexpanded. Fails, with outValue unchanged, if
    /// the value is no text, or was stored by somebody without a terminator.
    Result GetStringValue(const UTF16String& inName, UTF16String& outValue) const;

    /// The same as UTF-8.
    Result GetStringValue(const UTF16String& inName, std::string& outValue) const;

    /// Appends each key directly below this one, opened with all access where that is allowed (else closed), with the
    /// bare name as its path. A failure ends the listing silently.
    void EnumerateSubKeys(std::vector<RegistryKey>& ioKeys) const;

    /// The path given to the last Open or Create, whatever its outcome.
    UTF16String GetParentKeyPath() const;

    /// The same: the whole path.
    UTF16String GetParentKeyPathLastPart() const;

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
    Impl* mImplOwner;
};

} // namespace ORL
