// Floor: Platform
// The system functions for registry keys. Each operation returns a system error number; 0 is success. Paths and names
// are zero-terminated.
#pragma once

#include <Platform/SystemErrors.h>

#include <tvxcore/String.h>

#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Platform {

/// A handle to an open key, or null.
using KeyHandle = void*;

/// Access rights of a handle. They limit the handle's operations, except deleting and creating keys below it, which
/// need no right.
inline constexpr unsigned kAccessRead = 0x20019;
inline constexpr unsigned kAccessWrite = 0x20006;
inline constexpr unsigned kAccessReadWrite = 0x2001F;
inline constexpr unsigned kAccessAll = 0xF003F;
inline constexpr unsigned kAccessViewBits = 0x300; // selects one of two views of the registry, on systems that have two

/// Types of values that the library itself handles.
inline constexpr unsigned kTypeString = 1;
inline constexpr unsigned kTypeExpandString = 2;
inline constexpr unsigned kTypeBinary = 3;
inline constexpr unsigned kTypeUInt32 = 4;
inline constexpr unsigned kTypeUInt64 = 11;

/// A buffer of this size holds every key name, terminator included.
inline constexpr unsigned kKeyNameCapacity = 256;

/// The two root handles. They need not be closed, but may be.
KeyHandle GetUserRoot_Impl() noexcept;
KeyHandle GetMachineRoot_Impl() noexcept;

/// Opens an existing key. An empty or null path opens another handle to inParent. outKey is null on failure.
SystemError OpenKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey);

/// Results of CreateKey_Impl in outDisposition.
inline constexpr unsigned kCreatedKey = 1;
inline constexpr unsigned kOpenedKey = 2;

/// Opens a key, or creates it and its missing parents. outDisposition may be null.
SystemError CreateKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                           unsigned* outDisposition);

/// Open, create or delete a key through the system's transaction manager. Return 1 if the system lacks
/// the function, which is looked up on each call.
SystemError OpenKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                   void* inTransaction, KeyHandle& outKey);
SystemError CreateKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                     void* inTransaction, KeyHandle& outKey);
SystemError DeleteKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, void* inTransaction);

SystemError CloseKey_Impl(KeyHandle inKey);

/// Deletes a key without subkeys; returns 5 if it has any. An empty path deletes the key of inParent.
SystemError DeleteKey_Impl(KeyHandle inParent, const unsigned short* inPath);

/// Deletes a key in one view of the registry; same as DeleteKey_Impl if the system has no views.
SystemError DeleteKeyInView_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inView);

/// Deletes a key with all its descendants, all or none. Returns 50 and deletes nothing if the system cannot do that.
SystemError DeleteTree_Impl(KeyHandle inParent, const unsigned short* inPath);

/// Stores the name of the subkey with index inIndex, and its terminator. ioLength is the capacity in units on entry,
/// and the length without terminator on return. Returns 259 past the last subkey, 234 if the name does not fit.
SystemError EnumerateKey_Impl(KeyHandle inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength);

/// Stores type and data of a value. *ioSize is the capacity in bytes on entry, and the size of the value on return.
/// Without a buffer, or with one that is too small (returns 234), stores only type and size. Every output may
/// be null, but a buffer without ioSize returns 87.
SystemError QueryValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned* outType, void* outData,
                            unsigned* ioSize);

/// If a string has no terminator at its end, also reads the unit after it; if that is a terminator, stores it too.
SystemError SetValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned inType, const void* inData,
                          unsigned inSize);

SystemError DeleteValue_Impl(KeyHandle inKey, const unsigned short* inName);

struct Value
{
    UTF16String mName;
    unsigned mType = 0;
    std::vector<unsigned char> mData;
};

/// Stores all values of a key.
SystemError ListValues_Impl(KeyHandle inKey, std::vector<Value>& outValues);

/// A step in an atomic change to several keys and values.
struct Edit
{
    enum Kind { kCreateKey, kDeleteTree, kSetValue, kDeleteValue };

    Kind mKind;
    const unsigned short* mPath; // relative to the root
    const Value* mValue;         // the value to set; kDeleteValue uses only its name
};

/// Makes all changes below a root, or none. Deleting a missing item succeeds. Returns 50 and changes nothing if the
/// system cannot make atomic changes.
SystemError ApplyEdits_Impl(KeyHandle inRoot, const std::vector<Edit>& inEdits);

struct SetAside
{
    std::string mFile;
    std::string mTime;
    std::string mReason;
};

struct StoreState
{
    bool mIsWhole = true;
    std::string mProblem;
    std::string mPlace;
    unsigned long long mBytes = 0;
    std::vector<SetAside> mSetAside;
};

enum class StoreCheck { kNone, kEverything };

/// Returns the state of a root's store. With kEverything, first checks the whole store.
StoreState GetStoreState_Impl(KeyHandle inRoot, StoreCheck inCheck);

} // namespace Platform
} // namespace Registry
} // namespace ORL
