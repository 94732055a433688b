#include "ValueTable.h"

#include "Colour/ColourForms.h"
#include "Common/Hash/Checksum.h"
#include "Ingest/Report/IngestSummary.h"
#include "Timecode/TimecodeFormatNames.h"

#include <map>
#include <sstream>

namespace orl {

namespace {

std::vector<std::string> TimecodeFormats()
{
    std::vector<std::string> names;
    for (const TimecodeFormat& format : AllTimecodeFormats()) {
        names.emplace_back(format.mName);
    }
    return names;
}

std::vector<std::string> IngestRates()
{
    std::vector<std::string> names;
    std::istringstream text(RateNames());
    for (std::string name; std::getline(text >> std::ws, name, ',');) {
        names.push_back(name);
    }
    return names;
}

} // namespace

ValueEntry ValueOf(const std::string& inName)
{
    static const std::map<std::string, ValueEntry> values = {
        {"COMMAND", {ValueKind::kCommand, {}}},
        {"DEST", {ValueKind::kFolder, {}}},
        {"FILE", {ValueKind::kFile, {}}},
        {"FOLDER", {ValueKind::kFolder, {}}},
        {"FORM", {ValueKind::kWord, ReadableColourFormNames()}},
        {"FORMAT", {ValueKind::kWord, TimecodeFormats()}},
        {"FORMS", {ValueKind::kWordList, ColourFormNames()}},
        {"HASH", {ValueKind::kWord, ChecksumNames()}},
        {"KIND", {ValueKind::kWord, {"string", "expand", "u32", "u64", "binary"}}},
        {"PATH", {ValueKind::kFile, {}}},
        {"RATE", {ValueKind::kWord, IngestRates()}},
        {"SHELL", {ValueKind::kWord, {"bash", "zsh", "fish"}}},
        {"SOURCE", {ValueKind::kFolder, {}}},
        {"WHEN", {ValueKind::kWord, {"auto", "always", "never"}}},
    };
    const auto found = values.find(inName);
    return found != values.end() ? found->second : ValueEntry();
}

} // namespace orl
