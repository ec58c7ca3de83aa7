// Fuzzes the command-line argument parser with each command's option table:
// words are the input split at NUL bytes. Bad arguments must end in
// CliError, never in a crash or another exception.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/args.h"
#include "cli/commands.h"
#include "cli/output.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto commands = modelyne::cli::allCommands();
  const modelyne::cli::Command& command = *commands[data[0] % commands.size()];
  std::vector<std::string> words(1);
  for (std::size_t i = 1; i < size; ++i) {
    if (data[i] == 0) words.emplace_back();
    else words.back() += static_cast<char>(data[i]);
  }
  try {
    const modelyne::cli::Args args =
        modelyne::cli::parseArgs(words, command.options, command.dashPositionals);
    modelyne::cli::expectPositionals(args, 1, 2, command.name, "a FILE");
    for (const modelyne::cli::OptionSpec& o : command.options) (void)args.values(o.name);
  } catch (const modelyne::cli::CliError&) {
  }
  return 0;
}
