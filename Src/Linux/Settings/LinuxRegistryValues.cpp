// Reads and writes the values of a store.
#include "LinuxRegistryStoreWork.h"

#include <algorithm>
#include <cstring>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

SystemError Store::Query(const HandleParts& inKey, UnitsView inName, unsigned* outType, void* outData, unsigned* ioSize)
{
    return FromMemory([&](bool inMayLoad) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inKey, kRightToQuery, key);
        if (error != kNoError) {
            return error;
        }
        FoldName(inName, mFolded);
        if (!inMayLoad && !key->HasValue(mFolded)) {
            return kNotInMemory;
        }
        error = mTree.LoadValue(*key, mFolded, Loader());
        if (error != kNoError) {
            return error;
        }
        const auto found = key->mValues.find(mFolded);
        if (found == key->mValues.end()) {
            return kErrorFileNotFound;
        }
        const StoredValue& value = found->second;
        const unsigned capacity = ioSize != nullptr ? *ioSize : 0;
        const auto size = static_cast<unsigned>(value.mData.size());
        if (outType != nullptr) {
            *outType = value.mType;
        }
        if (ioSize != nullptr) {
            *ioSize = size;
        }
        if (outData != nullptr && capacity < size) {
            return kErrorMoreData;
        }
        if (outData != nullptr) {
            std::memcpy(outData, value.mData.data(), size);
        }
        return kNoError;
    });
}

// Sets a value, or deletes it if inValue is null. Runs one statement, which is a transaction by itself.
SystemError Store::PutOrTake(const HandleParts& inKey, UnitsView inName, const StoredValue* inValue)
{
    StoredKey* key = nullptr;
    std::int64_t number = 0;
    Units folded;
    FoldName(inName, folded);
    {
        const std::lock_guard<std::mutex> memory(mMemory);
        SystemError error = CatchUp(true);
        error = error == kNoError ? Resolve(inKey, kRightToSet, key) : error;
        if (error != kNoError) {
            return error;
        }
        number = key->mId;
    }
    mDatabase.SetChange({Change::kValue, static_cast<std::uint64_t>(number), HashName(folded)});
    SystemError error = kNoError;
    {
        Statement statement(mDatabase, inValue != nullptr ? Database::kPutValue : Database::kDeleteValue);
        statement.Bind(1, number).Bind(2, UnitsView(folded));
        if (inValue != nullptr) {
            statement.Bind(3, inName).Bind(4, static_cast<std::int64_t>(inValue->mType));
            statement.Bind(5, inValue->mData.data(), inValue->mData.size());
        }
        error = statement.Run(); // may wait for other processes
    }
    const std::lock_guard<std::mutex> memory(mMemory);
    const std::uint64_t announced = mDatabase.Settle();
    if (error != kNoError) {
        return error;
    }
    if (mDatabase.ChangedRows() == 0) { // the key was deleted, or the value does not exist
        error = CatchUp(false);
        error = error == kNoError ? Resolve(inKey, 0, key) : error;
        return error != kNoError ? error : inValue != nullptr ? kErrorKeyDeleted : kErrorFileNotFound;
    }
    KeepUp(announced, [&] {
        StoredKey* here = nullptr;
        if (Resolve(inKey, 0, here) != kNoError || here->mId != number || !here->mHasValues) {
            return kNoError;
        }
        if (inValue == nullptr) {
            here->mValues.erase(folded);
            return kNoError;
        }
        StoredValue& value = here->mValues[folded];
        value.mName = value.mName.empty() ? Units(inName) : value.mName;
        value.mType = inValue->mType;
        value.mData = inValue->mData;
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
    StoredValue value;
    value.mType = inType;
    if (inSize != 0) {
        value.mData.assign(static_cast<const unsigned char*>(inData), inSize);
    }
    const std::lock_guard<TurnLock> work(mWork);
    const SystemError error = PutOrTake(inKey, inName, &value);
    const std::lock_guard<std::mutex> memory(mMemory);
    if (mDatabase.SetAsideIfDamaged()) {
        Forget();
    }
    return error;
}

SystemError Store::DeleteValue(const HandleParts& inKey, UnitsView inName)
{
    const SystemError known = FromMemory([&](bool inMayLoad) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inKey, kRightToSet, key);
        FoldName(inName, mFolded);
        if (error == kNoError && !inMayLoad && !key->HasValue(mFolded)) {
            return kNotInMemory;
        }
        error = error == kNoError ? mTree.LoadValue(*key, mFolded, Loader()) : error;
        return error == kNoError && key->mValues.count(mFolded) == 0 ? kErrorFileNotFound : error;
    });
    if (known != kNoError) {
        return known;
    }
    const std::lock_guard<TurnLock> work(mWork);
    const SystemError error = PutOrTake(inKey, inName, nullptr);
    const std::lock_guard<std::mutex> memory(mMemory);
    if (mDatabase.SetAsideIfDamaged()) {
        Forget();
    }
    return error;
}

SystemError Store::List(const HandleParts& inKey, std::vector<Platform::Value>& outValues)
{
    return FromMemory([&](bool inMayLoad) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inKey, kRightToQuery, key);
        if (error == kNoError && !inMayLoad && !key->HasAllValues()) {
            return kNotInMemory;
        }
        error = error == kNoError ? mTree.LoadValues(*key, Loader()) : error;
        if (error != kNoError) {
            return error;
        }
        std::vector<const std::pair<const Units, StoredValue>*> sorted;
        for (const auto& value : key->mValues) {
            sorted.push_back(&value);
        }
        std::sort(sorted.begin(), sorted.end(), [](auto inLeft, auto inRight) { return inLeft->first < inRight->first; });
        outValues.clear();
        for (const auto* value : sorted) {
            const StoredValue& stored = value->second;
            outValues.push_back({UTF16String(stored.mName.begin(), stored.mName.end()), stored.mType,
                                 {stored.mData.begin(), stored.mData.end()}});
        }
        return kNoError;
    });
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
