// Floor: System
// The registry as a tool sees it: values of any type, listings without opening each key, many changes as one, and the
// state of the store itself. Hosts keep their settings with RegistryKey.
#pragma once

#include <ORLConfig.h>
#include <ORLRegistryKey.h>
#include <ORLResult.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <string>
#include <vector>

namespace ORL {

/// The types that the library itself uses. Others are stored and returned as they are.
struct RegistryValueTypes
{
    enum Type : unsigned int {
        kNone = 0,
        kString = 1,       ///< 16-bit text with its terminator
        kExpandString = 2, ///< the same, with names of variables between percent signs
        kBinary = 3,
        kUInt32 = 4, ///< 4 bytes, lowest first
        kMultiString = 7,
        kUInt64 = 11 ///< 8 bytes, lowest first
    };
};

/// One value as it is stored.
struct RegistryValue
{
    UTF16String mName;
    unsigned int mType = RegistryValueTypes::kNone;
    std::vector<unsigned char> mData;
};

/// One change for RegistryStore::Apply.
struct RegistryEdit
{
    enum Kind {
        kCreateKey,  ///< with all missing keys above it; an existing key is a success
        kDeleteKey,  ///< with all its descendants; a missing key is a success
        kSetValue,   ///< mValue; the key is created if it is missing
        kDeleteValue ///< the value of mValue.mName; a missing value or key is a success
    };

    Kind mKind = kCreateKey;
    RegistryRootKeys::Type mRoot = RegistryRootKeys::kUser;
    UTF16String mPath;
    RegistryValue mValue;
};

/// What is known of the store behind one root.
struct RegistryStoreState
{
    /// One damaged database that the library has moved out of the way. It is kept as it was found.
    struct SetAside
    {
        std::string mFile;   ///< host path
        std::string mTime;   ///< "2026-11-22T03:15:00Z"
        std::string mReason; ///< may be empty if it could not be written down
    };

    bool mIsWhole = true;           ///< false if the store cannot be used or its check found faults
    std::string mProblem;           ///< what is wrong, for people; empty if nothing is
    std::string mPlace;             ///< host path of the database; empty where the system keeps the registry
    unsigned __int64 mBytes = 0;    ///< size of the database and its journal; 0 if there is none yet
    std::vector<SetAside> mSetAside; ///< oldest first
};

/// All functions are thread-safe and throw std::bad_alloc only. Results are those of Win::SystemErrorToORLResult:
/// kFileNotFound for a missing key or value, kAccessDenied, kDiskFull, else kGeneralFailure.
namespace RegistryStore {

/// The names of the keys directly below a key, in the order of the system. Replaces the contents of outNames. An empty
/// path means the root itself.
ORL_API Result ListSubKeys(RegistryRootKeys::Type inRoot, const UTF16String& inPath, std::vector<UTF16String>& outNames);

/// All values of a key. Replaces the contents of outValues.
ORL_API Result ListValues(RegistryRootKeys::Type inRoot, const UTF16String& inPath,
                          std::vector<RegistryValue>& outValues);

/// One value. outValue is unchanged after a failure.
ORL_API Result GetValue(RegistryRootKeys::Type inRoot, const UTF16String& inPath, const UTF16String& inName,
                        RegistryValue& outValue);

/// Makes the changes in their order. On Linux all changes below one root take effect together, or after a failure or a
/// kill none of them does; kUser comes first. On Windows the first failure ends the work, and what was done stays.
ORL_API Result Apply(const std::vector<RegistryEdit>& inEdits);

/// Reads the whole store and tells whether it is sound. Nothing is created or changed by it. On Windows the system takes
/// care of its registry: the answer is always whole.
ORL_API RegistryStoreState Check(RegistryRootKeys::Type inRoot);

/// Place and size alone.
ORL_API RegistryStoreState GetState(RegistryRootKeys::Type inRoot);

} // namespace RegistryStore
} // namespace ORL
