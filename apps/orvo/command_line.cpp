#include "command_line.h"

#include <CLI/CLI.hpp>

#include "messages.h"

namespace client {
namespace {

std::string Spelled(const Option& option) {
  return (option.positional ? "" : "--") + std::string(option.name);
}

std::string AllSpellings(const Option& option) {
  const std::string name = Spelled(option);
  return option.shortName == 0 ? name : std::string("-") + option.shortName + "," + name;
}

void AddOption(CLI::App& command, const Option& option, Parameters& parameters,
               const std::string& group) {
  CLI::Option* added = nullptr;
  if (option.kind == ValueKind::kFlag) {
    const auto note = [&option, &parameters](std::int64_t /*count*/) {
      parameters.set(option, {});
    };
    added = command.add_flag_function(AllSpellings(option), note, HelpText(option));
  } else {
    const auto note = [&option, &parameters](const std::string& text) {
      Value value;
      const std::string problem = ReadValue(option, text, value);
      if (!problem.empty()) {
        throw CLI::ValidationError(Spelled(option) + " " + text, problem);
      }
      parameters.set(option, std::move(value));
    };
    if (option.bare.empty()) {
      added =
          command.add_option_function<std::string>(AllSpellings(option), note, HelpText(option));
      added->type_name(Placeholder(option));
    } else {
      const std::string help = HelpText(option);
      added = command.add_flag(AllSpellings(option) + "{" + std::string(option.bare) + "}", help);
      added->each(note);
    }
  }
  added->required(option.required)->group(group);
  if (option.repeatable) {
    added->delimiter(option.separator)->multi_option_policy(CLI::MultiOptionPolicy::Join);
  }
}

void AddCommand(CLI::App& app, const Operation& operation, Request& request) {
  CLI::App* command =
      app.add_subcommand(std::string(operation.name), std::string(operation.summary));
  for (const Option& option : operation.options) {
    AddOption(*command, option, request.parameters, "Options");
  }
  for (const Option& option : CommonOptions(operation)) {
    AddOption(*command, option, request.parameters, "Files");
  }
  if (operation.subject != Subject::kToolkit) {
    command->add_option("files", request.inputs, "input files")->required()->type_name("FILE");
  }
  std::string footer =
      "Example:\n  orvo " + std::string(operation.name) + " " + std::string(operation.example);
  if (!operation.depths.empty()) {
    footer = "Takes pictures of " + std::string(operation.depths) + ".\n\n" + footer;
  }
  command->footer(footer);
  command->callback([&request, &operation] { request.operation = &operation; });
}

void SetFallbacks(Request& request) {
  for (const Option& option : request.operation->options) {
    if (option.fallback.empty() || request.parameters.has(option.name)) continue;
    Value value;
    ReadValue(option, std::string(option.fallback), value);
    request.parameters.set(option, std::move(value));
  }
}

ExitStatus TellWrongUsage(const CLI::App& app, const std::string& problem) {
  std::string name = "orvo";
  for (const CLI::App* command : app.get_subcommands()) name += " " + command->get_name();
  Tell(problem);
  Tell("'" + name + " --help' tells more");
  return kWrongUsage;
}

}  // namespace

std::variant<Request, ExitStatus> ReadCommandLine(int argc, const char* const* argv) {
  CLI::App app("Photo fixing and scan clean-up from the command line.", "orvo");
  app.footer(
      "Exit status: 0 all done, 1 some file failed, 2 wrong usage, 3 a needed module is missing;\n"
      "128 and the number of the signal that asked to end, such as 130 for Ctrl-C.");
  app.require_subcommand(1);
  Request request;
  for (const Operation& operation : Operations()) AddCommand(app, operation, request);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    if (fault.get_exit_code() == 0) {
      app.exit(fault);
      return kAllDone;
    }
    const bool unknown = app.get_subcommands().empty() && app.remaining_size() > 0;
    return TellWrongUsage(app, unknown ? "no command " + app.remaining().front() : fault.what());
  }
  SetFallbacks(request);
  if (request.operation->check != nullptr) {
    const std::string problem = request.operation->check(request.parameters);
    if (!problem.empty()) return TellWrongUsage(app, problem);
  }
  return request;
}

}  // namespace client
