// Floor: Platform
// What registry keys need of the system. Each operation returns a system error number; 0 is success. Paths and names
// are zero-terminated.
#pragma once

#include <Platform/SystemErrors.h>

#include <tvxcore/String.h>

#include <string>
#include <vector>

namespace ORL {
namespace Registry {
namespace Platform {

/// A handle to an open key; null is none.
using KeyHandle = void*;

/// Access rights of a handle. A handle may do what its rights allow; deleting and creating keys below it asks for none.
inline constexpr unsigned kAccessRead = 0x20019;
inline constexpr unsigned kAccessWrite = 0x20006;
inline constexpr unsigned kAccessReadWrite = 0x2001F;
inline constexpr unsigned kAccessAll = 0xF003F;
inline constexpr unsigned kAccessViewBits = 0x300; // one of the two views of the registry, where there are two

/// Types of values that the library itself looks at.
inline constexpr unsigned kTypeString = 1;
inline constexpr unsigned kTypeExpandString = 2;
inline constexpr unsigned kTypeBinary = 3;
inline constexpr unsigned kTypeUInt32 = 4;
inline constexpr unsigned kTypeUInt64 = 11;

/// A buffer of this size holds every key name with its terminator.
inline constexpr unsigned kKeyNameCapacity = 256;

/// The two roots: handles that need no close, though they bear one.
KeyHandle GetUserRoot_Impl() noexcept;
KeyHandle GetMachineRoot_Impl() noexcept;

/// Opens an existing key. An empty or null path opens inParent again. outKey is null after a failure.
SystemError OpenKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey);

/// What CreateKey_Impl has done.
inline constexpr unsigned kCreatedKey = 1;
inline constexpr unsigned kOpenedKey = 2;

/// Opens a key, or creates it and all missing keys above it. outDisposition may be null.
SystemError CreateKey_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                           unsigned* outDisposition);

/// The same inside a transaction of the system's transaction manager. 1 where the system has no such function, which is
/// looked up on each call.
SystemError OpenKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                   void* inTransaction, KeyHandle& outKey);
SystemError CreateKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess,
                                     void* inTransaction, KeyHandle& outKey);
SystemError DeleteKeyTransacted_Impl(KeyHandle inParent, const unsigned short* inPath, void* inTransaction);

SystemError CloseKey_Impl(KeyHandle inKey);

/// Deletes a key that has no subkeys: 5 if it has. An empty path deletes the key of inParent.
SystemError DeleteKey_Impl(KeyHandle inParent, const unsigned short* inPath);

/// The same in one view of the registry; as DeleteKey_Impl where the system knows no views.
SystemError DeleteKeyInView_Impl(KeyHandle inParent, const unsigned short* inPath, unsigned inView);

/// Deletes a key with all its descendants, all or none; 50 where the system cannot, and nothing is deleted then.
SystemError DeleteTree_Impl(KeyHandle inParent, const unsigned short* inPath);

/// The name of subkey number inIndex with its terminator. ioLength is the capacity in units, and afterwards the length
/// without terminator. 259 past the last one, 234 if the name does not fit.
SystemError EnumerateKey_Impl(KeyHandle inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength);

/// Type and data of a value. *ioSize is the capacity in bytes, and afterwards the size of the value. Without a buffer
/// only type and size are stored; a buffer that is too small gives 234 and both. Every output may be null, but a buffer
/// needs a size: 87.
SystemError QueryValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned* outType, void* outData,
                            unsigned* ioSize);

/// Text is read one unit past its size: a terminator that stands there is stored with it.
SystemError SetValue_Impl(KeyHandle inKey, const unsigned short* inName, unsigned inType, const void* inData,
                          unsigned inSize);

SystemError DeleteValue_Impl(KeyHandle inKey, const unsigned short* inName);

struct Value
{
    UTF16String mName;
    unsigned mType = 0;
    std::vector<unsigned char> mData;
};

/// All values of a key.
SystemError ListValues_Impl(KeyHandle inKey, std::vector<Value>& outValues);

/// One step of a change of several keys and values.
struct Edit
{
    enum Kind { kCreateKey, kDeleteTree, kSetValue, kDeleteValue };

    Kind mKind;
    const unsigned short* mPath; // below the root
    const Value* mValue;         // of kSetValue, and for its name of kDeleteValue
};

/// Makes all changes below a root, or none. Deletions of missing items succeed. Returns 50 if the system cannot, and nothing
/// is done then.
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

/// What is known of the store of a root. inCheck reads all of it.
StoreState GetStoreState_Impl(KeyHandle inRoot, bool inCheck);

} // namespace Platform
} // namespace Registry
} // namespace ORL
