#include "cli/args.h"

#include "cli/output.h"

namespace modelyne::cli {

namespace {

const OptionSpec* findOption(std::span<const OptionSpec> options, std::string_view word) {
  for (const OptionSpec& o : options)
    if (word == o.name || (!o.shortName.empty() && word == o.shortName)) return &o;
  return nullptr;
}

std::string quoted(std::string_view s) { return "'" + std::string(s) + "'"; }

}  // namespace

bool Args::has(std::string_view name) const { return options_.find(name) != options_.end(); }

std::optional<std::string> Args::value(std::string_view name) const {
  auto it = options_.find(name);
  if (it == options_.end() || it->second.empty()) return std::nullopt;
  return it->second.back();
}

std::vector<std::string> Args::values(std::string_view name) const {
  auto it = options_.find(name);
  return it == options_.end() ? std::vector<std::string>{} : it->second;
}

void Args::add(std::string_view name, std::string value) {
  options_[std::string(name)].push_back(std::move(value));
}

Args parseArgs(std::span<const std::string> args, std::span<const OptionSpec> options,
               bool dashPositionals) {
  Args result;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& word = args[i];
    if (optionsEnded || word == "-" || word.empty() || word[0] != '-') {
      result.positionals.push_back(word);
      continue;
    }
    if (word == "--") {
      optionsEnded = true;
      continue;
    }
    if (word == "--help" || word == "-h") {
      result.help = true;
      continue;
    }
    std::string_view name = word;
    std::optional<std::string> inlineValue;
    if (word.starts_with("--")) {
      if (const auto eq = word.find('='); eq != std::string::npos) {
        name = std::string_view(word).substr(0, eq);
        inlineValue = word.substr(eq + 1);
      }
    }
    const OptionSpec* spec = findOption(options, name);
    if (!spec) {
      if (dashPositionals && !word.starts_with("--")) {
        result.positionals.push_back(word);
        continue;
      }
      throw CliError("unknown option " + quoted(name));
    }
    if (!spec->repeatable && result.has(spec->name))
      throw CliError("option " + quoted(spec->name) + " given more than once");
    if (spec->valueName.empty()) {
      if (inlineValue) throw CliError("option " + quoted(spec->name) + " takes no value");
      result.add(spec->name, {});
      continue;
    }
    if (!inlineValue) {
      if (i + 1 >= args.size())
        throw CliError("option " + quoted(spec->name) + " needs a value (" +
                       std::string(spec->valueName) + ")");
      inlineValue = args[++i];
    }
    result.add(spec->name, std::move(*inlineValue));
  }
  return result;
}

void expectPositionals(const Args& args, std::size_t min, std::size_t max, std::string_view command,
                       std::string_view names) {
  const std::size_t n = args.positionals.size();
  const std::string hint = " (try 'modelyne " + std::string(command) + " --help')";
  if (n < min) throw CliError(std::string(command) + " needs " + std::string(names) + hint);
  if (n > max)
    throw CliError("unexpected argument " + quoted(args.positionals[max]) + hint);
}

}  // namespace modelyne::cli
