#include "RegList.h"

#include "Json.h"
#include "RegJson.h"
#include "RegTree.h"
#include "RegValueText.h"
#include "Text.h"
#include "TextWidth.h"

#include <algorithm>
#include <iostream>

namespace orl {

namespace {

using ORL::RegistryValue;

constexpr char kCommand[] = "reg list";
constexpr std::size_t kWidestName = 40; // a longer name widens its own line only

std::string Indent(std::size_t inLevel)
{
    return std::string(2 * inLevel, ' ');
}

std::string NameOf(const RegistryValue& inValue)
{
    return inValue.mName.empty() ? "(default)" : ToUTF8(inValue.mName);
}

void PrintValues(const std::vector<RegistryValue>& inValues, std::size_t inLevel)
{
    std::size_t width = 0;
    for (const RegistryValue& value : inValues) {
        width = std::max(width, std::min(kWidestName, ColumnsOf(NameOf(value))));
    }
    for (const RegistryValue& value : inValues) {
        std::cout << Indent(inLevel) << PaddedTo(width, NameOf(value)) << "  " << PaddedTo(7, ShowRegType(value.mType))
                  << ' ' << ShowRegValue(value) << '\n';
    }
}

void PrintBelow(const RegListPlan& inPlan, const RegKeyName& inKey, std::size_t inLevel)
{
    PrintValues(ReadRegValues(kCommand, inKey), inLevel);
    for (const UTF16String& name : ReadRegSubKeys(kCommand, inKey)) {
        std::cout << Indent(inLevel) << WithoutControlCharacters(ToUTF8(name)) << "\\\n";
        if (inPlan.mIsRecursive) {
            PrintBelow(inPlan, RegSubKey(inKey, name), inLevel + 1);
        }
    }
}

enum class KeyContent { kNameOnly, kValuesAndKeys };

Json JsonOfKey(const RegListPlan& inPlan, const RegKeyName& inKey, const std::string& inName, KeyContent inContent)
{
    Json key = {{"name", inName}};
    if (inContent == KeyContent::kNameOnly) {
        return key;
    }
    Json values = Json::Array();
    for (const RegistryValue& value : ReadRegValues(kCommand, inKey)) {
        values.Append(JsonOfRegValue(value));
    }
    Json keys = Json::Array();
    const KeyContent below = inPlan.mIsRecursive ? KeyContent::kValuesAndKeys : KeyContent::kNameOnly;
    for (const UTF16String& name : ReadRegSubKeys(kCommand, inKey)) {
        keys.Append(JsonOfKey(inPlan, RegSubKey(inKey, name), ToUTF8(name), below));
    }
    key.Set("values", values);
    key.Set("keys", keys);
    return key;
}

} // namespace

void ListRegKey(const RegListPlan& inPlan)
{
    if (inPlan.mAsJson) {
        const KeyContent content = KeyContent::kValuesAndKeys;
        std::cout << JsonOfKey(inPlan, inPlan.mKey, ShowRegKeyName(inPlan.mKey), content).Document();
        return;
    }
    ReadRegValues(kCommand, inPlan.mKey); // throws before anything is printed if the key is missing
    std::cout << WithoutControlCharacters(ShowRegKeyName(inPlan.mKey)) << '\n';
    PrintBelow(inPlan, inPlan.mKey, 1);
}

} // namespace orl
