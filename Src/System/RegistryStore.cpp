// Implements the registry interface for tools.
#include <ORLRegistryStore.h>

#include <Platform/Registry.h>
#include <System/RegistryHandle.h>

#include <utility>

namespace ORL {
namespace RegistryStore {

using namespace Registry::Platform;
using namespace SystemErrors;

namespace {

constexpr unsigned kLongestNameCapacity = 16384; // also fits longer names, which another program may have stored
constexpr unsigned short kEmptyPath[] = {0};     // the empty path

Result ResultOf(SystemError inError)
{
    return inError == kNoError ? kSuccess : Win::SystemErrorToORLResult(inError);
}

KeyHandle RootOf(RegistryRootKeys::Type inRoot)
{
    return inRoot == RegistryRootKeys::kMachine ? GetMachineRoot_Impl() : GetUserRoot_Impl();
}

SystemError IgnoreMissing(SystemError inError)
{
    return inError == kErrorFileNotFound || inError == kErrorPathNotFound ? kNoError : inError;
}

SystemError ListNames(KeyHandle inKey, std::vector<UTF16String>& outNames)
{
    UTF16String buffer(kLongestNameCapacity, 0);
    for (unsigned index = 0;; ++index) {
        unsigned length = kLongestNameCapacity;
        const SystemError error = EnumerateKey_Impl(inKey, index, buffer.data(), length);
        if (error != kNoError) {
            return error == kErrorNoMoreItems ? kNoError : error;
        }
        outNames.emplace_back(buffer, 0, length);
    }
}

// SetValue_Impl reads one unit past a string and stores it if it is a terminator. The appended unit 0xFFFF prevents
// that, so the caller's bytes are stored unchanged.
SystemError SetValueVerbatim(KeyHandle inKey, const Value& inValue)
{
    std::vector<unsigned char> data = inValue.mData;
    data.insert(data.end(), {0xFF, 0xFF});
    return SetValue_Impl(inKey, inValue.mName.c_str(), inValue.mType, data.data(),
                         static_cast<unsigned>(inValue.mData.size()));
}

SystemError SetValueAt(KeyHandle inRoot, const Edit& inEdit)
{
    RegistryHandle key;
    const SystemError error = key.Create(inRoot, inEdit.mPath, kAccessWrite);
    return error == kNoError ? SetValueVerbatim(key.Get(), *inEdit.mValue) : error;
}

SystemError DeleteValueAt(KeyHandle inRoot, const Edit& inEdit)
{
    RegistryHandle key;
    const SystemError error = key.Open(inRoot, inEdit.mPath, kAccessWrite);
    return IgnoreMissing(error == kNoError ? DeleteValue_Impl(key.Get(), inEdit.mValue->mName.c_str()) : error);
}

SystemError DeleteTreeAt(KeyHandle inRoot, const Edit& inEdit)
{
    RegistryHandle root;
    const SystemError error = root.Open(inRoot, kEmptyPath, kAccessRead);
    return error == kNoError ? IgnoreMissing(root.DeleteTree(inEdit.mPath)) : error;
}

SystemError ApplyOne(KeyHandle inRoot, const Edit& inEdit)
{
    switch (inEdit.mKind) {
    case Edit::kCreateKey: return RegistryHandle().Create(inRoot, inEdit.mPath, kAccessRead);
    case Edit::kDeleteTree: return DeleteTreeAt(inRoot, inEdit);
    case Edit::kSetValue: return SetValueAt(inRoot, inEdit);
    case Edit::kDeleteValue: return DeleteValueAt(inRoot, inEdit);
    }
    return kErrorInvalidParameter;
}

Edit::Kind KindOf(RegistryEdit::Kind inKind)
{
    switch (inKind) {
    case RegistryEdit::kDeleteKey: return Edit::kDeleteTree;
    case RegistryEdit::kSetValue: return Edit::kSetValue;
    case RegistryEdit::kDeleteValue: return Edit::kDeleteValue;
    case RegistryEdit::kCreateKey: break;
    }
    return Edit::kCreateKey;
}

SystemError ApplyBelow(RegistryRootKeys::Type inRoot, const std::vector<RegistryEdit>& inEdits)
{
    std::vector<Value> values(inEdits.size());
    std::vector<Edit> edits;
    for (std::size_t i = 0; i < inEdits.size(); ++i) {
        const RegistryEdit& edit = inEdits[i];
        if (edit.mRoot == inRoot) {
            values[i] = {edit.mValue.mName, edit.mValue.mType, edit.mValue.mData};
            edits.push_back({KindOf(edit.mKind), edit.mPath.c_str(), &values[i]});
        }
    }
    if (edits.empty()) {
        return kNoError;
    }
    SystemError error = ApplyEdits_Impl(RootOf(inRoot), edits);
    if (error != kErrorNotSupported) {
        return error;
    }
    error = kNoError;
    for (std::size_t i = 0; i < edits.size() && error == kNoError; ++i) {
        error = ApplyOne(RootOf(inRoot), edits[i]);
    }
    return error;
}

RegistryStoreState StateOf(RegistryRootKeys::Type inRoot, StoreCheck inCheck)
{
    StoreState state = GetStoreState_Impl(RootOf(inRoot), inCheck);
    RegistryStoreState result;
    result.mIsWhole = state.mIsWhole;
    result.mProblem = std::move(state.mProblem);
    result.mPlace = std::move(state.mPlace);
    result.mBytes = state.mBytes;
    for (SetAside& aside : state.mSetAside) {
        result.mSetAside.push_back({std::move(aside.mFile), std::move(aside.mTime), std::move(aside.mReason)});
    }
    return result;
}

} // namespace

Result ListSubKeys(RegistryRootKeys::Type inRoot, const UTF16String& inPath, std::vector<UTF16String>& outNames)
{
    outNames.clear();
    RegistryHandle key;
    const SystemError error = key.Open(RootOf(inRoot), inPath.c_str(), kAccessRead);
    return ResultOf(error == kNoError ? ListNames(key.Get(), outNames) : error);
}

Result ListValues(RegistryRootKeys::Type inRoot, const UTF16String& inPath, std::vector<RegistryValue>& outValues)
{
    outValues.clear();
    RegistryHandle key;
    SystemError error = key.Open(RootOf(inRoot), inPath.c_str(), kAccessRead);
    std::vector<Value> values;
    error = error == kNoError ? ListValues_Impl(key.Get(), values) : error;
    for (Value& value : values) {
        outValues.push_back({std::move(value.mName), value.mType, std::move(value.mData)});
    }
    return ResultOf(error);
}

Result GetValue(RegistryRootKeys::Type inRoot, const UTF16String& inPath, const UTF16String& inName,
                RegistryValue& outValue)
{
    RegistryHandle key;
    SystemError error = key.Open(RootOf(inRoot), inPath.c_str(), kAccessRead);
    if (error != kNoError) {
        return ResultOf(error);
    }
    RegistryValue value;
    value.mName = inName;
    unsigned size = 0;
    error = QueryValue_Impl(key.Get(), inName.c_str(), &value.mType, nullptr, &size);
    while (error == kNoError || error == kErrorMoreData) { // repeat if a writer has made the value longer
        value.mData.resize(size);
        if (size == 0) {
            break;
        }
        error = QueryValue_Impl(key.Get(), inName.c_str(), &value.mType, value.mData.data(), &size);
        if (error == kNoError) {
            value.mData.resize(size);
            break;
        }
    }
    if (error == kNoError) {
        outValue = std::move(value);
    }
    return ResultOf(error);
}

Result Apply(const std::vector<RegistryEdit>& inEdits)
{
    const SystemError error = ApplyBelow(RegistryRootKeys::kUser, inEdits);
    return ResultOf(error == kNoError ? ApplyBelow(RegistryRootKeys::kMachine, inEdits) : error);
}

RegistryStoreState Check(RegistryRootKeys::Type inRoot)
{
    return StateOf(inRoot, StoreCheck::kEverything);
}

RegistryStoreState GetState(RegistryRootKeys::Type inRoot)
{
    return StateOf(inRoot, StoreCheck::kNone);
}

} // namespace RegistryStore
} // namespace ORL
