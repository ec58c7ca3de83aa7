#include "cli/text_argument.h"

#include "cli/output.h"

namespace modelyne::cli {

std::string textArgument(std::span<const std::string> words) {
  if (words.empty() && stdinIsTerminal())
    throw CliError("no text given (pass it as arguments, or pipe it in)");
  if (words.empty() || (words.size() == 1 && words[0] == "-")) {
    std::string text = readInput("-").text;
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
  }
  std::string text;
  for (const std::string& w : words) {
    if (!text.empty()) text += ' ';
    text += w;
  }
  return text;
}

}  // namespace modelyne::cli
