#include "completion.h"

#include <algorithm>

#include "operations.h"

namespace client {
namespace {

std::vector<Option> OptionsOf(const Operation& operation) {
  std::vector<Option> all(operation.options.begin(), operation.options.end());
  const auto common = CommonOptions(operation);
  all.insert(all.end(), common.begin(), common.end());
  return all;
}

std::string Words(const Option& option) {
  std::string words = Placeholder(option);
  std::replace(words.begin(), words.end(), '|', ' ');
  return words;
}

// A line of the script's choice by command and word before: `    'resize --method') words='...' ;;`
void AddCase(std::string& cases, std::string_view command, std::string_view before,
             std::string_view words) {
  cases += "    '";
  cases += command;
  if (!before.empty()) cases += ' ';
  cases += before;
  cases += "') words='";
  cases += words;
  cases += "' ;;\n";
}

}  // namespace

std::string CompletionScript() {
  std::string commands;
  std::string values;   // after an option that takes one of some words
  std::string options;  // anywhere else in a command
  for (const Operation& operation : Operations()) {
    std::string words = "--help";
    for (const Option& option : OptionsOf(operation)) {
      const bool choice = option.kind == ValueKind::kChoice;
      if (option.positional) {
        AddCase(values, operation.name, operation.name, Words(option));
        continue;
      }
      const std::string spelled = "--" + std::string(option.name);
      words += ' ';
      words += spelled;
      if (choice) AddCase(values, operation.name, spelled, Words(option));
    }
    AddCase(options, operation.name, {}, words);
    commands += ' ';
    commands += operation.name;
  }
  return "_orvo() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words=\n"
         "  local command=${COMP_WORDS[1]}\n"
         "  if ((COMP_CWORD == 1)); then\n"
         "    words='--help" +
         commands +
         "'\n"
         "  else\n"
         "    case \"$command $before\" in\n" +
         values +
         "    esac\n"
         "    if [[ -z $words && $current == -* ]]; then\n"
         "    case $command in\n" +
         options +
         "    esac\n"
         "    fi\n"
         "  fi\n"
         "  if [[ $words ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "  else\n"
         "    mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
         "  fi\n"
         "}\n"
         "complete -o filenames -F _orvo orvo\n";
}

}  // namespace client
