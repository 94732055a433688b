// Reads and writes the values of a store.
#include "Store/LinuxRegistryStoreWork.h"

#include <algorithm>
#include <cstring>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

// Returns 2 if the key has no such value.
SystemError Store::FindValue(const HandleParts& inKey, unsigned inAccess, const FoldedName& inName, ReadSource inSource,
                             StoredValue*& outValue)
{
    StoredKey* key = nullptr;
    SystemError error = Resolve(inKey, inAccess, key);
    if (error != kNoError) {
        return error;
    }
    if (!key->Find(inName, outValue)) {
        if (inSource == ReadSource::kMemory) {
            return kNotInMemory;
        }
        error = mTree.LoadValue(*key, inName, DatabaseOrNull(), outValue);
    }
    return error == kNoError && outValue == nullptr ? kErrorFileNotFound : error;
}

SystemError Store::Query(const HandleParts& inKey, UnitsView inName, unsigned* outType, void* outData, unsigned* ioSize)
{
    const FoldedName name(inName);
    return RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        StoredValue* value = nullptr;
        const SystemError error = FindValue(inKey, kRightToQuery, name, inSource, value);
        if (error != kNoError) {
            return error;
        }
        const unsigned capacity = ioSize != nullptr ? *ioSize : 0;
        const unsigned size = value->Size();
        if (outType != nullptr) {
            *outType = value->Type();
        }
        if (ioSize != nullptr) {
            *ioSize = size;
        }
        if (outData != nullptr && capacity < size) {
            return kErrorMoreData;
        }
        if (outData != nullptr) {
            std::memcpy(outData, value->Bytes(), size);
        }
        return kNoError;
    });
}

// Sets a value, or deletes it if inValue is null. Runs a single statement, which SQLite makes a transaction.
SystemError Store::SetOrDeleteValue(const HandleParts& inKey, UnitsView inName, const ValueData* inValue)
{
    StoredKey* key = nullptr;
    std::int64_t number = 0;
    const FoldedName folded(inName);
    {
        const MutexLock memory(mMemoryLock);
        SystemError error = OpenAndUpdate(IfMissing::kCreate);
        error = error == kNoError ? Resolve(inKey, kRightToSet, key) : error;
        if (error != kNoError) {
            return error;
        }
        number = key->mId;
    }
    mDatabase.SetChange({Change::kValue, static_cast<std::uint64_t>(number), folded.Hash()});
    SystemError error = kNoError;
    {
        Statement statement(mDatabase, inValue != nullptr ? Database::kPutValue : Database::kDeleteValue);
        statement.Bind(1, number).Bind(2, folded.Text());
        if (inValue != nullptr) {
            statement.Bind(3, inName).Bind(4, static_cast<std::int64_t>(inValue->mType));
            statement.Bind(5, inValue->mBytes, inValue->mSize);
        }
        error = statement.Run(); // may wait for other processes
    }
    const MutexLock memory(mMemoryLock);
    const std::uint64_t posted = mDatabase.FinishChange();
    if (error != kNoError) {
        return error;
    }
    if (mDatabase.ChangedRows() == 0) { // the key was deleted, or the value does not exist
        error = OpenAndUpdate(IfMissing::kReport);
        error = error == kNoError ? Resolve(inKey, 0, key) : error;
        return error != kNoError ? error : inValue != nullptr ? kErrorKeyDeleted : kErrorFileNotFound;
    }
    ApplyOwnChange(posted, [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        StoredKey* here = nullptr;
        StoredValue* known = nullptr;
        const bool isHere = Resolve(inKey, 0, here) == kNoError && here->mId == number;
        if (!isHere || !here->Find(folded, known)) {
            return kNoError; // the next read loads the value
        }
        if (inValue == nullptr) {
            here->mValues.Erase(folded.Hash(), folded.Text());
        } else if (known == nullptr || !known->Assign(*inValue)) {
            const UnitsView name = known != nullptr ? known->Name() : inName;
            here->mValues.Put(folded.Hash(), StoredValue::Make(folded.Text(), name, *inValue));
        }
        return kNoError;
    });
    return kNoError;
}

SystemError Store::Set(const HandleParts& inKey, UnitsView inName, unsigned inType, const void* inData,
                       std::size_t inSize)
{
    if (inName.size() > kLongestValueName) {
        return kErrorInvalidParameter;
    }
    const ValueData value = {inType, inData, inSize};
    const FairMutexLock work(mDatabaseLock);
    const SystemError error = SetOrDeleteValue(inKey, inName, &value);
    const MutexLock memory(mMemoryLock);
    if (mDatabase.SetAsideIfDamaged()) {
        InvalidateMemory();
    }
    return error;
}

SystemError Store::DeleteValue(const HandleParts& inKey, UnitsView inName)
{
    const FoldedName name(inName);
    const SystemError known = RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        StoredValue* value = nullptr;
        return FindValue(inKey, kRightToSet, name, inSource, value);
    });
    if (known != kNoError) {
        return known;
    }
    const FairMutexLock work(mDatabaseLock);
    const SystemError error = SetOrDeleteValue(inKey, inName, nullptr);
    const MutexLock memory(mMemoryLock);
    if (mDatabase.SetAsideIfDamaged()) {
        InvalidateMemory();
    }
    return error;
}

SystemError Store::List(const HandleParts& inKey, std::vector<Platform::Value>& outValues)
{
    return RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inKey, kRightToQuery, key);
        if (error == kNoError && inSource == ReadSource::kMemory && !key->HasAllValues()) {
            return kNotInMemory;
        }
        error = error == kNoError ? mTree.LoadValues(*key, DatabaseOrNull()) : error;
        if (error != kNoError) {
            return error;
        }
        std::vector<const StoredValue*> sorted = key->mValues.List();
        std::sort(sorted.begin(), sorted.end(),
                  [](auto inLeft, auto inRight) { return inLeft->Folded() < inRight->Folded(); });
        outValues.clear();
        for (const StoredValue* const value : sorted) {
            const UnitsView name = value->Name();
            outValues.push_back({UTF16String(name.begin(), name.end()),
                                 value->Type(),
                                 {value->Bytes(), value->Bytes() + value->Size()}});
        }
        return kNoError;
    });
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
