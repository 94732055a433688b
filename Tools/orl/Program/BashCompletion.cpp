#include "Completion.h"

namespace orl {

namespace {

constexpr char kBegin[] = R"(# Completes command lines of orl in bash 4 and later. Written by "orl completion bash".
_orl_paths() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$current")
}

_orl_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_orl_list() {
  local before=${current%"${current##*,}"}
  compopt -o nospace 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -P "$before" -W "$1" -- "${current##*,}")
}

_orl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} place= i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case "$place ${COMP_WORDS[i]}" in
)";

// Bash splits "--from=rgb" into three words, so a "=" at or before the cursor is skipped.
constexpr char kAfterPlaces[] = R"( place="${place:+$place }${COMP_WORDS[i]}" ;;
      *) break ;;
    esac
  done
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD-2]}
  fi
  case "$place/$previous" in
)";

constexpr char kBeforeOptions[] = R"(  esac
  if [[ $current == -* ]]; then
    case "$place" in
)";

constexpr char kBeforeArguments[] = R"(    esac
    return
  fi
  case "$place" in
)";

constexpr char kEnd[] = R"(  esac
}

complete -F _orl orl
)";

// Returns the command that completes a value; an empty string for a value that cannot be completed.
std::string Action(const std::string& inValue)
{
    const ValueEntry value = ValueOf(inValue);
    switch (value.mKind) {
    case ValueKind::kFile: return "_orl_paths -f";
    case ValueKind::kFolder: return "_orl_paths -d";
    case ValueKind::kWord: return "_orl_words " + ShellQuoted(Joined(value.mWords));
    case ValueKind::kWordList: return "_orl_list " + ShellQuoted(Joined(value.mWords));
    default: return std::string();
    }
}

std::string OptionValues(const CommandEntry& inPlace)
{
    std::string cases;
    for (const OptionEntry& option : inPlace.mOptions) {
        if (option.mValue.empty()) {
            continue;
        }
        std::string patterns;
        for (const std::string& name : option.mNames) {
            patterns += (patterns.empty() ? "" : " | ") + ShellQuoted(inPlace.mName + '/' + name);
        }
        const std::string action = Action(option.mValue);
        cases += "    " + patterns + ") " + action + (action.empty() ? "" : "; ") + "return ;;\n";
    }
    return cases;
}

std::string OptionNames(const CommandEntry& inPlace)
{
    std::vector<std::string> names;
    for (const OptionEntry& option : inPlace.mOptions) {
        names.insert(names.end(), option.mNames.begin(), option.mNames.end());
    }
    return names.empty()
               ? std::string()
               : "      " + ShellQuoted(inPlace.mName) + ") _orl_words " + ShellQuoted(Joined(names)) + " ;;\n";
}

// Every position offers the values of the first argument that can be completed.
std::string Arguments(const CommandEntry& inPlace)
{
    std::string action =
        inPlace.mSubcommands.empty() ? std::string() : "_orl_words " + ShellQuoted(Joined(inPlace.mSubcommands));
    for (const OptionEntry& argument : inPlace.mArguments) {
        action = action.empty() ? Action(argument.mValue) : action;
    }
    return action.empty() ? std::string() : "    " + ShellQuoted(inPlace.mName) + ") " + action + " ;;\n";
}

} // namespace

std::string BashCompletion(const std::vector<CommandEntry>& inPlaces)
{
    std::string values;
    std::string options;
    std::string arguments;
    for (const CommandEntry& place : inPlaces) {
        values += OptionValues(place);
        options += OptionNames(place);
        arguments += Arguments(place);
    }
    return kBegin + ("      " + PlacePatterns(inPlaces) + ')') + kAfterPlaces + values + kBeforeOptions + options
           + kBeforeArguments + arguments + kEnd;
}

} // namespace orl
