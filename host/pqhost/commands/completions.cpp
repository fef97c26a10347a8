#include "host/pqhost/commands/completions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>
#include <utility>
#include <vector>

#include "host/collect/collection.h"
#include "host/pqhost/commands/command_line.h"

namespace host {
namespace {

using Words = std::vector<std::string>;

// Both scripts look their offers up by the command and the word before the cursor. An offer in
// <...> is a kind of value instead of a list of words.

constexpr std::string_view kBash =
    R"sh(# Completion of pqhost's command line for bash, written by "pqhost completion --shell bash":
#   source completions/pqhost.bash
# or copy it to /usr/share/bash-completion/completions/pqhost.

_pqhost_complete() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command="" word words
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      @COMMANDS@) command=$word; break ;;
    esac
  done

  case "$command $previous" in
@OFFERS@  esac

  case $words in
    '<folder>')
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return ;;
    '<file>')
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    '<any>') return ;;
    '<table>')
      # The program lists them, each in a line of its own, two columns in.
      words=$("${COMP_WORDS[0]}" modules 2>/dev/null | sed -n 's/^  \([A-Z0-9]*\) .*/\1/p') ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  [[ $current == -* || ${#COMPREPLY[@]} -gt 0 ]] && return
  # A word that belongs to no option.
  case $command in
@ARGUMENTS@  esac
}

complete -o filenames -F _pqhost_complete pqhost
)sh";

constexpr std::string_view kPowerShell =
    R"sh(# Completion of pqhost's command line for PowerShell, written by
# "pqhost completion --shell powershell":
#   . .\completions\pqhost.ps1
# in the profile ($PROFILE) for every session.

Register-ArgumentCompleter -Native -CommandName pqhost, pqhost.exe -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)

    $offers = @{
@OFFERS@    }

    # The words before the one that is being typed.
    $words = @($commandAst.CommandElements |
        Where-Object { $_.Extent.EndOffset -lt $cursorPosition } |
        ForEach-Object { $_.ToString() })
    $command = $words | Where-Object { $_ -in @COMMANDS@ } | Select-Object -First 1

    $candidates = $offers["$command $($words[-1])"]
    if (-not $candidates) { $candidates = $offers["$command"] }
    if ("$candidates" -in '<folder>', '<file>', '<any>') {
        return  # PowerShell's own completion of paths
    }
    if ("$candidates" -eq '<table>') {
        # The program lists them, each in a line of its own, two columns in.
        $candidates = & $words[0] modules 2>$null |
            ForEach-Object { if ($_ -cmatch '^  ([A-Z0-9]+) ') { $Matches[1] } }
    }
    $candidates | Where-Object { $_ -like "$wordToComplete*" } | ForEach-Object {
        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)
    }
}
)sh";

void Fill(std::string& script, std::string_view blank, std::string_view text) {
  script.replace(script.find(blank), blank.size(), text);
}

Words ListNames(const std::vector<CommandDescription>& commands) {
  Words names;
  for (const CommandDescription& command : commands) {
    if (!command.name.empty()) names.push_back(command.name);
  }
  return names;
}

Words ListModuleNames() {
  Words names;
  for (const LoadedModule& module : LoadLinkedModules()) names.push_back(module.name);
  return names;
}

Words OfferValue(const OptionDescription& option) {
  switch (option.value) {
    case OptionValue::kChoice:
      return option.choices;
    case OptionValue::kModule:
      return ListModuleNames();
    case OptionValue::kFolder:
      return {"<folder>"};
    case OptionValue::kTable:
      return {"<table>"};
    case OptionValue::kFile:
    case OptionValue::kRecording:
    case OptionValue::kDatabase:
      return {"<file>"};
    case OptionValue::kNone:
    case OptionValue::kAny:
    case OptionValue::kCommand:
      break;
  }
  return {"<any>"};
}

/// Words to offer after a command, or after an option of it.
struct Offer {
  std::string command;  ///< empty: before there is any
  std::string option;
  Words words;
};

std::vector<Offer> ListOffers(const std::vector<CommandDescription>& commands) {
  std::vector<Offer> offers;
  for (const CommandDescription& command : commands) {
    Offer next{command.name, "", {}};
    if (command.name.empty()) next.words = ListNames(commands);
    for (const OptionDescription& option : command.options) {
      if (option.value == OptionValue::kCommand) {
        for (const std::string& name : ListNames(commands)) next.words.push_back(name);
      }
      if (option.name.empty()) continue;
      next.words.push_back(option.name);
      if (option.value == OptionValue::kNone) continue;
      offers.push_back({command.name, option.name, OfferValue(option)});
    }
    offers.push_back(std::move(next));
  }
  return offers;
}

/// How bash's compgen finds the values.
const char* ChooseCompgenOptions(OptionValue value) {
  switch (value) {
    case OptionValue::kFolder:
      return "-d";
    case OptionValue::kDatabase:
      return "-f -X '!*.db'";
    default:
      return "-f";
  }
}

/// A case for each command with words that belong to no option.
std::string WriteBashArguments(const std::vector<CommandDescription>& commands) {
  std::string cases;
  for (const CommandDescription& command : commands) {
    for (const OptionDescription& option : command.options) {
      if (!option.name.empty() || option.value == OptionValue::kCommand) continue;
      cases += fmt::format("    {}) mapfile -t COMPREPLY < <(compgen {} -- \"$current\") ;;\n",
                           command.name, ChooseCompgenOptions(option.value));
    }
  }
  return cases;
}

}  // namespace

std::string WriteBashCompletion() {
  const std::vector<CommandDescription> commands = DescribeCommandLine();
  std::string offers;
  for (const Offer& offer : ListOffers(commands)) {
    const std::string pattern = offer.command.empty() ? "*"
                                : offer.option.empty()
                                    ? fmt::format("'{} '*", offer.command)
                                    : fmt::format("'{} {}'", offer.command, offer.option);
    offers += fmt::format("    {}) words='{}' ;;\n", pattern, fmt::join(offer.words, " "));
  }
  std::string script(kBash);
  Fill(script, "@COMMANDS@", fmt::format("{}", fmt::join(ListNames(commands), " | ")));
  Fill(script, "@OFFERS@", offers);
  Fill(script, "@ARGUMENTS@", WriteBashArguments(commands));
  return script;
}

std::string WritePowerShellCompletion() {
  const std::vector<CommandDescription> commands = DescribeCommandLine();
  std::string offers;
  for (const Offer& offer : ListOffers(commands)) {
    const char* blank = offer.option.empty() ? "" : " ";
    offers += fmt::format("        '{}{}{}' = '{}'\n", offer.command, blank, offer.option,
                          fmt::join(offer.words, "', '"));
  }
  std::string script(kPowerShell);
  Fill(script, "@OFFERS@", offers);
  Fill(script, "@COMMANDS@", fmt::format("'{}'", fmt::join(ListNames(commands), "', '")));
  return script;
}

}  // namespace host
