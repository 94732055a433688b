#include <ORLAutomationDataCollector.h>

#include <nlohmann/json.hpp>
#include <tvxcore/Text.h>

#include <string>

namespace ORL {

namespace {

// The library's texts are quoted, not its objects and arrays: one that is under construction when memory runs out is lost.
std::string Quoted(const UTF16String& inText)
{
    const UTF8String text = tvxcore::utility::UTF16to8(inText);
    return nlohmann::json(std::string(text.begin(), text.end())).dump();
}

} // namespace

void WriteAutomationResults(std::ostream& ioStream, const AutomationDataCollector::Collection& inCollection)
{
    // Written name by name: two names that differ only in half surrogate pairs would be one key of a JSON value.
    ioStream << '{';
    const char* afterName = "";
    for (const auto& [name, results] : inCollection) {
        ioStream << afterName << "\n  " << Quoted(name) << ": [";
        const char* afterResult = "";
        for (const auto& [key, value] : results) {
            ioStream << afterResult << "\n    {\"key\":" << Quoted(key) << ",\"value\":" << Quoted(value) << '}';
            afterResult = ",";
        }
        ioStream << (results.empty() ? "]" : "\n  ]");
        afterName = ",";
    }
    ioStream << (inCollection.empty() ? "}\n" : "\n}\n");
}

} // namespace ORL
