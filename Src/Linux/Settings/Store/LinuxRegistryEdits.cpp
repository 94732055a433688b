// Makes several changes to a store in one transaction.
#include "LinuxRegistryStoreWork.h"

#include <utility>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;
using Platform::Edit;

// Queries only the database: earlier edits of the transaction are not yet in memory.
SystemError Store::FindTarget(const unsigned short* inPath, IfMissing inIfMissing, EditTarget& ioTarget)
{
    const UnitsView path(inPath, LengthOf(inPath));
    if (ioTarget.mKey != 0 && ioTarget.mPath == path) {
        return kNoError;
    }
    ioTarget.mKey = 0;
    SystemError error = PathNames(inPath).Check();
    std::int64_t key = kRootKey;
    unsigned level = 0;
    unsigned made = 0;
    PathNames names(inPath);
    for (UnitsView name; error == kNoError && names.Next(name);) {
        FoldName(name, mFolded);
        std::int64_t next = 0;
        {
            Statement find(mDatabase, Database::kFindSubKey);
            next = find.Bind(1, key).Bind(2, UnitsView(mFolded)).Step() ? find.Number(0) : 0;
            error = find.Error();
        }
        if (error == kNoError && next == 0) {
            if (inIfMissing == IfMissing::kReport) {
                return kErrorFileNotFound;
            }
            if (++made > kMaxLevelsAtOnce || level >= kMaxLevels) {
                return kErrorInvalidParameter;
            }
            error =
                Statement(mDatabase, Database::kInsertKey).Bind(1, key).Bind(2, UnitsView(mFolded)).Bind(3, name).Run();
            next = mDatabase.LastRow();
        }
        key = next;
        ++level;
    }
    if (error == kNoError) {
        ioTarget.mPath = path;
        ioTarget.mKey = key;
    }
    return error;
}

SystemError Store::ApplyOne(const Edit& inEdit, EditTarget& ioTarget)
{
    const bool makes = inEdit.mKind == Edit::kCreateKey || inEdit.mKind == Edit::kSetValue;
    const SystemError error = FindTarget(inEdit.mPath, makes ? IfMissing::kCreate : IfMissing::kReport, ioTarget);
    if (error != kNoError || inEdit.mKind == Edit::kCreateKey) {
        return error == kErrorFileNotFound ? kNoError : error;
    }
    if (inEdit.mKind == Edit::kDeleteTree) {
        const std::int64_t key = std::exchange(ioTarget.mKey, 0);
        if (key == kRootKey) {
            return kErrorAccessDenied;
        }
        const SystemError erased = Statement(mDatabase, Database::kDeleteTreeValues).Bind(1, key).Run();
        return erased == kNoError ? Statement(mDatabase, Database::kDeleteTree).Bind(1, key).Run() : erased;
    }
    const UTF16String& text = inEdit.mValue->mName;
    const UnitsView name(text.c_str(), LengthOf(text.c_str()));
    if (name.size() > kLongestValueName) {
        return kErrorInvalidParameter;
    }
    FoldName(name, mFolded);
    if (inEdit.mKind == Edit::kDeleteValue) {
        return Statement(mDatabase, Database::kDeleteValue).Bind(1, ioTarget.mKey).Bind(2, UnitsView(mFolded)).Run();
    }
    Statement put(mDatabase, Database::kPutValue);
    put.Bind(1, ioTarget.mKey).Bind(2, UnitsView(mFolded)).Bind(3, name);
    put.Bind(4, static_cast<std::int64_t>(inEdit.mValue->mType));
    return put.Bind(5, inEdit.mValue->mData.data(), inEdit.mValue->mData.size()).Run();
}

SystemError Store::Apply(const std::vector<Edit>& inEdits)
{
    const auto work = [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        EditTarget target;
        SystemError error = CheckAccess(Platform::kAccessReadWrite);
        for (std::size_t i = 0; i < inEdits.size() && error == kNoError; ++i) {
            error = ApplyOne(inEdits[i], target);
        }
        return error;
    };
    return RunChange(Change(), work, [this]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        return mTree.ReloadEverything(DatabaseOrNull());
    });
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
