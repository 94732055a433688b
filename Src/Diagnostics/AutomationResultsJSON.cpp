#include <ORLAutomationDataCollector.h>

#include <nlohmann/json.hpp>
#include <tvxcore/Text.h>

#include <string>

namespace ORL {

namespace {

using Json = nlohmann::ordered_json;

std::string UTF8Of(const UTF16String& inText)
{
    const UTF8String text = tvxcore::utility::UTF16to8(inText);
    return std::string(text.begin(), text.end());
}

} // namespace

void WriteAutomationResults(std::ostream& ioStream, const AutomationDataCollector::Collection& inCollection)
{
    // Written name by name: two names that differ only in half surrogate pairs would be one key of a JSON value.
    ioStream << '{';
    const char* afterName = "";
    for (const auto& [name, results] : inCollection) {
        ioStream << afterName << "\n  " << Json(UTF8Of(name)).dump() << ": [";
        const char* afterResult = "";
        for (const auto& [key, value] : results) {
            ioStream << afterResult << "\n    " << Json{{"key", UTF8Of(key)}, {"value", UTF8Of(value)}}.dump();
            afterResult = ",";
        }
        ioStream << (results.empty() ? "]" : "\n  ]");
        afterName = ",";
    }
    ioStream << (inCollection.empty() ? "}\n" : "\n}\n");
}

} // namespace ORL
