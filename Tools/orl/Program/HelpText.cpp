#include "HelpText.h"

#include <algorithm>
#include <sstream>

namespace orl {

namespace {

constexpr std::size_t kMinColumns = 40;
constexpr std::size_t kTextAt = 26; // the column in which descriptions begin

std::string Paragraph(const std::string& inText, std::size_t inColumns)
{
    std::string paragraph;
    for (const std::string& line : WrapWords(inText, inColumns)) {
        paragraph += line + '\n';
    }
    return paragraph;
}

// A name that is too long for its column has a line of its own.
std::string Row(const std::string& inName, const std::string& inText, std::size_t inColumns)
{
    const std::size_t textAt = std::min(kTextAt, inColumns / 2);
    std::string row = "  " + inName;
    bool isAfterName = row.size() + 2 <= textAt;
    row += isAfterName ? "" : "\n";
    for (const std::string& line : WrapWords(inText, inColumns - textAt)) {
        row += std::string(isAfterName ? textAt - inName.size() - 2 : textAt, ' ') + line + '\n';
        isAfterName = false;
    }
    return row;
}

std::string Options(const std::string& inTitle, const std::vector<OptionEntry>& inOptions, std::size_t inColumns)
{
    std::string text = inOptions.empty() ? "" : '\n' + inTitle + ":\n";
    for (const OptionEntry& option : inOptions) {
        const bool isNamed = option.mIsRequired && !option.mNames.empty();
        text += Row(ShownName(option), option.mText + (isNamed ? " (required)" : ""), inColumns);
    }
    return text;
}

std::string Subcommands(const CommandEntry& inCommand, const std::vector<CommandEntry>& inProgram,
                        std::size_t inColumns)
{
    std::string text = inCommand.mSubcommands.empty() ? "" : "\nCommands:\n";
    for (const std::string& name : inCommand.mSubcommands) {
        const std::string full = inCommand.mName.empty() ? name : inCommand.mName + ' ' + name;
        const auto entry = std::find_if(inProgram.begin(), inProgram.end(),
                                        [&full](const CommandEntry& inEntry) { return inEntry.mName == full; });
        text += Row(name, entry->mText, inColumns);
    }
    return text;
}

std::string Codes(const ExitCodes& inCodes, std::size_t inColumns)
{
    constexpr std::size_t kMeaningAt = 7;
    std::string text = "\nExit codes:\n";
    if (!inCodes.mRule.empty()) {
        text += Paragraph(inCodes.mRule, inColumns);
    }
    for (const ExitCodeEntry& code : inCodes.mCodes) {
        std::string start = "  " + std::to_string(code.mCode);
        for (const std::string& line : WrapWords(code.mMeaning, inColumns - kMeaningAt)) {
            text += start + std::string(kMeaningAt - start.size(), ' ') + line + '\n';
            start.clear();
        }
    }
    return text;
}

} // namespace

std::vector<std::string> WrapWords(const std::string& inText, std::size_t inColumns)
{
    std::vector<std::string> lines(1);
    std::istringstream words(inText);
    for (std::string word; words >> word;) {
        std::string& line = lines.back();
        if (line.empty()) {
            line = word;
        } else if (line.size() + 1 + word.size() <= inColumns) {
            line += ' ' + word;
        } else {
            lines.push_back(word);
        }
    }
    return lines;
}

std::string HelpTextOf(const CommandEntry& inCommand, const std::vector<CommandEntry>& inProgram, std::size_t inColumns)
{
    const std::size_t columns = std::max(inColumns, kMinColumns);
    return Paragraph(inCommand.mText, columns) + Paragraph("Usage: " + UsageOf(inCommand), columns)
           + Options("Arguments", inCommand.mArguments, columns) + Options("Options", inCommand.mOptions, columns)
           + Subcommands(inCommand, inProgram, columns) + Codes(inCommand.mExitCodes, columns);
}

} // namespace orl
