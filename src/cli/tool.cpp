#include <array>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/output.h"

#ifndef MODELYNE_VERSION
#error "MODELYNE_VERSION must be defined by the build"
#endif

namespace modelyne::cli {

namespace {

constexpr std::string_view kUsageHead =
    "usage: modelyne COMMAND [ARGS...]\n"
    "       modelyne COMMAND --help\n"
    "\n"
    "Checks, reports on, exports and generates Modelyne models without the\n"
    "editor. FILE is a model file (a bare diagram or a project); \"-\" reads\n"
    "standard input. Results go to standard output, messages to standard error.\n"
    "\n"
    "commands:\n";

constexpr std::string_view kUsageTail =
    "\n"
    "options:\n"
    "  -h, --help   show this help, or a command's help after its name\n"
    "  --version    print the version\n"
    "  --max-input-size SIZE\n"
    "               after COMMAND: refuse input larger than SIZE bytes (K, M, G\n"
    "               for KiB, MiB, GiB; default 1G)\n"
    "\n"
    "exit status: 0 success; 1 a negative result (findings, unresolved names,\n"
    "nothing found); 2 an error.\n"
    "\n"
    "example:\n"
    "  modelyne check model.xml && modelyne export model.xml -o model.svg\n";

std::string overview() {
  std::string s(kUsageHead);
  for (const Command* c : allCommands()) {
    std::string line = "  " + std::string(c->name);
    line.resize(12, ' ');
    s += line + std::string(c->summary) + "\n";
  }
  s += kUsageTail;
  return s;
}

const Command* findCommand(std::string_view name) {
  for (const Command* c : allCommands())
    if (c->name == name) return c;
  return nullptr;
}

// Options every command takes besides its own.
constexpr OptionSpec kCommonOptions[] = {{kMaxInputSizeOption, "", "SIZE"}};

int runCommand(const Command& command, std::span<const std::string> rest) {
  std::vector<OptionSpec> options(command.options.begin(), command.options.end());
  options.insert(options.end(), std::begin(kCommonOptions), std::end(kCommonOptions));
  const Args args = parseArgs(rest, options, command.dashPositionals);
  if (auto size = args.value(kMaxInputSizeOption)) setInputLimit(parseSize(kMaxInputSizeOption, *size));
  if (args.help) {
    writeResult(std::nullopt, command.help);
    return kExitOk;
  }
  return command.run(args);
}

int dispatch(std::span<const std::string> args) {
  if (args.empty()) throw CliError("no command given (try 'modelyne --help')");
  const std::string& first = args[0];
  if (first == "--version") {
    if (args.size() > 1) throw CliError("unexpected argument '" + args[1] + "'");
    writeResult(std::nullopt, "modelyne " MODELYNE_VERSION "\n");
    return kExitOk;
  }
  if (first == "--help" || first == "-h" || first == "help") {
    if (args.size() > 1) {
      const Command* c = findCommand(args[1]);
      if (!c) throw CliError("unknown command '" + args[1] + "' (try 'modelyne --help')");
      writeResult(std::nullopt, c->help);
      return kExitOk;
    }
    writeResult(std::nullopt, overview());
    return kExitOk;
  }
  if (first.starts_with("-")) throw CliError("unknown option '" + first + "' (try 'modelyne --help')");
  const Command* command = findCommand(first);
  if (!command) throw CliError("unknown command '" + first + "' (try 'modelyne --help')");
  return runCommand(*command, args.subspan(1));
}

}  // namespace

std::span<const Command* const> allCommands() {
  static const std::array table = {
      &checkCommand(),    &assessCommand(), &explainCommand(), &exportCommand(),
      &importCommand(),   &generateCommand(), &planCommand(),  &promptCommand(),
      &evalCommand(),     &simulateCommand(), &infoCommand(),  &formatCommand(),
      &layoutCommand(),   &cloudCommand(),
  };
  return table;
}

int run(std::span<const std::string> args) {
  try {
    return dispatch(args);
  } catch (const CliError& e) {
    diagnostic("modelyne: error: " + std::string(e.what()));
  } catch (const std::bad_alloc&) {
    diagnostic("modelyne: error: out of memory");
  } catch (const std::exception& e) {
    diagnostic("modelyne: error: " + asClause(e.what()));
  }
  return kExitError;
}

}  // namespace modelyne::cli
