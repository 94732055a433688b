#include "RegTree.h"

#include "Failure.h"
#include "RegFile.h"

#include <algorithm>

namespace orl {

namespace {

void CheckRead(const std::string& inCommand, const RegKeyName& inKey, ORL::Result inResult)
{
    if (!ORL::ResultSucceeded(inResult)) {
        throw Failure(inCommand + ": cannot read \"" + ShowRegKeyName(inKey) + "\": " + DescribeRegFailure(inResult));
    }
}

} // namespace

std::vector<ORL::RegistryValue> ReadRegValues(const std::string& inCommand, const RegKeyName& inKey)
{
    std::vector<ORL::RegistryValue> values;
    CheckRead(inCommand, inKey, ORL::RegistryStore::ListValues(inKey.mRoot, inKey.mPath, values));
    std::sort(values.begin(), values.end(), [](const ORL::RegistryValue& inFirst, const ORL::RegistryValue& inSecond) {
        return IsRegNameBefore(inFirst.mName, inSecond.mName);
    });
    return values;
}

std::vector<UTF16String> ReadRegSubKeys(const std::string& inCommand, const RegKeyName& inKey)
{
    std::vector<UTF16String> names;
    CheckRead(inCommand, inKey, ORL::RegistryStore::ListSubKeys(inKey.mRoot, inKey.mPath, names));
    std::sort(names.begin(), names.end(), &IsRegNameBefore);
    return names;
}

RegKeyName RegSubKey(const RegKeyName& inKey, const UTF16String& inName)
{
    RegKeyName key = inKey;
    if (!key.mPath.empty()) {
        key.mPath.push_back('\\');
    }
    key.mPath += inName;
    return key;
}

std::string DescribeRegFailure(ORL::Result inResult)
{
    return inResult == ORL::kFileNotFound ? "no such key" : Describe(inResult);
}

void ApplyRegEdits(const std::string& inCommand, const std::string& inKey,
                   const std::vector<ORL::RegistryEdit>& inEdits)
{
    const ORL::Result result = ORL::RegistryStore::Apply(inEdits);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure(inCommand + ": cannot change \"" + inKey + "\": " + DescribeRegFailure(result));
    }
}

} // namespace orl
