#include "Completion.h"

#include <algorithm>

namespace orl {

namespace {

constexpr char kBegin[] = R"(#compdef orl
# Completes command lines of orl in zsh. Written by "orl completion zsh".
_orl() {
  local place= word
  integer depth=0
  for word in "${(@)words[2,CURRENT-1]}"; do
    case "$place $word" in
)";

// Removes the names of the command from the command line for the rest of the function.
constexpr char kAfterPlaces[] = R"( place="${place:+$place }$word"; (( ++depth )) ;;
      (*) break ;;
    esac
  done
  words=(orl "${(@)words[depth+2,-1]}")
  (( CURRENT -= depth ))
  local -a commands
  case "$place" in
)";

constexpr char kEnd[] = R"(  esac
}

if [[ $funcstack[1] == _orl ]]; then
  _orl "$@"
else
  compdef _orl orl
fi
)";

constexpr char kMessage[] = " "; // nothing to insert: zsh only shows the name of the value

// In an argument of _arguments a colon ends a field, and a bracket ends the explanation.
std::string Escaped(const std::string& inText)
{
    std::string escaped;
    for (const char character : inText) {
        const bool isSpecial = character == ':' || character == '[' || character == ']' || character == '\\';
        escaped += (isSpecial ? "\\" : "") + std::string(1, character);
    }
    return escaped;
}

std::string Action(const std::string& inValue)
{
    const ValueEntry value = ValueOf(inValue);
    switch (value.mKind) {
    case ValueKind::kFile: return "_files";
    case ValueKind::kFolder: return "_files -/";
    case ValueKind::kWord: return '(' + Joined(value.mWords) + ')';
    case ValueKind::kWordList: return "_sequence compadd - " + Joined(value.mWords);
    default: return kMessage;
    }
}

std::string ValueSpec(const std::string& inValue)
{
    return ':' + Escaped(inValue) + ':' + Action(inValue);
}

std::string Specs(const OptionEntry& inOption)
{
    const std::string repeatable = inOption.mIsRepeatable ? "*" : "";
    const std::string excluded = inOption.mIsRepeatable ? "" : '(' + Joined(inOption.mNames) + ')';
    const std::string value = inOption.mValue.empty() ? "" : ValueSpec(inOption.mValue);
    std::string text;
    for (const std::string& name : inOption.mNames) {
        const bool isLong = name.compare(0, 2, "--") == 0;
        const std::string separator = value.empty() ? "" : isLong ? "=" : "+";
        text +=
            ' ' + ShellQuoted(excluded + repeatable + name + separator + '[' + Escaped(inOption.mText) + ']' + value);
    }
    return text;
}

std::string ArgumentSpec(const OptionEntry& inArgument)
{
    // A message would keep zsh from inserting the only option that fits.
    const std::string action = Action(inArgument.mValue) == kMessage ? "( )" : Action(inArgument.mValue);
    const std::string position = inArgument.mIsRepeatable ? "*" : inArgument.mIsRequired ? "" : ":";
    return ' ' + ShellQuoted(position + ':' + Escaped(inArgument.mValue) + ':' + action);
}

std::string Subcommands(const CommandEntry& inPlace, const std::vector<CommandEntry>& inPlaces)
{
    std::string text;
    for (const std::string& name : inPlace.mSubcommands) {
        const std::string full = inPlace.mName.empty() ? name : inPlace.mName + ' ' + name;
        const auto entry = std::find_if(inPlaces.begin(), inPlaces.end(),
                                        [&full](const CommandEntry& inEntry) { return inEntry.mName == full; });
        text += ' ' + ShellQuoted(name + (entry->mText.empty() ? "" : ':' + Escaped(entry->mText)));
    }
    return text;
}

std::string Place(const CommandEntry& inPlace, const std::vector<CommandEntry>& inPlaces)
{
    std::string specs;
    for (const OptionEntry& option : inPlace.mOptions) {
        specs += Specs(option);
    }
    std::string text = "    (" + ShellQuoted(inPlace.mName) + ")\n";
    if (!inPlace.mSubcommands.empty()) {
        text += "      commands=(" + Subcommands(inPlace, inPlaces) + " )\n";
        text += "      [[ $PREFIX == -* ]] || _describe command commands\n";
    } else {
        for (const OptionEntry& argument : inPlace.mArguments) {
            specs += ArgumentSpec(argument);
        }
    }
    return text + (specs.empty() ? "" : "      _arguments" + specs + '\n') + "      ;;\n";
}

} // namespace

std::string ZshCompletion(const std::vector<CommandEntry>& inPlaces)
{
    std::string places;
    for (const CommandEntry& place : inPlaces) {
        places += Place(place, inPlaces);
    }
    return kBegin + ("      (" + PlacePatterns(inPlaces) + ')') + kAfterPlaces + places + kEnd;
}

} // namespace orl
