#include "ManualPage.h"

#include <ORLVersion.h>

namespace orl {

namespace {

// A line that begins with a dot or an apostrophe would be a roff request, and a plain "-" may become a hyphen.
std::string Escaped(const std::string& inText)
{
    std::string escaped = inText.compare(0, 1, ".") == 0 || inText.compare(0, 1, "'") == 0 ? "\\&" : "";
    for (const char character : inText) {
        switch (character) {
        case '\\': escaped += "\\e"; break;
        case '-': escaped += "\\-"; break;
        case '\'': escaped += "\\(aq"; break;
        case '"': escaped += "\\(dq"; break;
        default: escaped += character;
        }
    }
    return escaped;
}

std::string Item(const std::string& inName, const std::string& inText)
{
    return ".TP\n.B " + Escaped(inName) + '\n' + Escaped(inText) + '\n';
}

std::string Items(const std::vector<OptionEntry>& inOptions)
{
    std::string text;
    for (const OptionEntry& option : inOptions) {
        const bool isNamed = option.mIsRequired && !option.mNames.empty();
        text += Item(ShownName(option), option.mText + (isNamed ? " (required)" : ""));
    }
    return text;
}

std::string Codes(const ExitCodes& inCodes)
{
    std::string text = inCodes.mRule.empty() ? std::string() : ".PP\n" + Escaped(inCodes.mRule) + '\n';
    for (const ExitCodeEntry& code : inCodes.mCodes) {
        text += Item(std::to_string(code.mCode), code.mMeaning);
    }
    return text;
}

std::string Command(const CommandEntry& inCommand)
{
    return ".SS " + Escaped(ShownName(inCommand)) + "\n.B " + Escaped(UsageOf(inCommand)) + "\n.PP\n"
           + Escaped(inCommand.mText) + ".\n" + Items(inCommand.mArguments) + Items(inCommand.mOptions)
           + (inCommand.mSubcommands.empty() ? ".PP\nExit codes:\n" + Codes(inCommand.mExitCodes) : std::string());
}

} // namespace

std::string ManualPageOf(const std::vector<CommandEntry>& inProgram)
{
    const CommandEntry& program = inProgram.front();
    std::string page = ".TH ORL 1 \"\" \"orl " ORL_VERSION "\" \"User Commands\"\n"
                       ".SH NAME\norl \\- read, copy and verify media files, timecode, settings and resources\n"
                       ".SH SYNOPSIS\n.B "
                       + Escaped(UsageOf(program)) + "\n.SH DESCRIPTION\n" + Escaped(program.mText) + "\n.SH OPTIONS\n"
                       + Items(program.mOptions) + ".SH COMMANDS\n";
    for (const CommandEntry& command : inProgram) {
        page += command.mName.empty() ? std::string() : Command(command);
    }
    return page + ".SH EXIT STATUS\n" + Codes(program.mExitCodes)
           + ".PP\nThe commands ingest and verify have further codes; see above.\n"
             ".SH ENVIRONMENT\n"
           + Item("NO_COLOR", "If set and not empty, no colours are shown.");
}

} // namespace orl
