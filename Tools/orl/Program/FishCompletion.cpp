#include "Completion.h"

#include <algorithm>

namespace orl {

namespace {

constexpr char kBegin[] = R"(# Completes command lines of orl in fish 3.4 and later. Written by "orl completion fish".
function __orl_place
    set -l place
    for word in (commandline -opc)[2..-1]
        set -l next (string join ' ' -- $place $word)
        contains -- $next)";

constexpr char kAfterPlaces[] = R"fish(; or break
        set place $next
    end
    printf '%s\n' "$place"
end

function __orl_at
    test "$(__orl_place)" = "$argv[1]"
end

complete -c orl -f
)fish";

std::string Begin(const CommandEntry& inPlace)
{
    return "complete -c orl -n " + ShellQuoted("__orl_at \"" + inPlace.mName + '"');
}

// Returns the arguments of fish's "complete" that offer the values of an option or a positional argument.
std::string Values(const std::string& inValue)
{
    const ValueEntry value = ValueOf(inValue);
    switch (value.mKind) {
    case ValueKind::kFile: return " -F";
    case ValueKind::kFolder: return " -a '(__fish_complete_directories (commandline -ct))'";
    case ValueKind::kWord: return " -a " + ShellQuoted(Joined(value.mWords));
    case ValueKind::kWordList: return " -a '(__fish_append , " + Joined(value.mWords) + ")'";
    default: return std::string();
    }
}

std::string Option(const CommandEntry& inPlace, const OptionEntry& inOption)
{
    std::string line = Begin(inPlace);
    for (const std::string& name : inOption.mNames) {
        line += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!inOption.mValue.empty()) {
        const bool isFile = ValueOf(inOption.mValue).mKind == ValueKind::kFile;
        line += (isFile ? " -r" : " -x") + Values(inOption.mValue);
    }
    return line + " -d " + ShellQuoted(inOption.mText) + '\n';
}

std::string Subcommands(const CommandEntry& inPlace, const std::vector<CommandEntry>& inPlaces)
{
    std::string lines;
    for (const std::string& name : inPlace.mSubcommands) {
        const std::string full = inPlace.mName.empty() ? name : inPlace.mName + ' ' + name;
        const auto entry = std::find_if(inPlaces.begin(), inPlaces.end(),
                                        [&full](const CommandEntry& inEntry) { return inEntry.mName == full; });
        lines +=
            Begin(inPlace) + " -a " + name + (entry->mText.empty() ? "" : " -d " + ShellQuoted(entry->mText)) + '\n';
    }
    return lines;
}

} // namespace

std::string FishCompletion(const std::vector<CommandEntry>& inPlaces)
{
    std::string script = kBegin;
    for (const CommandEntry& place : inPlaces) {
        script += place.mName.empty() ? std::string() : ' ' + ShellQuoted(place.mName);
    }
    script += kAfterPlaces;
    for (const CommandEntry& place : inPlaces) {
        script += Subcommands(place, inPlaces);
        for (const OptionEntry& option : place.mOptions) {
            script += Option(place, option);
        }
        for (const OptionEntry& argument : place.mArguments) {
            const std::string values = Values(argument.mValue);
            script += values.empty() ? std::string() : Begin(place) + values + '\n';
        }
    }
    return script;
}

} // namespace orl
