#include <ORLAutomationDataCollector.h>

#include <nlohmann/json.hpp>
#include <tvxcore/Text.h>

#include <string>

namespace ORL {

namespace {

// Uses the JSON library only to quote strings. Its objects and arrays are not used, because they leak if memory runs
// out while they are constructed.
std::string Quoted(const UTF16String& inText)
{
    const UTF8String text = tvxcore::utility::UTF16to8(inText);
    return nlohmann::json(std::string(text.begin(), text.end())).dump();
}

} // namespace

void WriteAutomationResults(std::ostream& ioStream, const AutomationDataCollector::Collection& inCollection)
{
    // Writes the names itself: an object of the JSON library would merge names that differ only in unpaired
    // surrogates.
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
