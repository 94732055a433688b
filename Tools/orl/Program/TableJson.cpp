#include "TableJson.h"

#include "Json.h"

namespace orl {

namespace {

Json JsonOf(const std::vector<OptionEntry>& inOptions)
{
    Json options = Json::Array();
    for (const OptionEntry& option : inOptions) {
        options.Append({{"names", option.mNames},
                        {"value", option.mValue},
                        {"words", ValueOf(option.mValue).mWords},
                        {"text", option.mText},
                        {"required", option.mIsRequired},
                        {"repeatable", option.mIsRepeatable}});
    }
    return options;
}

Json JsonOf(const std::vector<ExitCodeEntry>& inCodes)
{
    Json codes = Json::Array();
    for (const ExitCodeEntry& code : inCodes) {
        codes.Append({{"code", code.mCode}, {"meaning", code.mMeaning}});
    }
    return codes;
}

} // namespace

std::string JsonOf(const std::vector<CommandEntry>& inCommands)
{
    Json commands = Json::Array();
    for (const CommandEntry& command : inCommands) {
        commands.Append({{"command", command.mName},
                         {"text", command.mText},
                         {"usage", UsageOf(command)},
                         {"arguments", JsonOf(command.mArguments)},
                         {"options", JsonOf(command.mOptions)},
                         {"subcommands", command.mSubcommands},
                         {"exitCodeRule", command.mExitCodes.mRule},
                         {"exitCodes", JsonOf(command.mExitCodes.mCodes)}});
    }
    return commands.Document();
}

} // namespace orl
