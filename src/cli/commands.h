#pragma once
/// The commands of the `modelyne` tool: each is a name, a one-line summary
/// for the overview, a short help text with an example, the options it
/// accepts and the function that runs it. `run` is the whole tool, argv
/// without the program name.

#include <span>
#include <string>
#include <string_view>

#include "cli/args.h"

namespace modelyne::cli {

struct Command {
  std::string_view name;
  std::string_view summary;   ///< one line in `modelyne --help`
  std::string_view help;      ///< `modelyne NAME --help`, ending in a line feed
  std::span<const OptionSpec> options;
  bool dashPositionals = false;  ///< positionals may begin with "-" (expressions)
  int (*run)(const Args&) = nullptr;  ///< returns the exit code; throws CliError
};

/// Every command, in the order of the overview.
std::span<const Command* const> allCommands();

/// Runs the tool; returns the exit code. Prints errors itself.
int run(std::span<const std::string> args);

// One accessor per command, each defined in its cmd_*.cpp.
const Command& checkCommand();
const Command& assessCommand();
const Command& explainCommand();
const Command& exportCommand();
const Command& importCommand();
const Command& generateCommand();
const Command& planCommand();
const Command& promptCommand();
const Command& evalCommand();
const Command& simulateCommand();
const Command& infoCommand();
const Command& formatCommand();
const Command& cloudCommand();
const Command& layoutCommand();

}  // namespace modelyne::cli
