// Floor: System
// The registry interface for tools: values of any type, listings of names, several changes in one call, and the state
// of the store. Hosts use RegistryKey for their settings.
#pragma once

#include <ORLConfig.h>
#include <ORLRegistryKey.h>
#include <ORLResult.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <string>
#include <vector>

namespace ORL {

/// The types that the library itself uses. Values of other types are stored and returned unchanged.
struct RegistryValueTypes
{
    enum Type : unsigned int {
        kNone = 0,
        kString = 1,       ///< a UTF-16 string with its terminator
        kExpandString = 2, ///< a string with variable names between percent signs
        kBinary = 3,
        kUInt32 = 4, ///< 4 bytes, little-endian
        kMultiString = 7,
        kUInt64 = 11 ///< 8 bytes, little-endian
    };
};

/// A stored value.
struct RegistryValue
{
    UTF16String mName;                              ///< empty for the default value
    unsigned int mType = RegistryValueTypes::kNone; ///< one of RegistryValueTypes, or another number
    std::vector<unsigned char> mData;               ///< the bytes as they are stored
};

/// A change for RegistryStore::Apply.
struct RegistryEdit
{
    enum Kind {      ///< The kind of change.
        kCreateKey,  ///< creates the key and its missing parents; succeeds if the key exists
        kDeleteKey,  ///< deletes the key and its descendants; succeeds if the key is missing
        kSetValue,   ///< sets mValue; creates the key if it is missing
        kDeleteValue ///< deletes the value named mValue.mName; succeeds if the value or key is missing
    };

    Kind mKind = kCreateKey;                                ///< what to do
    RegistryRootKeys::Type mRoot = RegistryRootKeys::kUser; ///< the root of the key
    UTF16String mPath;                                      ///< the key, below the root
    RegistryValue mValue;                                   ///< for changes of values
};

/// The state of the store of one root.
struct RegistryStoreState
{
    /// A damaged database that the library has renamed, with its contents unchanged.
    struct SetAside
    {
        std::string mFile;   ///< host path
        std::string mTime;   ///< "2026-11-22T03:15:00Z"
        std::string mReason; ///< empty if the reason could not be recorded
    };

    bool mIsWhole = true;            ///< false if the store cannot be used or the check found errors
    std::string mProblem;            ///< description of the problem for the user; empty if there is no problem
    std::string mPlace;              ///< host path of the database; empty if the OS has its own registry
    unsigned __int64 mBytes = 0;     ///< size of the database and its journal; 0 if there is no database
    std::vector<SetAside> mSetAside; ///< oldest first
};

/// Thread-safe. All functions throw only std::bad_alloc. A failed Result is kFileNotFound for a missing key or value,
/// kAccessDenied, kDiskFull, or kGeneralFailure for other errors (see Win::SystemErrorToORLResult).
namespace RegistryStore {

/// Replaces the contents of outNames with the names of the direct subkeys, in the system's order. An empty path denotes
/// the root itself.
ORL_API Result ListSubKeys(RegistryRootKeys::Type inRoot, const UTF16String& inPath,
                           std::vector<UTF16String>& outNames);

/// Replaces the contents of outValues with all values of a key.
ORL_API Result ListValues(RegistryRootKeys::Type inRoot, const UTF16String& inPath,
                          std::vector<RegistryValue>& outValues);

/// Reads one value. On failure outValue is unchanged.
ORL_API Result GetValue(RegistryRootKeys::Type inRoot, const UTF16String& inPath, const UTF16String& inName,
                        RegistryValue& outValue);

/// Makes the changes below kUser in order, then those below kMachine. Stops at the first failure. On Linux the
/// changes below one root are atomic: after a failure or a crash none of them is made. On Windows the changes before
/// the failure remain.
ORL_API Result Apply(const std::vector<RegistryEdit>& inEdits);

/// Reads the whole store to check that it is intact, and returns its state. Changes no settings. If the database is too
/// damaged to open, it is renamed first (see SetAside), as by every other operation. On Windows always reports the
/// store as intact, because the OS maintains its registry.
ORL_API RegistryStoreState Check(RegistryRootKeys::Type inRoot);

/// Returns the state of the store without a check of its contents.
ORL_API RegistryStoreState GetState(RegistryRootKeys::Type inRoot);

} // namespace RegistryStore
} // namespace ORL
