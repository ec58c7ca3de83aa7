#pragma once
/// Command-line arguments of one command: options declared by the command
/// ("--kind KEY", "-o OUT", "--csv"), positionals, and "--help". Long
/// options take their value as the next argument or after "="; "--" ends
/// the options; "-" alone is a positional (standard input).

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::cli {

/// One option a command accepts.
struct OptionSpec {
  std::string_view name;              ///< long form, "--kind"
  std::string_view shortName;         ///< "-o", or empty
  std::string_view valueName;         ///< "KEY" when the option takes a value; empty for a flag
  bool repeatable = false;            ///< may be given more than once ("--var")
};

/// The parsed arguments. Options are stored under their long name.
class Args {
 public:
  std::vector<std::string> positionals;
  bool help = false;

  bool has(std::string_view name) const;
  /// The option's value, when given.
  std::optional<std::string> value(std::string_view name) const;
  /// Every value of a repeatable option, in the order given.
  std::vector<std::string> values(std::string_view name) const;

  void add(std::string_view name, std::string value);

 private:
  std::map<std::string, std::vector<std::string>, std::less<>> options_;
};

/// Parses `args` (the words after the command name) against `options`.
/// `dashPositionals` lets words such as "-2^2" or "-x" that are no declared
/// option through as positionals (expressions). Throws CliError for an
/// unknown option, a missing or unexpected value, or a repeated option.
Args parseArgs(std::span<const std::string> args, std::span<const OptionSpec> options,
               bool dashPositionals = false);

/// Throws CliError unless the number of positionals lies in [min, max];
/// `names` lists them for the message ("FILE").
void expectPositionals(const Args& args, std::size_t min, std::size_t max, std::string_view command,
                       std::string_view names);

}  // namespace modelyne::cli
