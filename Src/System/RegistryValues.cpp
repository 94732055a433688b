// Reads and writes the values of a key.
#include <System/RegistryKeyImpl.h>

#include <ORLDebug.h>
#include <ORLString.h>

#include <cstdint>

namespace ORL {

using namespace Registry::Platform;
using namespace SystemErrors;

static_assert(sizeof(unsigned int) == 4, "a number of 4 bytes is stored as it is");

namespace {

bool IsText(unsigned inType)
{
    return inType == kTypeString || inType == kTypeExpandString;
}

std::string TooLargeMessage(std::size_t inBytes)
{
    return "ORL::RegistryKey::SetBinaryValue(): Attempt to write a value greater than 2048 bytes: size = "
           + std::to_string(inBytes) + "\r\n";
}

// Most strings fit into this buffer, so one call reads them.
constexpr unsigned kShortText = 128; // units

// Checks the type and the terminator of a value of inSize bytes.
SystemError CheckText(unsigned inType, unsigned inSize, const unsigned short* inBuffer)
{
    const bool isTerminated = inSize == 0 || inBuffer[inSize / 2 - 1] == 0;
    return IsText(inType) && inSize % 2 == 0 && isTerminated ? kNoError : kErrorInvalidData;
}

} // namespace

SystemError RegistryKey::PrivateImpl::Query(const UTF16String& inName, unsigned* outType, void* outData,
                                            unsigned* ioSize) const
{
    return QueryValue_Impl(mKey->Get(), inName.c_str(), outType, outData, ioSize);
}

Result RegistryKey::PrivateImpl::Set(const UTF16String& inName, unsigned inType, const void* inData,
                                     std::size_t inSize) const
{
    if (inSize > UINT32_MAX) {
        return kRegistryFailure;
    }
    const SystemError error = SetValue_Impl(mKey->Get(), inName.c_str(), inType, inData, static_cast<unsigned>(inSize));
    return error == kNoError ? kSuccess : kRegistryFailure;
}

Result RegistryKey::SetUInt32Value(const UTF16String& inName, unsigned int inValue)
{
    return mImpl->Set(inName, kTypeUInt32, &inValue, sizeof(inValue));
}

Result RegistryKey::SetUInt64Value(const UTF16String& inName, unsigned __int64 inValue)
{
    return mImpl->Set(inName, kTypeUInt64, &inValue, sizeof(inValue));
}

Result RegistryKey::SetStringValue(const UTF16String& inName, const UTF16String& inValue)
{
    return mImpl->Set(inName, kTypeString, inValue.c_str(), (inValue.size() + 1) * sizeof(unsigned short));
}

Result RegistryKey::SetStringValue(const UTF16String& inName, const std::string& inValue)
{
    return SetStringValue(inName, MakeString(inValue));
}

Result RegistryKey::SetBinaryValue(const UTF16String& inName, const void* inData, std::size_t inBytes)
{
    ORL_ASSERT_MESSAGE_AT(inBytes <= kMaxBinarySize, "inBytes <= kMaxBinarySize", TooLargeMessage(inBytes).c_str(),
                          "WinRegistryKey", 364, "ORL::RegistryKey::SetBinaryValue");
    if (inBytes > kMaxBinarySize) {
        return kRegistryFailure;
    }
    return mImpl->Set(inName, kTypeBinary, inData, inBytes);
}

Result RegistryKey::SetBinaryValue(const UTF16String& inName, std::vector<char>& inData)
{
    return SetBinaryValue(inName, inData.data(), inData.size());
}

Result RegistryKey::GetUInt32Value(const UTF16String& inName, unsigned int& outValue) const
{
    unsigned value = 0;
    unsigned type = 0;
    unsigned size = sizeof(value);
    if (mImpl->Query(inName, &type, &value, &size) != kNoError || type != kTypeUInt32) {
        return kRegistryFailure;
    }
    outValue = value;
    return kSuccess;
}

Result RegistryKey::GetUInt64Value(const UTF16String& inName, unsigned __int64& outValue) const
{
    unsigned type = 0;
    unsigned size = sizeof(outValue);
    const SystemError error = mImpl->Query(inName, &type, &outValue, &size);
    return error == kNoError && type == kTypeUInt64 ? kSuccess : kRegistryFailure;
}

Result RegistryKey::GetBinaryValue(const UTF16String& inName, void* outData, unsigned __int64* ioSize) const
{
    unsigned type = 0;
    unsigned size = static_cast<unsigned>(*ioSize);
    if (mImpl->Query(inName, &type, outData, &size) != kNoError || type != kTypeBinary) {
        return kRegistryFailure;
    }
    *ioSize = size;
    return kSuccess;
}

Result RegistryKey::GetBinaryValue(const UTF16String& inName, std::vector<char>& outData) const
{
    unsigned type = 0;
    unsigned size = 0;
    if (mImpl->Query(inName, &type, nullptr, &size) != kNoError || type != kTypeBinary) {
        return kRegistryFailure;
    }
    outData.resize(size);
    if (size == 0) {
        return kSuccess;
    }
    if (mImpl->Query(inName, &type, outData.data(), &size) != kNoError || type != kTypeBinary) {
        return kRegistryFailure;
    }
    outData.resize(size); // another writer may have shortened the value between the two reads
    return kSuccess;
}

Result RegistryKey::GetStringValue(const UTF16String& inName, UTF16String& outValue) const
{
    unsigned short shortText[kShortText];
    unsigned type = 0;
    unsigned size = sizeof(shortText);
    SystemError error = mImpl->Query(inName, &type, shortText, &size);
    if ((error != kNoError && error != kErrorMoreData) || !IsText(type)) {
        return kRegistryFailure;
    }
    if (size < 2) {
        outValue.clear();
        return kSuccess;
    }
    const bool isLong = error == kErrorMoreData;
    UTF16String longText(isLong ? size / 2 : 0, 0);
    if (isLong) {
        size = static_cast<unsigned>(longText.size() * 2);
        error = mImpl->Query(inName, &type, longText.data(), &size);
    }
    const unsigned short* const text = isLong ? longText.data() : shortText;
    error = error == kNoError ? CheckText(type, size, text) : error;
    if (error != kNoError) {
        return kRegistryFailure;
    }
    if (size == 0) { // another writer emptied the value between the two reads
        outValue.clear();
    } else {
        outValue.assign(text);
    }
    return kSuccess;
}

Result RegistryKey::GetStringValue(const UTF16String& inName, std::string& outValue) const
{
    UTF16String value;
    const Result result = GetStringValue(inName, value);
    if (ResultSucceeded(result)) {
        outValue = MakeStdString(value);
    }
    return result;
}

} // namespace ORL
