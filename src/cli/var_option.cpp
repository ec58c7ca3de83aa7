#include "cli/var_option.h"

#include <cctype>
#include <charconv>
#include <string_view>
#include <system_error>

#include "cli/output.h"

namespace modelyne::cli {

namespace {

bool isName(std::string_view s) {
  if (s.empty() || std::isdigit(static_cast<unsigned char>(s[0]))) return false;
  for (const char c : s)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  return true;
}

}  // namespace

std::vector<std::pair<std::string, double>> varOptions(const Args& args) {
  std::vector<std::pair<std::string, double>> out;
  for (const std::string& spec : args.values("--var")) {
    const auto eq = spec.find('=');
    const std::string name = spec.substr(0, eq);
    if (eq == std::string::npos || !isName(name))
      throw CliError("invalid --var '" + spec + "' (expected NAME=VALUE with a name of letters, digits and _)");
    const std::string text = spec.substr(eq + 1);
    double value = 0.0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size())
      throw CliError("invalid --var '" + spec + "' (VALUE must be a number)");
    out.emplace_back(name, value);
  }
  return out;
}

}  // namespace modelyne::cli
